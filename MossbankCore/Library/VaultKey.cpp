// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/VaultKey.h"

#include "MossbankCore/Library/StoreError.h"
#include "MossbankCore/Ports/Keychain.h"

#include <QScopeGuard>

#include <optional>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;
using Status = Keychain::Status;

/// The sentence with the status in it, and why, where the keychain knows.
StoreError refusal(const QString& sentence, const Status& status)
{
    const QString message = sentence.arg(status.number);
    return StoreError(status.reason.isEmpty() ? message : message + u' ' + status.reason);
}

/// The key in the keychain. Absent when there is none.
std::optional<SymmetricKey> read(Keychain& keychain, const QString& service, const QString& account)
{
    Keychain::Answer answer = keychain.read(service, account);
    const auto isWiped = qScopeGuard([&answer] { wipe(answer.secret); });
    if (answer.status.number == Status::kNotFound)
        return std::nullopt;
    if (answer.status.number != Status::kSuccess) {
        throw refusal(u"The keychain would not give up the encryption key (%1)."_s, answer.status);
    }
    auto key = SymmetricKey::fromBytes(answer.secret);
    if (!key) {
        throw StoreError(
            u"The keychain's encryption key is the wrong size, so saved screenshots from before "
            "now cannot be opened. Remove the \"local.burrow.desktop.images\" item to start again."_s);
    }
    return key;
}

QByteArrayView bytesOf(const SymmetricKey& key)
{
    const SymmetricKey::Bytes bytes = key.bytes();
    return QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

} // namespace

SymmetricKey VaultKey::load(Keychain& keychain, const QString& service, const QString& account)
{
    if (const auto known = read(keychain, service, account))
        return *known;
    const SymmetricKey made = SymmetricKey::random();
    const Status status = keychain.add(service, account, bytesOf(made));
    if (status.number == Status::kSuccess)
        return made;
    if (status.number != Status::kDuplicate)
        throw refusal(u"The keychain would not keep the encryption key (%1)."_s, status);
    // Somebody else was starting at the same moment. Both go on with the key that is there.
    if (const auto theirs = read(keychain, service, account))
        return *theirs;
    throw StoreError(u"The keychain holds an encryption key it will not return."_s);
}

} // namespace mossbank
