// SPDX-License-Identifier: Apache-2.0
//
// What the X server tells of a display that sleeps.
#include "Mossbank/Platform/Linux/SessionWatch.h"
#include "MossbankCore/Capture/InactivityMonitor.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QTest>

#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

const QString kScreensWake = ReturnEvent(ReturnEvent::ScreensWake).name();

} // namespace

class DisplayPowerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    }

    void init()
    {
        m_told.clear();
        m_desktop =
            std::make_unique<VirtualDesktop>(VirtualDesktop::Options{.hasWindowManager = false});
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
    }

    void cleanup()
    {
        m_monitor.reset();
        m_state.reset();
        m_events.reset();
        m_desktop.reset();
    }

    void aBlankedScreenIsAsleepAndItsWakingIsTold()
    {
        watch();
        QVERIFY(!m_state->isMainDisplayAsleep());
        QVERIFY(xset(u"activate"_s));
        QVERIFY(m_state->isMainDisplayAsleep());
        QTest::qWait(kLongEnough);
        QVERIFY(m_told.isEmpty());
        QVERIFY(xset(u"reset"_s));
        QVERIFY(!m_state->isMainDisplayAsleep());
        QTRY_COMPARE_WITH_TIMEOUT(m_told, QStringList{kScreensWake}, 6000);
        QTest::qWait(2500);
        QCOMPARE(m_told, QStringList{kScreensWake});
    }

    void aServerWithoutADisplayIsAsleepAndTheNextDisplayIsTold()
    {
        watch();
        QVERIFY(!m_state->isMainDisplayAsleep());
        QVERIFY(xrandr({u"--output"_s, u"screen"_s, u"--off"_s, u"--fb"_s, u"1280x720"_s}));
        QVERIFY(m_state->isMainDisplayAsleep());
        QVERIFY(xrandr({u"--output"_s, u"screen"_s, u"--auto"_s}));
        QVERIFY(!m_state->isMainDisplayAsleep());
        QTRY_COMPARE_WITH_TIMEOUT(m_told, QStringList{kScreensWake}, 6000);
    }

    // No virtual server has DPMS; this is what is made of its answer.
    void displaysAreOffByTheirLevelWhereThatIsInUse_data()
    {
        QTest::addColumn<bool>("isEnabled");
        QTest::addColumn<int>("level");
        QTest::addColumn<bool>("isOff");
        const char* const levels[] = {"on", "standby", "suspend", "off"};
        for (int level = 0; level < 4; ++level) {
            QTest::addRow("%s", levels[level]) << true << level << (level != 0);
            QTest::addRow("%s, not in use", levels[level]) << false << level << false;
        }
    }
    void displaysAreOffByTheirLevelWhereThatIsInUse()
    {
        QFETCH(bool, isEnabled);
        QFETCH(int, level);
        QFETCH(bool, isOff);
        QCOMPARE(X11DisplayPower::isOffBy(isEnabled, static_cast<quint16>(level)), isOff);
    }

    void anXServerThatEndsIsNotAsleep()
    {
        watch();
        QVERIFY(xset(u"activate"_s));
        QVERIFY(m_state->isMainDisplayAsleep());
        m_desktop->killServer();
        QVERIFY(!m_state->isMainDisplayAsleep());
    }

private:
    /// For what must not come to have come.
    static constexpr int kLongEnough = 200;

    void watch()
    {
        const auto session = std::make_shared<SessionWatch>();
        m_state = std::make_unique<LinuxScreenState>(session);
        m_events = std::make_unique<LinuxSessionEvents>(session);
        m_monitor = std::make_unique<InactivityMonitor>(
            m_events->workspace(), m_events->distributed(),
            [this](InactivityEvent event) { m_told.append(event.name()); },
            [this](ReturnEvent event) { m_told.append(event.name()); });
    }

    bool xset(const QString& what) { return run(u"xset"_s, {u"s"_s, what}); }
    bool xrandr(const QStringList& arguments) { return run(u"xrandr"_s, arguments); }

    bool run(const QString& program, const QStringList& arguments)
    {
        const auto outcome = m_desktop->run(program, arguments, u"x11-xserver-utils"_s);
        if (!outcome.isSuccess)
            qWarning("%s", qPrintable(outcome.text));
        return outcome.isSuccess;
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<LinuxScreenState> m_state;
    std::unique_ptr<LinuxSessionEvents> m_events;
    std::unique_ptr<InactivityMonitor> m_monitor;
    QStringList m_told;
};

QTEST_GUILESS_MAIN(DisplayPowerTest)
#include "DisplayPowerTest.moc"
