// SPDX-License-Identifier: Apache-2.0
//
// How a line is read more than once: smaller where the first try was unsure, and in every language
// that may be there.
#include "tests/Core/Capture/ReaderOfFakeLines.h"
#include "tests/Core/Capture/WrittenLines.h"

#include <QTest>

namespace mossbank {

using namespace Qt::StringLiterals;

namespace {

/// Two words of so many letters each, with a full stop between, close to both.
QImage withStop(int letters)
{
    QImage picture = plain(kSize);
    const QRect before = write(picture, {20, 30}, {letters});
    const QRect stop(before.right() + 2, before.bottom() - 1, 2, 2);
    fill(picture, stop, kBlack);
    write(picture, {stop.right() + 2, 30}, {letters});
    return picture;
}

} // namespace

class TextReaderLanguagesTest : public QObject, private ReaderOfFakeLines {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeReader(); }
    void anUnsureLineIsTriedOnceMoreSmaller();
    void theSurerOfTwoTriesCounts();
    void aSecondTryThatIsUnsureTooDoesNotRunWordsTogether();
    void aLostDotIsFoundLarger();
    void aLostStopThatIsSeenIsReadApart();
    void aLineWhoseStopsWereReadIsNotReadAgain();
    void onlyTheBestLanguageTriesMore();
    void anotherLanguageIsTriedWhereTheFirstIsInDoubt();
    void whereAnotherLanguageIsThereItIsTriedMoreWidely();
    void linesThatLookTheSameSayTheSameWhereverTheyStand();
    void alsoOfTheFewThatAreTriedInWhatIsOnlyInstalled();
    void whereNoLineIsOfAnotherLanguageNoneIsReadInIt();
    void wordsOfTwoLanguagesMayStandOnOneLine();
    void theLanguagesAskedForAreThoseRead();
};

void TextReaderLanguagesTest::anUnsureLineIsTriedOnceMoreSmaller()
{
    m_fake->setReader([](const QImage& line, const QString&) {
        return line.height() < 64 ? word(u"clear"_s, 90) : word(u"dear"_s, 79);
    });
    QCOMPARE(read(written({5})), QStringList{u"clear"_s});
    m_fake->setReader([](const QImage& line, const QString&) {
        return line.height() < 64 ? word(u"clear"_s, 90) : word(u"dear"_s, 80);
    });
    QCOMPARE(read(written({6})), QStringList{u"dear"_s});
}

void TextReaderLanguagesTest::theSurerOfTwoTriesCounts()
{
    m_fake->setReader([](const QImage& line, const QString&) {
        return line.height() < 64 ? word(u"worse"_s, 70) : word(u"better"_s, 71);
    });
    QCOMPARE(read(written({5})), QStringList{u"better"_s});
    // The words of a line count by their lengths.
    m_fake->setReader([](const QImage& line, const QString&) -> QList<RecognizedWord> {
        if (line.height() < 64)
            return word(u"second"_s, 81);
        return {{u"a"_s, 20}, {u"longer"_s, 79}};
    });
    QCOMPARE(read(written({6})), QStringList{u"second"_s});
}

void TextReaderLanguagesTest::aSecondTryThatIsUnsureTooDoesNotRunWordsTogether()
{
    const QList<RecognizedWord> apart = {{u"shock"_s, 1}, {u".zip"_s, 1}};
    m_fake->setReader([&](const QImage& line, const QString&) {
        return line.height() < 64 ? word(u"shockzip"_s, 70) : apart;
    });
    QCOMPARE(read(written({5})), QStringList{u"shock .zip"_s});
    m_fake->setReader([&](const QImage& line, const QString&) {
        return line.height() < 64 ? apart : word(u"shockzip"_s, 0);
    });
    QCOMPARE(read(written({6})), QStringList{u"shock .zip"_s});
}

void TextReaderLanguagesTest::aLostDotIsFoundLarger()
{
    double confidence = 93;
    m_fake->setReader([&](const QImage& line, const QString&) {
        constexpr int kLarger = 80;
        return line.height() < kLarger ? word(u"chaptertxt"_s, confidence)
                                       : word(u"chapter.txt"_s, 90);
    });
    QCOMPARE(read(written({5})), QStringList{u"chapter.txt"_s});
    // Of what is sure, none is lost.
    confidence = 95;
    QCOMPARE(readingsOf(written({6})), 1);
}

void TextReaderLanguagesTest::aLostStopThatIsSeenIsReadApart()
{
    // However sure the first reading is.
    int narrow = 0;
    m_fake->setReader([&](const QImage& line, const QString&) {
        narrow = narrow == 0 ? line.width() : narrow;
        return line.width() == narrow ? word(u"chaptertxt"_s, 97) : word(u"chapter:txt"_s, 50);
    });
    QCOMPARE(read(withStop(3)), QStringList{u"chapter.txt"_s});
    const QList<FakeLineRecognizer::Reading> readings = m_fake->readings();
    QCOMPARE(readings.size(), 2);
    QCOMPARE(readings.last().line.height(), readings.first().line.height());
    QVERIFY(readings.last().line.width() > readings.first().line.width());
    // What is known of both readings says the same.
    QCOMPARE(readingsOf(withStop(3)), 0);
    QCOMPARE(read(withStop(3)), QStringList{u"chapter.txt"_s});
}

void TextReaderLanguagesTest::aLineWhoseStopsWereReadIsNotReadAgain()
{
    m_fake->setReader([&](const QImage&, const QString&) { return word(u"chapter.txt"_s, 97); });
    QCOMPARE(readingsOf(withStop(3)), 1);
    m_fake->setReader([&](const QImage&, const QString&) { return word(u"chaptertxt"_s, 97); });
    QCOMPARE(readingsOf(withStop(4)), 2);
    // Sentences lose no word by it, and would take long.
    QCOMPARE(readingsOf(withStop(14)), 1);
    QCOMPARE(readingsOf(written({6})), 1);
}

void TextReaderLanguagesTest::onlyTheBestLanguageTriesMore()
{
    m_fake->setLanguages({u"eng"_s, u"tur"_s});
    // Lines of 4 are surely Turkish and those of 5 not so surely.
    m_fake->setReader([](const QImage& line, const QString& language) {
        const bool isFive = FakeLineRecognizer::wordsOn(line).first().text.size() == 5;
        if (language == u"eng"_s)
            return word(u"isik"_s, 60);
        return word(u"ışık"_s, isFive ? 75 : 94);
    });
    QCOMPARE(read(written({4})), QStringList{u"ışık"_s});
    QCOMPARE(m_fake->readings().size(), 2);
    // Once smaller, and once larger for a dot that may be lost.
    QCOMPARE(readingsOf(written({4, 5})), 4);
    const QList<FakeLineRecognizer::Reading> readings = m_fake->readings();
    const int height = readings.first().line.height();
    QCOMPARE(readings.at(2).language, u"tur"_s);
    QVERIFY(readings.at(2).line.height() < height);
    QCOMPARE(readings.at(3).language, u"tur"_s);
    QVERIFY(readings.at(3).line.height() > height);
}

void TextReaderLanguagesTest::anotherLanguageIsTriedWhereTheFirstIsInDoubt()
{
    m_fake->setLanguages({u"eng"_s, u"tur"_s});
    // Lines of 5 are English, of 4 Turkish, of 6 either, and of 3 neither.
    m_fake->setReader([](const QImage& line, const QString& language) {
        const auto size = FakeLineRecognizer::wordsOn(line).first().text.size();
        if (size == 5)
            return word(u"plain"_s, 97);
        if (size == 6)
            return language == u"eng"_s ? word(u"kept"_s, 84) : word(u"lost"_s, 84.5);
        if (size == 3)
            return word(language + u" guess"_s, language == u"eng"_s ? 60 : 60.5);
        return language == u"eng"_s ? word(u"isik"_s, 82) : word(u"ışık"_s, 94);
    });
    QCOMPARE(read(written({5, 4, 3, 6})),
             (QStringList{u"plain"_s, u"ışık"_s, u"eng guess"_s, u"kept"_s}));
    for (const FakeLineRecognizer::Reading& reading : m_fake->readings()) {
        if (FakeLineRecognizer::wordsOn(reading.line).first().text.size() == 5)
            QCOMPARE(reading.language, u"eng"_s);
    }
    QCOMPARE(readingsOf(written({5, 4, 3, 6})), 0);
}

void TextReaderLanguagesTest::whereAnotherLanguageIsThereItIsTriedMoreWidely()
{
    m_fake->setLanguages({u"eng"_s, u"tur"_s});
    // English is nearly sure of lines of 5, where Turkish is surer.
    m_fake->setReader([](const QImage& line, const QString& language) {
        const bool isFive = FakeLineRecognizer::wordsOn(line).first().text.size() == 5;
        if (language == u"eng"_s)
            return isFive ? word(u"sarki"_s, 92) : word(u"isik"_s, 80);
        return isFive ? word(u"şarkı"_s, 95) : word(u"ışık"_s, 94);
    });
    QCOMPARE(read(written({5})), QStringList{u"sarki"_s});
    QCOMPARE(read(written({5, 4})), (QStringList{u"şarkı"_s, u"ışık"_s}));
}

void TextReaderLanguagesTest::linesThatLookTheSameSayTheSameWhereverTheyStand()
{
    m_fake->setLanguages({u"eng"_s, u"tur"_s});
    // Lines of 4 are surely Turkish, those of 5 only where it is known to be there; all others are
    // English, of which it is not quite sure.
    m_fake->setReader([](const QImage& line, const QString& language) {
        const auto size = FakeLineRecognizer::wordsOn(line).first().text.size();
        if (language == u"eng"_s)
            return size == 4 ? word(u"isik"_s, 80) : word(size == 5 ? u"sarki"_s : u"plain"_s, 92);
        if (size == 4)
            return word(u"ışık"_s, 94);
        return size == 5 ? word(u"şarkı"_s, 95) : word(u"plane"_s, 60);
    });
    QCOMPARE(read(written({4, 5, 6, 7, 8, 9, 5})),
             (QStringList{u"ışık"_s, u"şarkı"_s, u"plain"_s, u"plain"_s, u"plain"_s, u"plain"_s,
                          u"şarkı"_s}));
}

void TextReaderLanguagesTest::alsoOfTheFewThatAreTriedInWhatIsOnlyInstalled()
{
    m_fake->setLanguages({u"eng"_s}, {u"tur"_s});
    m_fake->setReader([](const QImage& line, const QString& language) {
        const auto size = FakeLineRecognizer::wordsOn(line).first().text.size();
        if (size == 5)
            return language == u"eng"_s ? word(u"isik"_s, 82) : word(u"ışık"_s, 94);
        return language == u"eng"_s ? word(u"plain"_s, 85) : word(u"plane"_s, 60);
    });
    // The eight longest are tried, one of the two of 5 among them.
    const QList<int> lines = {5, 20, 19, 18, 17, 16, 15, 14, 5};
    QImage picture = plain({400, 300});
    for (qsizetype line = 0; line < lines.size(); ++line)
        write(picture, {20, 10 + static_cast<int>(line) * kLineHeight}, {lines.at(line)});
    const QStringList texts = read(picture);
    QCOMPARE(texts.size(), lines.size());
    QCOMPARE(texts.first(), u"ışık"_s);
    QCOMPARE(texts.last(), u"ışık"_s);
}

void TextReaderLanguagesTest::whereNoLineIsOfAnotherLanguageNoneIsReadInIt()
{
    m_fake->setLanguages({u"eng"_s, u"tur"_s});
    m_fake->setReader([](const QImage&, const QString& language) {
        return language == u"eng"_s ? word(u"quartz@oak"_s, 72) : word(u"quartzaoak"_s, 85);
    });
    QCOMPARE(read(written({5, 4})), (QStringList{u"quartz@oak"_s, u"quartz@oak"_s}));
}

void TextReaderLanguagesTest::wordsOfTwoLanguagesMayStandOnOneLine()
{
    m_fake->setLanguages({u"eng"_s, u"tur"_s});
    m_fake->setReader([](const QImage&, const QString& language) -> QList<RecognizedWord> {
        if (language == u"eng"_s)
            return {{u"gtin"_s, 40}, {u"square"_s, 95}, {u"sarki"_s, 96}, {u"equal"_s, 96}};
        return {{u"gün"_s, 97}, {u"sguare"_s, 91}, {u"şarkı"_s, 95}, {u"egual"_s, 91}};
    });
    QCOMPARE(read(written({5})), QStringList{u"gün square şarkı equal"_s});
}

void TextReaderLanguagesTest::theLanguagesAskedForAreThoseRead()
{
    m_fake->setReader([](const QImage&, const QString& language) { return word(language, 50); });
    QCOMPARE(m_reader->recognize(written({5}), {.languages = {{u"tur"_s, u"deu"_s}}}),
             QStringList{u"tur"_s});
    QStringList languages;
    for (const FakeLineRecognizer::Reading& reading : m_fake->readings())
        languages.append(reading.language);
    languages.removeDuplicates();
    QCOMPARE(languages, (QStringList{u"tur"_s, u"deu"_s}));
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::TextReaderLanguagesTest)
#include "TextReaderLanguagesTest.moc"
