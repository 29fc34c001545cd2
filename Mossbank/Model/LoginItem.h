// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>

#include <optional>

namespace mossbank {

class LoginService;
class Preferences;
class Recorder;

/// Whether Mossbank is started when the user logs in. What the system says counts; the user's wish
/// is kept beside it, so that it outlives a move or an update of the program.
///
/// Threading: the main thread.
class LoginItem : public QObject {
    Q_OBJECT

public:
    enum class State { On, Off, NeedsApproval, Unavailable };

    /// All of them outlive it. The recorder's line takes what the user must know.
    LoginItem(LoginService& service, Preferences& preferences, Recorder& recorder,
              QObject* parent = nullptr);

    /// As it was when last looked at.
    State state() const { return m_state; }

    /// Once at launch: an item belongs to one copy of the program, and this one takes it over where
    /// the user wants to be started at login.
    void keepWithThisCopy();

    /// Looks again: the user may have changed it in the desktop's settings.
    void refresh();

    /// The user's wish. What the system says against it stands in the recorder's `errorMessage`.
    void setOpensAtLogin(bool opens);

Q_SIGNALS:
    void stateChanged();

private:
    std::optional<QString> set(bool on);

    LoginService& m_service;
    Preferences& m_preferences;
    Recorder& m_recorder;
    State m_state = State::Off;
};

} // namespace mossbank
