// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/Keychain.h"

#include <QMap>
#include <QStringList>

#include <functional>
#include <map>
#include <utility>

namespace mossbank {

/// A keychain in memory. It can be locked, and told to fail at the nth call.
class FakeKeychain final : public Keychain {
public:
    using Name = std::pair<QString, QString>;

    static constexpr int kLocked = 2;

    /// By service and account.
    std::map<Name, QByteArray> items;
    bool isLocked = false;
    /// What the nth call answers instead of doing anything, counted from 1.
    QMap<int, Status> failures;
    /// Called before an item is added: what another program does in the meantime.
    std::function<void()> beforeAdding;
    /// "read" and "add", in order.
    QStringList calls;

    Answer read(const QString& service, const QString& account) override
    {
        if (const Status status = begin(QStringLiteral("read")); status.number != 0)
            return {status};
        const auto item = items.find({service, account});
        if (item == items.end())
            return {{Status::kNotFound}};
        // A copy, as it would be from another process: the one asking wipes his.
        return {{}, QByteArray(item->second.constData(), item->second.size())};
    }

    Status add(const QString& service, const QString& account, QByteArrayView secret) override
    {
        if (const Status status = begin(QStringLiteral("add")); status.number != 0)
            return status;
        if (beforeAdding)
            beforeAdding();
        const bool isNew = items.emplace(Name(service, account), secret.toByteArray()).second;
        return {isNew ? Status::kSuccess : Status::kDuplicate};
    }

private:
    Status begin(const QString& call)
    {
        calls.append(call);
        if (failures.contains(static_cast<int>(calls.size())))
            return failures.value(static_cast<int>(calls.size()));
        if (isLocked)
            return {kLocked, QStringLiteral("The keychain is locked.")};
        return {};
    }
};

} // namespace mossbank
