// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/ShmPool.h"

#include <QImage>
#include <QRect>
#include <QRegion>

#include <memory>

namespace mossbank {

/// Takes one picture of a part of the root: through shared memory where the server can, else over
/// the connection. Make it, do what else has to be of the same instant, then fetch.
///
/// Threading: the connection's. The image may go to any thread and may outlive the connection.
/// Errors: a Failure when the server cannot give the picture.
class RootPicture {
public:
    /// Asks for the picture. `area` lies within the root.
    RootPicture(const X11Connection& connection, std::shared_ptr<ShmPool> pool, const QRect& area);
    /// A picture that nobody fetched is waited for: the server may still be writing.
    ~RootPicture();
    Q_DISABLE_COPY_MOVE(RootPicture)

    /// The picture has come once this returns.
    void wait();
    /// The pixels, with `covered` (in the root's coordinates) filled. Call `wait` before.
    QImage take(const QRegion& covered);

private:
    static QImage::Format formatOf(const X11Connection& connection);
    void giveUpSegment();
    QImage wrap();
    void cover(const QRegion& region) const;

    const X11Connection& m_connection;
    std::shared_ptr<ShmPool> m_pool;
    QRect m_area;
    QImage::Format m_format;
    qsizetype m_bytesPerLine = 0;
    uchar* m_data = nullptr;
    bool m_isAwaited = true;
    xcb_shm_get_image_cookie_t m_sharedAsked = {};
    xcb_get_image_cookie_t m_plainAsked = {};
    std::unique_ptr<ShmSegment> m_segment;
    Reply<xcb_get_image_reply_t> m_plain;
};

} // namespace mossbank
