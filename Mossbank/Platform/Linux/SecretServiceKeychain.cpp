// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/SecretServiceKeychain.h"

#include "Mossbank/Platform/Linux/KeyringTurn.h"
#include "Mossbank/Platform/Linux/SecretKeyring.h"
#include "MossbankCore/Library/SymmetricKey.h"

#include <future>
#include <memory>
#include <thread>
#include <type_traits>
#include <utility>

namespace mossbank {

namespace {

using Status = Keychain::Status;

/// What `ask` gets from the keyring, or the status it is refused with.
///
/// It asks in a thread that can be left behind. When libsecret is told to stop while the user is
/// being asked, it does so in a way of its own, and may never come back (seen with 0.20.5).
template <typename Ask>
auto answerOf(const SecretServiceKeychain::Patience& patience, const QString& service,
              const QString& account, Ask ask)
{
    using Answer = std::invoke_result_t<Ask, SecretKeyring&>;
    const auto limit = std::make_shared<CallLimit>(patience.service);
    std::promise<Answer> promise;
    std::future<Answer> answer = promise.get_future();
    std::thread([=, promise = std::move(promise)]() mutable {
        try {
            SecretKeyring keyring(patience, *limit, service, account);
            promise.set_value(ask(keyring));
        } catch (const SecretKeyring::Refusal& refusal) {
            promise.set_value(Answer{refusal.status});
        }
    }).detach();
    constexpr std::chrono::milliseconds kGlance(50);
    while (answer.wait_for(kGlance) != std::future_status::ready) {
        if (limit->isOverdue())
            return Answer{SecretKeyring::outOfPatience(*limit)};
    }
    return answer.get();
}

/// A secret that is wiped.
struct Secret {
    QByteArray bytes;

    explicit Secret(QByteArrayView given)
        : bytes(given.toByteArray())
    {
    }
    ~Secret() { wipe(bytes); }
    Q_DISABLE_COPY_MOVE(Secret)
};

} // namespace

SecretServiceKeychain::SecretServiceKeychain(Patience patience)
    : m_patience(patience)
{
}

Keychain::Answer SecretServiceKeychain::read(const QString& service, const QString& account)
{
    return answerOf(m_patience, service, account, [](SecretKeyring& keyring) {
        const SecretKeyring::Item item = keyring.item();
        return item ? Answer{{}, keyring.secret(item.get())} : Answer{{Status::kNotFound}};
    });
}

Keychain::Status SecretServiceKeychain::add(const QString& service, const QString& account,
                                            QByteArrayView secret)
{
    const auto copy = std::make_shared<const Secret>(secret);
    return answerOf(m_patience, service, account, [copy](SecretKeyring& keyring) {
        const KeyringTurn turn(keyring.bus(), keyring.limit());
        return keyring.item() ? Status{Status::kDuplicate} : keyring.add(copy->bytes);
    });
}

} // namespace mossbank
