// SPDX-License-Identifier: Apache-2.0
#pragma once

struct xcb_connection_t;

namespace mossbank {

/// The X server that Qt has its windows on.
///
/// Threading: made by the main thread, after the application object and not to outlive it; asked by
/// any.
class QtX11Server {
public:
    QtX11Server();

    /// False also where Qt has its windows elsewhere, or none.
    bool hasGone() const;

private:
    xcb_connection_t* m_connection = nullptr;
};

} // namespace mossbank
