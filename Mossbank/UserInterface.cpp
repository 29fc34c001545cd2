// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/UserInterface.h"

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Platform/PlatformFactory.h"

#include <QGuiApplication>
#include <QTimer>

#include <chrono>

namespace mossbank {

UserInterface::UserInterface(AppModel& model, Preferences& preferences, Clock& clock,
                             const Platform& platform)
    : m_workspace({.model = model,
                   .preferences = preferences,
                   .clock = clock,
                   .calendar = Calendar::current,
                   .installedApplications = *platform.installedApplications,
                   .fileManager = *platform.fileManager,
                   .desktop = *platform.desktopSettings})
    , m_closingNotice(preferences, model.recorder(), *platform.trayHost)
    , m_tray(model, preferences, *platform.trayHost)
{
    followWindow(model);
    followCallsOf(*platform.activation);
    connect(&m_tray, &Tray::opens, this, &UserInterface::open);
    model.launch().setReopenHandler([this] { open(); });
    connect(qApp, &QGuiApplication::applicationStateChanged, &model.launch(),
            [&model](Qt::ApplicationState state) {
                if (state == Qt::ApplicationActive)
                    model.launch().becameActive();
            });
}

void UserInterface::followWindow(AppModel& model)
{
    // When everything of the window and its list has gone.
    connect(&m_workspace, &WorkspaceWindow::closed, this, [this] {
        constexpr auto kUntilLetGo = std::chrono::seconds(1);
        QTimer::singleShot(kUntilLetGo, this, &giveMemoryBack);
    });
    connect(&m_workspace, &WorkspaceWindow::quits, &model.quitGuard(),
            [&model] { model.quitGuard().quit(QuitGuard::Cause::User); });
    connect(&m_workspace, &WorkspaceWindow::closedByUser, &m_closingNotice,
            &ClosingNotice::windowClosed);
    connect(&m_workspace, &WorkspaceWindow::opened, &m_closingNotice, &ClosingNotice::dismiss);
}

/// The notice says how to have the window back, and is not what is to come to the front then.
void UserInterface::followCallsOf(ProgramActivation& activation)
{
    connect(&activation, &ProgramActivation::activated, this, [this] {
        if (m_closingNotice.isOpen())
            open();
    });
}

SnapshotStage UserInterface::stage()
{
    return {.showText = [this] {
        m_workspace.showText();
    }};
}

} // namespace mossbank
