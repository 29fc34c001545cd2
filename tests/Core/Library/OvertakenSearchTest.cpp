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

    static inline const QString kWords = u"mo fe ba le ro"_s;

    LibraryFolder m_folder;
    std::unique_ptr<HistoryStore> m_store;
};

void OvertakenSearchTest::initTestCase()
{
    m_store = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = m_folder.root()});
    RawSql(m_folder.database())
        .run(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 200000) "
             "INSERT INTO memories SELECT i, i, 'Editor', '', "
             "'moss fern bark leaf root stem seed ' || i, i || '.jpg', 1, '', '' FROM n"_s);
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
    const auto begin = [&]() -> QFuture<void> {
        switch (kind) {
        case 0:
            return QFuture<void>(slowSearch());
        case 1:
            return QFuture<void>(m_store->dayCounts({.query = kWords}));
        default:
            return QFuture<void>(
                m_store->fetch({.query = kWords, .limit = 86'400, .withText = true}));
        }
    };
    QElapsedTimer watch;
    watch.start();
    begin().waitForFinished();
    const qint64 whole = watch.elapsed();
    // At several moments of it.
    for (const qint64 part : {10, 4, 2}) {
        QFuture<void> search = begin();
        QTest::qSleep(static_cast<int>(whole / part));
        watch.start();
        search.cancel();
        m_store->memories({u"1"_s}).waitForFinished();
        const qint64 until = watch.elapsed();
        // On a busy machine everything takes its time; what is left of the search takes longer.
        const qint64 most = std::max<qint64>(50, whole / 3);
        QVERIFY2(until <= most, qPrintable(u"%1 ms of %2"_s.arg(until).arg(whole)));
    }
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
