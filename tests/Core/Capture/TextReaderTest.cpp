// SPDX-License-Identifier: Apache-2.0

#include "MossbankCore/Support/Background.h"
#include "MossbankCore/Support/Failure.h"
#include "tests/Core/Capture/ReaderOfFakeLines.h"
#include "tests/Core/Capture/WrittenLines.h"

#include <QFuture>
#include <QSemaphore>
#include <QTest>

namespace mossbank {

using namespace Qt::StringLiterals;

class TextReaderTest : public QObject, private ReaderOfFakeLines {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeReader(); }
    void eachLineIsALineOfText();
    void columnsAreReadFromTheLeft();
    void theWordsOfALineHaveOneSpaceBetween();
    void aBadgeIsReadWithItsLine();
    void linesAreHandedOverDarkOnWhiteAndOfOneHeight();
    void aPictureOfAnyFormatIsRead_data();
    void aPictureOfAnyFormatIsRead();
    void aPictureWithoutTextHasNoLines_data();
    void aPictureWithoutTextHasNoLines();
    void aSpeckIsNoText();
    void aWordOfOneLetterIsText();
    void figuresAloneAreTextHoweverUnsure();

    void whatStayedTheSameIsNotReadAgain();
    void onlyTheLineThatChangedIsRead();
    void aLineThatMovedIsNotReadAgain();
    void linesThatLookTheSameSayTheSame();
    void onlyTheLastPictureIsRemembered();
    void aPictureThatCouldNotBeReadTakesNothingAway();
    void nothingOfAPictureThatCouldNotBeReadIsKept();
    void whatIsAskedOtherwiseIsReadAnew();
    void restingForgetsAndGivesMemoryBack();
    void restingWaitsForNoReadingAndForgetsItAfterwards_data();
    void restingWaitsForNoReadingAndForgetsItAfterwards();

    void aFailureComesThroughAndTheNextPictureIsRead();
    void severalPicturesAtOnceAreEachReadRight();
};

void TextReaderTest::eachLineIsALineOfText()
{
    QCOMPARE(read(written({5, 3, 7, 4})), letters({5, 3, 7, 4}));
}

void TextReaderTest::columnsAreReadFromTheLeft()
{
    QImage picture = written({5, 3, 7});
    for (const int line : {0, 1, 2})
        write(picture, {250, 15 + line * kLineHeight}, {6 + line});
    QCOMPARE(read(picture), letters({5, 3, 7, 6, 7, 8}));
}

void TextReaderTest::theWordsOfALineHaveOneSpaceBetween()
{
    QImage picture = plain(kSize);
    write(picture, {20, 30}, {5, 3, 4});
    QCOMPARE(read(picture), QStringList{u"HHHHH HHH HHHH"_s});
}

void TextReaderTest::aBadgeIsReadWithItsLine()
{
    QImage picture = plain(kSize);
    const QRect before = write(picture, {20, 30}, {5, 6});
    const QRect badge(before.right() + 6, 26, 70, 20);
    fill(picture, badge, qRgb(180, 40, 40));
    write(picture, {badge.left() + 8, 30}, {5}, kWhite);
    QCOMPARE(read(picture), QStringList{u"HHHHH HHHHHH HHHHH"_s});
}

void TextReaderTest::linesAreHandedOverDarkOnWhiteAndOfOneHeight()
{
    QImage picture = plain(kSize, qRgb(20, 30, 60));
    write(picture, {20, 10}, {5}, qRgb(250, 220, 100), 9);
    write(picture, {20, 60}, {4}, qRgb(120, 150, 250), 30);
    QCOMPARE(read(picture), letters({5, 4}));
    QCOMPARE(m_fake->readings().size(), 2);
    for (const FakeLineRecognizer::Reading& reading : m_fake->readings()) {
        QCOMPARE(reading.line.format(), QImage::Format_Grayscale8);
        QCOMPARE(reading.line.height(), 64);
        QCOMPARE(int{reading.line.constScanLine(0)[0]}, 255);
        QCOMPARE(reading.correctsLanguage, false);
    }
}

void TextReaderTest::aPictureOfAnyFormatIsRead_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("RGB32") << QImage::Format_RGB32;
    QTest::newRow("ARGB32, premultiplied") << QImage::Format_ARGB32_Premultiplied;
    QTest::newRow("RGB888") << QImage::Format_RGB888;
    QTest::newRow("grey") << QImage::Format_Grayscale8;
    QTest::newRow("indexed") << QImage::Format_Indexed8;
    QTest::newRow("30 bits") << QImage::Format_RGB30;
}
void TextReaderTest::aPictureOfAnyFormatIsRead()
{
    QFETCH(QImage::Format, format);
    QCOMPARE(read(written({5, 3}).convertToFormat(format)), letters({5, 3}));
}

void TextReaderTest::aPictureWithoutTextHasNoLines_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::newRow("no picture") << QImage();
    QTest::newRow("a pixel") << plain({1, 1});
    QTest::newRow("a row") << plain({3000, 1}, kBlack);
    QTest::newRow("a column") << plain({1, 3000}, kBlack);
    QTest::newRow("white") << plain(kSize);
    QTest::newRow("a huge one") << plain({8000, 6000}, qRgb(30, 30, 40));
}
void TextReaderTest::aPictureWithoutTextHasNoLines()
{
    QFETCH(QImage, picture);
    QCOMPARE(read(picture), QStringList());
    QCOMPARE(m_fake->readings().size(), 0);
}

void TextReaderTest::aSpeckIsNoText()
{
    m_fake->setReader([](const QImage& line, const QString&) {
        return FakeLineRecognizer::wordsOn(line).first().text.size() == 2 ? word(u"%)"_s, 59)
                                                                          : word(u"word"_s, 59);
    });
    QCOMPARE(read(written({2, 5})), QStringList{u"word"_s});
}

void TextReaderTest::aWordOfOneLetterIsText()
{
    m_fake->setReader([](const QImage&, const QString&) { return word(u"7"_s, 60); });
    QCOMPARE(read(written({2})), QStringList{u"7"_s});
}

void TextReaderTest::figuresAloneAreTextHoweverUnsure()
{
    m_fake->setReader([](const QImage& line, const QString&) {
        switch (FakeLineRecognizer::wordsOn(line).first().text.size()) {
        case 1:
            return word(u"7"_s, 12);
        case 2:
            return word(u"42"_s, 12);
        default:
            return word(u"7)"_s, 59);
        }
    });
    QCOMPARE(read(written({1, 2, 3})), (QStringList{u"7"_s, u"42"_s}));
}

void TextReaderTest::whatStayedTheSameIsNotReadAgain()
{
    QCOMPARE(readingsOf(written({5, 3, 7})), 3);
    QCOMPARE(readingsOf(written({5, 3, 7})), 0);
    QCOMPARE(read(written({5, 3, 7})), letters({5, 3, 7}));
}

void TextReaderTest::onlyTheLineThatChangedIsRead()
{
    read(written({5, 3, 7}));
    QCOMPARE(readingsOf(written({5, 4, 7})), 1);
    QCOMPARE(read(written({5, 4, 7})), letters({5, 4, 7}));
}

void TextReaderTest::aLineThatMovedIsNotReadAgain()
{
    read(written({5, 3, 7}));
    QCOMPARE(readingsOf(written({9, 5, 3, 7}, 33)), 1);
    QCOMPARE(read(written({9, 5, 3, 7}, 33)), letters({9, 5, 3, 7}));
}

void TextReaderTest::linesThatLookTheSameSayTheSame()
{
    // Even of a recogniser that says another thing each time.
    std::atomic<int> count = 0;
    m_fake->setReader(
        [&](const QImage&, const QString&) { return word(u"reading %1"_s.arg(++count), 96); });
    const QStringList lines = read(written({5, 5, 5}));
    QCOMPARE(lines, (QStringList{u"reading 1"_s, u"reading 1"_s, u"reading 1"_s}));
    QCOMPARE(read(written({5, 5})), lines.mid(1));
}

void TextReaderTest::onlyTheLastPictureIsRemembered()
{
    read(written({5, 3}));
    read(written({7, 3}));
    QCOMPARE(readingsOf(written({5, 3})), 1);
    read(plain(kSize));
    QCOMPARE(readingsOf(written({5, 3})), 2);
}

void TextReaderTest::aPictureThatCouldNotBeReadTakesNothingAway()
{
    read(written({5, 3}));
    m_fake->setReader(
        [](const QImage&, const QString&) -> QList<RecognizedWord> { throw Failure(u"ink"_s); });
    QVERIFY_THROWS_EXCEPTION(Failure, read(written({5, 8})));
    m_fake->setReader(
        [](const QImage& line, const QString&) { return FakeLineRecognizer::wordsOn(line); });
    QCOMPARE(readingsOf(written({5, 3})), 0);
    QCOMPARE(readingsOf(written({5, 8})), 1);
}

void TextReaderTest::nothingOfAPictureThatCouldNotBeReadIsKept()
{
    read(written({5, 3}));
    m_fake->setReader(
        [](const QImage&, const QString&) -> QList<RecognizedWord> { throw Failure(u"ink"_s); });
    QVERIFY_THROWS_EXCEPTION(Failure, read(written({5, 8})));
    m_fake->setReader(
        [](const QImage& line, const QString&) { return FakeLineRecognizer::wordsOn(line); });
    read(written({7}));
    QCOMPARE(readingsOf(written({5})), 1);
}

void TextReaderTest::whatIsAskedOtherwiseIsReadAnew()
{
    const QImage picture = written({5});
    m_reader->recognize(picture, {});
    m_reader->recognize(picture, {.correctsLanguage = true});
    QCOMPARE(m_fake->readings().size(), 2);
    QCOMPARE(m_fake->readings().last().correctsLanguage, true);
    m_reader->recognize(picture, {.languages = {{u"tur"_s}}});
    QCOMPARE(m_fake->readings().size(), 3);
    QCOMPARE(m_fake->readings().last().language, u"tur"_s);
}

void TextReaderTest::restingForgetsAndGivesMemoryBack()
{
    const QImage picture = written({5, 3});
    read(picture);
    QCOMPARE(m_fake->rests(), 0);
    m_reader->rest();
    QTRY_COMPARE(m_fake->rests(), 1);
    QCOMPARE(readingsOf(picture), 2);
    QCOMPARE(readingsOf(picture), 0);
    QCOMPARE(m_fake->rests(), 1);
}

void TextReaderTest::restingWaitsForNoReadingAndForgetsItAfterwards_data()
{
    QTest::addColumn<bool>("fails");
    QTest::newRow("a reading") << false;
    QTest::newRow("one that fails") << true;
}
void TextReaderTest::restingWaitsForNoReadingAndForgetsItAfterwards()
{
    QFETCH(bool, fails);
    const QImage picture = written({5, 3});
    QSemaphore begun;
    QSemaphore mayEnd;
    read(written({5}));
    m_fake->setReader([&](const QImage& line, const QString&) {
        begun.release();
        mayEnd.acquire();
        if (fails)
            throw Failure(u"ink"_s);
        return FakeLineRecognizer::wordsOn(line);
    });
    const QFuture<void> reading = inBackground([&] {
        try {
            read(picture);
        } catch (const Failure&) {
            QVERIFY(fails);
        }
    });
    begun.acquire();
    m_reader->rest();
    QTest::qWait(20);
    QCOMPARE(m_fake->rests(), 0);
    mayEnd.release(10);
    QTRY_VERIFY(reading.isFinished());
    QTRY_COMPARE(m_fake->rests(), 1);
    m_fake->setReader(
        [](const QImage& line, const QString&) { return FakeLineRecognizer::wordsOn(line); });
    QCOMPARE(readingsOf(picture), 2);
}

void TextReaderTest::aFailureComesThroughAndTheNextPictureIsRead()
{
    m_fake->setReader([](const QImage& line, const QString&) {
        const QList<RecognizedWord> words = FakeLineRecognizer::wordsOn(line);
        if (words.first().text.size() == 3)
            throw Failure(u"out of ink"_s);
        return words;
    });
    QString told;
    try {
        read(written({5, 3, 7, 8, 9}));
    } catch (const Failure& failure) {
        told = failure.message();
    }
    QCOMPARE(told, u"out of ink"_s);
    QCOMPARE(read(written({5, 7})), letters({5, 7}));
}

void TextReaderTest::severalPicturesAtOnceAreEachReadRight()
{
    QList<QFuture<QStringList>> readings;
    for (int picture = 0; picture < 8; ++picture) {
        readings.append(inBackground([this, picture] { return read(written({3 + picture, 5})); }));
    }
    for (int picture = 0; picture < 8; ++picture)
        QCOMPARE(readings[picture].result(), letters({3 + picture, 5}));
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::TextReaderTest)
#include "TextReaderTest.moc"
