// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/ShmPool.h"
#include "Mossbank/Platform/Linux/X11Connection.h"

#include <QByteArray>
#include <QRect>

#include <memory>

namespace mossbank {

/// A window of one class and colour, on a connection of its own as a program has it. Shows until it
/// is destroyed. Throws a Failure when it does not show.
class BenchWindow {
public:
    BenchWindow(const QByteArray& windowClass, const QRect& frame, quint32 colour);

private:
    bool isViewable(xcb_window_t window) const;

    X11Connection m_connection;
};

/// The least that a picture can cost: the root into shared memory, and nothing looked at. Throws a
/// Failure where that cannot be had.
class BareGrab {
public:
    BareGrab();
    void take() const;

private:
    X11Connection m_connection;
    std::unique_ptr<ShmSegment> m_segment;
};

} // namespace mossbank
