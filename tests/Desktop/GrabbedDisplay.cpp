// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/GrabbedDisplay.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace mossbank::test {

QImage grabDisplay()
{
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> server(
        xcb_connect(nullptr, nullptr), xcb_disconnect);
    if (xcb_connection_has_error(server.get()))
        return {};
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(server.get())).data;
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
        xcb_get_image_reply(server.get(),
                            xcb_get_image(server.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen.root, 0,
                                          0, screen.width_in_pixels, screen.height_in_pixels, ~0U),
                            nullptr),
        std::free);
    constexpr int kBytesPerPixel = 4;
    if (!reply || xcb_get_image_data_length(reply.get()) !=
                      kBytesPerPixel * screen.width_in_pixels * screen.height_in_pixels)
        return {};
    return QImage(xcb_get_image_data(reply.get()), screen.width_in_pixels, screen.height_in_pixels,
                  QImage::Format_RGB32)
        .copy();
}

QRect boundsOf(const QImage& image, QRgb colour, const QRect& part)
{
    QRect bounds;
    const QRect inside = part & image.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) {
            if ((image.pixel(x, y) & RGB_MASK) == (colour & RGB_MASK))
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

} // namespace mossbank::test
