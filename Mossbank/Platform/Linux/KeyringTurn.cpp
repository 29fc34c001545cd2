// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/KeyringTurn.h"

#include <chrono>
#include <thread>

namespace mossbank {

namespace {

// Of the D-Bus specification.
constexpr guint32 kDoNotQueue = 4;
constexpr guint32 kIsOwner = 1;
constexpr guint32 kIsTaken = 3;
/// By another thread of this process.
constexpr guint32 kIsOwnerAlready = 4;

} // namespace

KeyringTurn::KeyringTurn(GDBusConnection* bus, const CallLimit& limit)
    : m_bus(shared(bus))
{
    constexpr std::chrono::milliseconds kPause(20);
    while (!limit.hasPassed()) {
        const guint32 reply =
            ask("RequestName", g_variant_new("(su)", kName, kDoNotQueue), limit.cancellable());
        m_hasName = reply == kIsOwner;
        if (reply != kIsTaken && reply != kIsOwnerAlready)
            return;
        std::this_thread::sleep_for(kPause);
    }
}

KeyringTurn::~KeyringTurn()
{
    if (m_hasName)
        ask("ReleaseName", g_variant_new("(s)", kName), nullptr);
}

guint32 KeyringTurn::ask(const char* method, GVariant* parameters, GCancellable* cancellable) const
{
    // Long enough for any bus that works.
    constexpr int kPatience = 2000;
    const GVariantOwned reply(g_dbus_connection_call_sync(
        m_bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        method, parameters, G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, kPatience, cancellable,
        nullptr));
    guint32 number = 0;
    if (reply)
        g_variant_get(reply.get(), "(u)", &number);
    return number;
}

} // namespace mossbank
