// SPDX-License-Identifier: Apache-2.0
//
// Languages that nobody asked for: a hundred may be installed, and some of them damaged.
#include "MossbankCore/Support/Failure.h"
#include "tests/Core/Capture/ReaderOfFakeLines.h"
#include "tests/Core/Capture/WrittenLines.h"

#include <QHash>
#include <QTest>

#include <algorithm>
#include <atomic>

namespace mossbank {

using namespace Qt::StringLiterals;

namespace {

constexpr int kLines = 40;

/// Lines that are all different.
QImage manyLines()
{
    QImage picture = plain({900, 20 + kLines * kLineHeight});
    for (int line = 0; line < kLines; ++line)
        write(picture, {20, 10 + line * kLineHeight}, {line % 8 + 1, line / 8 + 1});
    return picture;
}

qsizetype lettersOf(const QImage& line)
{
    qsizetype letters = 0;
    for (const RecognizedWord& word : FakeLineRecognizer::wordsOn(line))
        letters += word.text.size();
    return letters;
}

/// Which of those lines that is.
int numberOf(const QImage& line)
{
    const QList<RecognizedWord> words = FakeLineRecognizer::wordsOn(line);
    return static_cast<int>(words.first().text.size() - 1 + 8 * (words.last().text.size() - 1));
}

} // namespace

class TextReaderInstalledTest : public QObject, private ReaderOfFakeLines {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeReader(); }
    void aLanguageThatCannotBeReadInIsLeftOut_data();
    void aLanguageThatCannotBeReadInIsLeftOut();
    void aLanguageThatFailsLaterIsLeftOutToo();
    void afterARestItIsTriedAgain();
    void ofWhatWasAskedForAFailureIsTold();
    void ofTheFirstLanguageAFailureIsTold();
    void whatIsExpectedIsTriedWhereverTheFirstIsInDoubt();
    void whatIsOnlyInstalledIsTriedOnAFewLongLines_data();
    void whatIsOnlyInstalledIsTriedOnAFewLongLines();
    void whatIsOnlyInstalledTakesOneEngine();
    void whatIsOnlyInstalledAndIsThereIsRead();
    void besideALineOfALanguageOthersAreTriedAndNoFurther();

private:
    QHash<QString, int> readingsByLanguage() const;
    /// What reading a line fails with. Empty when it does not fail.
    QString failureOf(const TextRecognizer::Options& options);
    /// English is in doubt everywhere, and a language named "bad" cannot be loaded.
    void makeOneBad();
};

QHash<QString, int> TextReaderInstalledTest::readingsByLanguage() const
{
    QHash<QString, int> readings;
    for (const FakeLineRecognizer::Reading& reading : m_fake->readings())
        ++readings[reading.language];
    return readings;
}

QString TextReaderInstalledTest::failureOf(const TextRecognizer::Options& options)
{
    try {
        m_reader->recognize(written({4}), options);
    } catch (const Failure& failure) {
        return failure.message();
    }
    return {};
}

void TextReaderInstalledTest::makeOneBad()
{
    m_fake->setReader([](const QImage&, const QString& language) {
        if (language == u"bad"_s)
            throw Failure(u"The text recogniser could not be started."_s);
        return language == u"eng"_s ? word(u"isik"_s, 82) : word(u"ışık"_s, 96);
    });
}

void TextReaderInstalledTest::aLanguageThatCannotBeReadInIsLeftOut_data()
{
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QStringList>("others");
    QTest::newRow("only installed") << QStringList{u"eng"_s, u"tur"_s} << QStringList{u"bad"_s};
    QTest::newRow("of the user's locale")
        << QStringList{u"eng"_s, u"bad"_s, u"tur"_s} << QStringList();
    QTest::newRow("before one that is there")
        << QStringList{u"eng"_s} << QStringList{u"bad"_s, u"tur"_s};
}

void TextReaderInstalledTest::aLanguageThatCannotBeReadInIsLeftOut()
{
    QFETCH(QStringList, expected);
    QFETCH(QStringList, others);
    m_fake->setLanguages(expected, others);
    makeOneBad();
    QCOMPARE(read(written({4})), QStringList{u"ışık"_s});
    m_fake->forgetReadings();
    QCOMPARE(read(written({5, 6})), (QStringList{u"ışık"_s, u"ışık"_s}));
    QCOMPARE(readingsByLanguage().value(u"bad"_s), 0);
    QVERIFY(readingsByLanguage().value(u"tur"_s) > 0);
}

void TextReaderInstalledTest::aLanguageThatFailsLaterIsLeftOutToo()
{
    // It is removed while lines are read in it: what it has said stays.
    m_fake->setLanguages({u"eng"_s, u"tur"_s});
    m_fake->setReader([](const QImage& line, const QString& language) {
        constexpr int kLarger = 80;
        if (language == u"eng"_s)
            return word(u"isik"_s, 70);
        if (line.height() >= kLarger)
            throw Failure(u"The text recogniser could not be started."_s);
        return word(u"ışık"_s, 92);
    });
    QCOMPARE(read(written({4})), QStringList{u"ışık"_s});
    m_fake->forgetReadings();
    QCOMPARE(read(written({5})), QStringList{u"isik"_s});
    QCOMPARE(readingsByLanguage().value(u"tur"_s), 0);
}

void TextReaderInstalledTest::afterARestItIsTriedAgain()
{
    m_fake->setLanguages({u"eng"_s, u"bad"_s});
    makeOneBad();
    read(written({4}));
    m_reader->rest();
    QTRY_COMPARE(m_fake->rests(), 1);
    m_fake->forgetReadings();
    QCOMPARE(read(written({4})), QStringList{u"isik"_s});
    QCOMPARE(readingsByLanguage().value(u"bad"_s), 1);
}

void TextReaderInstalledTest::ofWhatWasAskedForAFailureIsTold()
{
    m_fake->setLanguages({u"eng"_s, u"bad"_s});
    makeOneBad();
    QCOMPARE(read(written({4})), QStringList{u"isik"_s});
    for (int picture = 0; picture < 2; ++picture) {
        QCOMPARE(failureOf({.languages = {{u"eng"_s, u"bad"_s}}}),
                 u"The text recogniser could not be started."_s);
    }
}

void TextReaderInstalledTest::ofTheFirstLanguageAFailureIsTold()
{
    m_fake->setLanguages({u"bad"_s, u"tur"_s});
    makeOneBad();
    for (int picture = 0; picture < 2; ++picture) {
        QCOMPARE(failureOf({}), u"The text recogniser could not be started."_s);
    }
}

void TextReaderInstalledTest::whatIsExpectedIsTriedWhereverTheFirstIsInDoubt()
{
    m_fake->setLanguages({u"eng"_s, u"tur"_s, u"deu"_s}, {u"fin"_s});
    m_fake->setReader(
        [](const QImage& line, const QString&) { return FakeLineRecognizer::wordsOn(line, 85); });
    QCOMPARE(read(manyLines()).size(), kLines);
    QCOMPARE(readingsByLanguage().value(u"tur"_s), kLines);
    QCOMPARE(readingsByLanguage().value(u"deu"_s), kLines);
    QVERIFY(readingsByLanguage().value(u"fin"_s) < kLines);
}

void TextReaderInstalledTest::whatIsOnlyInstalledIsTriedOnAFewLongLines_data()
{
    QTest::addColumn<int>("languages");
    QTest::addColumn<int>("lines");
    QTest::newRow("one") << 1 << 8;
    QTest::newRow("two") << 2 << 4;
    QTest::newRow("four") << 4 << 2;
    // Which of them the user needs is not to be known, and finding out would take seconds.
    QTest::newRow("five") << 5 << 0;
    QTest::newRow("a hundred") << 100 << 0;
}

void TextReaderInstalledTest::whatIsOnlyInstalledIsTriedOnAFewLongLines()
{
    QFETCH(int, languages);
    QFETCH(int, lines);
    QStringList others;
    for (int number = 0; number < languages; ++number)
        others.append(u"far%1"_s.arg(number));
    m_fake->setLanguages({u"eng"_s}, others);
    m_fake->setReader(
        [](const QImage& line, const QString&) { return FakeLineRecognizer::wordsOn(line, 85); });
    QCOMPARE(read(manyLines()).size(), kLines);
    for (const QString& language : std::as_const(others))
        QCOMPARE(readingsByLanguage().value(language), lines);
    // The eight longest have ten letters and more.
    for (const FakeLineRecognizer::Reading& reading : m_fake->readings()) {
        if (reading.language != u"eng"_s)
            QVERIFY(lettersOf(reading.line) >= 10);
    }
}

void TextReaderInstalledTest::whatIsOnlyInstalledTakesOneEngine()
{
    m_fake->setLanguages({u"eng"_s}, {u"fin"_s});
    std::atomic<int> now = 0;
    std::atomic<int> most = 0;
    m_fake->setReader([&](const QImage& line, const QString& language) {
        if (language == u"fin"_s) {
            most = std::max<int>(most, ++now);
            QTest::qSleep(20);
            --now;
        }
        return FakeLineRecognizer::wordsOn(line, 85);
    });
    read(manyLines());
    QCOMPARE(most.load(), 1);
}

void TextReaderInstalledTest::whatIsOnlyInstalledAndIsThereIsRead()
{
    m_fake->setLanguages({u"eng"_s, u"tur"_s}, {u"deu"_s, u"fin"_s});
    m_fake->setReader([](const QImage&, const QString& language) {
        return language == u"fin"_s ? word(u"öljyä"_s, 95) : word(u"oljya"_s, 80);
    });
    const QStringList lines = read(manyLines());
    QCOMPARE(lines, QStringList(kLines, u"öljyä"_s));
}

void TextReaderInstalledTest::besideALineOfALanguageOthersAreTriedAndNoFurther()
{
    m_fake->setLanguages({u"eng"_s, u"tur"_s});
    // Line 20 is surely Turkish, and so are, where English is nearly sure, those beside it up to
    // `last`.
    int last = 20;
    m_fake->setReader([&](const QImage& line, const QString& language) {
        const int number = numberOf(line);
        const bool isTurkish = number >= 20 && number <= last;
        if (language == u"eng"_s)
            return word(u"isik"_s, number == 20 ? 80 : 92);
        return isTurkish ? word(u"ışık"_s, 95) : word(u"other"_s, 60);
    });
    const QStringList one = read(manyLines());
    QCOMPARE(one.count(u"ışık"_s), 1);
    QCOMPARE(readingsByLanguage().value(u"tur"_s), 5);
    // From each that is found it goes on.
    makeReader();
    m_fake->setLanguages({u"eng"_s, u"tur"_s});
    last = 35;
    m_fake->setReader([&](const QImage& line, const QString& language) {
        const int number = numberOf(line);
        const bool isTurkish = number >= 20 && number <= last;
        if (language == u"eng"_s)
            return word(u"isik"_s, number == 20 ? 80 : 92);
        return isTurkish ? word(u"ışık"_s, 95) : word(u"other"_s, 60);
    });
    const QStringList many = read(manyLines());
    QCOMPARE(many.count(u"ışık"_s), 16);
    QCOMPARE(many.count(u"isik"_s), kLines - 16);
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::TextReaderInstalledTest)
#include "TextReaderInstalledTest.moc"
