// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Characters.h"

#include <QRandomGenerator>
#include <QTest>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;
using Range = FoldedText::Range;

const QString kFamily = u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s;

QString written(const std::optional<Range>& range)
{
    return range ? u"%1+%2"_s.arg(range->start).arg(range->length) : u"nowhere"_s;
}

} // namespace

class FoldedTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void caseAndDiacriticsDoNotMatter_data();
    void caseAndDiacriticsDoNotMatter();
    void onlyWholeCharactersAreFound_data();
    void onlyWholeCharactersAreFound();
    void theSearchGoesOnFromWhereItIsTold_data();
    void theSearchGoesOnFromWhereItIsTold();
    void aNeedleOfNothingIsFoundNowhere_data();
    void aNeedleOfNothingIsFoundNowhere();
    void aPrefixStandsAtTheVeryStart_data();
    void aPrefixStandsAtTheVeryStart();
    void everyRangeHoldsTheNeedleAndWholeCharacters();
};

void FoldedTextTest::caseAndDiacriticsDoNotMatter_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("needle");
    QTest::addColumn<QString>("range");
    QTest::newRow("same") << u"a cafe b"_s << u"cafe"_s << u"2+4"_s;
    QTest::newRow("absent") << u"a cafe b"_s << u"tea"_s << u"nowhere"_s;
    QTest::newRow("capitals") << u"a cafe b"_s << u"CAFE"_s << u"2+4"_s;
    QTest::newRow("composed text") << u"a café b"_s << u"cafe"_s << u"2+4"_s;
    QTest::newRow("decomposed text") << u"a cafe\u0301 b"_s << u"cafe"_s << u"2+5"_s;
    QTest::newRow("composed needle") << u"a cafe b"_s << u"CAFÉ"_s << u"2+4"_s;
    QTest::newRow("decomposed needle") << u"a café b"_s << u"cafe\u0301"_s << u"2+4"_s;
    QTest::newRow("another accent") << u"cafè"_s << u"café"_s << u"0+4"_s;
    QTest::newRow("two marks on one letter") << u"\u1EC7x"_s << u"e"_s << u"0+1"_s;
    QTest::newRow("three marks apart") << u"e\u0302\u0323\u0300x"_s << u"E"_s << u"0+4"_s;
    QTest::newRow("dotted I finds i") << u"İstanbul"_s << u"istanbul"_s << u"0+8"_s;
    QTest::newRow("i finds dotted I") << u"istanbul"_s << u"İSTANBUL"_s << u"0+8"_s;
    QTest::newRow("dotted I in small letters") << u"i\u0307stanbul"_s << u"istanbul"_s << u"0+9"_s;
    QTest::newRow("dotless i is another letter") << u"kırmızı"_s << u"kirmizi"_s << u"nowhere"_s;
    QTest::newRow("and the other way") << u"kirmizi"_s << u"kırmızı"_s << u"nowhere"_s;
    QTest::newRow("dotless i finds itself") << u"a kırmızı"_s << u"KıRMıZı"_s << u"2+7"_s;
    QTest::newRow("cedilla and breve") << u"şeker dağ"_s << u"dag"_s << u"6+3"_s;
    QTest::newRow("final sigma") << u"ο ΟΔΟΣ"_s << u"οδος"_s << u"2+4"_s;
    QTest::newRow("sigma not final") << u"οδος"_s << u"οδοσ"_s << u"0+4"_s;
    QTest::newRow("iota below") << u"\u1FB3 x"_s << u"α"_s << u"0+1"_s;
    QTest::newRow("iota below, apart") << u"α\u0345 x"_s << u"α"_s << u"0+2"_s;
    QTest::newRow("sharp s finds double") << u"die Straße"_s << u"STRASSE"_s << u"4+6"_s;
    QTest::newRow("double finds sharp s") << u"die STRASSE"_s << u"straße"_s << u"4+7"_s;
    QTest::newRow("great sharp s") << u"STRAẞE"_s << u"straße"_s << u"0+6"_s;
    QTest::newRow("ligature") << u"eﬃcient"_s << u"efficient"_s << u"0+7"_s;
    QTest::newRow("Hangul") << u"이 한글"_s << u"한글"_s << u"2+2"_s;
    QTest::newRow("Hangul in parts") << u"x\u1112\u1161\u11AB글"_s << u"한글"_s << u"1+4"_s;
    QTest::newRow("parts find Hangul") << u"x한글"_s << u"\u1112\u1161\u11AB"_s << u"1+1"_s;
    QTest::newRow("vowel points") << u"שָׁלוֹם"_s << u"שלום"_s << u"0+7"_s;
    QTest::newRow("Arabic vowel marks") << u"كِتَاب"_s << u"كتاب"_s << u"0+6"_s;
    QTest::newRow("Thai tone mark") << u"ก่า"_s << u"กา"_s << u"0+3"_s;
    QTest::newRow("a Thai vowel is no mark") << u"กิน"_s << u"กน"_s << u"nowhere"_s;
    QTest::newRow("a Thai vowel below is no mark") << u"กุน"_s << u"กน"_s << u"nowhere"_s;
    QTest::newRow("a Hindi vowel is no mark") << u"कुल"_s << u"कल"_s << u"nowhere"_s;
    QTest::newRow("variation sign") << u"a\u2764\uFE0Fb"_s << u"\u2764b"_s << u"1+3"_s;
    QTest::newRow("keycap") << u"x1\uFE0F\u20E3y"_s << u"1"_s << u"1+3"_s;
    QTest::newRow("beyond the first plane") << u"x\U00010400"_s << u"\U00010428"_s << u"1+2"_s;
    QTest::newRow("half a pair finds itself")
        << u"ab"_s + QChar(0xD83D) << QString(QChar(0xD83D)) << u"2+1"_s;
    QTest::newRow("a mark that begins the text") << u"\u0301e"_s << u"e"_s << u"1+1"_s;
}

void FoldedTextTest::caseAndDiacriticsDoNotMatter()
{
    QFETCH(QString, text);
    QFETCH(QString, needle);
    QFETCH(QString, range);
    QCOMPARE(written(FoldedText(text).find(FoldedText(needle))), range);
}

void FoldedTextTest::onlyWholeCharactersAreFound_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("needle");
    QTest::addColumn<QString>("range");
    QTest::newRow("half a sharp s") << u"Maß"_s << u"mas"_s << u"nowhere"_s;
    QTest::newRow("a whole one further on") << u"Maß mas"_s << u"mas"_s << u"4+3"_s;
    QTest::newRow("half a ligature") << u"ﬁx"_s << u"i"_s << u"nowhere"_s;
    QTest::newRow("half a ligature with more") << u"ﬁx"_s << u"ix"_s << u"nowhere"_s;
    QTest::newRow("a syllable without its end") << u"한"_s << u"하"_s << u"nowhere"_s;
    QTest::newRow("the same in parts") << u"\u1112\u1161\u11AB"_s << u"하"_s << u"nowhere"_s;
    QTest::newRow("a syllable of its own") << u"한하"_s << u"하"_s << u"1+1"_s;
    QTest::newRow("a consonant without its vowel") << u"कि"_s << u"क"_s << u"nowhere"_s;
    QTest::newRow("one of a family") << kFamily << u"\U0001F468"_s << u"nowhere"_s;
    QTest::newRow("the family") << u"a"_s + kFamily << kFamily << u"1+8"_s;
    QTest::newRow("half a flag") << u"\U0001F1F9\U0001F1F7"_s << u"\U0001F1F9"_s << u"nowhere"_s;
    QTest::newRow("half an emoji") << u"\U0001F600"_s << QString(QChar(0xD83D)) << u"nowhere"_s;
    QTest::newRow("the other half") << u"\U0001F600"_s << QString(QChar(0xDE00)) << u"nowhere"_s;
    QTest::newRow("half a line end") << u"a\r\nb"_s << u"\n"_s << u"nowhere"_s;
}

void FoldedTextTest::onlyWholeCharactersAreFound()
{
    caseAndDiacriticsDoNotMatter();
}

void FoldedTextTest::theSearchGoesOnFromWhereItIsTold_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("needle");
    QTest::addColumn<int>("from");
    QTest::addColumn<QString>("range");
    const QString text = u"e\u0301a ea éa"_s; // at 0, 4 and 7
    QTest::newRow("the start") << text << u"ea"_s << 0 << u"0+3"_s;
    QTest::newRow("before the start") << text << u"ea"_s << -5 << u"0+3"_s;
    QTest::newRow("between a letter and its mark") << text << u"ea"_s << 1 << u"4+2"_s;
    QTest::newRow("the next itself") << text << u"ea"_s << 4 << u"4+2"_s;
    QTest::newRow("after the next's start") << text << u"ea"_s << 5 << u"7+2"_s;
    QTest::newRow("the last itself") << text << u"ea"_s << 7 << u"7+2"_s;
    QTest::newRow("after the last") << text << u"ea"_s << 8 << u"nowhere"_s;
    QTest::newRow("the end") << text << u"ea"_s << 9 << u"nowhere"_s;
    QTest::newRow("beyond the end") << text << u"ea"_s << 10'000 << u"nowhere"_s;
    QTest::newRow("inside a pair") << u"\U00010400\U00010400"_s << u"\U00010428"_s << 1 << u"2+2"_s;
    QTest::newRow("inside a syllable") << u"\u1112\u1161\u11AB한"_s << u"한"_s << 1 << u"3+1"_s;
    QTest::newRow("inside a family") << kFamily + kFamily << kFamily << 3 << u"8+8"_s;
    QTest::newRow("overlapping") << u"aaa"_s << u"aa"_s << 1 << u"1+2"_s;
}

void FoldedTextTest::theSearchGoesOnFromWhereItIsTold()
{
    QFETCH(QString, text);
    QFETCH(QString, needle);
    QFETCH(int, from);
    QFETCH(QString, range);
    QCOMPARE(written(FoldedText(text).find(FoldedText(needle), from)), range);
}

void FoldedTextTest::aNeedleOfNothingIsFoundNowhere_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("needle");
    QTest::newRow("nothing in nothing") << QString() << QString();
    QTest::newRow("nothing in text") << u"abc"_s << QString();
    QTest::newRow("something in nothing") << QString() << u"a"_s;
    QTest::newRow("a mark alone") << u"cafe\u0301"_s << u"\u0301"_s;
    QTest::newRow("marks alone") << u"\u0301\u0302"_s << u"\u0301\u0302"_s;
    QTest::newRow("longer than the text") << u"caf"_s << u"cafe"_s;
    QTest::newRow("text of marks") << u"\u0301\u0302"_s << u"e"_s;
}

void FoldedTextTest::aNeedleOfNothingIsFoundNowhere()
{
    QFETCH(QString, text);
    QFETCH(QString, needle);
    const FoldedText folded(text);
    for (const int from : {-1, 0, 1, 100})
        QCOMPARE(written(folded.find(FoldedText(needle), from)), u"nowhere"_s);
    QVERIFY(!folded.startsWith(FoldedText(needle)));
}

void FoldedTextTest::aPrefixStandsAtTheVeryStart_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<bool>("expected");
    QTest::newRow("the same") << u"Firefox"_s << u"firefox"_s << true;
    QTest::newRow("a part") << u"Firefox"_s << u"FIRE"_s << true;
    QTest::newRow("further on") << u"Firefox"_s << u"fox"_s << false;
    QTest::newRow("accents") << u"E\u0301clair"_s << u"ecl"_s << true;
    QTest::newRow("half a ligature") << u"ﬁx"_s << u"f"_s << false;
    QTest::newRow("longer") << u"Fire"_s << u"Firefox"_s << false;
    QTest::newRow("dotted I") << u"İzmir"_s << u"iz"_s << true;
    QTest::newRow("dotless i") << u"ızgara"_s << u"iz"_s << false;
}

void FoldedTextTest::aPrefixStandsAtTheVeryStart()
{
    QFETCH(QString, text);
    QFETCH(QString, prefix);
    QFETCH(bool, expected);
    QCOMPARE(FoldedText(text).startsWith(FoldedText(prefix)), expected);
}

void FoldedTextTest::everyRangeHoldsTheNeedleAndWholeCharacters()
{
    static const QStringList kPieces = {u"a"_s,       u"é"_s,    u"e\u0301"_s,    u"ß"_s,
                                        u"s"_s,       u"ﬁ"_s,    u"한"_s,         u"\u1112\u1161"_s,
                                        u"\u11AB"_s,  kFamily,   u"\U00010400"_s, u"İ"_s,
                                        u"ı"_s,       u"\r\n"_s, u" "_s,          u"\u0301"_s,
                                        QChar(0xD83D)};
    QRandomGenerator random(11);
    const auto made = [&random](int most) {
        QString text;
        for (int left = random.bounded(most); left >= 0; --left)
            text += kPieces[random.bounded(kPieces.size())];
        return text;
    };
    int found = 0;
    for (int round = 0; round < 20'000; ++round) {
        const QString text = made(10);
        const QString needle = made(2);
        const FoldedText folded(text);
        const FoldedText foldedNeedle(needle);
        qsizetype from = 0;
        while (const auto range = folded.find(foldedNeedle, from)) {
            ++found;
            QVERIFY(range->start >= from && range->length > 0);
            const QString inside = text.sliced(range->start, range->length);
            QCOMPARE(written(FoldedText(inside).find(foldedNeedle)), u"0+%1"_s.arg(inside.size()));
            const auto whole = Characters::count(text);
            QCOMPARE(Characters::count(text.first(range->start)) + Characters::count(inside) +
                         Characters::count(text.sliced(range->start + range->length)),
                     whole);
            from = range->start + 1;
        }
    }
    QVERIFY(found > 1000);
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::FoldedTextTest)
#include "FoldedTextTest.moc"
