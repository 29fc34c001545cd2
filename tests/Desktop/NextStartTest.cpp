// SPDX-License-Identifier: Apache-2.0
//
// What one run of the real program leaves for the next: a pause that goes on, the recording that an
// update broke into, and what the user's own end takes back.
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QFile>
#include <QTest>

#include <csignal>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int kPatience = 30'000;
/// For what must not come to have come.
constexpr int kLongEnough = 1000;

const QString kRecords = u"Waiting for your next screen"_s;
const QString kRests = u"Recording is off"_s;
const QString kPauses = u"Paused until "_s;

const QString kPause = u"pausedUntil"_s;
const QString kStamp = u"recordsAfterRelaunch"_s;
const QString kAtLaunch = u"recordsAtLaunch"_s;

/// A start that runs beside the one under test, and what it says.
class AnotherStart {
public:
    explicit AnotherStart(const RunningMossbank& mossbank, const QStringList& arguments)
        : m_process(mossbank.startAnother(arguments))
    {
    }
    ~AnotherStart()
    {
        m_process->kill();
        m_process->waitForFinished(kPatience);
    }
    Q_DISABLE_COPY_MOVE(AnotherStart)

    QString said()
    {
        m_process->waitForReadyRead(0);
        m_said += QString::fromLocal8Bit(m_process->readAll());
        return m_said;
    }
    bool waitFor(const QString& line)
    {
        return QTest::qWaitFor([&] { return said().contains(line); }, kPatience);
    }
    bool isRunning() const { return m_process->state() == QProcess::Running; }
    int stop()
    {
        m_process->terminate();
        const bool hasEnded = m_process->waitForFinished(kPatience);
        return hasEnded && m_process->exitStatus() == QProcess::NormalExit ? m_process->exitCode()
                                                                           : -1;
    }

private:
    std::unique_ptr<QProcess> m_process;
    QString m_said;
};

bool hasLibraryLock(const RunningMossbank& mossbank)
{
    return QFile::exists(mossbank.library() + u"/mossbank.lock"_s);
}

} // namespace

class NextStartTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<RunningMossbank> m_mossbank;

    bool start(const QString& line, const QStringList& arguments = {})
    {
        return m_mossbank->start(arguments) && m_mossbank->waitFor(line);
    }

private Q_SLOTS:
    void init()
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        m_mossbank = std::make_unique<RunningMossbank>();
    }
    void cleanup()
    {
        m_mossbank.reset();
        m_desktop.reset();
    }

    void thePauseGoesOnAfterTheSessionsEndAndEndsWhenItIsDue()
    {
        constexpr int kSeconds = 20;
        const QString until = inSeconds(kSeconds);
        m_mossbank->choose({{kPause, until}});
        QVERIFY(start(kPauses));
        QCOMPARE(m_mossbank->stop(SIGTERM), 0);
        QCOMPARE(m_mossbank->choice(kPause), until);
        QVERIFY(!m_mossbank->terminal().contains(kRecords));

        QVERIFY(start(kPauses));
        QVERIFY2(QTest::qWaitFor([this] { return m_mossbank->terminal().contains(kRecords); },
                                 kPatience + kSeconds * 1000),
                 qPrintable(m_mossbank->terminal()));
        QVERIFY2(inSeconds(0) >= until, "it came back before it was due");
        QVERIFY(QTest::qWaitFor([this] { return m_mossbank->choice(kPause).isNull(); }, kPatience));
        QCOMPARE(m_mossbank->stop(SIGTERM), 0);
    }

    void thePauseGoesOnHoweverTheRunEnded_data()
    {
        QTest::addColumn<int>("ending");
        QTest::newRow("the session ends") << SIGTERM;
        QTest::newRow("the terminal goes") << SIGHUP;
        QTest::newRow("it is killed") << SIGKILL;
    }
    void thePauseGoesOnHoweverTheRunEnded()
    {
        QFETCH(int, ending);
        const QString until = inSeconds(3600);
        m_mossbank->choose({{kPause, until}});
        for (int run = 0; run < 2; ++run) {
            QVERIFY(start(kPauses));
            QCOMPARE(m_mossbank->stop(ending), ending == SIGKILL ? -1 : 0);
            QCOMPARE(m_mossbank->choice(kPause), until);
            QVERIFY(!m_mossbank->terminal().contains(kRecords));
        }
    }

    void theUsersOwnEndIsTheEndOfThePause()
    {
        m_mossbank->choose({{kPause, inSeconds(3600)}});
        QVERIFY(start(kPauses));
        QCOMPARE(m_mossbank->stop(SIGINT), 0);
        QVERIFY(m_mossbank->choice(kPause).isNull());
        QVERIFY(start(kRecords));
        QVERIFY(!m_mossbank->terminal().contains(kPauses));
        QCOMPARE(m_mossbank->stop(SIGTERM), 0);
    }

    void aPauseThatEndedMeanwhileIsForgotten_data()
    {
        QTest::addColumn<QString>("written");
        QTest::newRow("it ended") << inSeconds(-5);
        QTest::newRow("nonsense") << u"tomorrow"_s;
    }
    void aPauseThatEndedMeanwhileIsForgotten()
    {
        QFETCH(QString, written);
        m_mossbank->choose({{kPause, written}});
        QVERIFY(start(kRecords));
        QCOMPARE(m_mossbank->stop(SIGTERM), 0);
        QVERIFY(m_mossbank->choice(kPause).isNull());
        QVERIFY(!m_mossbank->terminal().contains(kPauses));
    }

    void itWaitsForTheOneThatEndsForItAndTakesOver_data()
    {
        QTest::addColumn<int>("stampedBefore");
        QTest::addColumn<bool>("records");
        QTest::newRow("recording was on a moment ago") << 1 << true;
        QTest::newRow("two and a half minutes ago") << 150 << true;
        QTest::newRow("too long ago to be of this relaunch") << 200 << false;
        QTest::newRow("a clock that was set back by little") << -100 << true;
        QTest::newRow("a clock that was set back by much") << -200 << false;
    }
    void itWaitsForTheOneThatEndsForItAndTakesOver()
    {
        QFETCH(int, stampedBefore);
        QFETCH(bool, records);
        m_mossbank->choose({{kAtLaunch, u"false"_s}});
        QVERIFY(start(kRests));
        AnotherStart next(*m_mossbank, {u"--relaunched"_s});
        QTest::qWait(kLongEnough);
        QVERIFY(next.isRunning());
        QCOMPARE(next.said(), QString());
        // As the one that is about to end does last.
        m_mossbank->choose({{kAtLaunch, u"false"_s}, {kStamp, inSeconds(-stampedBefore)}});
        QCOMPARE(m_mossbank->stop(SIGTERM), 0);
        QVERIFY(next.waitFor(kRests));
        QVERIFY(QTest::qWaitFor([this] { return m_mossbank->choice(kStamp).isNull(); }, kPatience));
        if (records) {
            QVERIFY2(next.waitFor(kRecords), qPrintable(next.said()));
        } else {
            QTest::qWait(kLongEnough);
            QVERIFY2(!next.said().contains(kRecords), qPrintable(next.said()));
        }
        QVERIFY(next.isRunning());
        QCOMPARE(next.stop(), 0);
        QVERIFY(m_mossbank->choice(kStamp).isNull());
        QVERIFY(!hasLibraryLock(*m_mossbank));
    }

    void aStampCountsOnceAndOfAPauseNotAtAll()
    {
        const QMap<QString, QString> choices = {{kAtLaunch, u"false"_s}, {kStamp, inSeconds(-1)}};
        m_mossbank->choose(choices);
        QVERIFY(start(kRecords));
        QCOMPARE(m_mossbank->stop(SIGTERM), 0);
        QVERIFY(m_mossbank->choice(kStamp).isNull());
        QVERIFY(start(kRests));
        QTest::qWait(kLongEnough);
        QCOMPARE(m_mossbank->stop(SIGTERM), 0);
        QVERIFY(!m_mossbank->terminal().contains(kRecords));

        QMap<QString, QString> withPause = choices;
        withPause.insert(kPause, inSeconds(3600));
        m_mossbank->choose(withPause);
        QVERIFY(start(kPauses));
        QCOMPARE(m_mossbank->stop(SIGTERM), 0);
        QVERIFY(!m_mossbank->terminal().contains(kRecords));
        QVERIFY(m_mossbank->choice(kStamp).isNull());
        QVERIFY(!m_mossbank->choice(kPause).isNull());
    }
};

QTEST_GUILESS_MAIN(NextStartTest)
#include "NextStartTest.moc"
