// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/AfterSave.h"
#include "Mossbank/Model/PauseControl.h"
#include "Mossbank/Model/Recorder.h"
#include "MossbankCore/Library/HistoryStore.h"

#include <QObject>
#include <QString>

#include <memory>
#include <optional>

namespace mossbank {

/// A library that was opened, or the reason why not.
struct OpenedLibrary {
    /// Absent when the library could not be opened.
    std::unique_ptr<HistoryStore> store;
    /// What the user is to be told.
    std::optional<QString> errorMessage;

    /// Opens the library for writing. Throws nothing.
    static OpenedLibrary at(const QString& root);
};

/// The one application object, alive from launch to exit. It is made of parts, each with the
/// state that belongs to it; what the windows show they ask of those.
///
/// Threading: the main thread.
/// Owns: the library and the parts. What is handed in by reference outlives it.
class AppModel : public QObject {
    Q_OBJECT

public:
    AppModel(Surroundings surroundings, OpenedLibrary library, QObject* parent = nullptr);
    ~AppModel() override;

    Recorder& recorder() { return m_recorder; }
    /// Absent when the library could not be opened.
    HistoryStore* store() { return m_store.get(); }

    /// What is done once everything is up: recording starts if the user asked for that.
    void finishedLaunching();

    /// Stops recording. `readyToQuit` follows when what was being saved is saved, or after ten
    /// seconds.
    void prepareToQuit();

Q_SIGNALS:
    void readyToQuit();

private:
    QCoro::Task<> quitInAnyCase(Cancellation cancellation);

    Clock& m_clock;
    Preferences& m_preferences;
    std::unique_ptr<HistoryStore> m_store;
    NoPauses m_pauses;
    NothingAfterSave m_afterSave;
    Recorder m_recorder;
    /// Last: cancelled before anything above goes.
    Job m_quitting;
};

} // namespace mossbank
