// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/LoginService.h"
#include "MossbankCore/Support/Failure.h"

#include <QStringList>

namespace mossbank {

/// A system that does what the test says.
class FakeLoginService final : public LoginService {
public:
    Status statusNow = Status::NotRegistered;
    /// What registering leads to.
    Status afterRegistering = Status::Enabled;
    QString pathNow = QStringLiteral("/opt/mossbank/bin/mossbank");
    bool isWithoutHomeNow = false;
    /// When not empty, what a change fails with.
    QString failure;
    QStringList calls;

    Availability availability() const override { return {}; }
    Status status() const override { return statusNow; }
    void registerItem() override { change(QStringLiteral("register"), afterRegistering); }
    void unregisterItem() override { change(QStringLiteral("unregister"), Status::NotRegistered); }
    QString path() const override { return pathNow; }
    bool isWithoutHome() const override { return isWithoutHomeNow; }

private:
    void change(const QString& call, Status status)
    {
        calls.append(call);
        if (!failure.isEmpty())
            throw Failure(failure);
        statusNow = status;
    }
};

} // namespace mossbank
