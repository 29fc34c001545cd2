// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/FilledLibrary.h"
#include "tests/Core/Library/OldLibraries.h"
#include "tests/Core/Library/SqlWatch.h"

using namespace mossbank;
using namespace Qt::StringLiterals;

/// What models made of the screenshots, kept beside them.
class EmbeddingsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void theNewestAreReadFirst();
    void theLimitIsHeldWithinBounds();
    void whatOneModelReadAnotherHasNot();
    void whatWasSavedIsLoaded();
    void aSecondVectorTakesThePlaceOfTheFirst();
    void aScreenshotThatIsGoneIsLeftOut();
    void nothingToSaveOpensNoTransaction();
    void aFailureSavesNoneOfABatch();
    void vectorsGoWithTheirScreenshot();
    void progressCountsBoth();
    void theWidestModelIsTheOneThatReadMost();
    void whatIsNoVectorIsPassedOver();
    void aReaderOfAnOlderLibraryIsToldThatThereAreNone_data();
    void aReaderOfAnOlderLibraryIsToldThatThereAreNone();
    void aReaderHandsOutTitlesWhereThereAreSome_data();
    void aReaderHandsOutTitlesWhereThereAreSome();

private:
    void save(const QStringList& ids, const QString& model, const QList<float>& values = {1})
    {
        QList<HistoryStore::Embedding> embeddings;
        for (const QString& id : ids)
            embeddings.append({id, Vector(values)});
        m_store->saveEmbeddings(embeddings, model).waitForFinished();
    }
    QStringList unread(const QString& model, int limit = 9)
    {
        QStringList ids;
        for (const auto& one : m_store->withoutEmbedding(model, limit).result())
            ids.append(one.id);
        return ids;
    }

    std::unique_ptr<LibraryFolder> m_folder;
    std::unique_ptr<SqlWatch> m_watch;
    std::unique_ptr<HistoryStore> m_store;
};

void EmbeddingsTest::init()
{
    m_store.reset();
    m_folder = std::make_unique<LibraryFolder>();
    m_watch = std::make_unique<SqlWatch>();
    m_store = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = m_folder->root()});
    fill(*m_folder, 3);
}

void EmbeddingsTest::theNewestAreReadFirst()
{
    QCOMPARE(m_store->withoutEmbedding(u"m"_s, 2).result(),
             (QList<HistoryStore::Unread>{{u"3"_s, ownWord(3), u"notes"_s},
                                          {u"2"_s, ownWord(2), u"notes"_s}}));
}

void EmbeddingsTest::theLimitIsHeldWithinBounds()
{
    RawSql(m_folder->database())
        .run(u"WITH RECURSIVE n(i) AS (SELECT 4 UNION ALL SELECT i + 1 FROM n WHERE i < 5100) "
             "INSERT INTO memories SELECT i, i, 'Editor', '', 'moss', i || '.jpg', 1, '', '' "
             "FROM n"_s);
    QCOMPARE(unread(u"m"_s, 100'000).size(), 5000);
    QCOMPARE(unread(u"m"_s, 0), QStringList{u"5100"_s});
    QCOMPARE(unread(u"m"_s, -1).size(), 1);
}

void EmbeddingsTest::whatOneModelReadAnotherHasNot()
{
    save({u"3"_s, u"1"_s}, u"m"_s);
    QCOMPARE(unread(u"m"_s), QStringList{u"2"_s});
    QCOMPARE(unread(u"n"_s), (QStringList{u"3"_s, u"2"_s, u"1"_s}));
}

void EmbeddingsTest::whatWasSavedIsLoaded()
{
    save({u"1"_s}, u"m"_s, {3, 4});
    const auto loaded = m_store->embeddings(u"m"_s).result();
    QCOMPARE(loaded.size(), 1);
    QCOMPARE(loaded.first().id, u"1"_s);
    QCOMPARE(loaded.first().vector, *Vector::fromData(Vector({3, 4}).data()));
    QVERIFY(m_store->embeddings(u"n"_s).result().isEmpty());
    QCOMPARE(RawSql(m_folder->database()).value(u"SELECT typeof(vector) FROM embeddings"_s),
             u"blob"_s);
}

void EmbeddingsTest::aSecondVectorTakesThePlaceOfTheFirst()
{
    save({u"1"_s}, u"m"_s, {1, 0});
    save({u"1"_s}, u"m"_s, {0, 1});
    QCOMPARE(m_store->embeddings(u"m"_s).result(),
             (QList<HistoryStore::Embedding>{{u"1"_s, Vector({0, 1})}}));
}

void EmbeddingsTest::aScreenshotThatIsGoneIsLeftOut()
{
    m_store->deleteMemory(u"2"_s).waitForFinished();
    save({u"1"_s, u"2"_s, u"3"_s}, u"m"_s);
    QCOMPARE(m_store->embeddings(u"m"_s).result().size(), 2);
    QCOMPARE(m_store->embeddingProgress(u"m"_s).result(), (HistoryStore::EmbeddingProgress{2, 2}));
}

void EmbeddingsTest::nothingToSaveOpensNoTransaction()
{
    m_watch->take();
    save({}, u"m"_s);
    QCOMPARE(m_watch->take(), QStringList{});
}

void EmbeddingsTest::aFailureSavesNoneOfABatch()
{
    RawSql sql(m_folder->database());
    sql.run(u"CREATE TRIGGER refuse BEFORE INSERT ON embeddings WHEN new.id = '2' "
            "BEGIN SELECT raise(ABORT, 'not this one'); END"_s);
    QCOMPARE(failure<StoreError>([this] {
                 save({u"1"_s, u"2"_s, u"3"_s}, u"m"_s);
             }),
             u"not this one"_s);
    QVERIFY(m_store->embeddings(u"m"_s).result().isEmpty());
    sql.run(u"DROP TRIGGER refuse"_s);
    save({u"1"_s, u"2"_s, u"3"_s}, u"m"_s);
    QCOMPARE(m_store->embeddings(u"m"_s).result().size(), 3);
}

void EmbeddingsTest::vectorsGoWithTheirScreenshot()
{
    save({u"1"_s, u"2"_s}, u"m"_s);
    save({u"1"_s}, u"n"_s);
    m_store->deleteMemory(u"1"_s).waitForFinished();
    QCOMPARE(RawSql(m_folder->database()).rows(u"SELECT id, model FROM embeddings"_s),
             QStringList{u"2|m"_s});
}

void EmbeddingsTest::progressCountsBoth()
{
    QCOMPARE(m_store->embeddingProgress(u"m"_s).result(), (HistoryStore::EmbeddingProgress{0, 3}));
    save({u"1"_s, u"2"_s}, u"m"_s);
    QCOMPARE(m_store->embeddingProgress(u"m"_s).result(), (HistoryStore::EmbeddingProgress{2, 3}));
    m_store->deleteMemory(u"1"_s).waitForFinished();
    QCOMPARE(m_store->embeddingProgress(u"m"_s).result(), (HistoryStore::EmbeddingProgress{1, 2}));
}

void EmbeddingsTest::theWidestModelIsTheOneThatReadMost()
{
    QCOMPARE(m_store->widestEmbeddingModel().result(), std::optional<QString>());
    save({u"1"_s}, u""_s);
    QCOMPARE(m_store->widestEmbeddingModel().result(), std::optional<QString>());
    save({u"1"_s, u"2"_s}, u"a"_s);
    save({u"1"_s, u"2"_s, u"3"_s}, u"b"_s);
    QCOMPARE(m_store->widestEmbeddingModel().result(), std::optional(u"b"_s));
}

void EmbeddingsTest::whatIsNoVectorIsPassedOver()
{
    save({u"1"_s}, u"m"_s);
    RawSql sql(m_folder->database());
    sql.run(u"INSERT INTO embeddings VALUES ('2', 'm', x''), ('3', 'm', x'003c00')"_s);
    QCOMPARE(m_store->embeddings(u"m"_s).result().size(), 1);
    QCOMPARE(sql.value(u"SELECT count(*) FROM embeddings"_s), u"3"_s);
}

void EmbeddingsTest::aReaderOfAnOlderLibraryIsToldThatThereAreNone_data()
{
    QTest::addColumn<int>("version");
    for (const int version : {0, 2, 3, 4})
        QTest::addRow("version %d", version) << version;
}

void EmbeddingsTest::aReaderOfAnOlderLibraryIsToldThatThereAreNone()
{
    QFETCH(int, version);
    const LibraryFolder folder;
    QVERIFY(putOldDatabase(version, folder));
    HistoryStore reader(HistoryStore::ReadingOnly{.root = folder.root()});
    QCOMPARE(reader.schemaVersion(), version);
    const QString none = u"no such table: embeddings"_s;
    QCOMPARE(failure<StoreError>([&] { reader.withoutEmbedding(u"m"_s, 9).waitForFinished(); }),
             none);
    QCOMPARE(failure<StoreError>([&] { reader.embeddingProgress(u"m"_s).waitForFinished(); }),
             none);
    QCOMPARE(failure<StoreError>([&] { reader.widestEmbeddingModel().waitForFinished(); }), none);
    QCOMPARE(failure<StoreError>([&] { reader.embeddings(u"m"_s).waitForFinished(); }), none);
    QCOMPARE(failure<StoreError>([&] {
                 reader.saveEmbeddings({{u"A1"_s, Vector({1})}}, u"m"_s).waitForFinished();
             }),
             u"This library was opened for reading only."_s);
    // It goes on as a reader, and the library is as it was.
    QCOMPARE(reader.fetch({.limit = 9, .withText = true}).result(), oldMemories(version));
    QCOMPARE(RawSql(folder.database()).userVersion(), version);
}

void EmbeddingsTest::aReaderHandsOutTitlesWhereThereAreSome_data()
{
    aReaderOfAnOlderLibraryIsToldThatThereAreNone_data();
}

void EmbeddingsTest::aReaderHandsOutTitlesWhereThereAreSome()
{
    QFETCH(int, version);
    const LibraryFolder folder;
    QVERIFY(putOldDatabase(version, folder));
    // Some other program's, of a table that older libraries do not have.
    RawSql(folder.database())
        .run(u"CREATE TABLE embeddings (id TEXT NOT NULL, model TEXT NOT NULL, "
             "vector BLOB NOT NULL, PRIMARY KEY (id, model)) WITHOUT ROWID;"
             "INSERT INTO embeddings VALUES ('A4', 'm', x'003c')"_s);
    HistoryStore reader(HistoryStore::ReadingOnly{.root = folder.root()});
    QList<HistoryStore::Unread> expected;
    for (const Memory& memory : oldMemories(version)) {
        if (memory.id != u"A4")
            expected.append({memory.id, memory.text, memory.title});
    }
    QCOMPARE(reader.withoutEmbedding(u"m"_s, 9).result(), expected);
    QCOMPARE(reader.embeddingProgress(u"m"_s).result(), (HistoryStore::EmbeddingProgress{1, 6}));
    QCOMPARE(reader.widestEmbeddingModel().result(), std::optional(u"m"_s));
    QCOMPARE(reader.embeddings(u"m"_s).result(),
             (QList<HistoryStore::Embedding>{
                 {u"A4"_s, *Vector::fromData(QByteArray::fromHex("003c"))}}));
}

QTEST_GUILESS_MAIN(EmbeddingsTest)
#include "EmbeddingsTest.moc"
