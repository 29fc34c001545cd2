// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/FolderOpening.h"

#include "Mossbank/Platform/Linux/CallLimit.h"
#include "Mossbank/Platform/Linux/GlibOwned.h"

#include <QFile>
#include <QPromise>
#include <QUrl>

#include <gio/gdesktopappinfo.h>
#include <unistd.h>

#include <chrono>
#include <thread>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

using Bus = GObjectOwned<GDBusConnection>;

/// GIO tells the session bus of what it starts, over a connection that would end this program when
/// the bus goes.
Bus harmlessBus()
{
    const CallLimit limit(std::chrono::seconds(2));
    Bus bus(g_bus_get_sync(G_BUS_TYPE_SESSION, limit.cancellable(), nullptr));
    if (bus)
        g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    return bus;
}

/// Between fork and exec.
void leaveTerminal(gpointer)
{
    // Ctrl+C in it is not meant for what was started.
    ::setsid();
}

/// Why it is not opened. Empty when it is.
QString open(const QString& folder)
{
    const GObjectOwned<GAppInfo> application(
        g_app_info_get_default_for_type("inode/directory", FALSE));
    if (!application)
        return u"no program for folders is installed"_s;
    const Bus bus = harmlessBus();
    QByteArray address = QUrl::fromLocalFile(folder).toEncoded();
    GList addresses = {address.data(), nullptr, nullptr};
    // What it has to say is not for the terminal of this program.
    constexpr auto kQuietly = static_cast<GSpawnFlags>(
        G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
    GErrorOwned error;
    if (g_desktop_app_info_launch_uris_as_manager(G_DESKTOP_APP_INFO(application.get()), &addresses,
                                                  nullptr, kQuietly, leaveTerminal, nullptr,
                                                  nullptr, nullptr, GErrorPlace(error)))
        return {};
    return QString::fromUtf8(error->message);
}

} // namespace

QFuture<QString> openWithDefault(const QString& folder)
{
    QPromise<QString> promise;
    promise.start();
    QFuture<QString> future = promise.future();
    std::thread([folder, promise = std::move(promise)]() mutable {
        promise.addResult(open(folder));
        promise.finish();
    }).detach();
    return future;
}

} // namespace mossbank
