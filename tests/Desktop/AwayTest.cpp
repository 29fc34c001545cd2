// SPDX-License-Identifier: Apache-2.0
//
// The real program on a real screen, whose user leaves and comes back.
#include "tests/Desktop/MockedSession.h"
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QTest>

#include <csignal>
#include <functional>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

class AwayTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        useTestApplications();
        qunsetenv("XDG_SESSION_ID");
    }

    void init()
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        QVERIFY(m_desktop->start(u"xterm"_s, {u"-class"_s, u"Alpha"_s, u"-e"_s, u"sleep 1000"_s},
                                 u"xterm"_s));
        m_systemBus = std::make_unique<TestBus>(TestBus::Kind::System);
        m_sessionBus = std::make_unique<TestBus>(TestBus::Kind::Session);
        m_logind = std::make_unique<MockedLogind>(*m_systemBus);
        QVERIFY2(m_logind->problem().isEmpty(), qPrintable(m_logind->problem()));
        m_screenSaver = std::make_unique<MockedScreenSaver>(*m_sessionBus);
        QVERIFY2(m_screenSaver->problem().isEmpty(), qPrintable(m_screenSaver->problem()));
        m_mossbank = std::make_unique<RunningMossbank>();
        m_mossbank->setSessionBus(m_sessionBus->address());
    }

    void cleanup()
    {
        m_mossbank.reset();
        m_screenSaver.reset();
        m_logind.reset();
        m_sessionBus.reset();
        m_systemBus.reset();
        m_desktop.reset();
    }

    void recordingStopsAndComesBack_data()
    {
        QTest::addColumn<QString>("event");
        QTest::addColumn<QString>("status");
        QTest::newRow("lock by logind") << u"lock"_s << u"Paused when the screen locked"_s;
        QTest::newRow("lock by the screen saver")
            << u"saver"_s << u"Paused when the screen locked"_s;
        QTest::newRow("sleep") << u"sleep"_s << u"Paused when this computer went to sleep"_s;
        QTest::newRow("another session")
            << u"session"_s << u"Paused when your session became inactive"_s;
    }
    void recordingStopsAndComesBack()
    {
        QFETCH(QString, event);
        QFETCH(QString, status);
        QVERIFY(startRecording({}));
        QVERIFY(happens(event, true));
        QVERIFY2(m_mossbank->waitFor(status), qPrintable(m_mossbank->terminal()));
        QVERIFY(happens(event, false));
        QVERIFY2(m_mossbank->waitFor(u"Waiting for your next screen"_s, 2),
                 qPrintable(m_mossbank->terminal()));
        QCOMPARE(m_mossbank->stop(SIGINT), 0);
    }

    void whoDoesNotWantItBackStaysUnrecorded_data()
    {
        QTest::addColumn<QString>("event");
        for (const char* event : {"lock", "saver", "sleep", "session"})
            QTest::newRow(event) << QString::fromLatin1(event);
    }
    void whoDoesNotWantItBackStaysUnrecorded()
    {
        QFETCH(QString, event);
        QVERIFY(startRecording({{u"resumesAfterAway"_s, u"false"_s}}));
        QVERIFY(happens(event, true));
        QVERIFY2(m_mossbank->waitFor(u"Paused when "_s), qPrintable(m_mossbank->terminal()));
        QVERIFY(happens(event, false));
        QTest::qWait(3000);
        QCOMPARE(m_mossbank->terminal().count(u"Waiting for your next screen"_s), 1);
        QCOMPARE(m_mossbank->stop(SIGINT), 0);
    }

    void itComesBackOnlyWhenNothingStandsAgainstIt_data()
    {
        // Each step is an event, with a minus for its end.
        QTest::addColumn<QStringList>("steps");
        const auto add = [](const char* steps) {
            QTest::newRow(steps) << QString::fromLatin1(steps).split(u' ');
        };
        add("lock sleep -sleep -lock");
        add("sleep lock -sleep -lock");
        add("lock session -lock -session");
        add("session saver -session -saver");
        add("saver sleep -saver -sleep");
    }
    void itComesBackOnlyWhenNothingStandsAgainstIt()
    {
        QFETCH(QStringList, steps);
        const QString begins = u"Waiting for your next screen"_s;
        QVERIFY(startRecording({}));
        const QString last = steps.takeLast();
        for (const QString& step : std::as_const(steps)) {
            QVERIFY(takePlace(step));
            QTest::qWait(500);
        }
        constexpr int kLongEnough = 2000;
        QTest::qWait(kLongEnough);
        QCOMPARE(m_mossbank->terminal().count(begins), 1);
        QVERIFY(takePlace(last));
        QVERIFY2(m_mossbank->waitFor(begins, 2), qPrintable(m_mossbank->terminal()));
        QCOMPARE(m_mossbank->stop(SIGINT), 0);
    }

    void aBlankedScreenIsNotRecorded()
    {
        QVERIFY(startRecording({{u"skipsUnchangedScreens"_s, u"false"_s}}));
        QVERIFY(happens(u"blank"_s, true));
        QVERIFY2(m_mossbank->waitFor(u"Skipped while the display is asleep"_s),
                 qPrintable(m_mossbank->terminal()));
        const auto before = m_mossbank->pictureFiles().size();
        QTest::qWait(3000);
        QCOMPARE(m_mossbank->pictureFiles().size(), before);
        QVERIFY(happens(u"blank"_s, false));
        QTRY_VERIFY_WITH_TIMEOUT(m_mossbank->pictureFiles().size() > before, 10'000);
        QCOMPARE(m_mossbank->stop(SIGINT), 0);
    }

    void aLockedScreenIsNotRecordedFromTheStart()
    {
        QVERIFY(m_screenSaver->setActive(true));
        m_mossbank->choose({{u"interval"_s, u"1"_s}});
        QVERIFY(m_mossbank->start());
        QVERIFY2(m_mossbank->waitFor(u"Paused when the screen locked"_s),
                 qPrintable(m_mossbank->terminal()));
        QCOMPARE(m_mossbank->pictureFiles(), QStringList());
        QVERIFY(m_screenSaver->setActive(false));
        QVERIFY2(m_mossbank->waitFor(u"Saved at "_s), qPrintable(m_mossbank->terminal()));
        QCOMPARE(m_mossbank->stop(SIGINT), 0);
    }

    void aLogindThatGoesAndComesBackStopsItAtTheNextLock()
    {
        QVERIFY(startRecording({}));
        m_logind.reset();
        QTest::qWait(2000);
        QVERIFY2(!m_mossbank->terminal().contains(u"Paused"_s), qPrintable(m_mossbank->terminal()));
        m_logind = std::make_unique<MockedLogind>(*m_systemBus);
        QVERIFY2(m_logind->problem().isEmpty(), qPrintable(m_logind->problem()));
        QVERIFY(m_logind->setLocked(true));
        QVERIFY2(m_mossbank->waitFor(u"Paused when the screen locked"_s),
                 qPrintable(m_mossbank->terminal()));
        QVERIFY(m_logind->setLocked(false));
        QVERIFY2(m_mossbank->waitFor(u"Waiting for your next screen"_s, 2),
                 qPrintable(m_mossbank->terminal()));
        QCOMPARE(m_mossbank->stop(SIGINT), 0);
    }

    void servicesThatGoLeaveTheRecordingAlone()
    {
        QVERIFY(startRecording({}));
        m_logind.reset();
        m_screenSaver.reset();
        TestBus::end(m_systemBus->process());
        TestBus::end(m_sessionBus->process());
        const auto before = m_mossbank->pictureFiles().size();
        QVERIFY(m_desktop->start(u"xterm"_s,
                                 {u"-class"_s, u"Beta"_s, u"-geometry"_s, u"100x40+200+100"_s,
                                  u"-bg"_s, u"darkgreen"_s, u"-e"_s, u"sleep 1000"_s},
                                 u"xterm"_s));
        QTRY_VERIFY_WITH_TIMEOUT(m_mossbank->pictureFiles().size() > before, 10'000);
        const QString unknown = u"Mossbank cannot tell when the screen is locked"_s;
        QVERIFY2(m_mossbank->waitFor(unknown), qPrintable(m_mossbank->terminal()));
        QTest::qWait(12'000);
        QCOMPARE(m_mossbank->terminal().count(unknown), 1);
        QCOMPARE(m_mossbank->stop(SIGINT), 0);
    }

    void whatCannotBeToldIsSaidOnce()
    {
        m_logind.reset();
        m_screenSaver.reset();
        QVERIFY(startRecording({}));
        QTest::qWait(3000);
        const QString terminal = m_mossbank->terminal();
        QCOMPARE(terminal.count(u"Mossbank cannot tell when the screen is locked"_s), 1);
        QCOMPARE(terminal.count(u"Mossbank cannot tell when this computer goes to sleep"_s), 1);
        QCOMPARE(m_mossbank->stop(SIGINT), 0);
    }

private:
    bool startRecording(QMap<QString, QString> choices)
    {
        choices.insert(u"interval"_s, u"1"_s);
        m_mossbank->choose(choices);
        return m_mossbank->start() && m_mossbank->waitFor(u"Saved at "_s);
    }

    bool happens(const QString& event, bool isLeaving)
    {
        if (event == u"lock"_s)
            return m_logind->setLocked(isLeaving);
        if (event == u"saver"_s)
            return m_screenSaver->setActive(isLeaving);
        if (event == u"sleep"_s)
            return m_logind->sleep(isLeaving);
        if (event == u"blank"_s) {
            const QString option = isLeaving ? u"activate"_s : u"reset"_s;
            return m_desktop->run(u"xset"_s, {u"s"_s, option}, u"x11-xserver-utils"_s).isSuccess;
        }
        return m_logind->setActive(!isLeaving);
    }

    bool takePlace(const QString& step)
    {
        const bool isEnd = step.startsWith(u'-');
        return happens(isEnd ? step.mid(1) : step, !isEnd);
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<TestBus> m_systemBus;
    std::unique_ptr<TestBus> m_sessionBus;
    std::unique_ptr<MockedLogind> m_logind;
    std::unique_ptr<MockedScreenSaver> m_screenSaver;
    std::unique_ptr<RunningMossbank> m_mossbank;
};

QTEST_GUILESS_MAIN(AwayTest)
#include "AwayTest.moc"
