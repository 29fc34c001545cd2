// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/WatchedSessionTest.h"

#include <QTest>

namespace mossbank::test {

void WatchedSessionTest::initTestCase()
{
    qunsetenv("XDG_SESSION_ID");
}

void WatchedSessionTest::init()
{
    m_told.clear();
    m_desktop =
        std::make_unique<VirtualDesktop>(VirtualDesktop::Options{.hasWindowManager = false});
    QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
    m_systemBus = std::make_unique<TestBus>(TestBus::Kind::System);
    QVERIFY2(m_systemBus->problem().isEmpty(), qPrintable(m_systemBus->problem()));
    m_sessionBus = std::make_unique<TestBus>(TestBus::Kind::Session);
    QVERIFY2(m_sessionBus->problem().isEmpty(), qPrintable(m_sessionBus->problem()));
}

void WatchedSessionTest::cleanup()
{
    m_monitor.reset();
    m_state.reset();
    m_events.reset();
    m_logind.reset();
    m_screenSaver.reset();
    m_sessionBus.reset();
    m_systemBus.reset();
    m_desktop.reset();
    qunsetenv("XDG_SESSION_ID");
}

bool WatchedSessionTest::startLogind(const QString& parameters)
{
    m_logind = std::make_unique<MockedLogind>(*m_systemBus, parameters);
    if (!m_logind->problem().isEmpty())
        qWarning("%s", qPrintable(m_logind->problem()));
    return m_logind->problem().isEmpty();
}

bool WatchedSessionTest::startScreenSaver()
{
    m_screenSaver = std::make_unique<MockedScreenSaver>(*m_sessionBus);
    if (!m_screenSaver->problem().isEmpty())
        qWarning("%s", qPrintable(m_screenSaver->problem()));
    return m_screenSaver->problem().isEmpty();
}

void WatchedSessionTest::watch()
{
    const auto session = std::make_shared<SessionWatch>();
    m_state = std::make_unique<LinuxScreenState>(session);
    m_events = std::make_unique<LinuxSessionEvents>(session);
    m_monitor = std::make_unique<InactivityMonitor>(
        m_events->workspace(), m_events->distributed(),
        [this](InactivityEvent event) { m_told.append(event.name()); },
        [this](ReturnEvent event) { m_told.append(event.name()); });
}

} // namespace mossbank::test
