// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Browsing/SearchHighlight.h"

#include <QTest>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// The text with what is marked in brackets.
QString marked(const QString& text, const QString& query)
{
    QString result = text;
    const auto ranges = SearchHighlight::ranges(text, query);
    for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
        result.insert(range->start + range->length, u']');
        result.insert(range->start, u'[');
    }
    return result;
}

} // namespace

class SearchHighlightTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatTheIndexFoundIsMarked_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("query");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QString& query, const QString& expected) {
            QString text = expected;
            text.remove(u'[').remove(u']');
            QTest::newRow(name) << text << query << expected;
        };
        row("a word", u"heron"_s, u"A [heron] stands"_s);
        row("the beginning of a word, whole", u"in"_s, u"[inside] the [inn], not within"_s);
        row("not within a word", u"on"_s, u"heron [on] stone"_s);
        row("at the very start", u"a"_s, u"[a] b"_s);
        row("at the very end", u"ston"_s, u"a [stone]"_s);
        row("capitals and accents", u"CAFÉ"_s, u"the [cafe] and the [Café]"_s);
        row("without accents", u"cafe"_s, u"the [cafés]"_s);
        row("an accent of its own", u"cafe"_s, u"the [café] is"_s);
        row("an accent that is not in the query", u"resume"_s, u"my [résumé]"_s);
        row("two words", u"mossy heron"_s, u"a [heron] by the [mossy] bank"_s);
        row("two words side by side", u"mossy bank"_s, u"the [mossy] [bank]"_s);
        row("by two needles", u"her heron"_s, u"a [heron]"_s);
        row("a word twice", u"a a"_s, u"[a] b"_s);
        row("figures", u"20"_s, u"in [2026], not 1201"_s);
        row("a figure before", u"heron"_s, u"4heron [heron4]"_s);
        row("an underscore parts", u"heron"_s, u"grey_[heron]_x"_s);
        row("quotation marks and operators", u"\"heron\" OR -x*"_s, u"[heron] [or] [xylem]"_s);
        row("marks alone", u"... \"*\" (?)"_s, u"... \"*\" (?)"_s);
        row("nothing", u""_s, u"heron"_s);
        row("nowhere", u"egret"_s, u"heron"_s);
        row("in no text", u"heron"_s, u""_s);
        row("touching ones are one", u"鷺"_s, u"[鷺鷺] x"_s);
        row("the dotless letter", u"ıssız"_s, u"[ıssız] [issiz] [ISSIZ]"_s);
        row("the dotted letter", u"irmak"_s, u"[İrmak] [ırmak] [IRMAK]"_s);
        row("a sharp s", u"strasse"_s, u"[Straße] [STRASSE]"_s);
        row("after a sign with a mark", u"heron"_s, u"❤️[heron]"_s);
        row("after an accent", u"heron"_s, u"éheron"_s);
        row("signs of a script", u"अ"_s, u"[अक्‍ष] कअ"_s);
        row("beyond the first plane", u"heron"_s, u"𝒜heron 😀[heron]"_s);
    }
    void whatTheIndexFoundIsMarked()
    {
        QFETCH(QString, text);
        QFETCH(QString, query);
        QFETCH(QString, expected);
        QCOMPARE(marked(text, query), expected);
    }

    void rangesComeInOrderAndApart()
    {
        const auto ranges = SearchHighlight::ranges(u"bank by the mossy bank", u"mossy b bank");
        qsizetype end = -1;
        for (const FoldedText::Range& range : ranges) {
            QVERIFY(range.start > end);
            QVERIFY(range.length > 0);
            end = range.start + range.length;
        }
        QCOMPARE(ranges.size(), std::size_t(4));
    }
};

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::SearchHighlightTest)
#include "SearchHighlightTest.moc"
