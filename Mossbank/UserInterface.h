// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/ClosingNotice/ClosingNotice.h"
#include "Mossbank/Views/Snapshot/SnapshotStage.h"
#include "Mossbank/Views/Tray/Tray.h"
#include "Mossbank/Views/Workspace/WorkspaceWindow.h"

#include <QObject>

namespace mossbank {

class ProgramActivation;
struct Platform;

/// The window, the icon in the tray and the notice that stands in for it, each told of the others.
///
/// Threading: the main thread.
class UserInterface : public QObject {
    Q_OBJECT

public:
    /// All outlive it.
    UserInterface(AppModel& model, Preferences& preferences, Clock& clock,
                  const Platform& platform);

    /// Opens the window, or brings it to the front.
    void open() { m_workspace.open(); }

    /// The states of the window that the model holds nothing of.
    SnapshotStage stage();

private:
    void followWindow(AppModel& model);
    void followCallsOf(ProgramActivation& activation);

    WorkspaceWindow m_workspace;
    ClosingNotice m_closingNotice;
    Tray m_tray;
};

} // namespace mossbank
