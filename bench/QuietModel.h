// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Model/Preferences.h"
#include "MossbankCore/Support/SystemClock.h"

#include <QTemporaryDir>

#include <memory>

namespace mossbank {

/// The model over a library, as a window of the program has it, on a desktop that offers nothing:
/// so nothing is recorded, and nothing old is removed. Days are those of UTC.
///
/// Errors: the constructor throws what the store finds wrong.
class QuietModel {
public:
    explicit QuietModel(const QString& library);
    ~QuietModel();
    Q_DISABLE_COPY_MOVE(QuietModel)

    AppModel& model() { return *m_model; }
    Preferences& preferences() { return m_preferences; }
    Clock& clock() { return m_clock; }
    /// UTC's, in plain English.
    static Calendar calendar();
    Listing& listing() { return m_model->listing(); }
    const Grouping& grouping() const { return m_model->grouping(); }
    const std::optional<QString>& errorMessage() { return m_model->recorder().errorMessage(); }

private:
    struct Desktop;

    QTemporaryDir m_home;
    Preferences m_preferences{m_home.filePath(QStringLiteral("choices.ini"))};
    SystemClock m_clock;
    std::unique_ptr<Desktop> m_desktop;
    std::unique_ptr<AppModel> m_model;
};

} // namespace mossbank
