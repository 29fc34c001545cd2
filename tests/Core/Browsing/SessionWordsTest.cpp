// SPDX-License-Identifier: Apache-2.0
//
// The words that set a stretch of work apart from the rest of the day.
#include "MossbankCore/Browsing/DaySessions.h"
#include "MossbankCore/Meaning/Stopwords.h"

#include <QTest>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// Far enough apart to be stretches of their own.
constexpr double kApart = 7200;

Memory memory(double seconds, const QString& text)
{
    return {.id = QString::number(seconds),
            .timestamp = {1'780'000'000 + seconds},
            .appName = u"Editor"_s,
            .bundleID = u"org.example.Editor"_s,
            .text = text,
            .filename = {},
            .bytes = 0,
            .title = {},
            .link = {}};
}

/// The words of each stretch, of which each has one screenshot.
QStringList wordsOf(const QStringList& texts, qsizetype wanted = 4)
{
    QList<Memory> all;
    for (const QString& text : texts)
        all.append(memory(kApart * static_cast<double>(all.size()), text));
    QStringList words;
    for (const Session& session : DaySessions::sessions(all, 600, 3600, wanted))
        words.append(session.keywords.join(u' '));
    return words;
}

QString wordsOfOne(const QString& text)
{
    return wordsOf({text}).first();
}

} // namespace

class SessionWordsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatIsFrequentComesFirst_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("words");
        const auto row = [](const char* name, const QString& text, const QString& words) {
            QTest::newRow(name) << text << words;
        };
        row("nothing", {}, {});
        row("by number", u"egret heron heron stork egret heron"_s, u"heron egret stork"_s);
        row("by the alphabet", u"stork egret heron"_s, u"egret heron stork"_s);
        row("four at most", u"alder birch cedar elder fir"_s, u"alder birch cedar elder"_s);
        // 1.8 to 1, and 1.8 to 2.
        row("a capital weighs", u"heron Stork"_s, u"stork heron"_s);
        row("but not as much as another", u"heron heron Stork"_s, u"heron stork"_s);
        // 34.2 to 34, 34.2 to 35, and 37.8 to 38.
        row("by so much", u"Stork "_s.repeated(19) + u"heron "_s.repeated(34), u"stork heron"_s);
        row("and no more", u"Stork "_s.repeated(19) + u"heron "_s.repeated(35), u"heron stork"_s);
        row("nor a little", u"Stork "_s.repeated(21) + u"heron "_s.repeated(38), u"heron stork"_s);
        row("one capital counts for all", u"heron heron heron stork Stork"_s, u"stork heron"_s);
        row("also the first one", u"heron heron heron Stork stork"_s, u"stork heron"_s);
        row("case is no difference", u"HERON heron Heron egret egret"_s, u"heron egret"_s);
        row("short ones", u"a ab abc"_s, u"abc"_s);
        row("long ones", u"abcdefghijklmnopqrstuvwx abcdefghijklmnopqrstuvwxy"_s,
            u"abcdefghijklmnopqrstuvwx"_s);
        row("numbers", u"2026 100 a100 10b ①②③ 3½3"_s, u"10b a100"_s);
        row("words that say nothing", u"the heron and this"_s, u"heron"_s);
        row("what stands between words", u"grey-heron_mossy.bank"_s, u"bank grey heron mossy"_s);
        row("letters with marks are letters", u"Ağaç ağaç çay ot"_s, u"ağaç çay"_s);
        row("the application's own name", u"Editor EDITOR heron"_s, u"heron"_s);
        row("it takes nobody's place", u"Editor EDITOR alder birch cedar egret"_s,
            u"alder birch cedar egret"_s);
    }
    void whatIsFrequentComesFirst()
    {
        QFETCH(QString, text);
        QFETCH(QString, words);
        QCOMPARE(wordsOfOne(text), words);
    }

    void whatEveryStretchHasComesLast()
    {
        QCOMPARE(wordsOf({u"heron heron alder"_s, u"heron heron birch"_s, u"heron heron cedar"_s}),
                 (QStringList{u"alder heron"_s, u"birch heron"_s, u"cedar heron"_s}));
        // And still fills a place that nothing better wants.
        QCOMPARE(wordsOf({u"heron"_s, u"heron"_s}), (QStringList{u"heron"_s, u"heron"_s}));
    }

    void aWordCountsOnceAStretch()
    {
        // The same in both: 5 × ln(3/2) is below 2 × ln(3).
        QCOMPARE(wordsOf({u"heron heron heron heron heron alder alder"_s, u"heron"_s}),
                 (QStringList{u"alder heron"_s, u"heron"_s}));
        QCOMPARE(wordsOf({u"heron heron heron heron heron heron alder alder"_s, u"heron"_s}),
                 (QStringList{u"heron alder"_s, u"heron"_s}));
    }

    void noMoreThanAreWanted()
    {
        QCOMPARE(wordsOf({u"alder birch cedar"_s}, 2), QStringList{u"alder birch"_s});
        QCOMPARE(wordsOf({u"alder birch cedar"_s}, 0), QStringList{QString()});
    }

    void ofALongTextTheBeginningIsRead()
    {
        // The 4,000th character ends the last word of it.
        const QString filling = u"of "_s.repeated(1331); // 3,993 characters
        QCOMPARE(wordsOfOne(filling + u"  heron stork"_s), u"heron"_s);
        QCOMPARE(wordsOfOne(filling + u"   heron stork"_s), u"hero"_s);
        // Characters, of whatever length.
        const QString longer = u"😀 "_s.repeated(1996); // 3,992 characters
        QCOMPARE(wordsOfOne(longer + u"   heron stork"_s), u"heron"_s);
    }

    void ofAStretchTwelveScreenshotsAreRead()
    {
        for (const int count : {12, 13}) {
            QList<Memory> all;
            for (int number = 0; number < count; ++number)
                all.append(memory(number, number == 6 ? u"heron"_s : u"egret"_s));
            const QStringList words = DaySessions::sessions(all, 600, 3600, 4).first().keywords;
            QCOMPARE(words.contains(u"heron"_s), count == 12);
        }
    }

    void aNameBarsItsWordsInItsOwnStretchesAlone()
    {
        QList<Memory> all = {memory(0, u"Heron Notes 2 notes egret"_s),
                             memory(kApart, u"Heron notes stork"_s)};
        all[0].appName = u"Heron-Notes 2"_s;
        const QList<Session> sessions = DaySessions::sessions(all, 600, 3600, 4);
        QCOMPARE(sessions[0].keywords, QStringList{u"egret"_s});
        QVERIFY(sessions[1].keywords.contains(u"heron"_s));
        QVERIFY(sessions[1].keywords.contains(u"notes"_s));
    }

    void whatIsIgnoredIsCommon()
    {
        QVERIFY(Stopwords::common().contains(u"and"_s));
        QCOMPARE(wordsOfOne(QStringList(Stopwords::common().values()).join(u' ')), QString());
    }
};

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::SessionWordsTest)
#include "SessionWordsTest.moc"
