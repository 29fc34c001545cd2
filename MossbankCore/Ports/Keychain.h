// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace mossbank {

/// Where the desktop keeps the user's secrets. An item is known by a service and an account.
///
/// No item is ever replaced, altered or removed through here.
///
/// Threading: one call at a time, from any thread. A call may wait for the user, who is asked to
/// unlock the keychain, but not for ever.
/// Errors: none are thrown; the status tells.
class Keychain {
public:
    /// How a call went.
    struct Status {
        static constexpr int kSuccess = 0;
        /// There is no such item, for certain: a keychain that cannot tell, because it is locked
        /// or does not answer, has failed.
        static constexpr int kNotFound = -25300;
        /// There is such an item already.
        static constexpr int kDuplicate = -25299;

        /// One of the above, or the number of another failure.
        int number = kSuccess;
        /// Why it failed, a sentence for the user. Empty where the keychain gives only a number.
        QString reason = {};

        friend bool operator==(const Status&, const Status&) = default;
    };

    struct Answer {
        Status status;
        /// The secret, when found. Whoever has no more use for it wipes it.
        QByteArray secret = {};
    };

    Keychain() = default;
    virtual ~Keychain() = default;
    Keychain(const Keychain&) = delete;
    Keychain& operator=(const Keychain&) = delete;

    virtual Answer read(const QString& service, const QString& account) = 0;

    /// Adds an item. Of two that add the same at once, in whatever processes, one succeeds and the
    /// other is told of the duplicate.
    virtual Status add(const QString& service, const QString& account, QByteArrayView secret) = 0;
};

} // namespace mossbank
