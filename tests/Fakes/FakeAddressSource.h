// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/AddressSource.h"
#include "MossbankCore/Library/StoreError.h"

#include <QPromise>

#include <vector>

namespace mossbank {

/// Knows the browsers it is told and answers what it is told, at once or when released.
class FakeAddressSource final : public AddressSource {
public:
    QStringList browsers;
    std::optional<QString> addressNow;
    QStringList refusedNamesNow;
    bool holdsAddress = false;
    /// When not empty, what every answer fails with.
    QString failure;
    std::vector<Application> asked;

    Availability availability() const override { return {}; }
    bool canAsk(const QString& bundleID) const override { return browsers.contains(bundleID); }

    QFuture<std::optional<QString>> address(const Application& browser) override
    {
        asked.push_back(browser);
        if (!failure.isEmpty())
            return QtFuture::makeExceptionalFuture<std::optional<QString>>(StoreError(failure));
        if (!holdsAddress)
            return QtFuture::makeReadyFuture(addressNow);
        m_address = {};
        m_address.start();
        return m_address.future();
    }

    QFuture<QStringList> refusedNames() override
    {
        if (!failure.isEmpty())
            return QtFuture::makeExceptionalFuture<QStringList>(StoreError(failure));
        return QtFuture::makeReadyFuture(refusedNamesNow);
    }

    void releaseAddress()
    {
        m_address.addResult(addressNow);
        m_address.finish();
    }

private:
    QPromise<std::optional<QString>> m_address;
};

} // namespace mossbank
