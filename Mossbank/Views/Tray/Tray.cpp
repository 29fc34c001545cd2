// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Tray/Tray.h"

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Ports/TrayHost.h"
#include "Mossbank/Views/Tray/TrayPopup.h"

#include <QSystemTrayIcon>

using namespace Qt::StringLiterals;

namespace mossbank {

Tray::Tray(AppModel& model, const Preferences& preferences, TrayHost& host, QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_preferences(preferences)
    , m_host(host)
{
    connect(&m_host, &TrayHost::availabilityChanged, this, &Tray::appear);
    appear();
}

Tray::~Tray() = default;

void Tray::appear()
{
    if (m_icon || !m_host.availability().isAvailable)
        return;
    m_popup = std::make_unique<TrayPopup>();
    m_icon = std::make_unique<QSystemTrayIcon>(this);
    connect(m_popup.get(), &TrayPopup::chosen, this, &Tray::carryOut);
    connect(m_icon.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger)
                    Q_EMIT opens();
            });
    const Recorder& recorder = m_model.recorder();
    connect(&recorder, &Recorder::isRecordingChanged, this, &Tray::follow);
    connect(&recorder, &Recorder::statusChanged, this, &Tray::follow);
    connect(&recorder, &Recorder::errorMessageChanged, this, &Tray::follow);
    connect(&m_model.timedPause(), &TimedPause::pausedUntilChanged, this, &Tray::follow);
    // How the entries are written hangs on who shows the menu.
    m_icon->setContextMenu(&m_popup->menu());
    follow();
    m_icon->show();
}

void Tray::follow()
{
    const TrayState now = state();
    const Recorder& recorder = m_model.recorder();
    m_popup->show(TrayMenu::entries(now));
    m_icon->setToolTip(u"Mossbank\n"_s + now.status);
    const TraySymbol symbol = TraySymbols::symbol(now.isRecording, recorder.secureInputPaused());
    if (m_symbol != symbol)
        m_icon->setIcon(TraySymbols::icon(symbol));
    m_symbol = symbol;
}

TrayState Tray::state() const
{
    const Recorder& recorder = m_model.recorder();
    return {.isDemo = m_preferences.isDemo(),
            .isRecording = recorder.isRecording(),
            .isPaused = m_model.timedPause().isPaused(),
            .status = recorder.status(),
            .errorMessage = recorder.errorMessage()};
}

void Tray::carryOut(const TrayChoice& choice)
{
    switch (choice.command) {
    case TrayCommand::None:
        break;
    case TrayCommand::ToggleRecording:
        m_model.recorder().toggleRecording();
        break;
    case TrayCommand::PauseFor:
        m_model.pauses().pause(choice.length);
        break;
    case TrayCommand::CancelPause:
        m_model.pauses().cancelTimedPause();
        break;
    case TrayCommand::CaptureNow:
        m_model.recorder().captureNow();
        break;
    case TrayCommand::ExcludeFrontApplication:
        m_model.exclusions().excludeFrontmostApp();
        break;
    case TrayCommand::OpenWindow:
        Q_EMIT opens();
        break;
    case TrayCommand::Quit:
        m_model.quitGuard().quit(QuitGuard::Cause::User);
        break;
    }
}

} // namespace mossbank
