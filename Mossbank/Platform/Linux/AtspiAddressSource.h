// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/Accessibility.h"
#include "Mossbank/Ports/AddressSource.h"

#include <QList>
#include <QObject>

#include <memory>

namespace mossbank {

/// Browsers tell the address of their page to assistive tools, where accessibility is switched on.
class AtspiAddressSource final : public QObject, public AddressSource {
public:
    explicit AtspiAddressSource(std::shared_ptr<Accessibility> accessibility);
    /// Answers what is still asked.
    ~AtspiAddressSource() override;

    Availability availability() const override;
    bool canAsk(const QString& bundleID) const override;
    QFuture<AddressAnswer> ask(const QString& bundleID) override;
    QString switchOn() override;
    void letBe() override;

private:
    class Question;

    std::shared_ptr<Accessibility> m_accessibility;
    QList<std::weak_ptr<Question>> m_open;
};

} // namespace mossbank
