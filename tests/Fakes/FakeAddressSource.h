// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/AddressSource.h"
#include "MossbankCore/Support/Failure.h"

#include <QPromise>
#include <QStringList>

#include <deque>
#include <utility>

namespace mossbank {

/// Knows the browsers it is told and answers what it is told, at once or when released.
class FakeAddressSource final : public AddressSource {
public:
    QStringList browsers;
    AddressAnswer answerNow;
    bool holdsAnswers = false;
    /// When not empty, what every answer throws, which none is meant to.
    QString failure;
    QStringList asked;
    int timesSwitchedOn = 0;
    bool isWantedOn = false;

    Availability availability() const override { return {}; }
    bool canAsk(const QString& bundleID) const override { return browsers.contains(bundleID); }

    QFuture<AddressAnswer> ask(const QString& bundleID) override
    {
        asked.append(bundleID);
        if (!canAsk(bundleID))
            return QtFuture::makeReadyFuture(AddressAnswer::failed());
        if (!failure.isEmpty())
            return QtFuture::makeExceptionalFuture<AddressAnswer>(Failure(failure));
        if (!holdsAnswers)
            return QtFuture::makeReadyFuture(answerNow);
        m_held.emplace_back().start();
        return m_held.back().future();
    }

    QString switchOn() override
    {
        ++timesSwitchedOn;
        isWantedOn = true;
        return std::exchange(m_isOn, true) ? QString()
                                           : QStringLiteral("Browsers have to be started again.");
    }
    void letBe() override { isWantedOn = false; }

    /// Answers the question that has waited longest.
    void release()
    {
        m_held.front().addResult(answerNow);
        m_held.front().finish();
        m_held.pop_front();
    }

private:
    /// What is on stays on.
    bool m_isOn = false;
    std::deque<QPromise<AddressAnswer>> m_held;
};

} // namespace mossbank
