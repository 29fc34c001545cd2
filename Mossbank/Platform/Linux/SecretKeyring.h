// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/CallLimit.h"
#include "Mossbank/Platform/Linux/GlibOwned.h"
#include "Mossbank/Platform/Linux/KeyringItems.h"
#include "Mossbank/Platform/Linux/SecretServiceKeychain.h"

#include <libsecret/secret.h>

#include <vector>

namespace mossbank {

/// The keyring service, for one call of SecretServiceKeychain's, and one service and account.
///
/// Threading: one thread. It waits for the keyring, and for the user.
/// Errors: `Refusal`, from everything and the constructor.
class SecretKeyring {
public:
    /// The way out of a call that fails.
    struct Refusal {
        Keychain::Status status;
    };
    using Item = GObjectOwned<SecretItem>;

    /// What to say when the limit has passed.
    static Keychain::Status outOfPatience(const CallLimit& limit);

    /// `limit` outlives it, and holds for each call to the service.
    SecretKeyring(const SecretServiceKeychain::Patience& patience, CallLimit& limit,
                  const QString& service, const QString& account);

    /// The one item there is, unlocked. None when there is none for certain.
    Item item();
    /// What is in it.
    QByteArray secret(SecretItem* item);
    /// Adds an item, and looks whether it is there as it was given and the only one.
    Keychain::Status add(QByteArrayView secret);

    GDBusConnection* bus() const { return m_bus.get(); }
    const CallLimit& limit() const { return m_limit; }

private:
    using Items = std::vector<Item>;
    using Collection = GObjectOwned<SecretCollection>;

    void open();
    Items search();
    /// Has the user unlock every keyring. False when there was none to unlock.
    bool unlockEverything();
    void unlock(GList* objects);
    /// None when there is no such keyring.
    Collection collection(const char* alias) const;
    Item create(QByteArrayView secret);
    void remove(SecretItem* item);
    /// Tells what `error` says, if anything.
    void check(const GErrorOwned& error) const;

    SecretServiceKeychain::Patience m_patience;
    CallLimit& m_limit;
    KeyringAttributes m_attributes;
    GObjectOwned<GDBusConnection> m_bus;
    GObjectOwned<SecretService> m_service;
};

} // namespace mossbank
