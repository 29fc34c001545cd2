// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11Opening.h"

#include <xcb/damage.h>
#include <xcb/dpms.h>
#include <xcb/randr.h>
#include <xcb/res.h>
#include <xcb/screensaver.h>
#include <xcb/shape.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace mossbank {

namespace {

/// What the thread that opens and whoever waits for it share.
struct Opening {
    std::mutex mutex;
    std::condition_variable_any changed;
    bool isDone = false;
    bool isLeft = false;
    X11Opened opened;
};

X11Opened open(const QByteArray& name)
{
    X11Opened opened;
    opened.connection = xcb_connect(name.constData(), &opened.screenNumber);
    if (xcb_connection_has_error(opened.connection))
        return opened;
    // Asked for later on, each would be waited for without a limit.
    const auto extensions = {&xcb_shm_id,    &xcb_randr_id,  &xcb_res_id,  &xcb_shape_id,
                             &xcb_damage_id, &xcb_xfixes_id, &xcb_dpms_id, &xcb_screensaver_id};
    for (xcb_extension_t* extension : extensions)
        xcb_prefetch_extension_data(opened.connection, extension);
    for (xcb_extension_t* extension : extensions)
        xcb_get_extension_data(opened.connection, extension);
    return opened;
}

} // namespace

X11Opened openConnection(const QByteArray& name, int patience, const std::stop_token& ending)
{
    const auto opening = std::make_shared<Opening>();
    // A thread that can be left behind: nothing ends a wait inside xcb_connect.
    std::thread([opening, name] {
        const X11Opened opened = open(name);
        const std::scoped_lock lock(opening->mutex);
        if (opening->isLeft) {
            xcb_disconnect(opened.connection);
            return;
        }
        opening->opened = opened;
        opening->isDone = true;
        opening->changed.notify_all();
    }).detach();
    std::unique_lock lock(opening->mutex);
    opening->changed.wait_for(lock, ending, std::chrono::milliseconds(patience),
                              [&] { return opening->isDone; });
    opening->isLeft = !opening->isDone;
    return opening->opened;
}

} // namespace mossbank
