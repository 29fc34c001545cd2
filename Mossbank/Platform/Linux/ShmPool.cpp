// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ShmPool.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

/// One that is being looked at and one that is being taken.
constexpr std::size_t kMaxIdle = 2;

} // namespace

std::unique_ptr<ShmSegment> ShmSegment::make(const X11Connection& connection, std::size_t bytes,
                                             bool* isRefused)
{
    const int file = ::memfd_create("mossbank-picture", MFD_CLOEXEC);
    if (file < 0)
        return {};
    void* data = MAP_FAILED;
    if (::ftruncate(file, static_cast<off_t>(bytes)) == 0)
        data = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (data == MAP_FAILED) {
        ::close(file);
        return {};
    }
    std::unique_ptr<ShmSegment> segment(new ShmSegment);
    segment->m_data = static_cast<uchar*>(data);
    segment->m_size = bytes;
    segment->m_id = xcb_generate_id(connection);
    // This closes the file.
    const auto attached = xcb_shm_attach_fd_checked(connection, segment->m_id, file, 0);
    // An answer to what was asked later means that this has been done: checking waits no more.
    if (!connection.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection))) {
        xcb_discard_reply(connection, attached.sequence);
        return {};
    }
    const Reply<xcb_generic_error_t> error(xcb_request_check(connection, attached));
    // Want of memory passes.
    if (isRefused)
        *isRefused = error && error->error_code != XCB_ALLOC;
    return error || connection.isBroken() ? nullptr : std::move(segment);
}

ShmSegment::~ShmSegment()
{
    ::munmap(m_data, m_size);
}

void ShmSegment::detach(const X11Connection& connection) const
{
    xcb_shm_detach(connection, m_id);
}

std::unique_ptr<ShmSegment> ShmPool::take(const X11Connection& connection, std::size_t bytes)
{
    {
        const QMutexLocker lock(&m_mutex);
        if (m_isRefused)
            return {};
        const auto fits = [bytes](const auto& segment) {
            return segment->size() == bytes;
        };
        if (const auto found = std::ranges::find_if(m_idle, fits); found != m_idle.end()) {
            auto segment = std::move(*found);
            m_idle.erase(found);
            drop(connection, kMaxIdle);
            return segment;
        }
        drop(connection, 0); // of other sizes: another display, or its mode has changed
    }
    bool isRefused = false;
    auto segment = ShmSegment::make(connection, bytes, &isRefused);
    const QMutexLocker lock(&m_mutex);
    m_isRefused = isRefused;
    return segment;
}

void ShmPool::drop(const X11Connection& connection, std::size_t keep)
{
    for (; m_idle.size() > keep; m_idle.pop_back())
        m_idle.back()->detach(connection);
}

void ShmPool::giveBack(std::unique_ptr<ShmSegment> segment)
{
    const QMutexLocker lock(&m_mutex);
    m_idle.push_back(std::move(segment));
}

} // namespace mossbank
