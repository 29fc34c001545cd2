// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/SmallerSteps.h"

#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/RawSql.h"

#include <memory>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

QString beginningWith(QStringView letter)
{
    return u"\"%1\"*"_s.arg(letter);
}

} // namespace

/// An expression in smaller steps finds what it found before.
class SmallerStepsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aLetterIsAskedForByWhatFollowsIt();
    void aLetterThatNoWordBeginsWithIsAskedForAlone();
    void everyLetterFindsWhatItFoundBefore();
    void whatFollowsMayBeOfAnyScript();
    void longerWordsStayAsTheyAre();
    void expressionsKeepTheirShape();
    void tooManyBeginningsAreNotListed();
    void anIndexThatIsMissingChangesNothing();

private:
    void add(const QStringList& texts);
    QString smaller(const QString& expression) { return inSmallerSteps(*m_database, expression); }
    QStringList matches(const QString& expression)
    {
        return m_sql->rows(u"SELECT rowid FROM memory_search WHERE memory_search MATCH ?"_s,
                           {expression});
    }

    LibraryFolder m_folder;
    std::unique_ptr<RawSql> m_sql;
    std::optional<Database> m_database;
};

void SmallerStepsTest::init()
{
    const QString path = m_folder.beside(u"index"_s);
    m_database.reset();
    m_sql.reset();
    QFile::remove(path);
    m_sql = std::make_unique<RawSql>(path);
    m_sql->run(u"PRAGMA synchronous=OFF"_s); // there is nothing to lose
    m_sql->run(u"CREATE VIRTUAL TABLE memory_search USING fts5(text, tokenize='unicode61')"_s);
    m_database = Database::open(path, Database::Access::ReadWrite);
    QVERIFY(m_database);
}

void SmallerStepsTest::add(const QStringList& texts)
{
    for (const QString& text : texts)
        m_sql->rows(u"INSERT INTO memory_search(text) VALUES (?)"_s, {text});
}

void SmallerStepsTest::aLetterIsAskedForByWhatFollowsIt()
{
    add({u"fern"_s, u"fog"_s, u"Food"_s, u"f"_s, u"moss"_s, u"fı"_s});
    QCOMPARE(smaller(beginningWith(u"f")), u"(\"f\" OR \"fe\"* OR \"fo\"* OR \"fı\"*)"_s);
}

void SmallerStepsTest::aLetterThatNoWordBeginsWithIsAskedForAlone()
{
    add({u"fern"_s});
    QCOMPARE(smaller(beginningWith(u"e")), u"(\"e\")"_s);
    QCOMPARE(smaller(beginningWith(u"z")), u"(\"z\")"_s);
}

void SmallerStepsTest::everyLetterFindsWhatItFoundBefore()
{
    constexpr char16_t kFirst = u'0';
    constexpr char16_t kLast = u'\u024F';
    QStringList letters;
    for (char16_t letter = kFirst; letter <= kLast; ++letter) {
        if (QChar(letter).isLetterOrNumber())
            letters.append(QString(letter).toLower());
    }
    letters.removeDuplicates();
    QVERIFY(letters.size() > 250);
    for (const QString& letter : std::as_const(letters))
        add({letter, letter + u'x', letter + u"ğe"_s, u"a"_s + letter});

    qsizetype inSteps = 0;
    for (const QString& letter : std::as_const(letters)) {
        const QString before = beginningWith(letter);
        const QString after = smaller(before);
        inSteps += after == before ? 0 : 1;
        QVERIFY2(matches(before).contains(matches(u"\"%1\""_s.arg(letter)).first()),
                 qPrintable(letter));
        QVERIFY2(matches(after) == matches(before), qPrintable(letter));
    }
    // The 36 plain ones, Turkish letters and all others that are plain ones with a mark.
    QVERIFY2(inSteps > 100, qPrintable(QString::number(inSteps)));
    for (const QString& turkish : {u"ç"_s, u"ğ"_s, u"ı"_s, u"ö"_s, u"ş"_s, u"ü"_s})
        QVERIFY2(smaller(beginningWith(turkish)) != beginningWith(turkish), qPrintable(turkish));
}

void SmallerStepsTest::whatFollowsMayBeOfAnyScript()
{
    add({u"aж"_s, u"a中文"_s, u"a\U00010400b"_s, u"a\U00010400c"_s, u"ab"_s});
    const QString after = smaller(beginningWith(u"a"));
    QCOMPARE(after.count(u'*'), 4);
    QCOMPARE(matches(after).size(), 5);
}

void SmallerStepsTest::longerWordsStayAsTheyAre()
{
    add({u"fern"_s, u"文"_s});
    QCOMPARE(smaller(u"\"fe\"* AND \"fern\"*"_s), u"\"fe\"* AND \"fern\"*"_s);
    QCOMPARE(smaller(beginningWith(u"文")), beginningWith(u"文"));
}

void SmallerStepsTest::expressionsKeepTheirShape()
{
    add({u"fern in moss"_s, u"fern"_s, u"fern ırmak"_s, u"moss"_s});
    const QString before = u"\"fe\"* AND (\"i\"* OR \"ı\"*) AND \"f\"*"_s;
    const QString after = smaller(before);
    QCOMPARE(after, u"\"fe\"* AND ((\"i\" OR \"in\"*) OR (\"ı\" OR \"ır\"*)) AND "
                    "(\"f\" OR \"fe\"*)"_s);
    QCOMPARE(matches(after), (QStringList{u"1"_s, u"3"_s}));
}

void SmallerStepsTest::tooManyBeginningsAreNotListed()
{
    constexpr char16_t kIdeographs = u'\u4e00';
    QStringList texts;
    for (char16_t letter = kIdeographs; letter < kIdeographs + 100; ++letter)
        texts.append(QString(u'a') + letter);
    add(texts.first(99));
    QCOMPARE(smaller(beginningWith(u"a")).count(u'*'), 99);
    add({texts.last(), u"am"_s});
    QCOMPARE(smaller(beginningWith(u"a")), beginningWith(u"a"));
}

void SmallerStepsTest::anIndexThatIsMissingChangesNothing()
{
    m_sql->run(u"DROP TABLE memory_search"_s);
    QCOMPARE(smaller(u"\"fern\"*"_s), u"\"fern\"*"_s);
    QVERIFY_THROWS_EXCEPTION(StoreError, smaller(beginningWith(u"f")));
}

QTEST_GUILESS_MAIN(SmallerStepsTest)
#include "SmallerStepsTest.moc"
