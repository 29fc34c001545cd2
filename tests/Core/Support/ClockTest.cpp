// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Ports/Clock.h"

#include "MossbankCore/Support/Job.h"
#include "MossbankCore/Support/SystemClock.h"
#include "tests/Fakes/FakeClock.h"

#include <QElapsedTimer>
#include <QStringList>
#include <QTest>
#include <QTimer>

#include <chrono>
#include <limits>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

QCoro::Task<> sleeper(Clock* clock, double seconds, QStringList* log, QString name,
                      Cancellation cancellation)
{
    const bool slept = co_await clock->sleep(seconds, cancellation);
    *log += name + (slept ? u" slept"_s : u" was woken"_s);
}

QCoro::Task<> sleepsAgain(FakeClock* clock, double seconds, int times, QStringList* log,
                          QString name, Cancellation cancellation)
{
    const Date start = clock->now();
    for (int time = 0; time < times; ++time) {
        if (!co_await clock->sleep(seconds, cancellation))
            co_return;
        *log += u"%1 at %2"_s.arg(name).arg(clock->now() - start);
    }
}

QCoro::Task<> measured(Clock* clock, double seconds, qint64* nanoseconds, Cancellation cancellation)
{
    QElapsedTimer timer;
    timer.start();
    if (co_await clock->sleep(seconds, cancellation))
        *nanoseconds = timer.nsecsElapsed();
}

/// A clock and the way to let it go on.
class Timepiece {
public:
    explicit Timepiece(bool isFake)
        : m_isFake(isFake)
    {
    }

    Clock& clock() { return m_isFake ? static_cast<Clock&>(m_fake) : m_system; }

    void letPass(double seconds)
    {
        QCoreApplication::processEvents();
        if (m_isFake)
            m_fake.advance(seconds);
        else
            QTest::qWait(static_cast<int>(seconds * 1000));
    }

private:
    bool m_isFake;
    FakeClock m_fake;
    SystemClock m_system;
};

} // namespace

class ClockTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sleepersWakeInTheOrderDue_data() { bothClocks(); }
    void sleepersWakeInTheOrderDue();
    void nobodyWakesEarly_data() { bothClocks(); }
    void nobodyWakesEarly();
    void noTimeAtAllPassesAtOnce_data();
    void noTimeAtAllPassesAtOnce();
    void aSleepWithoutEndOnlyEndsByCancellation_data() { bothClocks(); }
    void aSleepWithoutEndOnlyEndsByCancellation();
    void cancellationWakesAtOnceAndOnce_data() { bothClocks(); }
    void cancellationWakesAtOnceAndOnce();
    void aSleepBegunAfterCancellationDoesNotBegin_data() { bothClocks(); }
    void aSleepBegunAfterCancellationDoesNotBegin();
    void sleepWithoutAJobIsNeverCancelled_data() { bothClocks(); }
    void sleepWithoutAJobIsNeverCancelled();

    void theMachinesClockTellsTheTime();
    void theMachinesSleepIsNoShorterThanAsked_data();
    void theMachinesSleepIsNoShorterThanAsked();
    void aClearedAlarmIsSilentInAnEventLoopInsideAnother();

    void theFakeMovesOnlyWhenTold();
    void theFakeWakesThoseWhoSleepAgainInTurn();
    void theFakeTellsWhoSleeps();
    void aWallClockSetBackDisturbsNobody();
    void whoWakesMayLetTimePass();

private:
    static void bothClocks();
};

void ClockTest::bothClocks()
{
    QTest::addColumn<bool>("isFake");
    QTest::newRow("the fake") << true;
    QTest::newRow("the machine's") << false;
}

void ClockTest::sleepersWakeInTheOrderDue()
{
    QFETCH(bool, isFake);
    Timepiece time(isFake);
    QStringList log;
    const Job late = Job::start(sleeper, &time.clock(), 0.06, &log, u"late"_s);
    const Job early = Job::start(sleeper, &time.clock(), 0.02, &log, u"early"_s);
    const Job between = Job::start(sleeper, &time.clock(), 0.04, &log, u"between"_s);
    time.letPass(0.2);
    QCOMPARE(log, (QStringList{u"early slept"_s, u"between slept"_s, u"late slept"_s}));
    QVERIFY(!late.isRunning() && !early.isRunning() && !between.isRunning());
}

void ClockTest::nobodyWakesEarly()
{
    QFETCH(bool, isFake);
    Timepiece time(isFake);
    QStringList log;
    const Job job = Job::start(sleeper, &time.clock(), 30.0, &log, u"one"_s);
    time.letPass(0.03);
    QVERIFY(log.isEmpty());
    QVERIFY(job.isRunning());
}

void ClockTest::noTimeAtAllPassesAtOnce_data()
{
    QTest::addColumn<bool>("isFake");
    QTest::addColumn<double>("seconds");
    for (const bool isFake : {true, false}) {
        const char* clock = isFake ? "the fake" : "the machine's";
        for (const double seconds : {0.0, -0.0, -1.0, -1e300, -kInfinity, kNotANumber})
            QTest::addRow("%s, %g", clock, seconds) << isFake << seconds;
    }
}

void ClockTest::noTimeAtAllPassesAtOnce()
{
    QFETCH(bool, isFake);
    QFETCH(double, seconds);
    Timepiece time(isFake);
    QStringList log;
    const Job job = Job::start(sleeper, &time.clock(), seconds, &log, u"one"_s);
    QCoreApplication::processEvents();
    time.letPass(0.01);
    QCOMPARE(log, QStringList{u"one slept"_s});
}

void ClockTest::aSleepWithoutEndOnlyEndsByCancellation()
{
    QFETCH(bool, isFake);
    Timepiece time(isFake);
    QStringList log;
    Job endless = Job::start(sleeper, &time.clock(), kInfinity, &log, u"endless"_s);
    Job ages = Job::start(sleeper, &time.clock(), 1e15, &log, u"ages"_s);
    Job month = Job::start(sleeper, &time.clock(), 31 * 86'400.0, &log, u"month"_s);
    time.letPass(0.05);
    QCOMPARE(log, QStringList());
    endless.cancel();
    ages.cancel();
    month.cancel();
    QCOMPARE(log, (QStringList{u"endless was woken"_s, u"ages was woken"_s, u"month was woken"_s}));
}

void ClockTest::cancellationWakesAtOnceAndOnce()
{
    QFETCH(bool, isFake);
    Timepiece time(isFake);
    QStringList log;
    Job job = Job::start(sleeper, &time.clock(), 0.03, &log, u"one"_s);
    const Job other = Job::start(sleeper, &time.clock(), 0.03, &log, u"other"_s);
    QCoreApplication::processEvents();
    job.cancel();
    QCOMPARE(log, QStringList{u"one was woken"_s});
    time.letPass(0.1);
    QCOMPARE(log, (QStringList{u"one was woken"_s, u"other slept"_s}));
}

void ClockTest::aSleepBegunAfterCancellationDoesNotBegin()
{
    QFETCH(bool, isFake);
    Timepiece time(isFake);
    static const auto sleepTwice = [](Clock* clock, QStringList* log,
                                      Cancellation cancellation) -> QCoro::Task<> {
        co_await clock->sleep(0.01, cancellation);
        *log += u"woken"_s;
        if (co_await clock->sleep(30, cancellation))
            *log += u"slept"_s;
        *log += u"ended"_s;
    };
    QStringList log;
    Job job = Job::start(sleepTwice, &time.clock(), &log);
    QCoreApplication::processEvents();
    job.cancel();
    QCOMPARE(log, (QStringList{u"woken"_s, u"ended"_s}));
    QVERIFY(!job.isRunning());
}

void ClockTest::sleepWithoutAJobIsNeverCancelled()
{
    QFETCH(bool, isFake);
    Timepiece time(isFake);
    QStringList log;
    const auto task = sleeper(&time.clock(), 0.02, &log, u"one"_s, Cancellation());
    time.letPass(0.1);
    QCOMPARE(log, QStringList{u"one slept"_s});
}

void ClockTest::theMachinesClockTellsTheTime()
{
    const SystemClock clock;
    const auto seconds = [] {
        return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch())
            .count();
    };
    const double before = seconds();
    const Date now = clock.now();
    QVERIFY(before <= now.secondsSince1970 && now.secondsSince1970 <= seconds());
}

void ClockTest::theMachinesSleepIsNoShorterThanAsked_data()
{
    QTest::addColumn<double>("seconds");
    for (const double seconds : {0.0004, 0.001, 0.0015, 0.0099, 0.02, 0.0505})
        QTest::addRow("%g", seconds) << seconds;
}

void ClockTest::theMachinesSleepIsNoShorterThanAsked()
{
    QFETCH(double, seconds);
    SystemClock clock;
    for (int time = 0; time < 5; ++time) {
        qint64 nanoseconds = -1;
        const Job job = Job::start(measured, &clock, seconds, &nanoseconds);
        QTRY_VERIFY(nanoseconds >= 0);
        QVERIFY2(static_cast<double>(nanoseconds) >= seconds * 1e9,
                 qPrintable(QString::number(nanoseconds)));
    }
}

void ClockTest::aClearedAlarmIsSilentInAnEventLoopInsideAnother()
{
    SystemClock clock;
    QStringList log;
    Job job = Job::start(sleeper, &clock, 0.02, &log, u"one"_s);
    bool done = false;
    QTimer::singleShot(5, this, [&] {
        job.cancel();
        QTest::qWait(60);
        done = true;
    });
    QTRY_VERIFY(done);
    QCOMPARE(log, QStringList{u"one was woken"_s});
}

void ClockTest::theFakeMovesOnlyWhenTold()
{
    FakeClock clock({1000});
    QTest::qSleep(5);
    QVERIFY(clock.now() == Date{1000});
    clock.advance(2.5);
    QVERIFY(clock.now() == Date{1002.5});
    clock.advance(0);
    clock.advance(-7);
    QVERIFY(clock.now() == Date{1002.5});
}

void ClockTest::theFakeWakesThoseWhoSleepAgainInTurn()
{
    FakeClock clock;
    QStringList log;
    const Job twos = Job::start(sleepsAgain, &clock, 2.0, 3, &log, u"twos"_s);
    const Job threes = Job::start(sleepsAgain, &clock, 3.0, 3, &log, u"threes"_s);
    QCoreApplication::processEvents();
    clock.advance(7);
    QCOMPARE(log, (QStringList{u"twos at 2"_s, u"threes at 3"_s, u"twos at 4"_s, u"threes at 6"_s,
                               u"twos at 6"_s}));
    QVERIFY(!twos.isRunning());
    QCOMPARE(clock.untilNextAlarm(), 2.0);
    clock.advance(2);
    QCOMPARE(log.last(), u"threes at 9"_s);
}

void ClockTest::theFakeTellsWhoSleeps()
{
    FakeClock clock;
    QStringList log;
    QCOMPARE(clock.sleepers(), std::size_t{0});
    QCOMPARE(clock.untilNextAlarm(), -1.0);
    Job job = Job::start(sleeper, &clock, 60.0, &log, u"one"_s);
    const Job other = Job::start(sleeper, &clock, 90.0, &log, u"other"_s);
    QCoreApplication::processEvents();
    QCOMPARE(clock.sleepers(), std::size_t{2});
    clock.advance(15);
    QCOMPARE(clock.untilNextAlarm(), 45.0);
    job.cancel();
    QCOMPARE(clock.sleepers(), std::size_t{1});
    QCOMPARE(clock.untilNextAlarm(), 75.0);
}

void ClockTest::aWallClockSetBackDisturbsNobody()
{
    FakeClock clock({5000});
    QStringList log;
    const Job job = Job::start(sleeper, &clock, 60.0, &log, u"one"_s);
    QCoreApplication::processEvents();
    clock.advance(59);
    clock.setNow({100});
    QVERIFY(log.isEmpty());
    clock.setNow({1e9});
    QVERIFY(log.isEmpty());
    clock.advance(0.5);
    QVERIFY(log.isEmpty());
    clock.advance(0.5);
    QCOMPARE(log, QStringList{u"one slept"_s});
    QVERIFY(clock.now() == Date{1e9 + 1});
}

void ClockTest::whoWakesMayLetTimePass()
{
    FakeClock clock({0});
    static const auto impatient = [](FakeClock* time, Cancellation cancellation) -> QCoro::Task<> {
        co_await time->sleep(1, cancellation);
        time->advance(10);
    };
    const Job job = Job::start(impatient, &clock);
    QCoreApplication::processEvents();
    clock.advance(2);
    QVERIFY(clock.now() == Date{11});
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::ClockTest)
#include "ClockTest.moc"
