// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/Accessibility.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"
#include "Mossbank/Platform/Linux/FocusWatch.h"
#include "Mossbank/Platform/Linux/PageQuestion.h"

#include <QDeadlineTimer>
#include <QSemaphore>
#include <QThread>

#include <atomic>
#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

class Accessibility::Work final : public QObject {
public:
    Work(SecretTyping& typing, std::shared_ptr<ApplicationCatalog> catalog)
        : programs(bus)
        , focus(bus, programs, window, typing)
        , page(bus, programs, window, std::move(catalog))
    {
        bus.start();
    }

    QCoro::Task<> ask(QString bundleID, std::function<void(std::optional<QString>)> tell)
    {
        tell(co_await page.ask(bundleID));
    }

    AccessibilityBus bus;
    X11ActiveWindow window;
    AccessiblePrograms programs;
    FocusWatch focus;
    PageQuestion page;
    /// Set while a check is on its way here.
    std::atomic<bool> isCheckPosted = false;
};

class Accessibility::Thread final : public QThread {
public:
    Thread(SecretTyping& typing, std::shared_ptr<ApplicationCatalog> catalog)
        : m_typing(typing)
        , m_catalog(std::move(catalog))
    {
    }

    Work* begin()
    {
        start();
        m_isReady.acquire();
        return m_work;
    }

    void end()
    {
        quit();
        wait();
    }

private:
    /// What it works with goes when no event is dealt with any more: whatever still waits for an
    /// answer then never wakes.
    void run() override
    {
        Work work(m_typing, m_catalog);
        m_work = &work;
        m_isReady.release();
        exec();
    }

    SecretTyping& m_typing;
    std::shared_ptr<ApplicationCatalog> m_catalog;
    QSemaphore m_isReady;
    Work* m_work = nullptr;
};

Accessibility::Accessibility(std::shared_ptr<ApplicationCatalog> catalog)
    : m_thread(std::make_unique<Thread>(m_typing, std::move(catalog)))
{
    // Until it is known better.
    m_typing.setPlace(SecretTyping::Place::Asked);
    m_thread->setObjectName(u"accessibility"_s);
    m_work = m_thread->begin();
}

Accessibility::~Accessibility()
{
    m_thread->end();
}

Availability Accessibility::availability(const QString& consequence) const
{
    QString why = whyUnreachable();
    if (why.isEmpty() && !m_work->bus.isSwitchedOn())
        why = u"Accessibility is switched off in this session."_s;
    return why.isEmpty() ? Availability() : Availability::missing(why + u' ' + consequence);
}

QString Accessibility::whyUnreachable() const
{
    return m_work->bus.whyUnreachable();
}

bool Accessibility::waitUntilKnown(int limit) const
{
    const QDeadlineTimer deadline(limit);
    while (!m_work->bus.hasLooked() && !deadline.hasExpired())
        QThread::msleep(1);
    return m_work->bus.hasLooked();
}

bool Accessibility::isSecretTyped() const
{
    if (!m_work->isCheckPosted.exchange(true)) {
        QMetaObject::invokeMethod(m_work, [work = m_work] {
            work->isCheckPosted = false;
            work->focus.check();
        });
    }
    return m_typing.isSecret();
}

void Accessibility::askForAddress(const QString& bundleID,
                                  std::function<void(std::optional<QString>)> tell) const
{
    QMetaObject::invokeMethod(m_work,
                              [work = m_work, bundleID, tell] { work->ask(bundleID, tell); });
}

void Accessibility::switchOn() const
{
    QMetaObject::invokeMethod(m_work, [work = m_work] { work->bus.switchOn(); });
}

void Accessibility::letBe() const
{
    QMetaObject::invokeMethod(m_work, [work = m_work] { work->bus.letBe(); });
}

} // namespace mossbank
