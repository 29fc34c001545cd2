// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/Keychain.h"

#include <chrono>

namespace mossbank {

/// The desktop's keyring: whatever answers as the Secret Service on the session bus, such as GNOME
/// Keyring, KWallet or KeePassXC.
///
/// That service finds nothing both where there is no item and where a keyring is locked, and it
/// adds the same item twice. So nothing counts as not found while any keyring is locked, several
/// items are a failure, and programs that add one take turns.
///
/// A locked keyring is unlocked as it always is: the desktop asks the user.
class SecretServiceKeychain final : public Keychain {
public:
    /// The numbers of failures. docs/privacy.md tells the user what they mean.
    enum Failure {
        /// No session bus, no keyring service, or no keyring to put a new item into.
        Unavailable = 1,
        /// And the user did not unlock it.
        Locked = 2,
        /// There are several such items, and no telling which is right.
        Ambiguous = 3,
        /// It did not answer in time.
        Silent = 4,
        /// Anything else; the reason has the service's own words.
        Refused = 5,
    };

    /// How long is waited.
    struct Patience {
        /// For the service.
        std::chrono::milliseconds service = std::chrono::seconds(10);
        /// For the user, who is asked to unlock a keyring.
        std::chrono::milliseconds user = std::chrono::minutes(2);
    };

    SecretServiceKeychain()
        : SecretServiceKeychain(Patience())
    {
    }
    explicit SecretServiceKeychain(Patience patience);

    Answer read(const QString& service, const QString& account) override;
    Status add(const QString& service, const QString& account, QByteArrayView secret) override;

private:
    Patience m_patience;
};

} // namespace mossbank
