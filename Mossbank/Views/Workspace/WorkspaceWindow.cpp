// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/WorkspaceWindow.h"

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Views/ApplicationIcons.h"
#include "Mossbank/Views/Pictures/PictureProvider.h"
#include "Mossbank/Views/QuickWindow.h"
#include "Mossbank/Views/Workspace/SearchKeys.h"
#include "Mossbank/Views/Workspace/Workspace.h"
#include "MossbankCore/Support/Failure.h"

#include <QEvent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>

using namespace Qt::StringLiterals;

namespace mossbank {

/// Everything that is there for as long as the window is.
class WorkspaceWindow::Opened final : public QObject {
    Q_OBJECT

public:
    explicit Opened(const WorkspaceParts& parts)
        : m_workspace(parts)
    {
        const PictureFolder pictures = m_workspace.pictures();
        m_engine.addImageProvider(QString::fromUtf16(ApplicationIcons::kID), new ApplicationIcons);
        m_engine.addImageProvider(
            QString::fromUtf16(PictureProvider::kThumbnails),
            new PictureProvider(pictures, std::make_shared<ThumbnailCache>()));
        m_engine.addImageProvider(QString::fromUtf16(PictureProvider::kScreenshots),
                                  new PictureProvider(pictures));
        m_window = makeQuickWindow(m_engine, u"Workspace/WorkspaceView.qml"_s,
                                   {{u"workspace"_s, QVariant::fromValue(&m_workspace)}});
        if (auto* const field = m_window->findChild<QQuickItem*>(u"search"_s))
            new SearchKeys(parts.model.listing(), *field, field);
        m_window->installEventFilter(this);
        connect(&m_engine, &QQmlEngine::quit, this, &Opened::quits);
        bringToFront(*m_window);
    }

    QQuickWindow& window() { return *m_window; }
    Workspace& workspace() { return m_workspace; }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Close)
            Q_EMIT closing();
        return false;
    }

Q_SIGNALS:
    void closing();
    void quits();

private:
    Workspace m_workspace;
    QQmlEngine m_engine;
    std::unique_ptr<QQuickWindow> m_window;
};

WorkspaceWindow::WorkspaceWindow(const WorkspaceParts& parts, QObject* parent)
    : QObject(parent)
    , m_parts(parts)
{
}

WorkspaceWindow::~WorkspaceWindow()
{
    delete m_opened;
}

bool WorkspaceWindow::isOpen() const
{
    return m_opened;
}

QQuickWindow* WorkspaceWindow::window() const
{
    return m_opened ? &m_opened->window() : nullptr;
}

void WorkspaceWindow::showText()
{
    if (m_opened)
        m_opened->workspace().setShowsText(true);
}

void WorkspaceWindow::open()
{
    if (m_opened) {
        bringToFront(m_opened->window());
        return;
    }
    m_parts.model.listing().openWorkspace();
    try {
        m_opened = new Opened(m_parts);
    } catch (const Failure& failure) {
        m_parts.model.listing().closeWorkspace();
        m_parts.model.recorder().setErrorMessage(failure.message());
        return;
    }
    connect(m_opened, &Opened::closing, this, &WorkspaceWindow::end);
    connect(m_opened, &Opened::quits, this, &WorkspaceWindow::quits);
    Q_EMIT opened();
}

void WorkspaceWindow::close()
{
    m_isClosing = true;
    if (m_opened)
        m_opened->window().close();
    m_isClosing = false;
}

void WorkspaceWindow::end()
{
    Opened* const opened = m_opened;
    if (!opened)
        return;
    m_opened.clear();
    opened->disconnect(this);
    // It is the window's own event that tells of it.
    opened->window().hide();
    opened->deleteLater();
    Listing& listing = m_parts.model.listing();
    listing.setShowsEnlarged(false);
    listing.closeWorkspace();
    Q_EMIT closed();
    if (!m_isClosing)
        Q_EMIT closedByUser();
}

} // namespace mossbank

#include "WorkspaceWindow.moc"
