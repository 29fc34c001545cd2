// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchDesktop.h"

#include "MossbankCore/Support/Failure.h"

#include <QThread>

using namespace Qt::StringLiterals;

namespace mossbank {

BenchWindow::BenchWindow(const QByteArray& windowClass, const QRect& frame, quint32 colour)
{
    const xcb_window_t window = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_connection.root(),
                      static_cast<qint16>(frame.x()), static_cast<qint16>(frame.y()),
                      static_cast<quint16>(frame.width()), static_cast<quint16>(frame.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL,
                      &colour);
    const QByteArray names = windowClass + '\0' + windowClass + '\0';
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS,
                        XCB_ATOM_STRING, 8, static_cast<quint32>(names.size()), names.constData());
    xcb_map_window(m_connection, window);
    // Wait until it shows, also where a window manager has to put a frame around it first.
    constexpr int kMaxAttempts = 300;
    for (int attempt = 0; attempt < kMaxAttempts && !isViewable(window); ++attempt)
        QThread::msleep(10);
    if (!isViewable(window))
        throw Failure(u"A window of the measurement does not show."_s);
}

bool BenchWindow::isViewable(xcb_window_t window) const
{
    const auto attributes = m_connection.reply<xcb_get_window_attributes_reply_t>(
        xcb_get_window_attributes(m_connection, window));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

BareGrab::BareGrab()
{
    const xcb_screen_t& screen = m_connection.screen();
    constexpr std::size_t kBytesPerPixel = 4;
    m_segment = ShmSegment::make(m_connection,
                                 kBytesPerPixel * screen.width_in_pixels * screen.height_in_pixels);
    if (!m_segment)
        throw Failure(u"The X server cannot share memory."_s);
}

void BareGrab::take() const
{
    const xcb_screen_t& screen = m_connection.screen();
    const auto asked = xcb_shm_get_image(m_connection, screen.root, 0, 0, screen.width_in_pixels,
                                         screen.height_in_pixels, ~quint32{0},
                                         XCB_IMAGE_FORMAT_Z_PIXMAP, m_segment->id(), 0);
    if (!m_connection.reply<xcb_shm_get_image_reply_t>(asked))
        throw Failure(u"The X server did not give a picture."_s);
}

} // namespace mossbank
