// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/AtspiAddressSource.h"

#include "Mossbank/Platform/Linux/Browsers.h"

#include <QMutex>
#include <QPromise>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// Those who look gave up before; this is for when even they cannot say so.
constexpr int kLimit = 1900;

} // namespace

/// Answered once, by whoever comes first.
class AtspiAddressSource::Question {
public:
    Question() { m_promise.start(); }

    QFuture<AddressAnswer> future() { return m_promise.future(); }

    void answer(const AddressAnswer& answer)
    {
        const QMutexLocker lock(&m_mutex);
        if (std::exchange(m_isAnswered, true))
            return;
        m_promise.addResult(answer);
        m_promise.finish();
    }

private:
    QMutex m_mutex;
    bool m_isAnswered = false;
    QPromise<AddressAnswer> m_promise;
};

AtspiAddressSource::AtspiAddressSource(std::shared_ptr<Accessibility> accessibility)
    : m_accessibility(std::move(accessibility))
{
}

AtspiAddressSource::~AtspiAddressSource()
{
    for (const auto& open : std::as_const(m_open)) {
        if (const auto question = open.lock())
            question->answer(AddressAnswer::failed());
    }
}

Availability AtspiAddressSource::availability() const
{
    return m_accessibility->availability(u"So browsers do not tell the address of a page."_s);
}

bool AtspiAddressSource::canAsk(const QString& bundleID) const
{
    return browserOf(bundleID).has_value();
}

QFuture<AddressAnswer> AtspiAddressSource::ask(const QString& bundleID)
{
    const auto question = std::make_shared<Question>();
    if (!canAsk(bundleID)) {
        question->answer(AddressAnswer::failed());
        return question->future();
    }
    m_open.removeIf([](const std::weak_ptr<Question>& open) { return open.expired(); });
    m_open.append(question);
    QTimer::singleShot(kLimit, this, [question] { question->answer(AddressAnswer::failed()); });
    m_accessibility->askForAddress(bundleID, [question](std::optional<QString> address) {
        question->answer(AddressAnswer::answered(address.value_or(QString())));
    });
    return question->future();
}

QString AtspiAddressSource::switchOn()
{
    const bool wasOn = availability().isAvailable;
    m_accessibility->switchOn();
    if (const QString why = m_accessibility->whyUnreachable(); !why.isEmpty())
        return why;
    if (wasOn)
        return {};
    return u"Accessibility is being switched on for this session, because that is how browsers "
           u"tell the address of their page. Chromium, Chrome and other browsers of their kind "
           u"notice it only when they start: close those that are open and open them again."_s;
}

void AtspiAddressSource::letBe()
{
    m_accessibility->letBe();
}

} // namespace mossbank
