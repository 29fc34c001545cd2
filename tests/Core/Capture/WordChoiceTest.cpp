// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/WordChoice.h"

#include <QTest>

namespace mossbank {

using namespace Qt::StringLiterals;

namespace {

/// Words as "text/confidence" between spaces.
QList<RecognizedWord> words(const QString& line)
{
    QList<RecognizedWord> all;
    for (const QString& word : line.split(u' ', Qt::SkipEmptyParts))
        all.append({word.section(u'/', 0, 0), word.section(u'/', 1).toDouble()});
    return all;
}

} // namespace

class WordChoiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachWordIsTakenFromTheBetterReading_data();
    void eachWordIsTakenFromTheBetterReading();
    void aLostDotIsTakenFromTheSecondReading_data();
    void aLostDotIsTakenFromTheSecondReading();
    void fullStopsAreCounted();
    void aLostStopIsPutWhereTheSecondReadingHasASign_data();
    void aLostStopIsPutWhereTheSecondReadingHasASign();
};

void WordChoiceTest::eachWordIsTakenFromTheBetterReading_data()
{
    QTest::addColumn<QString>("preferred");
    QTest::addColumn<QString>("other");
    QTest::addColumn<QString>("chosen");
    const auto row = [](const char* name, const QString& preferred, const QString& other,
                        const QString& chosen) {
        QTest::newRow(name) << preferred << other << chosen;
    };
    row("as sure", u"plum/96"_s, u"pium/96"_s, u"plum/96"_s);
    row("surer", u"square/93 gtin/70"_s, u"sguare/92 gün/97"_s, u"square/93 gün/97"_s);
    row("hardly surer", u"oak/95"_s, u"oac/96"_s, u"oak/95"_s);
    row("accents, though less sure", u"baska/93"_s, u"başka/90"_s, u"başka/90"_s);
    row("a dotless i, though less sure", u"yakin/93"_s, u"yakın/85"_s, u"yakın/85"_s);
    row("a capital with an accent", u"Izin/93"_s, u"İzin/85"_s, u"İzin/85"_s);
    row("no accents, though surer", u"şarkı/90"_s, u"sarki/96"_s, u"şarkı/90"_s);
    row("accents that may be specks", u"light/96"_s, u"lıght/60"_s, u"light/96"_s);
    row("specks, and surer without", u"lıght/60"_s, u"light/96"_s, u"light/96"_s);
    row("accents on another word", u"oak/93"_s, u"öat/90"_s, u"oak/93"_s);
    row("in other places", u"one/50 line/50"_s, u"oneline/97"_s, u"one/50 line/50"_s);
    row("nothing at all", QString(), u"oak/97"_s, QString());
    row("nothing beside it", u"oak/50"_s, QString(), u"oak/50"_s);
}

void WordChoiceTest::eachWordIsTakenFromTheBetterReading()
{
    QFETCH(QString, preferred);
    QFETCH(QString, other);
    QFETCH(QString, chosen);
    QCOMPARE(betterWords(words(preferred), words(other)), words(chosen));
}

void WordChoiceTest::aLostDotIsTakenFromTheSecondReading_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<bool>("isSecondTaken");
    const auto row = [](const char* name, const QString& first, const QString& second,
                        bool isSecondTaken) {
        QTest::newRow(name) << first << second << isSecondTaken;
    };
    row("a dot more, though less sure", u"chaptertxt/93"_s, u"chapter.txt/80"_s, true);
    row("a dot more, and a space less", u"chapter txt/93"_s, u"chapter.txt/80"_s, true);
    row("a dot less, though surer", u"chapter.txt/80"_s, u"chaptertxt/96"_s, false);
    row("another letter", u"chaptertxt/80"_s, u"chapler.txt/96"_s, false);
    row("an o for a zero, surer", u"12.0dt/80"_s, u"12.odt/92"_s, true);
    row("an o for a zero, hardly surer", u"12.0dt/91"_s, u"12.odt/92"_s, false);
    row("no space, surer", u"surf/85 ace/70"_s, u"surface/93"_s, true);
    row("the same, surer", u"surface/80"_s, u"surface/93"_s, true);
    row("nothing", u"surface/80"_s, QString(), false);
}

void WordChoiceTest::aLostDotIsTakenFromTheSecondReading()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(bool, isSecondTaken);
    QCOMPARE(withDots(words(first), words(second)), words(isSecondTaken ? second : first));
}

void WordChoiceTest::fullStopsAreCounted()
{
    QCOMPARE(fullStopsIn(words(u"a.b/9 1.2:30/9 so…/9 end./9 no,ne;/9"_s)), 7);
    QCOMPARE(fullStopsIn({}), 0);
}

void WordChoiceTest::aLostStopIsPutWhereTheSecondReadingHasASign_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<int>("lost");
    QTest::addColumn<QString>("chosen");
    const auto row = [](const char* name, const QString& first, const QString& second, int lost,
                        const QString& chosen) {
        QTest::newRow(name) << first << second << lost << chosen;
    };
    row("a stop", u"chaptertxt/93"_s, u"chapter.txt/80"_s, 1, u"chapter.txt/93"_s);
    row("read as a colon", u"octobertxt/93"_s, u"october:txt/80"_s, 1, u"october.txt/93"_s);
    row("read as a letter", u"octobertxt/93"_s, u"octoberitxt/99"_s, 1, u"octobertxt/93"_s);
    row("another letter", u"plate/93 txt/91"_s, u"plate.bt/99"_s, 1, u"plate/93 txt/91"_s);
    row("instead of a space", u"odd/93 pdf/91"_s, u"odd.pdf/80"_s, 1, u"odd.pdf/91"_s);
    row("with a space before it", u"odd/93 pdf/91"_s, u"odd/80 :pdf/80"_s, 1, u"odd.pdf/91"_s);
    row("with a space after it", u"odd/93 Pdf/91"_s, u"odd./80 Pdf/80"_s, 1, u"odd./93 Pdf/91"_s);
    row("a space more", u"oddpdf/93"_s, u"odd./80 pdf/80"_s, 1, u"odd.pdf/93"_s);
    row("two", u"a11/90 b22txt/93"_s, u"a1.1/90 b22.txt/93"_s, 2, u"a1.1/90 b22.txt/93"_s);
    row("one of two", u"1.24/90"_s, u"1.2.4/80"_s, 1, u"1.2.4/90"_s);
    row("more than are lost", u"a1txt/93"_s, u"a.1.txt/80"_s, 1, u"a1txt/93"_s);
    row("fewer than are lost", u"a1txt/93"_s, u"a1.txt/80"_s, 2, u"a1txt/93"_s);
    row("where a sign was read", u"little-txt/93"_s, u"little.txt/80"_s, 1, u"little-txt/93"_s);
    row("a sign that is no stop", u"itstxt/93"_s, u"it's txt/80"_s, 1, u"itstxt/93"_s);
    row("at the end", u"a/90 fox/93"_s, u"a/90 fox./80"_s, 1, u"a/90 fox./93"_s);
    row("at the start", u"config/93 b/90"_s, u".config/80 b/90"_s, 1, u".config/93 b/90"_s);
    row("an o for a zero", u"120odt/90"_s, u"12O.odt/80"_s, 1, u"120.odt/90"_s);
    row("accents", u"şarkızip/90"_s, u"şarkı.zip/80"_s, 1, u"şarkı.zip/90"_s);
    row("nothing", u"surface/80"_s, QString(), 1, u"surface/80"_s);
    row("nothing but a stop", QString(), u"./80"_s, 1, QString());
}

void WordChoiceTest::aLostStopIsPutWhereTheSecondReadingHasASign()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(int, lost);
    QFETCH(QString, chosen);
    QCOMPARE(withLostStops(words(first), words(second), lost), words(chosen));
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::WordChoiceTest)
#include "WordChoiceTest.moc"
