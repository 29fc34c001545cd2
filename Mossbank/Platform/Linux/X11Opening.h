// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>

#include <xcb/xcb.h>

#include <stop_token>

namespace mossbank {

/// A connection that has just been opened, and the screen that its name asks for.
struct X11Opened {
    /// The caller's to disconnect. It may have an error.
    xcb_connection_t* connection = nullptr;
    int screenNumber = 0;
};

/// Opens a connection to the display `name`, and asks for the extensions that this program uses:
/// what `xcb_get_extension_data` says of them waits for nothing any more.
///
/// Without a connection when the server has not answered after `patience` milliseconds, or when
/// `ending` was asked to stop. A server that has stopped still accepts connections, and then says
/// nothing; xcb would wait for it for ever. What comes of such an attempt later is let go.
///
/// Threading: any thread.
X11Opened openConnection(const QByteArray& name, int patience, const std::stop_token& ending);

} // namespace mossbank
