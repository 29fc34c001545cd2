// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/RawSql.h"
#include "tests/Core/Library/SqlWatch.h"

#include <algorithm>
#include <functional>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

Calendar berlin()
{
    return {QTimeZone("Europe/Berlin"), QLocale::c()};
}

} // namespace

class FetchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void newestComesFirst();
    void ofEqualTimesTheLaterSavedComesFirst();
    void aBlankQueryListsEverything();
    void typedSignsWithoutAWordMatchNothingAndAskNothing();
    void everyWordHasToBeThere();
    void titleLinkAndApplicationAreSearchedToo();
    void textIsReadOnlyWhenAskedFor();
    void turkishIsFoundHoweverTyped_data();
    void turkishIsFoundHoweverTyped();
    void aTextTakesNoMoreRoomThanItNeeds();
    void aDayLeavesItsEndOut();
    void aDayIsSearchedWhereverItsRowsLie();
    void aDaySearchesItsOwnRowsAlone();
    void aDayOfTheClockChangeIsFetchedWhole();
    void aDayBeyondTheCalendarDoesNotNarrow();
    void applicationsAreComparedToTheLetter();
    void conditionsAreJoined();
    void theLimitIsHeldWithinBounds();
    void theWayToTheRowsIsTheQuickerOne();
    void aLetterIsAskedForInSmallSteps();
    void fewAndManyComeInTheSameOrder();
    void aFailingQueryIsSqlitesSentence();

private:
    void save(const QString& id, double time, const QString& text,
              const QString& app = u"Editor"_s);
    /// Puts so many rows of that text into the library, one a second.
    void fillWith(const QString& text, int count);
    QStringList found(HistoryStore::FetchRequest request)
    {
        return ids(m_store->fetch(std::move(request)).result());
    }

    std::unique_ptr<LibraryFolder> m_folder;
    std::unique_ptr<HistoryStore> m_store;
};

void FetchTest::init()
{
    m_store.reset();
    m_folder = std::make_unique<LibraryFolder>();
    m_store = std::make_unique<HistoryStore>(
        HistoryStore::Writing{.root = m_folder->root(), .calendar = berlin});
}

void FetchTest::save(const QString& id, double time, const QString& text, const QString& app)
{
    Memory memory = sampleMemory(id);
    memory.timestamp = {time};
    memory.text = text;
    memory.appName = app;
    m_store->save(memory, "jpeg").waitForFinished();
}

void FetchTest::newestComesFirst()
{
    save(u"MIDDLE"_s, 200, u"moss"_s);
    save(u"OLD"_s, -100, u"moss moss moss"_s);
    save(u"NEW"_s, 300.5, u"a word about moss"_s);
    const QStringList expected = {u"NEW"_s, u"MIDDLE"_s, u"OLD"_s};
    QCOMPARE(found({.limit = 9}), expected);
    // Not the one with the word three times.
    QCOMPARE(found({.query = u"moss"_s, .limit = 9}), expected);
    QCOMPARE(found({.query = u"moss"_s, .limit = 2}), expected.first(2));
}

void FetchTest::ofEqualTimesTheLaterSavedComesFirst()
{
    for (const QString& id : {u"C"_s, u"A"_s, u"B"_s})
        save(id, 100, u"moss"_s);
    const QStringList expected = {u"B"_s, u"A"_s, u"C"_s};
    QCOMPARE(found({.limit = 9}), expected);
    QCOMPARE(found({.query = u"moss"_s, .limit = 9}), expected);
}

void FetchTest::aBlankQueryListsEverything()
{
    save(u"A"_s, 1, u"moss"_s);
    for (const QString& blank : {u""_s, u"   "_s, u"\n\t \u00a0"_s})
        QCOMPARE(found({.query = blank, .limit = 9}), QStringList{u"A"_s});
}

void FetchTest::typedSignsWithoutAWordMatchNothingAndAskNothing()
{
    save(u"A"_s, 1, u"moss !!!"_s);
    m_store.reset();
    SqlWatch watch;
    m_store = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = m_folder->root()});
    watch.take();
    QCOMPARE(found({.query = u"!!!"_s, .limit = 9}), QStringList{});
    QCOMPARE(watch.take(), QStringList{});
}

void FetchTest::everyWordHasToBeThere()
{
    save(u"A"_s, 1, u"green moss"_s);
    save(u"B"_s, 2, u"green fern"_s);
    QCOMPARE(found({.query = u"green moss"_s, .limit = 9}), QStringList{u"A"_s});
    QCOMPARE(found({.query = u"MOSS Gre"_s, .limit = 9}), QStringList{u"A"_s});
    QCOMPARE(found({.query = u"green"_s, .limit = 9}), (QStringList{u"B"_s, u"A"_s}));
    QCOMPARE(found({.query = u"moss fern"_s, .limit = 9}), QStringList{});
    QCOMPARE(found({.query = u"oss"_s, .limit = 9}), QStringList{});
}

void FetchTest::titleLinkAndApplicationAreSearchedToo()
{
    save(u"A"_s, 1, u"moss"_s, u"Browser"_s);
    QCOMPARE(found({.query = u"brows moss notes.txt example.org"_s, .limit = 9}),
             QStringList{u"A"_s});
    // The identity is in the table and not in the index.
    QCOMPARE(found({.query = u"A.jpg"_s, .limit = 9}), QStringList{});
}

void FetchTest::textIsReadOnlyWhenAskedFor()
{
    save(u"A"_s, 1, u"moss"_s);
    QCOMPARE(m_store->fetch({.limit = 1, .withText = true}).result().first().text, u"moss"_s);
    const Memory light = m_store->fetch({.limit = 1}).result().first();
    QCOMPARE(light.text, QString());
    QCOMPARE(light.title, u"notes.txt"_s);
}

void FetchTest::turkishIsFoundHoweverTyped_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("typed");
    QTest::newRow("ka") << u"bir kağıt"_s << u"ka"_s;
    QTest::newRow("kagit") << u"bir kağıt"_s << u"kagit"_s;
    QTest::newRow("kirmizi") << u"kırmızı"_s << u"kirmizi"_s;
    QTest::newRow("KIRMIZI") << u"kırmızı"_s << u"KIRMIZI"_s;
    QTest::newRow("kırmızı for kirmizi") << u"kirmizi"_s << u"kırmızı"_s;
    QTest::newRow("istanbul") << u"İstanbul"_s << u"istanbul"_s;
    QTest::newRow("İSTANBUL") << u"İstanbul"_s << u"İSTANBUL"_s;
    QTest::newRow("ISTANBUL") << u"İstanbul"_s << u"ISTANBUL"_s;
    QTest::newRow("İSTANBUL for small letters") << u"istanbul"_s << u"İSTANBUL"_s;
    QTest::newRow("ist") << u"İstanbul"_s << u"ist"_s;
    QTest::newRow("an accent written apart") << u"cafe\u0301"_s << u"café"_s;
    QTest::newRow("an accent left away") << u"résumé"_s << u"resu"_s;
}

void FetchTest::turkishIsFoundHoweverTyped()
{
    QFETCH(QString, text);
    QFETCH(QString, typed);
    save(u"A"_s, 1, text);
    save(u"B"_s, 2, u"something else"_s);
    QCOMPARE(found({.query = typed, .limit = 9}), QStringList{u"A"_s});
}

void FetchTest::aTextTakesNoMoreRoomThanItNeeds()
{
    constexpr qsizetype kLength = 1000;
    for (const QChar letter : {u'a', u'ä', u'漢'}) {
        save(letter, letter.unicode(), QString(kLength, letter));
        const Memory memory = m_store->fetch({.limit = 1, .withText = true}).result().first();
        QCOMPARE(memory.text, QString(kLength, letter));
        QVERIFY2(memory.text.capacity() <= kLength * 5 / 4,
                 qPrintable(QString::number(memory.text.capacity())));
    }
}

void FetchTest::aDayIsSearchedWhereverItsRowsLie()
{
    const Date day = *berlin().startOfDay(2024, 5, 17);
    const double noon = day.secondsSince1970 + 43'200;
    constexpr double kDay = 86'400;
    save(u"OLDER"_s, noon - kDay, u"moss"_s);
    save(u"FIRST"_s, noon, u"moss"_s);
    save(u"BETWEEN"_s, noon + kDay, u"moss"_s);
    save(u"OTHER"_s, noon + 1, u"fern"_s);
    save(u"LAST"_s, noon - 1, u"moss"_s);
    save(u"NEWER"_s, noon + kDay, u"moss"_s);
    QCOMPARE(found({.query = u"moss"_s, .day = day, .limit = 9}),
             (QStringList{u"FIRST"_s, u"LAST"_s}));
    QCOMPARE(found({.query = u"m"_s, .day = day, .limit = 9}),
             (QStringList{u"FIRST"_s, u"LAST"_s}));
    QCOMPARE(found({.query = u"moss"_s, .day = day - kDay, .limit = 9}), QStringList{u"OLDER"_s});
    QCOMPARE(found({.query = u"moss"_s, .day = Date{qQNaN()}, .limit = 9}).size(), 5);
}

void FetchTest::aDaySearchesItsOwnRowsAlone()
{
    m_store.reset();
    SqlWatch watch;
    m_store = std::make_unique<HistoryStore>(
        HistoryStore::Writing{.root = m_folder->root(), .calendar = berlin});
    save(u"A"_s, 1, u"moss"_s);
    watch.take();
    const Date day = *berlin().startOfDay(2024, 5, 17);
    QCOMPARE(found({.query = u"moss"_s, .day = day, .limit = 9}), QStringList{});
    QVERIFY(!watch.take().join(u'\n').contains(u"MATCH"_s));
    save(u"B"_s, day.secondsSince1970, u"moss"_s);
    save(u"C"_s, day.secondsSince1970 + 1, u"moss"_s);
    save(u"D"_s, day.secondsSince1970 + 86'400, u"moss"_s);
    watch.take();
    QCOMPARE(found({.query = u"moss"_s, .day = day, .limit = 9}), (QStringList{u"C"_s, u"B"_s}));
    QVERIFY(watch.take().join(u'\n').contains(u"MATCH ? AND rowid BETWEEN 2 AND 3)"_s));
}

void FetchTest::aDayLeavesItsEndOut()
{
    const Date start = *berlin().startOfDay(2024, 5, 17);
    constexpr double kDay = 86'400;
    save(u"BEFORE"_s, start.secondsSince1970 - 0.001, u"moss"_s);
    save(u"FIRST"_s, start.secondsSince1970, u"moss"_s);
    save(u"LAST"_s, start.secondsSince1970 + kDay - 0.001, u"moss"_s);
    save(u"MIDNIGHT"_s, start.secondsSince1970 + kDay, u"moss"_s);
    const QStringList expected = {u"LAST"_s, u"FIRST"_s};
    QCOMPARE(found({.day = start + 1234.5, .limit = 9}), expected);
    QCOMPARE(found({.query = u"moss"_s, .day = start, .limit = 9}), expected);
    QCOMPARE(found({.day = start + kDay, .limit = 9}), QStringList{u"MIDNIGHT"_s});
    QCOMPARE(found({.day = start - 1, .limit = 9}), QStringList{u"BEFORE"_s});
}

void FetchTest::aDayOfTheClockChangeIsFetchedWhole()
{
    constexpr double kHour = 3600;
    const Date longDay = *berlin().startOfDay(2024, 10, 27);
    save(u"LAST"_s, longDay.secondsSince1970 + 25 * kHour - 1, u"moss"_s);
    save(u"NEXT"_s, longDay.secondsSince1970 + 25 * kHour, u"moss"_s);
    QCOMPARE(found({.day = longDay, .limit = 9}), QStringList{u"LAST"_s});
    const Date shortDay = *berlin().startOfDay(2024, 3, 31);
    save(u"SPRING"_s, shortDay.secondsSince1970 + 23 * kHour - 1, u"moss"_s);
    save(u"APRIL"_s, shortDay.secondsSince1970 + 23 * kHour, u"moss"_s);
    QCOMPARE(found({.day = shortDay, .limit = 9}), QStringList{u"SPRING"_s});
}

void FetchTest::aDayBeyondTheCalendarDoesNotNarrow()
{
    save(u"A"_s, 1, u"moss"_s);
    QCOMPARE(found({.day = Date{qQNaN()}, .limit = 9}), QStringList{u"A"_s});
}

void FetchTest::applicationsAreComparedToTheLetter()
{
    save(u"A"_s, 1, u"moss"_s, u"Editor"_s);
    save(u"B"_s, 2, u"moss"_s, u"editor"_s);
    save(u"C"_s, 3, u"moss"_s, u""_s);
    save(u"D"_s, 4, u"moss"_s, u"7"_s);
    QCOMPARE(found({.app = u"Editor"_s, .limit = 9}), QStringList{u"A"_s});
    QCOMPARE(found({.app = u""_s, .limit = 9}), QStringList{u"C"_s});
    QCOMPARE(found({.app = u"7"_s, .limit = 9}), QStringList{u"D"_s});
    QCOMPARE(found({.app = u"7.0"_s, .limit = 9}), QStringList{});
    QCOMPARE(found({.app = u"' OR '1'='1"_s, .limit = 9}), QStringList{});
}

void FetchTest::conditionsAreJoined()
{
    const Date day = *berlin().startOfDay(2024, 5, 17);
    const double noon = day.secondsSince1970 + 43'200;
    save(u"RIGHT"_s, noon, u"green moss"_s);
    save(u"OTHER WORD"_s, noon, u"green fern"_s);
    save(u"OTHER APP"_s, noon, u"green moss"_s, u"Browser"_s);
    save(u"OTHER DAY"_s, noon + 86'400, u"green moss"_s);
    QCOMPARE(found({.query = u"moss"_s, .day = day, .app = u"Editor"_s, .limit = 9}),
             QStringList{u"RIGHT"_s});
}

void FetchTest::theLimitIsHeldWithinBounds()
{
    RawSql(m_folder->database())
        .run(u"BEGIN;"
             "WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n WHERE x < 86405) "
             "INSERT INTO memories SELECT x, x, 'Editor', '', 'moss', x || '.jpg', 1, '', '' "
             "FROM n; COMMIT"_s);
    constexpr qsizetype kMost = 86'400;
    QCOMPARE(found({.limit = 100'000}).size(), kMost);
    QCOMPARE(found({.limit = std::numeric_limits<int>::max()}).size(), kMost);
    QCOMPARE(found({.query = u"moss"_s, .limit = 100'000}).size(), kMost);
    QCOMPARE(found({.limit = 86'399}).size(), kMost - 1);
    for (const int few : {1, 0, -1, std::numeric_limits<int>::min()})
        QCOMPARE(found({.limit = few}), QStringList{u"86405"_s});
}

void FetchTest::fillWith(const QString& text, int count)
{
    RawSql(m_folder->database())
        .rows(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "
              "INSERT INTO memories SELECT ?1 || i, i, 'Editor', '', ?1, i || '.jpg', 1, '', '' "
              "FROM n"_s.arg(count),
              {text});
}

void FetchTest::theWayToTheRowsIsTheQuickerOne()
{
    m_store.reset();
    SqlWatch watch;
    m_store = std::make_unique<HistoryStore>(
        HistoryStore::Writing{.root = m_folder->root(), .calendar = berlin});
    fillWith(u"moss fern"_s, 2000);
    fillWith(u"bark leaf"_s, 1999);
    fillWith(u"mossy"_s, 1);
    fillWith(u"oak"_s, 1);
    const auto planOf = [this, &watch](HistoryStore::FetchRequest request) {
        watch.take();
        m_store->fetch(std::move(request)).waitForFinished();
        const QStringList asked = watch.take();
        return asked.isEmpty() ? QString() : m_store->queryPlan(asked.last()).result();
    };
    const Date day = *berlin().startOfDay(2024, 5, 17);
    const QList<HistoryStore::FetchRequest> alongTheTimes = {
        {.limit = 500},
        {.query = u"moss"_s, .limit = 500},
        {.query = u"mos"_s, .limit = 500},
        {.query = u"fern moss"_s, .limit = 500, .withText = true},
        {.query = u"o"_s, .limit = 500},
        {.day = day, .limit = 500},
        {.query = u"oak"_s, .day = Date{1}, .limit = 500},
    };
    for (const HistoryStore::FetchRequest& request : alongTheTimes) {
        const QString plan = planOf(request);
        QVERIFY2(plan.contains(u"memories USING INDEX memories_time"_s), qPrintable(plan));
        QVERIFY2(!plan.contains(u"TEMP B-TREE"_s), qPrintable(plan));
    }
    // Few matches are looked up one by one: a walk would pass everything else.
    for (const QString& few : {u"oak"_s, u"bark"_s, u"leaf bark"_s, u"mossy"_s, u"moss oak"_s}) {
        const QString plan = planOf({.query = few, .limit = 500});
        QVERIFY2(plan.contains(u"memories USING INTEGER PRIMARY KEY"_s), qPrintable(plan));
    }
    // An index is there for the application alone; whichever SQLite takes, it reads no whole table.
    const QString byApp = planOf({.app = u"Editor"_s, .limit = 500});
    QVERIFY2(byApp.contains(u"USING INDEX memories_"_s), qPrintable(byApp));
}

void FetchTest::aLetterIsAskedForInSmallSteps()
{
    m_store.reset();
    SqlWatch watch;
    m_store = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = m_folder->root()});
    save(u"A"_s, 1, u"moss"_s);
    save(u"B"_s, 2, u"oak"_s);
    const auto looksWordsUp = [&watch] {
        return watch.take().join(u'\n').contains(u"indexed_words"_s);
    };
    watch.take();
    QCOMPARE(found({.query = u"M"_s}), QStringList{u"A"_s});
    QVERIFY(looksWordsUp());
    QCOMPARE(m_store->dayCounts({.query = u"o"_s}).result().size(), 1);
    QVERIFY(looksWordsUp());
    QCOMPARE(found({.query = u"mo"_s}), QStringList{u"A"_s});
    QVERIFY(!looksWordsUp());
}

void FetchTest::fewAndManyComeInTheSameOrder()
{
    fillWith(u"moss fern"_s, 2000);
    fillWith(u"bark"_s, 1999);
    for (const QString& word : {u"moss"_s, u"bark"_s}) {
        const QList<Memory> all = m_store->fetch({.query = word, .limit = 5000}).result();
        const bool isMany = word == u"moss";
        QCOMPARE(all.size(), isMany ? 2000 : 1999);
        QCOMPARE(all.first().id, isMany ? u"moss fern2000"_s : u"bark1999"_s);
        QVERIFY(std::ranges::is_sorted(all, std::greater(), &Memory::timestamp));
        QCOMPARE(found({.query = word, .limit = 3}), ids(all.first(3)));
    }
}

void FetchTest::aFailingQueryIsSqlitesSentence()
{
    save(u"A"_s, 1, u"moss"_s);
    RawSql(m_folder->database()).run(u"DROP TABLE memory_search"_s);
    QCOMPARE(failure<StoreError>([this] { found({.query = u"moss"_s, .limit = 9}); }),
             u"no such table: memory_search"_s);
    QCOMPARE(found({.limit = 9}), QStringList{u"A"_s});
    QCOMPARE(failure<StoreError>([this] { m_store->queryPlan(u"SELECT nowhere"_s).result(); }),
             u"no such column: nowhere"_s);
}

QTEST_GUILESS_MAIN(FetchTest)
#include "FetchTest.moc"
