// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/Tray/TrayMenu.h"
#include "Mossbank/Views/Tray/TraySymbols.h"

#include <QObject>

#include <memory>
#include <optional>

QT_FORWARD_DECLARE_CLASS(QSystemTrayIcon)

namespace mossbank {

class AppModel;
class Preferences;
class TrayHost;
class TrayPopup;

/// The program's face while it has no window open: an icon that shows the recorder's state, and a
/// menu that says what the recorder did last and holds its controls.
///
/// The icon is made when the desktop first has a place for it, which at login is after this program
/// has started; from then on it comes back by itself whenever that place does.
///
/// Threading: the main thread. While there is an application with widgets.
class Tray : public QObject {
    Q_OBJECT

public:
    /// All of them outlive it.
    Tray(AppModel& model, const Preferences& preferences, TrayHost& host,
         QObject* parent = nullptr);
    ~Tray() override;

Q_SIGNALS:
    /// The user wants to see the window.
    void opens();

private:
    void appear();
    void follow();
    TrayState state() const;
    void carryOut(const TrayChoice& choice);

    AppModel& m_model;
    const Preferences& m_preferences;
    TrayHost& m_host;
    /// Absent until there is a place for them.
    std::unique_ptr<TrayPopup> m_popup;
    std::unique_ptr<QSystemTrayIcon> m_icon;
    std::optional<TraySymbol> m_symbol;
};

} // namespace mossbank
