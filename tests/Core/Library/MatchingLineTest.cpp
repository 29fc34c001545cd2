// SPDX-License-Identifier: Apache-2.0
#include "mossbank-find/MatchingLine.h"

#include "mossbank-find/Printable.h"

#include <QTest>

using namespace mossbank;
using namespace Qt::StringLiterals;

class MatchingLineTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theLineWithMostOfTheWordsIsTaken_data();
    void theLineWithMostOfTheWordsIsTaken();
    void aTextOfAMegabyteIsNoTrouble();
    void signsThatATerminalObeysAreReplaced_data();
    void signsThatATerminalObeysAreReplaced();
    void jsonKeepsThemEscaped();
};

void MatchingLineTest::theLineWithMostOfTheWordsIsTaken_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("line");
    const QString text = u"File Edit View\ngreen fern\n  green moss on stone \nmoss green"_s;
    QTest::newRow("most words") << u"moss green stone"_s << text << u"green moss on stone"_s;
    QTest::newRow("the first among equals") << u"green"_s << text << u"green fern"_s;
    QTest::newRow("order does not matter") << u"stone moss"_s << text << u"green moss on stone"_s;
    QTest::newRow("case does not matter") << u"STONE"_s << text << u"green moss on stone"_s;
    QTest::newRow("the beginning of a word") << u"sto"_s << text << u"green moss on stone"_s;
    QTest::newRow("not its middle") << u"tone"_s << text << u""_s;
    QTest::newRow("none of them") << u"lighthouse"_s << text << u""_s;
    QTest::newRow("no word typed") << u"!!!"_s << text << u""_s;
    QTest::newRow("no text") << u"moss"_s << u""_s << u""_s;
    QTest::newRow("a word typed twice counts once")
        << u"fern fern fern moss stone"_s << u"fern fern\nmoss stone"_s << u"moss stone"_s;
    QTest::newRow("a word that is there twice counts once")
        << u"moss stone"_s << u"moss moss moss\nmoss stone"_s << u"moss stone"_s;
    QTest::newRow("diacritics do not matter")
        << u"cafe"_s << u"tea\nin the Café"_s << u"in the Café"_s;
    QTest::newRow("typed with diacritics")
        << u"café"_s << u"tea\nin the cafe"_s << u"in the cafe"_s;
    QTest::newRow("i for the dotless")
        << u"kirmizi"_s << u"mavi\nkırmızı gül"_s << u"kırmızı gül"_s;
    QTest::newRow("the dotless for i") << u"kırmızı"_s << u"mavi\nkirmizi"_s << u"kirmizi"_s;
    QTest::newRow("ka") << u"ka"_s << u"bir\nbir kağıt"_s << u"bir kağıt"_s;
    QTest::newRow("istanbul") << u"istanbul"_s << u"Ankara\nİstanbul'da"_s << u"İstanbul'da"_s;
    QTest::newRow("İSTANBUL") << u"İSTANBUL"_s << u"Ankara\nistanbul"_s << u"istanbul"_s;
    QTest::newRow("lines of another system")
        << u"two"_s << u"one\r\ntwo three\r\nfour"_s << u"two three"_s;
    QTest::newRow("lines of Unicode")
        << u"two"_s << u"one\u2028two three\u2029four"_s << u"two three"_s;
}

void MatchingLineTest::theLineWithMostOfTheWordsIsTaken()
{
    QFETCH(QString, query);
    QFETCH(QString, text);
    QTEST(MatchingLine(query).in(text), "line");
}

void MatchingLineTest::aTextOfAMegabyteIsNoTrouble()
{
    const QString text = u"fern moss "_s.repeated(50'000) + u"\nmoss stone"_s;
    QCOMPARE(MatchingLine(u"moss stone"_s).in(text), u"moss stone"_s);
}

void MatchingLineTest::signsThatATerminalObeysAreReplaced_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("safe");
    QTest::newRow("ordinary") << u"Kağıt 🌿 – שלום"_s << u"Kağıt 🌿 – שלום"_s;
    QTest::newRow("emoji with joiners") << u"👩🏽‍🚀"_s << u"👩🏽‍🚀"_s;
    QTest::newRow("an escape sequence") << u"a\u001b[31mb"_s << u"a\uFFFD[31mb"_s;
    QTest::newRow("its one-sign form") << u"a\u009b31mb"_s << u"a\uFFFD31mb"_s;
    QTest::newRow("a title being set") << u"\u001b]0;x\u0007"_s << u"\uFFFD]0;x\uFFFD"_s;
    QTest::newRow("backspaces") << u"safe\b\b"_s << u"safe\uFFFD\uFFFD"_s;
    QTest::newRow("delete") << u"a\u007fb"_s << u"a\uFFFDb"_s;
    QTest::newRow("a zero") << u"a"_s + QChar(QChar::Null) << u"a\uFFFD"_s;
    QTest::newRow("line ends and tabs") << u"a\r\nb\tc\u2028d\u0085e"_s << u"a  b c d e"_s;
    QTest::newRow("turned direction")
        << u"a\u202egpj.exe\u202c\u2066b\u2069"_s << u"a\uFFFDgpj.exe\uFFFD\uFFFDb\uFFFD"_s;
}

void MatchingLineTest::signsThatATerminalObeysAreReplaced()
{
    QFETCH(QString, text);
    QTEST(printable(text), "safe");
}

void MatchingLineTest::jsonKeepsThemEscaped()
{
    QCOMPARE(printableJson(u"{\"a\":\"x\u009b\u007f\u202ey\u2028\"}"_s),
             uR"({"a":"x\u009b\u007f\u202ey\u2028"})"_s);
}

QTEST_GUILESS_MAIN(MatchingLineTest)
#include "MatchingLineTest.moc"
