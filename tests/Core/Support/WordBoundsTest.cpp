// SPDX-License-Identifier: Apache-2.0
//
// Where words begin and end around a place in a text.
#include "MossbankCore/Support/Characters.h"

#include <QTest>

namespace mossbank {

using namespace Qt::StringLiterals;

class WordBoundsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The place is where the bar stands.
    void aPlaceIsWithinAWordOrNot_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isWithin");
        QTest::addColumn<QString>("rest");
        const auto row = [](const char* name, const QString& text, bool isWithin,
                            const QString& rest) {
            QTest::newRow(name) << text << isWithin << rest;
        };
        row("nothing", u"|"_s, false, {});
        row("the start", u"|heron"_s, false, u"heron"_s);
        row("within", u"her|on"_s, true, u"on"_s);
        row("the end of a word", u"heron| x"_s, true, {});
        row("after a blank", u"a |heron x"_s, false, u"heron"_s);
        row("after a figure", u"4|heron"_s, true, u"heron"_s);
        row("before a figure", u"|4ab-"_s, false, u"4ab"_s);
        row("after an underscore", u"a_|b_"_s, false, u"b"_s);
        row("after an accent", u"e\u0301|a"_s, true, u"a"_s);
        row("accents belong to letters", u"|e\u0301\u0302a!"_s, false, u"e\u0301\u0302a"_s);
        row("after an emoji with its mark", u"\u2764\ufe0f|a"_s, false, u"a"_s);
        row("a mark alone", u"\u0301|a"_s, false, u"a"_s);
        row("joined letters", u"\u0915\u094d\u200d|\u0937"_s, true, u"\u0937"_s);
        row("beyond the first plane", u"\U0001d49c|\U0001d49c \U0001f600"_s, true, u"\U0001d49c"_s);
    }
    void aPlaceIsWithinAWordOrNot()
    {
        QFETCH(QString, text);
        QFETCH(bool, isWithin);
        QFETCH(QString, rest);
        const qsizetype place = text.indexOf(u'|');
        text.remove(place, 1);
        QCOMPARE(Characters::isWithinWord(text, place), isWithin);
        const qsizetype end = Characters::endOfWord(text, place);
        QCOMPARE(text.sliced(place, end - place), rest);
    }

    void aTextBeginsUpperCaseOrNot_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isUpper");
        QTest::newRow("nothing") << QString() << false;
        QTest::newRow("small") << u"heron"_s << false;
        QTest::newRow("a capital") << u"Heron"_s << true;
        QTest::newRow("a capital later") << u"hEron"_s << false;
        QTest::newRow("with a dot") << u"İrmak"_s << true;
        QTest::newRow("a figure") << u"4A"_s << false;
        QTest::newRow("a script without cases") << u"鷺"_s << false;
        QTest::newRow("beyond the first plane") << u"\U00010400"_s << true;
        QTest::newRow("half a pair") << QString(QChar(u'\xd801')) << false;
    }
    void aTextBeginsUpperCaseOrNot()
    {
        QFETCH(QString, text);
        QFETCH(bool, isUpper);
        QCOMPARE(Characters::beginsUpperCase(text), isUpper);
    }
};

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::WordBoundsTest)
#include "WordBoundsTest.moc"
