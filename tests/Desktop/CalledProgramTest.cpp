// SPDX-License-Identifier: Apache-2.0
//
// The real program and what calls it over the session bus: another start, the desktop that starts
// it at login, and a menu that has it quit. The question before the end is a real window.
#include "tests/Desktop/CalledMossbank.h"

#include <QTest>

#include <csignal>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

const QString kRecords = u"Waiting for your next screen"_s;
const QString kPauses = u"Paused until "_s;
const QString kRests = u"Recording is off"_s;
const QString kQuestion = u"Mossbank is recording"_s;
const QString kQuit = u"quit"_s;
const QString kAtLogin = u"--at-login"_s;

constexpr int kPatience = 20'000;

} // namespace

class CalledProgramTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<CalledMossbank> m_called;

    RunningMossbank& mossbank() { return m_called->mossbank(); }

    QString runningAs()
    {
        return u"Mossbank is already running (process %1).\n"_s.arg(mossbank().process());
    }

    /// Started as it is to be, and ready to be called.
    bool startAndListen(const QString& line, const QStringList& arguments = {})
    {
        return m_called->start(line, arguments) && m_called->waitUntilFound() && m_called->listen();
    }

private Q_SLOTS:
    void init()
    {
        m_called = std::make_unique<CalledMossbank>();
        QVERIFY2(m_called->problem().isEmpty(), qPrintable(m_called->problem()));
    }
    void cleanup() { m_called.reset(); }

    void anotherStartCallsTheFirstAndIsDone()
    {
        QVERIFY(startAndListen(kRecords));
        // A start out of sight keeps the window closed for a moment.
        QVERIFY(m_called->waitForAnotherPicture());
        QVERIFY(m_called->waitForAnotherPicture());
        const auto second = mossbank().startAgain();
        QCOMPARE(second.text, runningAs());
        QCOMPARE(second.status, 0);
        QTRY_COMPARE(m_called->calls(), QStringList{u"Activate"_s});
        // What shows the program itself is not recorded; beside that the call has nothing stop.
        const quint32 window = m_called->window(u"Mossbank"_s);
        QVERIFY(window != 0 && m_called->waitUntilActive(window));
        QVERIFY(m_called->turnAway());
        QVERIFY(m_called->waitForAnotherPicture());
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void anotherStartBringsTheWindowToTheFront()
    {
        QVERIFY(startAndListen(kRecords));
        QVERIFY(m_called->ask(kQuit));
        const quint32 question = m_called->window(kQuestion);
        QVERIFY(question != 0 && m_called->waitUntilActive(question));
        QVERIFY(m_called->turnAway());
        QCOMPARE(mossbank().startAgain().status, 0);
        QVERIFY(m_called->waitUntilActive(question));
        QCOMPARE(m_called->windows(), 1);
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void quitWhileItRecordsIsAskedAbout()
    {
        QVERIFY(startAndListen(kRecords));
        QVERIFY(m_called->ask(kQuit));
        const quint32 question = m_called->window(kQuestion);
        QVERIFY(question != 0 && m_called->waitUntilActive(question));
        QVERIFY(m_called->press(u"Escape"_s));
        QVERIFY(m_called->waitUntilNoWindow());
        QVERIFY(m_called->waitForAnotherPicture());
        // As it says before it begins.
        QCOMPARE(mossbank().terminal().count(kRests), 1);

        // It is asked again, about one quit at a time.
        QVERIFY(m_called->ask(kQuit));
        const quint32 again = m_called->window(kQuestion);
        QVERIFY(again != 0 && m_called->waitUntilActive(again));
        QVERIFY(m_called->turnAway());
        QVERIFY(m_called->ask(kQuit));
        QVERIFY(m_called->waitUntilActive(again));
        QCOMPARE(m_called->windows(), 1);
        QVERIFY(m_called->press(u"ctrl+q"_s));
        QCOMPARE(mossbank().waitForEnd(), 0);
        QVERIFY(mossbank().choice(u"pausedUntil"_s).isNull());
        QVERIFY(mossbank().choice(u"recordsAfterRelaunch"_s).isNull());
        QCOMPARE(mossbank().rows().size(), mossbank().pictureFiles().size());
    }

    void quitWhileItRestsIsTheEnd()
    {
        m_called->choose({{u"recordsAtLaunch"_s, u"false"_s}});
        QVERIFY(startAndListen(kRests));
        QVERIFY(m_called->ask(kQuit));
        QCOMPARE(mossbank().waitForEnd(), 0);
    }

    void quitWhileItPausesIsTheEndAlsoOfThePause()
    {
        m_called->choose({{u"pausedUntil"_s, inSeconds(3600)}});
        QVERIFY(startAndListen(kPauses));
        QVERIFY(!mossbank().choice(u"pausedUntil"_s).isNull());
        QVERIFY(m_called->ask(kQuit));
        QCOMPARE(mossbank().waitForEnd(), 0);
        QVERIFY(mossbank().choice(u"pausedUntil"_s).isNull());
    }

    void whatIsNoActionOfItDoesNothing()
    {
        QVERIFY(startAndListen(kRecords));
        QVERIFY(m_called->ask(u"Quit"_s));
        QVERIFY(m_called->ask(u"delete-all"_s));
        QVERIFY(m_called->waitForAnotherPicture());
        QCOMPARE(m_called->windows(), 0);
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void atLoginItRecordsAndShowsNothing()
    {
        QVERIFY(startAndListen(kRecords, {kAtLogin}));
        QVERIFY(m_called->waitForAnotherPicture());
        QVERIFY(m_called->waitForAnotherPicture());
        QCOMPARE(m_called->windows(), 0);
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void atLoginItRestsWhereTheUserWantsThat()
    {
        m_called->choose({{u"recordsAtLaunch"_s, u"false"_s}});
        QVERIFY(startAndListen(kRests, {kAtLogin}));
        QCOMPARE(mossbank().stop(SIGTERM), 0);
        QVERIFY(!mossbank().terminal().contains(kRecords));
        QCOMPARE(mossbank().pictureFiles(), QStringList());
    }

    void atLoginOneThatRunsIsLeftAlone()
    {
        QVERIFY(startAndListen(kRecords));
        const auto second = mossbank().startAnother({kAtLogin});
        QVERIFY(second->waitForFinished(kPatience));
        QCOMPARE(second->exitCode(), 0);
        QCOMPARE(QString::fromLocal8Bit(second->readAll()), runningAs());
        // Whatever had come would have come before this.
        QCOMPARE(mossbank().startAgain().status, 0);
        QTRY_COMPARE(m_called->calls(), QStringList{u"Activate"_s});
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }
};

QTEST_GUILESS_MAIN(CalledProgramTest)
#include "CalledProgramTest.moc"
