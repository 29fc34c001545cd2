// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11Screen.h"

#include "Mossbank/Platform/Linux/DisplayNames.h"
#include "Mossbank/Platform/Linux/RootPicture.h"
#include "Mossbank/Platform/Linux/ScreenCover.h"
#include "MossbankCore/Support/Failure.h"

#include <QDateTime>
#include <QGuiApplication>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

/// Does `look` on the queue. A connection that was lost is made anew before, so that a server that
/// has come back is found at once, and after a failure that broke it.
template <typename Look>
auto X11Screen::look(Look look)
{
    return m_queue.run([this, look = std::move(look)] {
        if (m_connection)
            m_connection->dropEvents();
        if (!m_connection || m_connection->isBroken())
            connectAnew();
        if (!m_connection)
            throw Failure(availability().reason);
        m_connection->forgetSilence();
        if (!m_drawn)
            m_drawn = std::make_unique<DrawnRegion>(*m_connection);
        try {
            return look();
        } catch (const Failure&) {
            if (m_connection->isBroken())
                connectAnew();
            throw;
        }
    });
}

X11Screen::X11Screen(std::shared_ptr<ApplicationCatalog> catalog, OwnProgram own)
    : m_catalog(std::move(catalog))
    , m_own(std::move(own))
    , m_connection(std::make_unique<X11Connection>())
    , m_pool(std::make_shared<ShmPool>())
    , m_queue(u"Screen"_s)
{
    m_age.start();
    QObject::connect(&m_watch, &X11WindowWatch::changed, &m_watch, [this] { noteWindows(); });
    noteWindows();
}

X11Screen::~X11Screen()
{
    m_ending.request_stop();
    const QMutexLocker lock(&m_mutex);
    // The queue waits for its work, which may wait for a server that has stopped answering.
    if (m_connection)
        m_connection->interrupt();
}

Availability X11Screen::availability() const
{
    const QMutexLocker lock(&m_mutex);
    return m_whyBroken.isEmpty() ? Availability{} : Availability::missing(m_whyBroken);
}

QStringList X11Screen::displayNames() const
{
    // Without windows of its own this program has not asked what the displays say of themselves.
    return qobject_cast<QGuiApplication*>(qApp) ? displayNamesOf(QGuiApplication::screens())
                                                : QStringList();
}

QFuture<ScreenContent> X11Screen::content()
{
    return look([this] { return readContent(); });
}

// A pass that ends before it asks for the windows, as with an excluded application in front, would
// otherwise leave nobody who knows where that application's window was.
void X11Screen::noteWindows()
{
    // Nobody waits for it. What fails here is told to whoever asks next.
    look([this] {
        QList<X11Window> windows;
        {
            const ServerGrab grab(*m_connection);
            m_drawn->ask();
            windows =
                readWindows(*m_connection, X11Desktop::read(*m_connection), X11Scope::Viewable);
        }
        lookForGhosts(windows);
    });
}

QFuture<QImage> X11Screen::picture(PictureRequest request)
{
    return look([this, request = std::move(request)] { return takePicture(request); });
}

void X11Screen::connectAnew()
{
    m_drawn.reset();
    m_pool = std::make_shared<ShmPool>();
    std::unique_ptr<X11Connection> connection;
    QString whyBroken;
    {
        const QMutexLocker lock(&m_mutex);
        std::swap(connection, m_connection);
    }
    try {
        connection =
            std::make_unique<X11Connection>(X11Connection::kPatience, m_ending.get_token());
    } catch (const Failure& failure) {
        connection.reset();
        whyBroken = failure.message();
    }
    const QMutexLocker lock(&m_mutex);
    m_whyBroken = whyBroken;
    // What would interrupt its waits has gone by.
    if (!m_ending.stop_requested())
        m_connection = std::move(connection);
}

ScreenContent X11Screen::readContent()
{
    const X11Connection& connection = *m_connection;
    X11Desktop desktop;
    QList<X11Window> windows;
    {
        const ServerGrab grab(connection);
        m_drawn->ask();
        desktop = X11Desktop::read(connection);
        windows = readWindows(connection, desktop, X11Scope::All);
    }
    lookForGhosts(windows);
    ScreenContent content = {{}, desktop.displays, desktop.mainDisplay, {}};
    for (const X11Window& window : std::as_const(windows)) {
        const QList<Application> owners = applicationsOf(window);
        content.windows.append(
            {owners, window.title, window.layer, window.frame, window.isOnScreen});
        for (const Application& owner : owners) {
            const auto known =
                std::ranges::find(content.applications, owner.bundleID, &Application::bundleID);
            if (known == content.applications.end())
                content.applications.append(owner);
            else
                known->aliases += owner.aliases;
        }
    }
    return content;
}

QImage X11Screen::takePicture(const PictureRequest& request)
{
    const X11Connection& connection = *m_connection;
    std::optional<RootPicture> picture;
    QList<X11Window> windows;
    {
        const ServerGrab grab(connection);
        const X11Desktop desktop = X11Desktop::read(connection);
        const QRect area =
            desktop.display(request.display).value_or(Display{}).frame & desktop.frame;
        if (area.isEmpty()) {
            throw Failure(u"No display is available. Check your display connection and try "
                          "again."_s);
        }
        // The server copies the pixels while the windows are asked for.
        picture.emplace(connection, m_pool, area);
        m_drawn->ask();
        windows = readWindows(connection, desktop, X11Scope::Viewable);
        picture->wait();
    }
    lookForGhosts(windows);
    const QImage image = picture->take(coveredRegion(windows, request.included) +
                                       m_ghosts.regionToCover(request.excluded));
    if (request.size.isEmpty() || image.size() == request.size)
        return image;
    return image.scaled(request.size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

void X11Screen::lookForGhosts(const QList<X11Window>& windows)
{
    QList<SeenWindow> seen;
    for (const X11Window& window : windows) {
        if (!window.isViewable)
            continue;
        SeenWindow one = {window.id, window.frame, {}};
        for (const Application& owner : applicationsOf(window))
            one.owners += QStringList{owner.bundleID} + owner.aliases;
        seen.append(one);
    }
    m_ghosts.look(seen, m_drawn->read(), m_age.elapsed());
}

QRegion X11Screen::coveredRegion(const QList<X11Window>& windows, const QStringList& included)
{
    QList<CoverWindow> all;
    for (const X11Window& window : windows) {
        const QList<Application> owners = applicationsOf(window);
        const auto isOwn = [&](const auto& owner) {
            return owner.bundleID == m_own.bundleID;
        };
        const auto isIn = [&](const auto& owner) {
            return included.contains(owner.bundleID);
        };
        Visibility visibility = Visibility::Unknown;
        if (std::ranges::any_of(owners, isOwn))
            visibility = Visibility::Own;
        else if (!owners.isEmpty())
            visibility =
                std::ranges::all_of(owners, isIn) ? Visibility::Shown : Visibility::LeftOut;
        all.append({window.frame, window.opaque, visibility});
    }
    return regionToCover(all);
}

QList<Application> X11Screen::applicationsOf(const X11Window& window)
{
    QList<Application> applications;
    for (const X11Owner& owner : window.owners) {
        const Application application = applicationOf(owner, *m_catalog, m_own);
        if (!application.bundleID.isEmpty() && !applications.contains(application))
            applications.append(application);
    }
    return applications;
}

} // namespace mossbank
