// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Job.h"

#include "tests/Fakes/FakeClock.h"

#include <QStringList>
#include <QTest>

#include <memory>
#include <optional>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

void turn()
{
    QCoreApplication::processEvents();
}

QCoro::Task<> note(QStringList* log, QString words, Cancellation)
{
    *log += words;
    co_return;
}

QCoro::Task<> sleepOnce(FakeClock* clock, QStringList* log, QString name, Cancellation cancellation)
{
    *log += name + u" started"_s;
    const bool slept = co_await clock->sleep(60, cancellation);
    *log += name + (slept ? u" slept"_s : u" was woken"_s);
}

QCoro::Task<bool> innermost(FakeClock* clock, Cancellation cancellation)
{
    co_return co_await clock->sleep(60, cancellation);
}

QCoro::Task<bool> between(FakeClock* clock, Cancellation cancellation)
{
    const bool slept = co_await innermost(clock, cancellation);
    co_return slept;
}

QCoro::Task<> outermost(FakeClock* clock, QStringList* log, Cancellation cancellation)
{
    const bool slept = co_await between(clock, cancellation);
    *log += slept ? u"slept"_s : u"was woken"_s;
    *log += cancellation.isRequested() ? u"unwanted"_s : u"wanted"_s;
}

QCoro::Task<> letGoOf(FakeClock* clock, std::optional<Job>* own, QStringList* log,
                      Cancellation cancellation)
{
    co_await clock->sleep(60, cancellation);
    own->reset();
    *log += cancellation.isRequested() ? u"unwanted"_s : u"wanted"_s;
}

/// One whose work starts its successor.
class Relay {
public:
    explicit Relay(FakeClock& clock)
        : m_clock(clock)
    {
    }

    void start(int runner) { m_job = Job::start(&Relay::run, this, runner); }
    bool isRunning() const { return m_job.isRunning(); }
    const QStringList& log() const { return m_log; }

private:
    QCoro::Task<> run(int runner, Cancellation cancellation)
    {
        m_log += u"%1 runs"_s.arg(runner);
        if (runner < 3)
            start(runner + 1);
        m_log +=
            u"%1 is %2"_s.arg(runner).arg(cancellation.isRequested() ? u"unwanted"_s : u"wanted"_s);
        const bool slept = co_await m_clock.sleep(60, cancellation);
        m_log += u"%1 %2"_s.arg(runner).arg(slept ? u"slept"_s : u"was woken"_s);
    }

    FakeClock& m_clock;
    QStringList m_log;
    Job m_job;
};

/// One whose woken work looks at the job in its place.
class Successor {
public:
    QCoro::Task<> look(FakeClock* clock, Cancellation cancellation)
    {
        co_await clock->sleep(60, cancellation);
        sawRunning = job.isRunning();
    }

    Job job;
    std::optional<bool> sawRunning;
};

} // namespace

class JobTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void workStartsOnTheNextTurn();
    void workCancelledBeforeItStartsNeverRuns();
    void cancellingWakesASleepAtOnce();
    void cancellingTwiceOrTooLateChangesNothing();
    void destructionCancels();
    void assigningAnotherCancelsTheOld();
    void theOldWorkFindsTheNewJobInItsPlace();
    void movingAJobKeepsItsWork();
    void assigningAJobToItselfKeepsItsWork();
    void workMayReplaceItself();
    void workMayLetGoOfItsOwnJob();
    void aJobIsRunningUntilItsWorkHasEnded();
    void cancellationReachesTheInnermostCoroutine();
    void workThatDoesNotSleepSeesThatItIsUnwanted();
};

void JobTest::workStartsOnTheNextTurn()
{
    QStringList log;
    const Job job = Job::start(note, &log, u"ran"_s);
    QVERIFY(log.isEmpty());
    turn();
    QCOMPARE(log, QStringList{u"ran"_s});
    turn();
    QCOMPARE(log.size(), 1);
}

void JobTest::workCancelledBeforeItStartsNeverRuns()
{
    QStringList log;
    Job cancelled = Job::start(note, &log, u"cancelled"_s);
    cancelled.cancel();
    {
        const Job dropped = Job::start(note, &log, u"dropped"_s);
    }
    Job replaced = Job::start(note, &log, u"replaced"_s);
    replaced = Job::start(note, &log, u"kept"_s);
    turn();
    QCOMPARE(log, QStringList{u"kept"_s});
    QVERIFY(!cancelled.isRunning());
}

void JobTest::cancellingWakesASleepAtOnce()
{
    FakeClock clock;
    QStringList log;
    Job job = Job::start(sleepOnce, &clock, &log, u"one"_s);
    turn();
    job.cancel();
    QCOMPARE(log, (QStringList{u"one started"_s, u"one was woken"_s}));
    QCOMPARE(clock.sleepers(), std::size_t{0});
}

void JobTest::cancellingTwiceOrTooLateChangesNothing()
{
    FakeClock clock;
    QStringList log;
    Job none;
    none.cancel();
    QVERIFY(!none.isRunning());
    Job job = Job::start(sleepOnce, &clock, &log, u"one"_s);
    turn();
    job.cancel();
    job.cancel();
    clock.advance(100);
    QCOMPARE(log.size(), 2);

    Job ended = Job::start(sleepOnce, &clock, &log, u"two"_s);
    turn();
    clock.advance(100);
    QCOMPARE(log.last(), u"two slept"_s);
    ended.cancel();
    clock.advance(100);
    QCOMPARE(log.size(), 4);
}

void JobTest::destructionCancels()
{
    FakeClock clock;
    QStringList log;
    {
        const Job job = Job::start(sleepOnce, &clock, &log, u"one"_s);
        turn();
    }
    QCOMPARE(log, (QStringList{u"one started"_s, u"one was woken"_s}));
}

void JobTest::assigningAnotherCancelsTheOld()
{
    FakeClock clock;
    QStringList log;
    Job job = Job::start(sleepOnce, &clock, &log, u"old"_s);
    turn();
    job = Job::start(sleepOnce, &clock, &log, u"new"_s);
    QCOMPARE(log.last(), u"old was woken"_s);
    turn();
    job = Job();
    QCOMPARE(log, (QStringList{u"old started"_s, u"old was woken"_s, u"new started"_s,
                               u"new was woken"_s}));
    QVERIFY(!job.isRunning());
}

void JobTest::theOldWorkFindsTheNewJobInItsPlace()
{
    FakeClock clock;
    QStringList log;
    Successor successor;
    successor.job = Job::start(&Successor::look, &successor, &clock);
    turn();
    successor.job = Job::start(note, &log, u"new"_s);
    QCOMPARE(successor.sawRunning, std::optional(true));
    turn();
    QCOMPARE(log, QStringList{u"new"_s});
}

void JobTest::movingAJobKeepsItsWork()
{
    FakeClock clock;
    QStringList log;
    Job first = Job::start(sleepOnce, &clock, &log, u"one"_s);
    Job second = std::move(first);
    turn();
    first.cancel(); // NOLINT: one that was moved from holds no work
    QVERIFY(!first.isRunning());
    QVERIFY(second.isRunning());
    clock.advance(60);
    QCOMPARE(log.last(), u"one slept"_s);
}

void JobTest::assigningAJobToItselfKeepsItsWork()
{
    FakeClock clock;
    QStringList log;
    Job job = Job::start(sleepOnce, &clock, &log, u"one"_s);
    turn();
    Job& same = job;
    job = std::move(same);
    QVERIFY(job.isRunning());
    QCOMPARE(log.size(), 1);
}

void JobTest::workMayReplaceItself()
{
    FakeClock clock;
    Relay relay(clock);
    relay.start(1);
    turn();
    turn();
    turn();
    QVERIFY(relay.isRunning());
    clock.advance(60);
    QVERIFY(!relay.isRunning());
    QCOMPARE(relay.log(), (QStringList{u"1 runs"_s, u"1 is unwanted"_s, u"1 was woken"_s,
                                       u"2 runs"_s, u"2 is unwanted"_s, u"2 was woken"_s,
                                       u"3 runs"_s, u"3 is wanted"_s, u"3 slept"_s}));
}

void JobTest::workMayLetGoOfItsOwnJob()
{
    FakeClock clock;
    QStringList log;
    // Let go of after its sleep, and while it is being woken by its cancellation.
    std::optional<Job> job = Job::start(letGoOf, &clock, &job, &log);
    turn();
    clock.advance(60);
    QVERIFY(!job);
    QCOMPARE(log, QStringList{u"unwanted"_s});
    job = Job::start(letGoOf, &clock, &job, &log);
    turn();
    job->cancel();
    QVERIFY(!job);
    QCOMPARE(log, (QStringList{u"unwanted"_s, u"unwanted"_s}));
}

void JobTest::aJobIsRunningUntilItsWorkHasEnded()
{
    FakeClock clock;
    QStringList log;
    QVERIFY(!Job().isRunning());
    Job job = Job::start(sleepOnce, &clock, &log, u"one"_s);
    QVERIFY(job.isRunning());
    turn();
    QVERIFY(job.isRunning());
    clock.advance(60);
    QVERIFY(!job.isRunning());
}

void JobTest::cancellationReachesTheInnermostCoroutine()
{
    FakeClock clock;
    QStringList log;
    Job job = Job::start(outermost, &clock, &log);
    turn();
    job.cancel();
    QCOMPARE(log, (QStringList{u"was woken"_s, u"unwanted"_s}));
    log.clear();
    job = Job::start(outermost, &clock, &log);
    turn();
    clock.advance(60);
    QCOMPARE(log, (QStringList{u"slept"_s, u"wanted"_s}));
    QVERIFY(!job.isRunning());
}

void JobTest::workThatDoesNotSleepSeesThatItIsUnwanted()
{
    Cancellation none;
    QVERIFY(!none.isRequested());
    bool woken = false;
    none.setWake([&woken] { woken = true; });
    QVERIFY(!woken && !none.isRequested());

    static Cancellation kept;
    static const auto keep = [](Cancellation cancellation) -> QCoro::Task<> {
        kept = std::move(cancellation);
        co_return;
    };
    Job job = Job::start(keep);
    turn();
    QVERIFY(!kept.isRequested());
    int wakes = 0;
    kept.setWake([&wakes] { wakes += 100; });
    kept.setWake([&wakes] { ++wakes; });
    job.cancel();
    job.cancel();
    QVERIFY(kept.isRequested());
    QCOMPARE(wakes, 1);
    kept = Cancellation();
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::JobTest)
#include "JobTest.moc"
