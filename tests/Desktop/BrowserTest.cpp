// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/BrowserTest.h"

#include "Mossbank/Platform/Linux/AtspiAddressSource.h"

#include <QElapsedTimer>
#include <QTest>
#include <qcoro/qcorotask.h>

namespace mossbank::test {

void BrowserTest::initTestCase()
{
    QVERIFY(m_server.isListening());
}

void BrowserTest::listen()
{
    m_source = std::make_unique<AtspiAddressSource>(accessibility());
}

QStringList BrowserTest::addressOf(const QString& browser, int patience)
{
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(patience)) {
        const auto answer = m_source->ask(browser);
        if (!QTest::qWaitFor([&] { return answer.isFinished(); }, kPatience))
            return {QStringLiteral("there was no answer")};
        if (answer.result() != AddressAnswer::failed())
            return {answer.result().text};
    }
    return {};
}

AccessibilityBus& BrowserTest::bus()
{
    if (!m_look) {
        m_look.emplace();
        m_look->bus.start();
        if (!QTest::qWaitFor([this] { return m_look->bus.isOpen(); }, kPatience))
            qFatal("the accessibility bus does not open");
    }
    return m_look->bus;
}

QCoro::Task<QList<AccessibleWindow>> BrowserTest::windowsOf(qint64 process)
{
    QList<AccessibleWindow> all;
    AccessibilityBus& asked = bus();
    const auto roots = co_await m_look->programs.rootsOf(process);
    for (const Accessible& root : roots.value_or(QList<Accessible>())) {
        const auto windows = co_await askWindows(asked, root);
        all += windows.value_or(QList<AccessibleWindow>());
    }
    co_return all;
}

void BrowserTest::letGo()
{
    m_source.reset();
    m_look.reset();
}

} // namespace mossbank::test
