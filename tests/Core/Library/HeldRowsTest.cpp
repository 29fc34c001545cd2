// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/HeldRows.h"

#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/RawSql.h"

#include <memory>
#include <utility>

using namespace mossbank;
using namespace Qt::StringLiterals;

/// A list that is made anew shares what is still in it with the one before.
class HeldRowsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void whatIsHeldIsSharedAndNotReadAgain();
    void whatIsHeldIsOfNoUseToAListWithoutText();
    void ofVeryManyOfOneTimeTheNextAreLookedThrough();
    void veryManyOfOneTimeAreListedAsTheyAre();
    void aListOutOfOrderIsOfLittleUseAndDoesNoHarm();

private:
    static Memory at(const QString& id, double time)
    {
        Memory memory = sampleMemory(id);
        memory.timestamp = {time};
        return memory;
    }
    void save(const QString& id, double time)
    {
        Memory memory = sampleMemory(id);
        memory.timestamp = {time};
        m_store->save(memory, "jpeg").waitForFinished();
    }

    std::unique_ptr<LibraryFolder> m_folder;
    std::unique_ptr<HistoryStore> m_store;
};

void HeldRowsTest::init()
{
    m_store.reset();
    m_folder = std::make_unique<LibraryFolder>();
    m_store = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = m_folder->root()});
}

void HeldRowsTest::whatIsHeldIsSharedAndNotReadAgain()
{
    // Two of one time; the last of all is of another later.
    for (const auto& [id, time] : {std::pair(u"A"_s, 1), {u"B"_s, 2}, {u"C"_s, 2}, {u"D"_s, 3}})
        save(id, time);
    const HistoryStore::FetchRequest request = {.limit = 9, .withText = true};
    QList<Memory> held = m_store->fetch(request).result();
    QCOMPARE(ids(held), (QStringList{u"D"_s, u"C"_s, u"B"_s, u"A"_s}));
    save(u"NEW"_s, 2.5);
    save(u"ALSO NEW"_s, 2);
    m_store->deleteMemory(u"C"_s).waitForFinished();
    RawSql(m_folder->database())
        .run(u"UPDATE memories SET bytes = 99 WHERE id = 'B';"
             "UPDATE memories SET timestamp = 0 WHERE id = 'A'"_s);
    HistoryStore::FetchRequest again = request;
    again.held = held;
    const QList<Memory> shared = m_store->fetch(again).result();
    QCOMPARE(shared, m_store->fetch(request).result());
    QCOMPARE(ids(shared), (QStringList{u"D"_s, u"NEW"_s, u"ALSO NEW"_s, u"B"_s, u"A"_s}));
    QCOMPARE(shared.at(3).bytes, 99);
    const auto isShared = [](const Memory& one, const Memory& other) {
        return one.text.constData() == other.text.constData() &&
               one.filename.constData() == other.filename.constData();
    };
    QVERIFY(isShared(shared.at(0), held.at(0)));
    QVERIFY(isShared(shared.at(3), held.at(2)));
    QVERIFY(!isShared(shared.at(4), held.at(3)));
    QCOMPARE(held.at(2).bytes, 4);
}

void HeldRowsTest::whatIsHeldIsOfNoUseToAListWithoutText()
{
    save(u"A"_s, 1);
    const QList<Memory> held = m_store->fetch({.limit = 1, .withText = true}).result();
    QCOMPARE(m_store->fetch({.limit = 1, .held = held}).result().first().text, QString());
}

void HeldRowsTest::ofVeryManyOfOneTimeTheNextAreLookedThrough()
{
    QList<Memory> rows;
    for (int number = 0; number < 80; ++number)
        rows.append(at(QString::number(number), 5));
    const auto isFound = [](HeldRows& held, int number) {
        const Memory* const found = held.find(QString::number(number), {5});
        return found && found->id == QString::number(number);
    };
    HeldRows held(rows);
    QVERIFY(!isFound(held, 32));
    QVERIFY(isFound(held, 31));
    QVERIFY(!isFound(held, 31 + 33));
    QVERIFY(isFound(held, 31 + 32));
    for (int number = 64; number < 80; ++number)
        QVERIFY(isFound(held, number));
    QVERIFY(!isFound(held, 79));
}

void HeldRowsTest::veryManyOfOneTimeAreListedAsTheyAre()
{
    for (int number = 0; number < 40; ++number)
        save(QString::number(number), 5);
    const HistoryStore::FetchRequest request = {.limit = 99, .withText = true};
    HistoryStore::FetchRequest again = request;
    again.held = m_store->fetch(request).result();
    QCOMPARE(again.held.size(), 40);
    // Those that are left stand behind more than are looked through.
    for (int number = 5; number < 40; ++number)
        m_store->deleteMemory(QString::number(number)).waitForFinished();
    const QList<Memory> left = m_store->fetch(again).result();
    QCOMPARE(ids(left), (QStringList{u"4"_s, u"3"_s, u"2"_s, u"1"_s, u"0"_s}));
    QCOMPARE(left, m_store->fetch(request).result());
}

void HeldRowsTest::aListOutOfOrderIsOfLittleUseAndDoesNoHarm()
{
    for (const auto& [id, time] : {std::pair(u"A"_s, 1), {u"B"_s, 2}, {u"C"_s, 3}, {u"D"_s, 4}})
        save(id, time);
    const HistoryStore::FetchRequest request = {.limit = 9, .withText = true};
    const QList<Memory> expected = m_store->fetch(request).result();
    HistoryStore::FetchRequest again = request;
    for (const QList<int>& order :
         {QList{3, 2, 1, 0}, QList{1, 0, 3, 2}, QList{0, 0, 3, 3}, QList{2, 1, 0, 3}}) {
        again.held.clear();
        for (const int place : order)
            again.held.append(expected.at(place));
        QCOMPARE(m_store->fetch(again).result(), expected);
    }
    // D stands behind an older one, and is not come upon in its time.
    HeldRows held({at(u"C"_s, 3), at(u"D"_s, 4), at(u"A"_s, 1)});
    QVERIFY(!held.find(u"D"_s, {4}));
    QVERIFY(held.find(u"C"_s, {3}));
    QVERIFY(!held.find(u"B"_s, {2}));
    QVERIFY(held.find(u"A"_s, {1}));
    QVERIFY(!held.find(u"A"_s, {1}));
}

QTEST_GUILESS_MAIN(HeldRowsTest)
#include "HeldRowsTest.moc"
