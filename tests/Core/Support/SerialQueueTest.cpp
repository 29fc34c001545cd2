// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/SerialQueue.h"

#include "MossbankCore/Library/StoreError.h"
#include "MossbankCore/Support/Job.h"

#include <QCoroFuture>
#include <QSemaphore>
#include <QSet>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

enum class Thrown { Nothing, Store, File, Standard };

void throwIt(Thrown thrown)
{
    switch (thrown) {
    case Thrown::Nothing:
        return;
    case Thrown::Store:
        throw StoreError(u"database disk image is malformed"_s);
    case Thrown::File:
        throw FileError(u"Permission denied"_s, u"/a/b"_s);
    case Thrown::Standard:
        throw std::out_of_range("too far");
    }
}

/// Runs `wait`, which gives what it caught the failure as.
template <typename Wait>
QString caught(Wait wait)
{
    try {
        wait();
        return u"nothing"_s;
    } catch (const StoreError& failure) {
        return u"StoreError "_s + failure.message();
    } catch (const FileError& failure) {
        return u"FileError "_s + failure.message();
    } catch (const std::out_of_range& failure) {
        return u"out_of_range "_s + QString::fromUtf8(failure.what());
    } catch (...) {
        return u"something nameless"_s;
    }
}

QCoro::Task<QString> awaitedResult(QFuture<int> future)
{
    try {
        const int result = co_await future;
        co_return QString::number(result);
    } catch (...) {
        const auto failure = std::current_exception();
        co_return caught([failure] { std::rethrow_exception(failure); });
    }
}

QCoro::Task<QString> awaitedEnd(QFuture<void> future)
{
    try {
        co_await future;
        co_return u"ended"_s;
    } catch (...) {
        const auto failure = std::current_exception();
        co_return caught([failure] { std::rethrow_exception(failure); });
    }
}

} // namespace

class SerialQueueTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void workIsDoneInTheOrderGiven();
    void allWorkIsDoneOnOneThreadOfItsOwn();
    void waitingForAResultDoesNotTakeItOutOfTurn();
    void theThreadIsTheSameAfterARest();
    void resultsComeBack();
    void aResultThatCannotBeCopiedComesBack();
    void workThatCannotBeCopiedIsDone();
    void aFailureComesOutAsItself_data();
    void aFailureComesOutAsItself();
    void aFailureLeavesTheQueueWorking();
    void awaitingGivesTheResultOnTheAwaitersThread();
    void destructionFinishesWhatWasGiven();
    void manyThreadsMayGiveWork();
};

void SerialQueueTest::workIsDoneInTheOrderGiven()
{
    SerialQueue queue(u"test"_s);
    std::vector<int> done;
    QList<QFuture<void>> futures;
    for (int number = 0; number < 3000; ++number)
        futures += queue.run([&done, number] { done.push_back(number); });
    futures.last().waitForFinished();
    QCOMPARE(done.size(), std::size_t{3000});
    for (int number = 0; number < 3000; ++number)
        QCOMPARE(done[static_cast<std::size_t>(number)], number);
}

void SerialQueueTest::allWorkIsDoneOnOneThreadOfItsOwn()
{
    SerialQueue queue(u"test"_s);
    SerialQueue other(u"other"_s);
    QSet<QThread*> threads;
    for (int number = 0; number < 500; ++number)
        threads += queue.run([] { return QThread::currentThread(); }).result();
    QCOMPARE(threads.size(), 1);
    QVERIFY(!threads.contains(QThread::currentThread()));
    QVERIFY(!threads.contains(other.run([] { return QThread::currentThread(); }).result()));
}

void SerialQueueTest::waitingForAResultDoesNotTakeItOutOfTurn()
{
    SerialQueue queue(u"test"_s);
    QSemaphore mayEnd;
    std::atomic<bool> firstEnded = false;
    const auto first = queue.run([&] {
        mayEnd.acquire();
        firstEnded = true;
        return QThread::currentThread();
    });
    const auto second =
        queue.run([&] { return std::pair(firstEnded.load(), QThread::currentThread()); });
    std::thread opener([&] {
        QThread::msleep(50);
        mayEnd.release();
    });
    const auto [afterFirst, thread] = second.result();
    opener.join();
    QVERIFY(afterFirst);
    QCOMPARE(thread, first.result());
    QVERIFY(thread != QThread::currentThread());
}

void SerialQueueTest::theThreadIsTheSameAfterARest()
{
    SerialQueue queue(u"test"_s);
    QThread* const before = queue.run([] { return QThread::currentThread(); }).result();
    for (int rest = 0; rest < 5; ++rest) {
        QTest::qSleep(20);
        QCOMPARE(queue.run([] { return QThread::currentThread(); }).result(), before);
    }
}

void SerialQueueTest::resultsComeBack()
{
    SerialQueue queue(u"test"_s);
    QCOMPARE(queue.run([] { return 42; }).result(), 42);
    QCOMPARE(queue.run([] { return u"words"_s; }).result(), u"words"_s);
    QCOMPARE(queue.run([] { return QList<int>{1, 2}; }).result(), (QList<int>{1, 2}));
    bool done = false;
    queue.run([&done] { done = true; }).waitForFinished();
    QVERIFY(done);
}

void SerialQueueTest::aResultThatCannotBeCopiedComesBack()
{
    SerialQueue queue(u"test"_s);
    auto future = queue.run([] { return std::make_unique<int>(7); });
    QCOMPARE(*future.takeResult(), 7);
}

void SerialQueueTest::workThatCannotBeCopiedIsDone()
{
    SerialQueue queue(u"test"_s);
    QCOMPARE(queue.run([number = std::make_unique<int>(7)] { return *number + 1; }).result(), 8);
    auto changing = [count = 0]() mutable {
        return ++count;
    };
    QCOMPARE(queue.run(changing).result(), 1);
}

void SerialQueueTest::aFailureComesOutAsItself_data()
{
    QTest::addColumn<Thrown>("thrown");
    QTest::addColumn<QString>("expected");
    QTest::newRow("the store's") << Thrown::Store
                                 << u"StoreError database disk image is malformed"_s;
    QTest::newRow("a file's") << Thrown::File << u"FileError Permission denied: /a/b"_s;
    QTest::newRow("a library's") << Thrown::Standard << u"out_of_range too far"_s;
}

void SerialQueueTest::aFailureComesOutAsItself()
{
    QFETCH(Thrown, thrown);
    QFETCH(QString, expected);
    SerialQueue queue(u"test"_s);
    const auto number = [thrown] {
        throwIt(thrown);
        return 1;
    };
    const auto nothing = [thrown] {
        throwIt(thrown);
    };
    QCOMPARE(caught([&] { (void)queue.run(number).result(); }), expected);
    QCOMPARE(caught([&] { queue.run(nothing).waitForFinished(); }), expected);
    QCOMPARE(QCoro::waitFor(awaitedResult(queue.run(number))), expected);
    QCOMPARE(QCoro::waitFor(awaitedEnd(queue.run(nothing))), expected);

    // Awaited when it has failed already, and asked twice.
    const auto ended = queue.run(number);
    (void)caught([&] { (void)ended.result(); });
    QCOMPARE(QCoro::waitFor(awaitedResult(ended)), expected);
    QCOMPARE(caught([&] { (void)ended.result(); }), expected);
}

void SerialQueueTest::aFailureLeavesTheQueueWorking()
{
    SerialQueue queue(u"test"_s);
    const auto failed = queue.run([] { throwIt(Thrown::Store); });
    QCOMPARE(queue.run([] { return 3; }).result(), 3);
    QVERIFY(failed.isFinished());
}

void SerialQueueTest::awaitingGivesTheResultOnTheAwaitersThread()
{
    SerialQueue queue(u"test"_s);
    QCOMPARE(QCoro::waitFor(awaitedResult(queue.run([] { return 5; }))), u"5"_s);
    QCOMPARE(QCoro::waitFor(awaitedEnd(queue.run([] {}))), u"ended"_s);
}

void SerialQueueTest::destructionFinishesWhatWasGiven()
{
    std::atomic<int> done = 0;
    QFuture<int> last;
    {
        SerialQueue queue(u"test"_s);
        for (int number = 0; number < 50; ++number) {
            last = queue.run([&done, number] {
                QThread::usleep(200);
                ++done;
                return number;
            });
        }
    }
    QCOMPARE(done.load(), 50);
    QCOMPARE(last.result(), 49);
}

void SerialQueueTest::manyThreadsMayGiveWork()
{
    SerialQueue queue(u"test"_s);
    int sum = 0; // one thread does all the work, so nothing guards it
    std::vector<std::vector<int>> seen(4);
    std::vector<std::thread> givers;
    std::atomic<bool> inOrder = true;
    for (std::size_t giver = 0; giver < seen.size(); ++giver) {
        givers.emplace_back([&, giver] {
            for (int number = 0; number < 500; ++number) {
                const auto given = queue.run([&, giver, number] {
                    ++sum;
                    seen[giver].push_back(number);
                    return number;
                });
                if (number % 50 == 0 && given.result() != number)
                    inOrder = false;
            }
        });
    }
    for (std::thread& giver : givers)
        giver.join();
    QCOMPARE(queue.run([&sum] { return sum; }).result(), 2000);
    QVERIFY(inOrder);
    for (const auto& numbers : seen)
        QVERIFY(std::is_sorted(numbers.begin(), numbers.end()));
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::SerialQueueTest)
#include "SerialQueueTest.moc"
