// SPDX-License-Identifier: Apache-2.0
//
// How long the reading of a picture may take: of one that is text all over, of one that nobody
// waits for any more.
#include "MossbankCore/Support/Background.h"
#include "tests/Core/Capture/DrawnText.h"
#include "tests/Core/Capture/ReaderOfFakeLines.h"

#include <QFuture>
#include <QSemaphore>
#include <QTest>

#include <ctime>

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

/// Takes so much of a processor's time.
void work(std::chrono::milliseconds time)
{
    const auto end = std::clock() + time.count() * CLOCKS_PER_SEC / 1000;
    while (std::clock() < end) {
    }
}

} // namespace

class TextReaderLimitsTest : public QObject, private ReaderOfFakeLines {
    Q_OBJECT

private Q_SLOTS:
    void aPictureIsNotReadForEver();
    void aPictureThatOnlyWaitsIsReadWhole();
    void whoRestsIsNotWaitedForAndTheNextPictureIsReadWhole();
};

void TextReaderLimitsTest::aPictureIsNotReadForEver()
{
    makeReader(std::chrono::milliseconds(600));
    m_fake->setReader([](const QImage& line, const QString&) {
        work(std::chrono::milliseconds(50));
        return FakeLineRecognizer::wordsOn(line);
    });
    const QStringList first = m_reader->recognize(manyLines(), {});
    QVERIFY(!first.isEmpty());
    QVERIFY(first.size() < kLines);
    QCOMPARE(m_fake->readings().size(), first.size());
    // What was left is read the next time, and not taken for empty.
    const QStringList second = m_reader->recognize(manyLines(), {});
    QVERIFY(second.size() > first.size());
    QCOMPARE(m_fake->readings().size(), second.size());
}

void TextReaderLimitsTest::aPictureThatOnlyWaitsIsReadWhole()
{
    makeReader(std::chrono::milliseconds(600));
    m_fake->setReader([](const QImage& line, const QString&) {
        QTest::qSleep(80);
        return FakeLineRecognizer::wordsOn(line);
    });
    QCOMPARE(m_reader->recognize(manyLines(), {}).size(), kLines);
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
    QFuture<QStringList> reading =
        inBackground([&] { return m_reader->recognize(manyLines(), {}); });
    begun.acquire();
    m_reader->rest();
    QVERIFY(reading.result().size() < kLines / 2);
    // Also right after the wish.
    m_reader->rest();
    QCOMPARE(m_reader->recognize(manyLines(), {}).size(), kLines);
    QTRY_VERIFY(m_fake->rests() >= 2);
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::TextReaderLimitsTest)
#include "TextReaderLimitsTest.moc"
