// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/OldLibraries.h"
#include "tests/Core/Library/RawSql.h"
#include "tests/Core/Library/SqlWatch.h"

#include <algorithm>

using namespace mossbank;
using namespace Qt::StringLiterals;

/// What is looked up for a question, and by identity.
class CandidatesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void anyWordMayMatchAndTheBestComesFirst();
    void aWordInTheTitleOrTheAddressTellsMore();
    void aQuestionWithoutAWordFindsNothingAndAsksNothing();
    void shortWordsAloneAreLookedForAllTheSame();
    void dayAndApplicationNarrow();
    void theLimitIsHeldWithinBounds();
    void everythingKnownIsHandedBack();
    void identitiesAreFoundInTheOrderGiven();
    void identitiesWithoutARowAreLeftOut();
    void onlyTheFirstFiveHundredIdentitiesCount();
    void noIdentitiesAskNothing();
    void anOlderLibraryHasNeitherTitleNorAddress_data();
    void anOlderLibraryHasNeitherTitleNorAddress();

private:
    void save(const Memory& memory) { m_store->save(memory, "jpeg").waitForFinished(); }
    void save(const QString& id, const QString& text, double time = 1)
    {
        Memory memory = sampleMemory(id);
        memory.text = text;
        memory.timestamp = {time};
        memory.title.clear();
        memory.link.clear();
        save(memory);
    }
    QStringList found(HistoryStore::CandidatesRequest request)
    {
        return ids(m_store->candidates(std::move(request)).result());
    }
    static Calendar utc() { return {QTimeZone::utc(), QLocale::c()}; }

    std::unique_ptr<LibraryFolder> m_folder;
    std::unique_ptr<HistoryStore> m_store;
};

void CandidatesTest::init()
{
    m_store.reset();
    m_folder = std::make_unique<LibraryFolder>();
    m_store = std::make_unique<HistoryStore>(
        HistoryStore::Writing{.root = m_folder->root(), .calendar = utc});
}

void CandidatesTest::anyWordMayMatchAndTheBestComesFirst()
{
    save(u"NEITHER"_s, u"bark and leaves"_s);
    save(u"ONE"_s, u"green things and many other words that tell nothing of it"_s);
    save(u"BOTH"_s, u"green moss"_s);
    QCOMPARE(found({.question = u"Where was the green moss?"_s, .limit = 9}),
             (QStringList{u"BOTH"_s, u"ONE"_s}));
    QCOMPARE(found({.question = u"mos"_s, .limit = 9}), QStringList{u"BOTH"_s});
}

void CandidatesTest::aWordInTheTitleOrTheAddressTellsMore()
{
    Memory text = sampleMemory(u"TEXT"_s);
    text.text = u"moss"_s;
    text.title = text.link = u"other"_s;
    Memory link = text;
    link.id = u"LINK"_s;
    link.filename = u"link.jpg"_s;
    link.text = u"other"_s;
    link.link = u"moss"_s;
    Memory title = text;
    title.id = u"TITLE"_s;
    title.filename = u"title.jpg"_s;
    title.text = u"other"_s;
    title.title = u"moss"_s;
    for (const Memory& memory : {text, link, title})
        save(memory);
    QCOMPARE(found({.question = u"moss"_s, .limit = 9}),
             (QStringList{u"TITLE"_s, u"LINK"_s, u"TEXT"_s}));
}

void CandidatesTest::aQuestionWithoutAWordFindsNothingAndAsksNothing()
{
    save(u"A"_s, u"a b ?"_s);
    m_store.reset();
    SqlWatch watch;
    m_store = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = m_folder->root()});
    watch.take();
    QCOMPARE(found({.question = u"a ? b"_s, .limit = 9}), QStringList{});
    QCOMPARE(watch.take(), QStringList{});
}

void CandidatesTest::shortWordsAloneAreLookedForAllTheSame()
{
    save(u"A"_s, u"it is on"_s);
    QCOMPARE(found({.question = u"is it on?"_s, .limit = 9}), QStringList{u"A"_s});
    QCOMPARE(found({.question = u"what is the"_s, .limit = 9}), QStringList{u"A"_s});
}

void CandidatesTest::dayAndApplicationNarrow()
{
    constexpr double kDay = 86'400;
    save(u"EVE"_s, u"moss"_s, kDay - 0.5);
    save(u"FIRST"_s, u"moss"_s, kDay);
    save(u"LAST"_s, u"moss"_s, 2 * kDay - 0.5);
    save(u"NEXT"_s, u"moss"_s, 2 * kDay);
    Memory other = sampleMemory(u"OTHER"_s);
    other.text = u"moss"_s;
    other.timestamp = {kDay + 1};
    other.appName = u"Reader"_s;
    save(other);
    const auto sorted = [this](HistoryStore::CandidatesRequest request) {
        QStringList list = found(std::move(request));
        list.sort();
        return list;
    };
    QCOMPARE(sorted({.question = u"moss"_s, .day = Date{kDay + 600}, .limit = 9}),
             (QStringList{u"FIRST"_s, u"LAST"_s, u"OTHER"_s}));
    QCOMPARE(sorted({.question = u"moss"_s, .app = u"Reader"_s, .limit = 9}),
             QStringList{u"OTHER"_s});
    QCOMPARE(sorted({.question = u"moss"_s, .day = Date{0}, .app = u"Reader"_s, .limit = 9}),
             QStringList{});
    // Beyond the calendar's reach no day narrows.
    QCOMPARE(sorted({.question = u"moss"_s, .day = Date{1e300}, .limit = 9}).size(), 5);
}

void CandidatesTest::theLimitIsHeldWithinBounds()
{
    RawSql sql(m_folder->database());
    sql.run(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 250) "
            "INSERT INTO memories SELECT i, i, 'Editor', '', 'moss', i || '.jpg', 1, '', '' "
            "FROM n"_s);
    QCOMPARE(found({.question = u"moss"_s, .limit = 1000}).size(), 200);
    QCOMPARE(found({.question = u"moss"_s, .limit = 200}).size(), 200);
    QCOMPARE(found({.question = u"moss"_s, .limit = 7}).size(), 7);
    QCOMPARE(found({.question = u"moss"_s, .limit = 0}).size(), 1);
    QCOMPARE(found({.question = u"moss"_s, .limit = -5}).size(), 1);
}

void CandidatesTest::everythingKnownIsHandedBack()
{
    Memory memory = sampleMemory(u"A"_s);
    save(memory);
    memory.bytes = 4;
    QCOMPARE(m_store->candidates({.question = u"words"_s, .limit = 1}).result(),
             QList<Memory>{memory});
    QCOMPARE(m_store->memories({u"A"_s}).result(), QList<Memory>{memory});
}

void CandidatesTest::identitiesAreFoundInTheOrderGiven()
{
    for (const QString& id : {u"A"_s, u"B"_s, u"C"_s})
        save(id, u"moss"_s);
    const QStringList order = {u"C"_s, u"A"_s, u"B"_s, u"A"_s};
    QCOMPARE(ids(m_store->memories(order).result()), order);
}

void CandidatesTest::identitiesWithoutARowAreLeftOut()
{
    save(u"A"_s, u"moss"_s);
    QCOMPARE(ids(m_store->memories({u"X"_s, u"A"_s, u""_s, u"a"_s}).result()), QStringList{u"A"_s});
}

void CandidatesTest::onlyTheFirstFiveHundredIdentitiesCount()
{
    RawSql sql(m_folder->database());
    sql.run(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 600) "
            "INSERT INTO memories SELECT i, i, 'Editor', '', 'moss', i || '.jpg', 1, '', '' "
            "FROM n"_s);
    QStringList wanted;
    for (int number = 600; number > 0; --number)
        wanted.append(QString::number(number));
    QCOMPARE(ids(m_store->memories(wanted).result()), wanted.first(500));
}

void CandidatesTest::noIdentitiesAskNothing()
{
    m_store.reset();
    SqlWatch watch;
    m_store = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = m_folder->root()});
    watch.take();
    QVERIFY(m_store->memories({}).result().isEmpty());
    QCOMPARE(watch.take(), QStringList{});
}

void CandidatesTest::anOlderLibraryHasNeitherTitleNorAddress_data()
{
    QTest::addColumn<int>("version");
    for (const int version : {2, 3, 4})
        QTest::addRow("%d", version) << version;
}

void CandidatesTest::anOlderLibraryHasNeitherTitleNorAddress()
{
    QFETCH(int, version);
    const LibraryFolder folder;
    QVERIFY(putOldDatabase(version, folder));
    HistoryStore reader(HistoryStore::ReadingOnly{folder.root()});
    const QList<Memory> rows = oldMemories(version);
    for (const auto& [word, id] : tellingWords()) {
        const auto row = std::ranges::find(rows, id, &Memory::id);
        QVERIFY(row != rows.end());
        QCOMPARE(reader.candidates({.question = word, .limit = 9}).result(), QList<Memory>{*row});
        QCOMPARE(reader.memories({id}).result(), QList<Memory>{*row});
    }
    QCOMPARE(reader.candidates({.question = u"lighthouses"_s, .limit = 9}).result().first().title,
             version < kFirstVersionWithTitles ? QString() : u"Lighthouses"_s);
}

QTEST_GUILESS_MAIN(CandidatesTest)
#include "CandidatesTest.moc"
