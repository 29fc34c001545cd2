// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/AfterEachSave.h"
#include "Mossbank/Model/BrowserAddress.h"
#include "Mossbank/Model/Exclusions.h"
#include "Mossbank/Model/Grouping.h"
#include "Mossbank/Model/Housekeeping.h"
#include "Mossbank/Model/Launch.h"
#include "Mossbank/Model/Listing.h"
#include "Mossbank/Model/LoginItem.h"
#include "Mossbank/Model/Pauses.h"
#include "Mossbank/Model/QuitGuard.h"
#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Model/SampleLibrary.h"
#include "Mossbank/Model/TimedPause.h"
#include "Mossbank/Model/Updater.h"
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Library/ImageVault.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace mossbank {

class Keychain;
class Screen;

/// A library that was opened, or the reason why not.
struct OpenedLibrary {
    /// Absent when the library could not be opened.
    std::unique_ptr<HistoryStore> store;
    /// What pictures are sealed with. Absent when the keychain gave no key; then they lie plain.
    std::optional<ImageVault> vault;
    /// What the user is to be told.
    std::optional<QString> errorMessage;
    /// What it is filled with at the start where it is the sample library.
    SampleContents sample = {};

    /// Opens the library for writing, with the key from `keychain`. Without a keychain pictures
    /// lie plain, and nothing is said of it. Waits for the keychain, and with it perhaps for the
    /// user. Throws nothing.
    static OpenedLibrary at(const QString& root, Keychain* keychain);
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
    Pauses& pauses() { return m_pauses; }
    const TimedPause& timedPause() const { return m_timedPause; }
    Exclusions& exclusions() { return m_exclusions; }
    Housekeeping& housekeeping() { return m_housekeeping; }
    Listing& listing() { return m_listing; }
    const Grouping& grouping() const { return m_grouping; }
    LoginItem& loginItem() { return m_loginItem; }
    QuitGuard& quitGuard() { return m_quitGuard; }
    SampleLibrary& sampleLibrary() { return m_sampleLibrary; }
    Launch& launch() { return m_launch; }
    Updater& updater() { return m_updater; }
    /// What the user calls the displays, the main one first.
    QStringList displayNames() const;
    /// Whether the system lets this program see the screen.
    bool mayRecordScreen() const;
    /// Absent when the library could not be opened.
    HistoryStore* store() { return m_store.get(); }
    /// Absent when the keychain gave no key: pictures lie plain, and sealed ones do not open.
    const std::optional<ImageVault>& vault() const { return m_vault; }

    /// Once, when everything is up: from now on it follows the desktop, and what is to come back by
    /// itself does.
    void finishedLaunching();

Q_SIGNALS:
    /// The program is to end, and recording has stopped: what was being saved is saved, or ten
    /// seconds were not enough for it.
    void readyToQuit();

private:
    void applyAppearance();
    void followAddresses();
    void tellOfUnstored(const QString& reason);
    void tellOfStored();
    /// Leaves what stands there, which is not settled by it.
    void tellBesides(const QString& message);
    void prepareToQuit();
    QCoro::Task<> quitInAnyCase(Cancellation cancellation);

    Clock& m_clock;
    Screen& m_screen;
    Preferences& m_preferences;
    AddressSource& m_addressSource;
    Appearance& m_appearance;
    std::unique_ptr<HistoryStore> m_store;
    std::optional<ImageVault> m_vault;
    BrowserAddress m_addresses;
    TimedPause m_timedPause;
    AfterEachSave m_afterSave;
    Recorder m_recorder;
    Pauses m_pauses;
    Exclusions m_exclusions;
    Housekeeping m_housekeeping;
    Listing m_listing;
    Grouping m_grouping;
    LoginItem m_loginItem;
    QuitGuard m_quitGuard;
    SampleLibrary m_sampleLibrary;
    Launch m_launch;
    Updater m_updater;
    /// What the user was told of choices that could not be stored.
    QString m_unstored;
    /// Last: cancelled before anything above goes.
    Job m_quitting;
};

} // namespace mossbank
