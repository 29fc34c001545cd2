// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/RawSql.h"
#include "tests/Core/RandomRounds.h"

#include <QRandomGenerator>

using namespace mossbank;
using namespace Qt::StringLiterals;

class QuestionExpressionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theTellingWordsMayMatch_data()
    {
        QTest::addColumn<QString>("question");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QString& question, const QString& expected) {
            QTest::newRow(name) << question << expected;
        };
        row("words that say nothing go", u"What was that invoice number?"_s,
            u"\"invoice\"* OR \"invoıce\"* OR \"ınvoice\"* OR \"ınvoıce\"* OR \"number\"*"_s);
        row("Turkish ones, too", u"Dün gördüğüm proje nerede?"_s, u"\"proje\"*"_s);
        row("short words alone", u"is it on?"_s,
            u"\"is\"* OR \"ıs\"* OR \"it\"* OR \"ıt\"* OR \"on\"*"_s);
        row("numbers alone", u"2026 114"_s, u"\"114\"* OR \"2026\"*"_s);
        row("numbers beside a telling word go", u"invoke 2026"_s, u"\"invoke\"* OR \"ınvoke\"*"_s);
        row("digits within a word tell", u"b747 seat"_s, u"\"b747\"* OR \"seat\"*"_s);
        row("of any script", u"١٢٣ moss"_s, u"\"moss\"*"_s);
        row("common words alone", u"what is the"_s,
            u"\"is\"* OR \"ıs\"* OR \"the\"* OR \"what\"*"_s);
        row("single signs", u"a ? b"_s, {});
        row("nothing", u""_s, {});
        row("punctuation", u"?!… --"_s, {});
        row("repeats count once", u"Moss moss MOSS fern"_s, u"\"fern\"* OR \"moss\"*"_s);
        row("the order is the alphabet's", u"zebra apple"_s, u"\"apple\"* OR \"zebra\"*"_s);
        row("operators are words", u"moss NEAR(fern) NOT \"bark\"* OR log"_s,
            u"\"bark\"* OR \"fern\"* OR \"log\"* OR \"moss\"* OR \"near\"*"_s);
        row("marks do not make a word longer", u"e\u0301\u0301\u0301 moss"_s, u"\"moss\"*"_s);
    }

    void theTellingWordsMayMatch()
    {
        QFETCH(QString, question);
        QFETCH(QString, expected);
        const auto expression = HistoryStore::questionExpression(question);
        QCOMPARE(expression.has_value(), !expected.isNull());
        QCOMPARE(expression.value_or(QString()), expected);
    }

    void theTwelveLongestAreAskedFor()
    {
        // Of twenty words of 4 to 23 letters, in no order of length.
        QStringList words;
        for (int length = 4; length < 24; ++length)
            words.append(QString(length, QChar(u'b' + (length * 7) % 20)).replace(u'i', u'z'));
        QStringList expected;
        for (const QString& word : words.last(12))
            expected.append(u"\"%1\"*"_s.arg(word));
        expected.sort();
        std::swap(words[0], words[15]);
        QCOMPARE(HistoryStore::questionExpression(words.join(u' ')).value_or(QString()),
                 expected.join(u" OR "_s));
    }

    void ofEquallyLongOnesTheFirstInTheAlphabetAreAskedFor()
    {
        QStringList words;
        for (char16_t letter = u'a'; letter < u'a' + 14; ++letter)
            words.prepend(u"moss"_s + QChar(letter));
        words.removeAll(u"mossi"_s); // for its spellings
        const auto expression = HistoryStore::questionExpression(words.join(u' '));
        QVERIFY(expression);
        QVERIFY(expression->startsWith(u"\"mossa\"* OR \"mossb\"*"_s));
        QCOMPARE(expression->count(u" OR "_s), 11);
        QVERIFY(!expression->contains(u"mossn"_s));
    }

    void theOrderOfTheQuestionDoesNotMatter()
    {
        QCOMPARE(HistoryStore::questionExpression(u"fern bark moss"),
                 HistoryStore::questionExpression(u"moss fern bark"));
    }

    void whateverIsAskedIsAnExpression()
    {
        RawSql sql(u":memory:"_s);
        sql.run(u"CREATE VIRTUAL TABLE s USING fts5(text, tokenize='unicode61')"_s);
        const QString parts =
            u"\"'*()[]{}:-+^,;%?\\ \n\t\u0000\u200d\u0301\ufeffiıİIab12½²漢字ß🌿"_s;
        QRandomGenerator random(randomSeed());
        for (int rounds = randomRounds(5000); rounds > 0; --rounds) {
            QString question;
            for (int length = random.bounded(40); length > 0; --length)
                question += parts.at(random.bounded(static_cast<int>(parts.size())));
            const auto expression = HistoryStore::questionExpression(question);
            if (!expression)
                continue;
            try {
                sql.rows(u"SELECT rowid FROM s WHERE s MATCH ?"_s, {*expression});
            } catch (const std::runtime_error& error) {
                QFAIL(qPrintable(u"%1: %2"_s.arg(*expression, QString::fromUtf8(error.what()))));
            }
        }
    }
};

QTEST_GUILESS_MAIN(QuestionExpressionTest)
#include "QuestionExpressionTest.moc"
