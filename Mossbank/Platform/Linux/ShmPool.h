// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/X11Connection.h"

#include <QMutex>

#include <xcb/shm.h>

#include <memory>
#include <vector>

namespace mossbank {

/// Memory that this program and the X server both see.
class ShmSegment {
public:
    /// Null when there is no memory, or when the server, which may be on another machine, cannot
    /// share it: then `isRefused` is set.
    static std::unique_ptr<ShmSegment> make(const X11Connection& connection, std::size_t bytes,
                                            bool* isRefused = nullptr);
    /// Gives this program's side back. The server's ends with the connection or with `detach`.
    ~ShmSegment();
    Q_DISABLE_COPY_MOVE(ShmSegment)

    uchar* data() const { return m_data; }
    std::size_t size() const { return m_size; }
    xcb_shm_seg_t id() const { return m_id; }
    void detach(const X11Connection& connection) const;

private:
    ShmSegment() = default;

    uchar* m_data = nullptr;
    std::size_t m_size = 0;
    xcb_shm_seg_t m_id = 0;
};

/// Segments that wait for the next picture: making one, and its pages' first touch, costs more
/// than a picture.
///
/// Threading: `take` on the connection's thread; `giveBack` on any. Belongs to one connection.
class ShmPool {
public:
    std::unique_ptr<ShmSegment> take(const X11Connection& connection, std::size_t bytes);
    void giveBack(std::unique_ptr<ShmSegment> segment);

private:
    void drop(const X11Connection& connection, std::size_t keep);

    QMutex m_mutex;
    std::vector<std::unique_ptr<ShmSegment>> m_idle;
    bool m_isRefused = false;
};

} // namespace mossbank
