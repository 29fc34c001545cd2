// SPDX-License-Identifier: Apache-2.0
//
// The program on the platform that its users have, and what becomes of it when Qt has none or the
// X server goes.
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QTest>

#include <csignal>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

const QString kPlatform = u"QT_QPA_PLATFORM"_s;

} // namespace

class WindowSystemTest : public QObject {
    Q_OBJECT

    std::unique_ptr<VirtualDesktop> m_desktop;

private Q_SLOTS:
    void init()
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
    }
    void cleanup() { m_desktop.reset(); }

    void aPlatformThatIsNotThereIsTold_data()
    {
        QTest::addColumn<QString>("platform");
        QTest::newRow("unknown") << u"nonsense"_s;
        QTest::newRow("several, all unknown") << u"nonsense;elsewhere"_s;
    }
    void aPlatformThatIsNotThereIsTold()
    {
        QFETCH(QString, platform);
        RunningMossbank mossbank;
        mossbank.setVariable(kPlatform, platform);
        QVERIFY(mossbank.start());
        QCOMPARE(mossbank.waitForEnd(), 1);
        const QString said = u"Qt can have no windows here with QT_QPA_PLATFORM=%1. Start Mossbank "
                             "without it.\n"_s.arg(platform);
        QVERIFY2(mossbank.terminal().endsWith(said), qPrintable(mossbank.terminal()));
    }

    void oneThatTheEnvironmentDoesNotNameIsToldAsWell()
    {
        RunningMossbank mossbank;
        mossbank.setVariable(kPlatform, {});
        QVERIFY(mossbank.start({u"-platform"_s, u"nonsense"_s}));
        QCOMPARE(mossbank.waitForEnd(), 1);
        QVERIFY2(mossbank.terminal().endsWith(u"is missing or does not start.\n"_s),
                 qPrintable(mossbank.terminal()));
    }

    void itRunsOnThePlatformsOfUsersAndOfTests_data()
    {
        QTest::addColumn<QString>("platform");
        QTest::newRow("none chosen") << QString();
        QTest::newRow("X11") << u"xcb"_s;
        QTest::newRow("X11 after all") << u"nonsense;xcb"_s;
        QTest::newRow("that of tests") << u"offscreen"_s;
    }
    void itRunsOnThePlatformsOfUsersAndOfTests()
    {
        QFETCH(QString, platform);
        RunningMossbank mossbank;
        mossbank.setVariable(kPlatform, platform);
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Waiting for"_s), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGTERM), 0);
    }

    void whenTheServerGoesItEndsWithASentenceAndTheLibraryWhole_data()
    {
        QTest::addColumn<QString>("rules");
        QTest::addColumn<int>("after");
        // What it is at when that happens differs; nothing hangs on when exactly.
        QTest::newRow("at rest") << QString() << 3000;
        QTest::newRow("soon after a screenshot") << QString() << 0;
        QTest::newRow("in the middle of the next") << QString() << 1100;
        QTest::newRow("and Qt is not to say anything") << u"*=false"_s << 1100;
    }
    void whenTheServerGoesItEndsWithASentenceAndTheLibraryWhole()
    {
        QFETCH(QString, rules);
        QFETCH(int, after);
        QVERIFY2(
            m_desktop->start(u"xterm"_s,
                             {u"-e"_s, u"sh"_s, u"-c"_s,
                              u"while :; do seq 1000 9999 | shuf | head -200; sleep 0.2; done"_s},
                             u"xterm"_s),
            qPrintable(m_desktop->problem()));
        RunningMossbank mossbank;
        mossbank.setVariable(kPlatform, {});
        mossbank.setVariable(u"QT_LOGGING_RULES"_s, rules);
        mossbank.choose({{u"interval"_s, u"1"_s}, {u"skipsUnchangedScreens"_s, u"false"_s}});
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Saved at "_s), qPrintable(mossbank.terminal()));
        QTest::qWait(after);
        m_desktop->killServer();
        QCOMPARE(mossbank.waitForEnd(), 1);
        QVERIFY2(mossbank.terminal().endsWith(u"The X server has gone; Mossbank ends.\n"_s),
                 qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.terminal().count(u"The X server has gone"_s), 1);
        // Before Qt begins to end it.
        QVERIFY2(!mossbank.terminal().contains(u"X11 connection broke"_s),
                 qPrintable(mossbank.terminal()));
        QVERIFY(mossbank.rows().size() >= mossbank.terminal().count(u"Saved at "_s));

        // Nothing of it is left that stands in the way of the next session.
        cleanup();
        init();
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Waiting for"_s), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGTERM), 0);
        QCOMPARE(mossbank.pictureFiles().size(), mossbank.rows().size());
    }
};

QTEST_GUILESS_MAIN(WindowSystemTest)
#include "WindowSystemTest.moc"
