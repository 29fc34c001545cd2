// SPDX-License-Identifier: Apache-2.0
//
// How two threads share the reading of a picture: neither waits for the other where it need not.
#include "tests/Core/Capture/ReaderOfFakeLines.h"
#include "tests/Core/Capture/WrittenLines.h"

#include <QSemaphore>
#include <QTest>

#include <algorithm>
#include <atomic>

namespace mossbank {

using namespace Qt::StringLiterals;

namespace {

/// A line of so many words of eight letters, with nothing else on the picture.
QImage lineOf(int words)
{
    QImage picture = plain({1800, 60});
    write(picture, {20, 20}, QList<int>(words, 8));
    return picture;
}

constexpr int kWordsOfALongLine = 14;
constexpr int kWordsOfAShortLine = 3;
/// For what does not come unless the threads wait for each other.
constexpr int kMilliseconds = 5000;

} // namespace

class TextReaderThreadsTest : public QObject, private ReaderOfFakeLines {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        // Also on a machine of one processor: here nothing is waited for but the other thread.
        makeReader(std::chrono::minutes(1), 2);
        m_fake->setLanguages({u"eng"_s, u"tur"_s});
    }
    void theLongestLinesAreReadFirst();
    void aLineInDoubtIsReadInAnotherLanguageBeforeTheLastIsReadInTheFirst();
    void aLongLineThatAloneIsNewIsReadInTwoLanguagesAtOnce();
    void aShortLineIsReadInAnotherLanguageOnlyInDoubt();
    void ofALongLineThatIsSureTheOtherLanguageDoesNotCount();

private:
    qsizetype readingsIn(const QString& language) const
    {
        return std::ranges::count(m_fake->readings(), language,
                                  &FakeLineRecognizer::Reading::language);
    }
};

void TextReaderThreadsTest::theLongestLinesAreReadFirst()
{
    // Neither thread begins its second line before the other has begun its first.
    std::atomic<int> begun = 0;
    QSemaphore twoHaveBegun;
    m_fake->setReader([&](const QImage& line, const QString&) {
        const int number = ++begun;
        if (number == 2)
            twoHaveBegun.release(2);
        if (number <= 2)
            twoHaveBegun.tryAcquire(1, kMilliseconds);
        return FakeLineRecognizer::wordsOn(line);
    });
    read(written({2, 5, 3, 8, 1, 7, 4, 6}));
    QList<int> widths;
    for (const FakeLineRecognizer::Reading& reading : m_fake->readings())
        widths.append(reading.line.width());
    QCOMPARE(widths.size(), 8);
    QVERIFY(std::ranges::min(widths.first(2)) > std::ranges::max(widths.sliced(2)));
}

void TextReaderThreadsTest::aLineInDoubtIsReadInAnotherLanguageBeforeTheLastIsReadInTheFirst()
{
    QSemaphore inTurkish;
    std::atomic<bool> hasWaitedInVain = false;
    m_fake->setReader([&](const QImage& line, const QString& language) {
        const auto letters = FakeLineRecognizer::wordsOn(line).first().text.size();
        if (language == u"tur"_s)
            inTurkish.release();
        else if (letters == 1 && !inTurkish.tryAcquire(1, kMilliseconds))
            hasWaitedInVain = true;
        return FakeLineRecognizer::wordsOn(line, 85);
    });
    QCOMPARE(read(written({3, 2, 1})), letters({3, 2, 1}));
    QVERIFY(!hasWaitedInVain);
}

void TextReaderThreadsTest::aLongLineThatAloneIsNewIsReadInTwoLanguagesAtOnce()
{
    QSemaphore inEnglish;
    QSemaphore inTurkish;
    std::atomic<bool> hasWaitedInVain = false;
    m_fake->setReader([&](const QImage&, const QString& language) {
        const bool isEnglish = language == u"eng"_s;
        (isEnglish ? inEnglish : inTurkish).release();
        if (!(isEnglish ? inTurkish : inEnglish).tryAcquire(1, kMilliseconds))
            hasWaitedInVain = true;
        return isEnglish ? word(u"isik"_s, 82) : word(u"ışık"_s, 96);
    });
    QCOMPARE(read(lineOf(kWordsOfALongLine)), QStringList{u"ışık"_s});
    QVERIFY(!hasWaitedInVain);
    QCOMPARE(m_fake->readings().size(), 2);
}

void TextReaderThreadsTest::aShortLineIsReadInAnotherLanguageOnlyInDoubt()
{
    read(lineOf(kWordsOfAShortLine));
    QCOMPARE(readingsIn(u"eng"_s), 1);
    QCOMPARE(readingsIn(u"tur"_s), 0);
}

void TextReaderThreadsTest::ofALongLineThatIsSureTheOtherLanguageDoesNotCount()
{
    m_fake->setReader([](const QImage&, const QString& language) {
        return language == u"eng"_s ? word(u"isik"_s, 90) : word(u"ışık"_s, 99);
    });
    QCOMPARE(read(lineOf(kWordsOfALongLine)), QStringList{u"isik"_s});
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::TextReaderThreadsTest)
#include "TextReaderThreadsTest.moc"
