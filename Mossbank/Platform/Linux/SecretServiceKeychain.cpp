// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/SecretServiceKeychain.h"

#include "Mossbank/Platform/Linux/KeyringTurn.h"
#include "Mossbank/Platform/Linux/SecretKeyring.h"

namespace mossbank {

SecretServiceKeychain::SecretServiceKeychain(Patience patience)
    : m_patience(patience)
{
}

Keychain::Answer SecretServiceKeychain::read(const QString& service, const QString& account)
{
    try {
        SecretKeyring keyring(m_patience, service, account);
        const SecretKeyring::Item item = keyring.item();
        if (!item)
            return {{Status::kNotFound}};
        return {{}, keyring.secret(item.get())};
    } catch (const SecretKeyring::Refusal& refusal) {
        return {refusal.status};
    }
}

Keychain::Status SecretServiceKeychain::add(const QString& service, const QString& account,
                                            QByteArrayView secret)
{
    try {
        SecretKeyring keyring(m_patience, service, account);
        const KeyringTurn turn(keyring.bus(), keyring.limit());
        if (keyring.item())
            return {Status::kDuplicate};
        return keyring.add(secret);
    } catch (const SecretKeyring::Refusal& refusal) {
        return refusal.status;
    }
}

} // namespace mossbank
