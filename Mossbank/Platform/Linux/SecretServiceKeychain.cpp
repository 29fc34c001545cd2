// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/SecretServiceKeychain.h"

#include "Mossbank/Platform/Linux/KeyringTurn.h"
#include "Mossbank/Platform/Linux/SecretKeyring.h"
#include "MossbankCore/Library/SymmetricKey.h"

#include <future>
#include <memory>
#include <thread>
#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// What `work` hands back, or `silent` when that takes too long.
///
/// Each call to the keyring has a limit of its own, but libsecret does not keep it everywhere: a
/// prompt that nobody completes, or whose service is gone, is waited for without end, cancelled or
/// not. So the work has a thread that can be left behind, and nothing in it that is anybody else's.
template <typename Result, typename Work>
Result answered(const SecretServiceKeychain::Patience& patience, Work work, Result silent)
{
    // The user is asked once; a few calls come before and after.
    constexpr int kCalls = 4;
    std::promise<Result> promise;
    std::future<Result> result = promise.get_future();
    std::thread([promise = std::move(promise), work = std::move(work)]() mutable {
        promise.set_value(work());
    }).detach();
    if (result.wait_for(patience.user + kCalls * patience.service) != std::future_status::ready)
        return silent;
    return result.get();
}

Keychain::Status silence()
{
    return {SecretServiceKeychain::Silent, u"The keyring did not answer in time."_s};
}

Keychain::Answer readNow(const SecretServiceKeychain::Patience& patience, const QString& service,
                         const QString& account)
{
    try {
        SecretKeyring keyring(patience, service, account);
        const SecretKeyring::Item item = keyring.item();
        if (!item)
            return {{Keychain::Status::kNotFound}};
        return {{}, keyring.secret(item.get())};
    } catch (const SecretKeyring::Refusal& refusal) {
        return {refusal.status};
    }
}

Keychain::Status addNow(const SecretServiceKeychain::Patience& patience, const QString& service,
                        const QString& account, QByteArrayView secret)
{
    try {
        SecretKeyring keyring(patience, service, account);
        const KeyringTurn turn(keyring.bus(), keyring.limit());
        if (keyring.item())
            return {Keychain::Status::kDuplicate};
        return keyring.add(secret);
    } catch (const SecretKeyring::Refusal& refusal) {
        return refusal.status;
    }
}

} // namespace

SecretServiceKeychain::SecretServiceKeychain(Patience patience)
    : m_patience(patience)
{
}

Keychain::Answer SecretServiceKeychain::read(const QString& service, const QString& account)
{
    const auto read = [patience = m_patience, service, account] {
        return readNow(patience, service, account);
    };
    return answered(m_patience, read, Answer{silence()});
}

Keychain::Status SecretServiceKeychain::add(const QString& service, const QString& account,
                                            QByteArrayView secret)
{
    const auto add = [patience = m_patience, service, account,
                      own = QByteArray(secret.data(), secret.size())]() mutable {
        const Status status = addNow(patience, service, account, own);
        wipe(own);
        return status;
    };
    return answered(m_patience, add, silence());
}

} // namespace mossbank
