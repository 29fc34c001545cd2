// SPDX-License-Identifier: Apache-2.0
//
// How long the reading of a picture may take: of one that is text all over, of one that nobody
// waits for any more.
#include "MossbankCore/Support/Background.h"
#include "MossbankCore/Support/SystemClock.h"
#include "tests/Core/Capture/DrawnText.h"
#include "tests/Core/Capture/ReaderOfFakeLines.h"

#include <QFuture>
#include <QSemaphore>
#include <QTest>

#include <atomic>
#include <thread>

namespace mossbank {

using namespace Qt::StringLiterals;

namespace {

constexpr int kLines = 40;

/// Lines that are all different.
QImage manyLines()
{
    QImage picture = plain({900, 20 + kLines * 24});
    for (int line = 0; line < kLines; ++line)
        write(picture, {20, 10 + line * 24}, {line % 8 + 1, line / 8 + 1});
    return picture;
}

/// Takes so much of a processor's time on this thread.
void work(std::chrono::milliseconds time)
{
    const auto end = processorTimeOfThread() + time;
    while (processorTimeOfThread() < end) {
    }
}

} // namespace

class TextReaderLimitsTest : public QObject, private ReaderOfFakeLines {
    Q_OBJECT

private Q_SLOTS:
    void aPictureIsNotReadForEverAndTheNextTimeFurther();
    void aPictureThatOnlyWaitsIsReadWhole();
    void whatElseTheProgramDoesDoesNotCount();
    void whoRestsIsNotWaitedForAndTheNextPictureIsReadWhole();
};

void TextReaderLimitsTest::aPictureIsNotReadForEverAndTheNextTimeFurther()
{
    makeReader(std::chrono::milliseconds(600));
    m_fake->setReader([](const QImage& line, const QString&) {
        work(std::chrono::milliseconds(50));
        return FakeLineRecognizer::wordsOn(line);
    });
    qsizetype last = 0;
    int times = 0;
    for (bool isWhole = false; !isWhole; ++times) {
        const TextRecognizer::Reading reading = m_reader->read(manyLines(), {});
        // What was left is read now, and was not taken for empty; what was read is not read again.
        QVERIFY(reading.lines.size() > last);
        last = reading.lines.size();
        isWhole = reading.isWhole;
        QCOMPARE(isWhole, last == kLines);
        QCOMPARE(m_fake->readings().size(), last);
    }
    // The time of all threads counts.
    QVERIFY(times >= 3);
    const QStringList complete = m_reader->recognize(manyLines(), {});
    makeReader();
    QCOMPARE(m_reader->recognize(manyLines(), {}), complete);
}

void TextReaderLimitsTest::aPictureThatOnlyWaitsIsReadWhole()
{
    makeReader(std::chrono::milliseconds(600));
    m_fake->setReader([](const QImage& line, const QString&) {
        QTest::qSleep(80);
        return FakeLineRecognizer::wordsOn(line);
    });
    const TextRecognizer::Reading reading = m_reader->read(manyLines(), {});
    QCOMPARE(reading.lines.size(), kLines);
    QVERIFY(reading.isWhole);
}

void TextReaderLimitsTest::whatElseTheProgramDoesDoesNotCount()
{
    makeReader(std::chrono::milliseconds(600));
    std::atomic<bool> isOver = false;
    std::atomic<std::int64_t> elsewhere = 0;
    std::thread other([&] {
        while (!isOver) {
            work(std::chrono::milliseconds(10));
            elsewhere += 10;
        }
    });
    // The reading itself goes on until the other thread has had far more than it may have.
    m_fake->setReader([&](const QImage& line, const QString&) {
        const auto until = elsewhere + 60;
        while (elsewhere < until)
            QTest::qSleep(1);
        return FakeLineRecognizer::wordsOn(line);
    });
    const TextRecognizer::Reading reading = m_reader->read(manyLines(), {});
    isOver = true;
    other.join();
    QVERIFY(elsewhere > 1000);
    QCOMPARE(reading.lines.size(), kLines);
    QVERIFY(reading.isWhole);
}

void TextReaderLimitsTest::whoRestsIsNotWaitedForAndTheNextPictureIsReadWhole()
{
    makeReader();
    QSemaphore begun;
    m_fake->setReader([&](const QImage& line, const QString&) {
        begun.release();
        QTest::qSleep(20);
        return FakeLineRecognizer::wordsOn(line);
    });
    QFuture<TextRecognizer::Reading> reading =
        inBackground([&] { return m_reader->read(manyLines(), {}); });
    begun.acquire();
    m_reader->rest();
    QVERIFY(reading.result().lines.size() < kLines / 2);
    QVERIFY(!reading.result().isWhole);
    // Also right after the wish.
    m_reader->rest();
    QCOMPARE(m_reader->recognize(manyLines(), {}).size(), kLines);
    QTRY_VERIFY(m_fake->rests() >= 2);
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::TextReaderLimitsTest)
#include "TextReaderLimitsTest.moc"
