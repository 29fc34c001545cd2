// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/DrawnRegion.h"
#include "Mossbank/Platform/Linux/OwnProgram.h"
#include "Mossbank/Platform/Linux/ScreenGhosts.h"
#include "Mossbank/Platform/Linux/ShmPool.h"
#include "Mossbank/Platform/Linux/X11WindowWatch.h"
#include "Mossbank/Platform/Linux/X11Windows.h"
#include "Mossbank/Ports/Screen.h"
#include "MossbankCore/Support/SerialQueue.h"

#include <QElapsedTimer>
#include <QMutex>

#include <memory>

namespace mossbank {

/// The screen of an X server. It has a connection and a thread of its own: a server that stops
/// answering holds up nobody but whoever awaits a picture.
///
/// Each look is of one instant, with the server grabbed. What must not be seen is covered before
/// the pixels leave. Drawing the picture from the windows' own pixmaps instead would leak: the
/// server fills a new pixmap from what is on the screen, so an excluded window's pixels come
/// through in a window that has not repainted yet.
///
/// Threading: the main thread. `picture` and `content` may be destroyed away from under.
class X11Screen final : public Screen {
public:
    /// Throws a Failure when there is no display.
    X11Screen(std::shared_ptr<ApplicationCatalog> catalog, OwnProgram own);
    ~X11Screen() override;

    Availability availability() const override;
    /// An X server shows everything to every program.
    bool isAllowed() const override { return availability().isAvailable; }
    void askForPermission() override {}
    void openPermissions() override {}

    QStringList displayNames() const override;
    QFuture<ScreenContent> content() override;
    QFuture<QImage> picture(PictureRequest request) override;

private:
    /// Looks at the windows and keeps what it sees, so that what one leaves behind is known when it
    /// goes, also where nobody asked while it was there.
    void noteWindows();
    template <typename Look>
    auto look(Look look);
    void connectAnew();
    ScreenContent readContent();
    QImage takePicture(const PictureRequest& request);
    void lookForGhosts(const QList<X11Window>& windows);
    QRegion coveredRegion(const QList<X11Window>& windows, const QStringList& included);
    QList<Application> applicationsOf(const X11Window& window);

    std::shared_ptr<ApplicationCatalog> m_catalog;
    OwnProgram m_own;

    std::stop_source m_ending;
    /// Guards the pointer, not what is done with the connection, which is the queue's.
    mutable QMutex m_mutex;
    std::unique_ptr<X11Connection> m_connection;
    QString m_whyBroken;

    std::shared_ptr<ShmPool> m_pool;
    /// What was drawn between two looks, and what windows that went in between have left.
    std::unique_ptr<DrawnRegion> m_drawn;
    ScreenGhosts m_ghosts;
    QElapsedTimer m_age;
    SerialQueue m_queue;
    /// Last: it has windows noted by all of the above.
    X11WindowWatch m_watch;
};

} // namespace mossbank
