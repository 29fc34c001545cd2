// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Marks/Snippet.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;

class SnippetTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itIsThePieceAroundTheFirstMatch_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("query");
        QTest::addColumn<QString>("snippet");
        const QString words = u"one two three four five six seven eight nine ten eleven twelve "_s;
        QTest::newRow("short") << u"A heron by the bank"_s << u"heron"_s
                               << u"A [heron] by the bank"_s;
        QTest::newRow("lines are one")
            << u"A heron\n\n  by\tthe bank"_s << u"bank"_s << u"A heron by the [bank]"_s;
        QTest::newRow("all of them") << u"moss on moss"_s << u"moss"_s << u"[moss] on [moss]"_s;
        QTest::newRow("by its beginning")
            << u"A herons' nest"_s << u"her"_s << u"A [herons]' nest"_s;
        QTest::newRow("far in") << words + u"a heron"_s << u"heron"_s
                                << u"…seven eight nine ten eleven twelve a [heron]"_s;
        QTest::newRow("no match") << u"A heron"_s << u"wren"_s << u"A heron"_s;
        QTest::newRow("no query") << u"A heron"_s << QString() << u"A heron"_s;
        QTest::newRow("no text") << QString() << u"heron"_s << QString();
        QTest::newRow("spaces alone") << u" \n "_s << u"heron"_s << QString();
        QTest::newRow("begins with spaces") << u"\n\n heron"_s << u"heron"_s << u"[heron]"_s;
    }
    void itIsThePieceAroundTheFirstMatch()
    {
        QFETCH(QString, text);
        QFETCH(QString, query);
        QFETCH(QString, snippet);
        QCOMPARE(marked(Snippet::of(text, query)), snippet);
    }

    void aLongTextIsCut()
    {
        const QString text = u"moss "_s.repeated(4000);
        const Snippet snippet = Snippet::of(text, u"moss");
        QVERIFY(snippet.text.size() < 300);
        for (const auto& mark : snippet.marks)
            QVERIFY(mark.start + mark.length <= snippet.text.size());
    }

    void aWordWithoutAnEndIsCut()
    {
        const QString text = u"x"_s.repeated(5000) + u" heron"_s;
        const Snippet snippet = Snippet::of(text, u"heron");
        QVERIFY(marked(snippet).endsWith(u"x [heron]"_s));
        QVERIFY(snippet.text.size() < 60);
    }

private:
    static QString marked(const Snippet& snippet)
    {
        QString text = snippet.text;
        for (auto mark = snippet.marks.rbegin(); mark != snippet.marks.rend(); ++mark) {
            text.insert(mark->start + mark->length, u']');
            text.insert(mark->start, u'[');
        }
        return text;
    }
};

QTEST_GUILESS_MAIN(SnippetTest)
#include "SnippetTest.moc"
