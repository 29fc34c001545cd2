// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/Workspace/WorkspaceParts.h"

#include <QObject>
#include <QPointer>

class QQuickWindow;

namespace mossbank {

/// The main window, which is there while it is open: one that is closed costs nothing but the
/// model.
///
/// Threading: the main thread.
class WorkspaceWindow : public QObject {
    Q_OBJECT

public:
    explicit WorkspaceWindow(const WorkspaceParts& parts, QObject* parent = nullptr);
    ~WorkspaceWindow() override;

    /// Opens it, or brings it to the front. Where it cannot be opened, the recorder's error message
    /// says why.
    void open();
    void close();
    bool isOpen() const;

    /// Shows the words of the selected screenshot beside it. Nothing while it is closed.
    void showText();

    /// Null while it is closed.
    QQuickWindow* window() const;

Q_SIGNALS:
    void opened();
    /// By the user, or by `close`.
    void closed();
    /// Besides that, where it was the user.
    void closedByUser();
    /// The user wants the program to end.
    void quits();

private:
    class Opened;

    void end();

    WorkspaceParts m_parts;
    QPointer<Opened> m_opened;
    bool m_isClosing = false;
};

} // namespace mossbank
