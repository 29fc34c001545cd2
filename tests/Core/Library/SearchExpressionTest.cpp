// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/RawSql.h"
#include "tests/Core/RandomRounds.h"

#include <QLocale>
#include <QRandomGenerator>
#include <QScopeGuard>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

using Expression = std::optional<QString>;

/// A search table like the library's, with one row.
class Index {
public:
    Index()
        : m_sql(u":memory:"_s)
    {
        m_sql.run(u"CREATE VIRTUAL TABLE s USING fts5(id UNINDEXED, app_name, title, link, text, "
                  "tokenize='unicode61');"
                  "INSERT INTO s VALUES ('1', 'Editor', 'notes', '', 'some words')"_s);
    }

    /// Throws when FTS5 does not take it.
    qsizetype matches(const QString& expression)
    {
        return m_sql.rows(u"SELECT rowid FROM s WHERE s MATCH ?"_s, {expression}).size();
    }

private:
    RawSql m_sql;
};

QString randomPart(QRandomGenerator& random)
{
    static const QStringList kParts = {
        u"\""_s,      u"\"\""_s,   u"*"_s,       u"'"_s,
        u"NEAR("_s,   u"NEAR"_s,   u" AND "_s,   u" OR "_s,
        u"NOT "_s,    u"("_s,      u")"_s,       u"{"_s,
        u"}"_s,       u"["_s,      u":"_s,       u"text:"_s,
        u"-"_s,       u"+"_s,      u"^"_s,       u","_s,
        u";"_s,       u"--"_s,     u"/*"_s,      u"\\"_s,
        u" "_s,       u"\n"_s,     u"\t"_s,      u"\u001b"_s,
        u"\u0007"_s,  u"\u009b"_s, u"🌿"_s,       u"👩🏽‍🚀"_s,
        u"i"_s,       u"ı"_s,      u"İ"_s,       u"I"_s,
        u"e\u0301"_s, u"\u0307"_s, u"ß"_s,       u"ﬁ"_s,
        u"١٢"_s,      u"漢字"_s,   u"²"_s,       u"½"_s,
        u"\uFEFF"_s,  u"\u200D"_s, u"%"_s,       u"?1"_s,
        u"moss"_s,    u"rank"_s,   u"2026-114"_s};
    switch (random.bounded(8)) {
    case 0:
        return QChar(static_cast<char16_t>(random.bounded(0x20)));
    case 1:
        // Halves of surrogate pairs among them.
        return QChar(static_cast<char16_t>(random.bounded(0x10000)));
    case 2: {
        const auto codePoint = static_cast<char32_t>(random.bounded(0x110000));
        return QString::fromUcs4(&codePoint, 1);
    }
    default:
        return kParts.at(random.bounded(static_cast<int>(kParts.size())));
    }
}

} // namespace

class SearchExpressionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Before anybody asks for the machine's locale, it is a Turkish one.
        qputenv("LC_ALL", "tr_TR.UTF-8");
    }
    void everyWordMustMatchAsAPrefix_data();
    void everyWordMustMatchAsAPrefix();
    void lettersAreLoweredWhateverTheLocale();
    void lettersIStandForEachOther_data();
    void lettersIStandForEachOther();
    void whateverIsTypedIsAnExpression();
    void operatorsTypedAreWords();
    void aPageOfTextIsAnExpression();
};

void SearchExpressionTest::everyWordMustMatchAsAPrefix_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<Expression>("expression");
    const auto row = [](const char* name, const QString& typed, const Expression& expression) {
        QTest::newRow(name) << typed << expression;
    };
    row("two words", u"Project Aurora"_s, uR"("project"* AND "aurora"*)"_s);
    row("variants in parentheses, in their order", u"invoice 2026-114"_s,
        uR"(("invoice"* OR "invoıce"* OR "ınvoice"* OR "ınvoıce"*) AND "2026"* AND "114"*)"_s);
    row("a hyphen separates", u"foo-bar"_s, uR"("foo"* AND "bar"*)"_s);
    row("operators are words", uR"("foo" NOT bar*)"_s, uR"("foo"* AND "not"* AND "bar"*)"_s);
    row("no word", u"!!!"_s, std::nullopt);
    row("an emoji is no word", u"\u2764\uFE0F moss"_s, uR"("moss"*)"_s);
    row("a mark alone is no word", u"\u0301"_s, std::nullopt);
    row("nothing", u""_s, std::nullopt);
    row("white space", u" \n\t "_s, std::nullopt);
    row("one letter", u"a"_s, uR"("a"*)"_s);
    row("one letter i", u"I"_s, uR"(("i"* OR "ı"*))"_s);
    row("order and repeats stay", u"b a b"_s, uR"("b"* AND "a"* AND "b"*)"_s);
    row("four letters i are one too many", u"initialisation"_s, uR"("initialisation"*)"_s);
    row("a capital I with its dot keeps it as a mark", u"İZ"_s, u"\"i\u0307z\"*"_s);
    row("an emoji separates", u"a🌿b"_s, uR"("a"* AND "b"*)"_s);
    row("a zero separates", u"a"_s + QChar(QChar::Null) + u"b"_s, uR"("a"* AND "b"*)"_s);
    row("half a character separates", u"a"_s + QChar(0xD83D) + u"b"_s, uR"("a"* AND "b"*)"_s);
    row("digits of any script", u"١٢"_s, u"\"١٢\"*"_s);
    row("an underscore separates", u"snake_case"_s, uR"("snake"* AND "case"*)"_s);
}

void SearchExpressionTest::everyWordMustMatchAsAPrefix()
{
    QFETCH(QString, typed);
    QTEST(HistoryStore::searchExpression(typed), "expression");
}

void SearchExpressionTest::lettersAreLoweredWhateverTheLocale()
{
    // More of them than are widened, so that the lowered word itself is seen.
    QCOMPARE(HistoryStore::searchExpression(u"INITIALISATION"), uR"("initialisation"*)"_s);
}

void SearchExpressionTest::lettersIStandForEachOther_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QStringList>("variants");
    QTest::newRow("none") << u"proje"_s << QStringList{u"proje"_s};
    QTest::newRow("empty") << u""_s << QStringList{u""_s};
    QTest::newRow("one") << u"bin"_s << QStringList{u"bin"_s, u"bın"_s};
    QTest::newRow("one, dotless") << u"ışk"_s << QStringList{u"işk"_s, u"ışk"_s};
    QTest::newRow("two") << u"invoice"_s
                         << QStringList{u"invoice"_s, u"invoıce"_s, u"ınvoice"_s, u"ınvoıce"_s};
    QTest::newRow("three") << u"kırmızıl"_s
                           << QStringList{u"kirmizil"_s, u"kirmizıl"_s, u"kirmızil"_s,
                                          u"kirmızıl"_s, u"kırmizil"_s, u"kırmizıl"_s,
                                          u"kırmızil"_s, u"kırmızıl"_s};
    QTest::newRow("four") << u"iiii"_s << QStringList{u"iiii"_s};
    QTest::newRow("five") << u"initialisation"_s << QStringList{u"initialisation"_s};
    QTest::newRow("with a mark it is another character")
        << u"i\u0307n"_s << QStringList{u"i\u0307n"_s};
    QTest::newRow("with an accent, beside a plain one")
        << u"i\u0301i"_s << QStringList{u"i\u0301i"_s, u"i\u0301ı"_s};
}

void SearchExpressionTest::lettersIStandForEachOther()
{
    QFETCH(QString, word);
    QTEST(HistoryStore::dotlessVariants(word), "variants");
}

void SearchExpressionTest::whateverIsTypedIsAnExpression()
{
    Index index;
    const int attempts = randomRounds(5000);
    QRandomGenerator random(randomSeed());
    int expressions = 0;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        QString typed;
        const int parts = random.bounded(1, 12);
        for (int part = 0; part < parts; ++part)
            typed += randomPart(random);
        const auto expression = HistoryStore::searchExpression(typed);
        if (!expression)
            continue;
        ++expressions;
        try {
            index.matches(*expression);
        } catch (const std::runtime_error& refused) {
            QFAIL(qPrintable(u"%1: %2 for %3"_s.arg(QString::fromUtf8(refused.what()), *expression,
                                                    QString::fromLatin1(typed.toUtf8().toHex()))));
        }
    }
    // Most of what is made has a word in it, or this would prove little.
    QVERIFY(expressions > attempts / 2);
}

void SearchExpressionTest::operatorsTypedAreWords()
{
    Index index;
    const auto matches = [&index](const QString& typed) {
        return index.matches(*HistoryStore::searchExpression(typed));
    };
    QCOMPARE(matches(u"some words"_s), 1);
    QCOMPARE(matches(u"some OR nothing"_s), 0);
    QCOMPARE(matches(u"some NOT nothing"_s), 0);
    QCOMPARE(matches(u"NEAR(some words)"_s), 0);
    QCOMPARE(matches(u"title:some"_s), 0);
    QCOMPARE(matches(u"^some"_s), 1);
    QCOMPARE(matches(u"\"words some\""_s), 1);
}

void SearchExpressionTest::aPageOfTextIsAnExpression()
{
    // Somebody pastes a page into the field.
    Index index;
    QString page;
    for (int word = 0; word < 3000; ++word)
        page += u"word%1 bin "_s.arg(word);
    QCOMPARE(index.matches(*HistoryStore::searchExpression(page)), 0);
    QCOMPARE(index.matches(*HistoryStore::searchExpression(u"some words "_s.repeated(1500))), 1);
}

QTEST_GUILESS_MAIN(SearchExpressionTest)
#include "SearchExpressionTest.moc"
