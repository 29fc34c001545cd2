// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/FilledLibrary.h"

#include <QElapsedTimer>

using namespace mossbank;
using namespace Qt::StringLiterals;

/// A search whose result nobody wants any more gets out of the way.
class OvertakenSearchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aRunningSearchEndsSoon_data();
    void aRunningSearchEndsSoon();
    void aWaitingSearchIsNotBegun();
    void whatWritesIsDoneWhateverBecomesOfItsFuture();
    void theSearchAfterItIsWhole();

private:
    /// A search that takes long: every row is matched and sorted by rank.
    QFuture<QList<Memory>> slowSearch()
    {
        return m_store->candidates({.question = u"moss fern bark leaf root"_s, .limit = 200});
    }

    LibraryFolder m_folder;
    std::unique_ptr<HistoryStore> m_store;
    qint64 m_wholeSearch = 0;
};

void OvertakenSearchTest::initTestCase()
{
    m_store = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = m_folder.root()});
    RawSql(m_folder.database())
        .run(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 40000) "
             "INSERT INTO memories SELECT i, i, 'Editor', '', "
             "'moss fern bark leaf root stem seed ' || i, i || '.jpg', 1, '', '' FROM n"_s);
    QElapsedTimer watch;
    watch.start();
    QCOMPARE(slowSearch().result().size(), 200);
    m_wholeSearch = watch.elapsed();
}

void OvertakenSearchTest::aRunningSearchEndsSoon_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("candidates") << 0;
    QTest::newRow("counts") << 1;
    QTest::newRow("list") << 2;
}

void OvertakenSearchTest::aRunningSearchEndsSoon()
{
    QFETCH(int, kind);
    // One that is not given up shows how long the queue would be held.
    std::vector<QFuture<void>> searches;
    for (int round = 0; round < 50; ++round) {
        switch (kind) {
        case 0:
            searches.emplace_back(slowSearch());
            break;
        case 1:
            searches.emplace_back(m_store->dayCounts({.query = u"mo fe ba le ro"_s}));
            break;
        default:
            searches.emplace_back(
                m_store->fetch({.query = u"mo fe ba le ro"_s, .limit = 86'400, .withText = true}));
        }
    }
    QTest::qSleep(5);
    QElapsedTimer watch;
    watch.start();
    for (QFuture<void>& search : searches)
        search.cancel();
    m_store->memories({u"1"_s}).waitForFinished();
    const qint64 until = watch.elapsed();
    QVERIFY(searches.back().isCanceled());
    QVERIFY2(until < std::max<qint64>(m_wholeSearch, 50), qPrintable(QString::number(until)));
}

void OvertakenSearchTest::aWaitingSearchIsNotBegun()
{
    auto running = slowSearch();
    auto waiting = slowSearch();
    waiting.cancel();
    QCOMPARE(running.result().size(), 200);
    waiting.waitForFinished();
    QCOMPARE(waiting.resultCount(), 0);
}

void OvertakenSearchTest::whatWritesIsDoneWhateverBecomesOfItsFuture()
{
    auto running = slowSearch();
    auto saving = m_store->save(sampleMemory(u"SAVED"_s), "jpeg");
    saving.cancel();
    running.waitForFinished();
    saving.waitForFinished();
    QCOMPARE(ids(m_store->memories({u"SAVED"_s}).result()), QStringList{u"SAVED"_s});
}

void OvertakenSearchTest::theSearchAfterItIsWhole()
{
    auto overtaken = slowSearch();
    QTest::qSleep(2);
    overtaken.cancel();
    QCOMPARE(slowSearch().result().size(), 200);
    m_store->deleteMemory(u"77"_s).waitForFinished();
    QCOMPARE(ids(m_store->memories({u"77"_s}).result()), QStringList{});
}

QTEST_GUILESS_MAIN(OvertakenSearchTest)
#include "OvertakenSearchTest.moc"
