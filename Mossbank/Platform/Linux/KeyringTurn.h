// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/CallLimit.h"
#include "Mossbank/Platform/Linux/GlibOwned.h"

namespace mossbank {

/// Of the programs on one session bus, and so on one keyring, one has its turn at a time: it owns
/// a name on the bus. The bus takes the name back when a program dies.
class KeyringTurn {
public:
    /// Waits for its turn as long as `limit` allows. A bus that gives no names to this program
    /// gives no turns either, and it goes on without.
    KeyringTurn(GDBusConnection* bus, const CallLimit& limit);
    ~KeyringTurn();
    KeyringTurn(const KeyringTurn&) = delete;
    KeyringTurn& operator=(const KeyringTurn&) = delete;

    static constexpr const char* kName = "local.burrow.desktop.images.Adding";

private:
    guint32 ask(const char* method, GVariant* parameters, GCancellable* cancellable) const;

    GObjectOwned<GDBusConnection> m_bus;
    bool m_hasName = false;
};

} // namespace mossbank
