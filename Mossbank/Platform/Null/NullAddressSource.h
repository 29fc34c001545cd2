// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/AddressSource.h"

#include <utility>

namespace mossbank {

/// A desktop whose browsers do not tell what page they show.
class NullAddressSource final : public AddressSource {
public:
    explicit NullAddressSource(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    bool canAsk(const QString&) const override { return false; }
    QFuture<AddressAnswer> ask(const QString&) override
    {
        return QtFuture::makeReadyFuture(AddressAnswer::failed());
    }
    QString switchOn() override { return m_reason; }
    void letBe() override {}

private:
    QString m_reason;
};

} // namespace mossbank
