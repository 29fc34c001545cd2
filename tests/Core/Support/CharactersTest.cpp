// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Characters.h"

#include <QElapsedTimer>
#include <QLocale>
#include <QRandomGenerator>
#include <QStringList>
#include <QTest>

#include <clocale>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

const QString kFamily = u"\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466"_s;
const QString kTurkishFlag = u"\U0001F1F9\U0001F1F7"_s;
const QString kKeycap = u"1\uFE0F\u20E3"_s;
const QString kHighSurrogate(QChar(0xD83D));
const QString kLowSurrogate(QChar(0xDE00));

/// Text of pieces that are awkward beside each other.
QString awkwardText(QRandomGenerator& random)
{
    static const QStringList kPieces = {
        u"a"_s,       u"Z"_s,      u"é"_s,          u"e\u0301"_s,    u"\u0301"_s, kFamily,
        kTurkishFlag, kKeycap,     kHighSurrogate,  kLowSurrogate,   u"\r\n"_s,   u"\r"_s,
        u"\n"_s,      u" "_s,      u"한"_s,         u"\u1112"_s,     u"\u1161"_s, u"\u11AB"_s,
        u"कि"_s,      u"\u200D"_s, u"İ"_s,          u"ı"_s,          u"ß"_s,      u"-"_s,
        u"_"_s,       u"\u0000"_s, u"\U0001F1F9"_s, u"\U0001F468"_s, u"\uFE0F"_s, u"٣"_s};
    QString text;
    const int pieces = random.bounded(12);
    for (int piece = 0; piece < pieces; ++piece)
        text += kPieces[random.bounded(kPieces.size())];
    return text;
}

QStringList strings(const std::vector<QStringView>& views)
{
    QStringList list;
    for (const QStringView view : views)
        list += view.toString();
    return list;
}

/// Sanitizers make everything slower, by how much is not this test's business.
#if defined(__SANITIZE_ADDRESS__)
constexpr qint64 kSlowness = 20;
#else
constexpr qint64 kSlowness = 1;
#endif

} // namespace

class CharactersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aCharacterIsWhatAReaderSeesAsOne_data();
    void aCharacterIsWhatAReaderSeesAsOne();
    void textIsCutBetweenCharacters_data();
    void textIsCutBetweenCharacters();
    void cuttingNeverLosesOrDividesAnything();

    void lettersMarksAndNumbersAreAlphanumeric_data();
    void lettersMarksAndNumbersAreAlphanumeric();
    void wordsAreTheRunsOfAlphanumerics_data();
    void wordsAreTheRunsOfAlphanumerics();
    void wordsHoldAllLettersAndNumbers();

    void lowerCaseFollowsUnicodeAndNoLanguage_data();
    void lowerCaseFollowsUnicodeAndNoLanguage();
    void nothingDependsOnTheLocale_data();
    void nothingDependsOnTheLocale();

    void aMegabyteIsWalkedInAMoment_data();
    void aMegabyteIsWalkedInAMoment();
};

void CharactersTest::aCharacterIsWhatAReaderSeesAsOne_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("characters");
    QTest::newRow("none") << QString() << QStringList();
    QTest::newRow("letters") << u"abc"_s << QStringList{u"a"_s, u"b"_s, u"c"_s};
    QTest::newRow("composed") << u"né"_s << QStringList{u"n"_s, u"é"_s};
    QTest::newRow("decomposed") << u"ne\u0301x"_s << QStringList{u"n"_s, u"e\u0301"_s, u"x"_s};
    QTest::newRow("many marks") << u"o\u0302\u0323\u0300p"_s
                                << QStringList{u"o\u0302\u0323\u0300"_s, u"p"_s};
    QTest::newRow("a mark alone") << u"\u0301"_s << QStringList{u"\u0301"_s};
    QTest::newRow("a family") << kFamily + u"!"_s << QStringList{kFamily, u"!"_s};
    QTest::newRow("skin tone") << u"\U0001F44D\U0001F3FDx"_s
                               << QStringList{u"\U0001F44D\U0001F3FD"_s, u"x"_s};
    QTest::newRow("flags") << kTurkishFlag + kTurkishFlag
                           << QStringList{kTurkishFlag, kTurkishFlag};
    QTest::newRow("a flag and a half")
        << kTurkishFlag + u"\U0001F1F9"_s << QStringList{kTurkishFlag, u"\U0001F1F9"_s};
    QTest::newRow("keycap") << kKeycap + u"2"_s << QStringList{kKeycap, u"2"_s};
    QTest::newRow("Hangul composed") << u"한글"_s << QStringList{u"한"_s, u"글"_s};
    QTest::newRow("Hangul in parts")
        << u"\u1112\u1161\u11AB\u1100"_s << QStringList{u"\u1112\u1161\u11AB"_s, u"\u1100"_s};
    QTest::newRow("Devanagari vowels") << u"किताब"_s << QStringList{u"कि"_s, u"ता"_s, u"ब"_s};
    QTest::newRow("line end of two signs") << u"a\r\nb"_s << QStringList{u"a"_s, u"\r\n"_s, u"b"_s};
    QTest::newRow("line ends the other way") << u"\n\r"_s << QStringList{u"\n"_s, u"\r"_s};
    QTest::newRow("no mark on a line end") << u"\n\u0301"_s << QStringList{u"\n"_s, u"\u0301"_s};
    QTest::newRow("first half alone") << kHighSurrogate << QStringList{kHighSurrogate};
    QTest::newRow("second half alone") << kLowSurrogate << QStringList{kLowSurrogate};
    QTest::newRow("halves between letters")
        << u"a"_s + kHighSurrogate + u"b"_s + kLowSurrogate + u"c"_s
        << QStringList{u"a"_s, kHighSurrogate, u"b"_s, kLowSurrogate, u"c"_s};
    QTest::newRow("halves swapped")
        << kLowSurrogate + kHighSurrogate << QStringList{kLowSurrogate, kHighSurrogate};
    QTest::newRow("halves together")
        << kHighSurrogate + kLowSurrogate << QStringList{kHighSurrogate + kLowSurrogate};
    QTest::newRow("two first halves, one second")
        << kHighSurrogate + kHighSurrogate + kLowSurrogate
        << QStringList{kHighSurrogate, kHighSurrogate + kLowSurrogate};
    QTest::newRow("a zero between")
        << QString(u"a\0b"_s) << QStringList{u"a"_s, QString(QChar(0)), u"b"_s};
}

void CharactersTest::aCharacterIsWhatAReaderSeesAsOne()
{
    QFETCH(QString, text);
    QFETCH(QStringList, characters);
    QCOMPARE(strings(Characters::split(text)), characters);
    QCOMPARE(Characters::count(text), characters.size());
}

void CharactersTest::textIsCutBetweenCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("characters");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("withoutLast");
    QTest::newRow("nothing of nothing") << QString() << 0 << QString() << QString();
    QTest::newRow("something of nothing") << QString() << 3 << QString() << QString();
    QTest::newRow("none") << u"abc"_s << 0 << QString() << u"abc"_s;
    QTest::newRow("fewer than none") << u"abc"_s << -1 << QString() << u"abc"_s;
    QTest::newRow("one") << u"abc"_s << 1 << u"a"_s << u"ab"_s;
    QTest::newRow("all") << u"abc"_s << 3 << u"abc"_s << QString();
    QTest::newRow("more than all") << u"abc"_s << 9 << u"abc"_s << QString();
    QTest::newRow("a mark behind the last") << u"abe\u0301x"_s << 3 << u"abe\u0301"_s << u"a"_s;
    QTest::newRow("marks") << u"e\u0301xo\u0302"_s << 1 << u"e\u0301"_s << u"e\u0301x"_s;
    QTest::newRow("family") << kFamily + u"x"_s + kFamily << 1 << kFamily << kFamily + u"x"_s;
    QTest::newRow("flags") << kTurkishFlag + kTurkishFlag + kTurkishFlag << 2
                           << kTurkishFlag + kTurkishFlag << kTurkishFlag;
    QTest::newRow("line ends") << u"\r\na\r\n"_s << 1 << u"\r\n"_s << u"\r\na"_s;
    QTest::newRow("halves") << kLowSurrogate + u"a"_s + kHighSurrogate << 1 << kLowSurrogate
                            << kLowSurrogate + u"a"_s;
}

void CharactersTest::textIsCutBetweenCharacters()
{
    QFETCH(QString, text);
    QFETCH(int, characters);
    QFETCH(QString, prefix);
    QFETCH(QString, withoutLast);
    QCOMPARE(Characters::prefix(text, characters).toString(), prefix);
    QCOMPARE(Characters::dropLast(text, characters).toString(), withoutLast);
}

void CharactersTest::cuttingNeverLosesOrDividesAnything()
{
    QRandomGenerator random(20240615);
    for (int round = 0; round < 4000; ++round) {
        const QString text = awkwardText(random);
        const auto characters = Characters::split(text);
        const QStringList list = strings(characters);
        QCOMPARE(list.join(QString()), text);
        QVERIFY(!list.contains(QString()));
        QCOMPARE(Characters::count(text), list.size());
        for (qsizetype taken = 0; taken <= list.size(); ++taken) {
            QCOMPARE(Characters::prefix(text, taken).toString(), list.first(taken).join(QString()));
            QCOMPARE(Characters::dropLast(text, list.size() - taken).toString(),
                     list.first(taken).join(QString()));
        }
    }
}

void CharactersTest::lettersMarksAndNumbersAreAlphanumeric_data()
{
    QTest::addColumn<char32_t>("codePoint");
    QTest::addColumn<bool>("expected");
    QTest::newRow("letter") << U'a' << true;
    QTest::newRow("dotless i") << U'ı' << true;
    QTest::newRow("digit") << U'7' << true;
    QTest::newRow("Arabic digit") << U'٣' << true;
    QTest::newRow("Roman numeral") << U'Ⅷ' << true;
    QTest::newRow("superscript") << U'²' << true;
    QTest::newRow("half") << U'½' << true;
    QTest::newRow("combining acute") << U'\u0301' << true;
    QTest::newRow("vowel sign") << U'\u093F' << true;
    QTest::newRow("enclosing keycap") << U'\u20E3' << true;
    QTest::newRow("Han") << U'漢' << true;
    QTest::newRow("Han outside the first plane") << U'\U00020000' << true;
    QTest::newRow("modifier letter") << U'ʰ' << true;
    QTest::newRow("blank") << U' ' << false;
    QTest::newRow("underscore") << U'_' << false;
    QTest::newRow("hyphen") << U'-' << false;
    QTest::newRow("apostrophe") << U'’' << false;
    QTest::newRow("quote") << U'"' << false;
    QTest::newRow("asterisk") << U'*' << false;
    QTest::newRow("plus") << U'+' << false;
    QTest::newRow("emoji") << U'\U0001F600' << false;
    QTest::newRow("joiner") << U'\u200D' << false;
    QTest::newRow("zero") << U'\0' << false;
    QTest::newRow("half a pair") << static_cast<char32_t>(0xD83D) << false;
    QTest::newRow("unassigned") << static_cast<char32_t>(0x0378) << false;
    QTest::newRow("beyond Unicode") << static_cast<char32_t>(0x110000) << false;
    QTest::newRow("all bits") << static_cast<char32_t>(0xFFFFFFFF) << false;
}

void CharactersTest::lettersMarksAndNumbersAreAlphanumeric()
{
    QFETCH(char32_t, codePoint);
    QFETCH(bool, expected);
    QCOMPARE(Characters::isAlphanumeric(codePoint), expected);
}

void CharactersTest::wordsAreTheRunsOfAlphanumerics_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("words");
    QTest::newRow("none") << QString() << QStringList();
    QTest::newRow("separators alone") << u" !!! \r\n-"_s << QStringList();
    QTest::newRow("one") << u"invoice"_s << QStringList{u"invoice"_s};
    QTest::newRow("hyphens") << u"invoice 2026-114"_s
                             << QStringList{u"invoice"_s, u"2026"_s, u"114"_s};
    QTest::newRow("operators") << u"\"foo\" NOT bar*"_s
                               << QStringList{u"foo"_s, u"NOT"_s, u"bar"_s};
    QTest::newRow("edges") << u"_a_b_"_s << QStringList{u"a"_s, u"b"_s};
    QTest::newRow("apostrophe") << u"Ankara'nın"_s << QStringList{u"Ankara"_s, u"nın"_s};
    QTest::newRow("decomposed") << u"cafe\u0301 x"_s << QStringList{u"cafe\u0301"_s, u"x"_s};
    QTest::newRow("Devanagari") << u"किताब है"_s << QStringList{u"किताब"_s, u"है"_s};
    QTest::newRow("emoji between") << u"a\U0001F600b"_s << QStringList{u"a"_s, u"b"_s};
    QTest::newRow("letters beyond the first plane")
        << u"\U00020000\U00020001 x"_s << QStringList{u"\U00020000\U00020001"_s, u"x"_s};
    QTest::newRow("an emoji with its sign of being one")
        << u"\u2764\uFE0F moss"_s << QStringList{u"moss"_s};
    QTest::newRow("a mark alone") << u"a \u0301 b"_s << QStringList{u"a"_s, u"b"_s};
    QTest::newRow("half a pair between")
        << u"a"_s + kHighSurrogate + u"b"_s << QStringList{u"a"_s, u"b"_s};
    QTest::newRow("half a pair at the end") << u"a"_s + kHighSurrogate << QStringList{u"a"_s};
    QTest::newRow("half a pair at the start") << kLowSurrogate + u"a"_s << QStringList{u"a"_s};
    QTest::newRow("zero between") << QString(u"a\0b"_s) << QStringList{u"a"_s, u"b"_s};
}

void CharactersTest::wordsAreTheRunsOfAlphanumerics()
{
    QFETCH(QString, text);
    QFETCH(QStringList, words);
    QCOMPARE(strings(Characters::words(text)), words);
}

void CharactersTest::wordsHoldAllLettersAndNumbers()
{
    QRandomGenerator random(7);
    for (int round = 0; round < 4000; ++round) {
        const QString text = awkwardText(random);
        const QStringList words = strings(Characters::words(text));
        QList<char32_t> kept;
        for (const char32_t codePoint : text.toUcs4()) {
            // Half a pair comes out of there as the sign for what is unreadable.
            if (QChar::isLetterOrNumber(codePoint))
                kept += codePoint;
        }
        QList<char32_t> inWords;
        for (const QString& word : words) {
            const auto before = inWords.size();
            for (const char32_t codePoint : word.toUcs4()) {
                QVERIFY(Characters::isAlphanumeric(codePoint));
                if (QChar::isLetterOrNumber(codePoint))
                    inWords += codePoint;
            }
            QVERIFY2(inWords.size() > before, "a word is more than marks");
        }
        QCOMPARE(inWords, kept);
    }
}

void CharactersTest::lowerCaseFollowsUnicodeAndNoLanguage_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("lower");
    QTest::newRow("none") << QString() << QString();
    QTest::newRow("English") << u"Project AURORA 7"_s << u"project aurora 7"_s;
    QTest::newRow("I") << u"I"_s << u"i"_s;
    QTest::newRow("dotted I") << u"İ"_s << u"i\u0307"_s;
    QTest::newRow("dotless i stays") << u"ı"_s << u"ı"_s;
    QTest::newRow("Turkish") << u"KIRMIZI Işık ŞEKERCİ"_s << u"kirmizi işık şekerci\u0307"_s;
    QTest::newRow("many that grow") << QString(100, u'İ') << u"i\u0307"_s.repeated(100);
    QTest::newRow("final sigma") << u"ΟΔΟΣ"_s << u"οδος"_s;
    QTest::newRow("sigma inside") << u"ΣΟΦΟΣ ΣΑΣ"_s << u"σοφος σας"_s;
    QTest::newRow("sharp s") << u"STRAẞE Straße"_s << u"straße straße"_s;
    QTest::newRow("composed") << u"ÉCOLE"_s << u"école"_s;
    QTest::newRow("decomposed") << u"E\u0301COLE"_s << u"e\u0301cole"_s;
    QTest::newRow("beyond the first plane") << u"\U00010400"_s << u"\U00010428"_s;
    QTest::newRow("half a pair") << u"A"_s + kHighSurrogate + u"B"_s
                                 << u"a"_s + kHighSurrogate + u"b"_s;
    QTest::newRow("ligature") << u"ﬁ"_s << u"ﬁ"_s;
}

void CharactersTest::lowerCaseFollowsUnicodeAndNoLanguage()
{
    QFETCH(QString, text);
    QFETCH(QString, lower);
    QCOMPARE(Characters::lowercased(text), lower);
}

void CharactersTest::nothingDependsOnTheLocale_data()
{
    lowerCaseFollowsUnicodeAndNoLanguage_data();
}

void CharactersTest::nothingDependsOnTheLocale()
{
    QFETCH(QString, text);
    QFETCH(QString, lower);
    const QLocale before;
    const QByteArray environment = qgetenv("LC_ALL");
    QLocale::setDefault(QLocale(QLocale::Turkish, QLocale::Turkey));
    qputenv("LC_ALL", "tr_TR.UTF-8");
    std::setlocale(LC_ALL, "tr_TR.UTF-8"); // where the machine has it
    const QString found = Characters::lowercased(text);
    const bool sameFold = FoldedText(u"I"_s).find(FoldedText(u"i"_s)).has_value();
    std::setlocale(LC_ALL, "C.UTF-8");
    qputenv("LC_ALL", environment);
    QLocale::setDefault(before);
    QCOMPARE(found, lower);
    QVERIFY(sameFold);
}

void CharactersTest::aMegabyteIsWalkedInAMoment_data()
{
    QTest::addColumn<QString>("piece");
    QTest::newRow("letters") << u"a"_s;
    QTest::newRow("sentences") << u"The quick brown fox. "_s;
    QTest::newRow("Turkish") << u"Kırmızı İşık "_s;
    QTest::newRow("one character of marks alone") << u"\u0301"_s;
    QTest::newRow("families") << kFamily;
    QTest::newRow("one family without end") << u"\U0001F468\u200D"_s;
    QTest::newRow("flags without end") << u"\U0001F1F9"_s;
    QTest::newRow("halves") << kHighSurrogate;
}

void CharactersTest::aMegabyteIsWalkedInAMoment()
{
    QFETCH(QString, piece);
    const QString text = piece.repeated((1 << 19) / piece.size());
    QElapsedTimer timer;
    timer.start();
    const qsizetype count = Characters::count(text);
    QCOMPARE(qsizetype(Characters::split(text).size()), count);
    QCOMPARE(Characters::prefix(text, count).size(), text.size());
    QCOMPARE(Characters::dropLast(text, count).size(), 0);
    const QString first = Characters::prefix(text, 160).toString();
    QVERIFY(text.startsWith(first));
    Characters::words(text);
    Characters::lowercased(text);
    const FoldedText folded(text);
    QVERIFY(!folded.find(FoldedText(u"absent"_s)));
    qInfo("%lld ms", timer.elapsed());
    QVERIFY(timer.elapsed() < 2000 * kSlowness);
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::CharactersTest)
#include "CharactersTest.moc"
