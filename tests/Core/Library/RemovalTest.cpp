// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/FilledLibrary.h"
#include "tests/Core/Library/SqlWatch.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <limits>

using namespace mossbank;
using namespace Qt::StringLiterals;

/// What goes when a screenshot is removed, in which order, and what a failure leaves.
class RemovalTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aPictureIsReadBack();
    void aPictureThatCannotBeHadIsAbsent();
    void aScreenshotGoesWithItsPictureItsWordsAndItsVectors();
    void anUnknownIdentityOpensNoTransaction();
    void aMissingPictureDoesNotKeepItsRow();
    void aRowStampedExactlyAtTheDateStays();
    void aDateThatIsNoNumberRemovesNothing();
    void theWayWordsLeaveDependsOnHowManyGo_data();
    void theWayWordsLeaveDependsOnHowManyGo();
    void removingManyKeepsLittleInMemory();
    void theLastRowsOfALibraryGo();
    void aPictureThatCannotBeRemovedKeepsTheRows();
    void aRefusedTransactionKeepsTheRows();
    void aFailureWithinTheTransactionUndoesItAndPurgingGoesOn();
    void namesThatLeadOutsideAreNotFollowed();
    void aReaderRemovesNothing();
    void allOfAnEmptyLibraryIsRemoved();
    void allMeansStrayFilesToo();
    void allMeansNamesThatAreNoTextToo();
    void aFolderAmongThePicturesIsLeftAlone();
    void aFolderOfPicturesThatIsGoneKeepsNothing();

private:
    template <typename Action>
    QString failed(Action&& action)
    {
        return failure<Failure>(std::forward<Action>(action));
    }
    QString deleted(const QString& id)
    {
        return failed([&] { m_store->deleteMemory(id).waitForFinished(); });
    }
    QString pruned(double date)
    {
        return failed([&] { m_store->prune({date}).waitForFinished(); });
    }
    QString allDeleted()
    {
        return failed([&] { m_store->deleteAll().waitForFinished(); });
    }
    qsizetype rows() { return m_store->fetch({.limit = 86'400}).result().size(); }
    bool isFound(const QString& word)
    {
        return !m_store->fetch({.query = word, .limit = 9}).result().isEmpty();
    }
    QString secureDelete()
    {
        const QStringList option = RawSql(m_folder->database())
                                       .rows(u"SELECT v FROM memory_search_config WHERE "
                                             "k = 'secure-delete'"_s);
        return option.join(u',');
    }

    std::unique_ptr<LibraryFolder> m_folder;
    std::unique_ptr<SqlWatch> m_watch;
    std::unique_ptr<HistoryStore> m_store;
};

void RemovalTest::init()
{
    m_folder = std::make_unique<LibraryFolder>();
    m_watch = std::make_unique<SqlWatch>();
    m_store = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = m_folder->root()});
    QCOMPARE(m_store->purgesDeletedTerms(), bool(MOSSBANK_SQLITE_PURGES));
}

void RemovalTest::cleanup()
{
    m_store.reset();
    m_watch.reset();
    if (QFile::exists(m_folder->database()))
        QCOMPARE(disagreement(*m_folder), QString());
}

void RemovalTest::aPictureIsReadBack()
{
    fill(*m_folder, 1);
    QCOMPARE(m_store->picture(u"1.jpg"_s).result(), std::optional<QByteArray>("jpeg of 1"));
}

void RemovalTest::aPictureThatCannotBeHadIsAbsent()
{
    QVERIFY(putFile(m_folder->beside(u"secret"_s), "secret"));
    QVERIFY(QDir().mkpath(m_folder->images() + u"/folder"_s));
    for (const QString& name :
         {u"none.jpg"_s, u""_s, u"folder"_s, u"../../secret"_s, u".."_s, u"../history.sqlite"_s})
        QCOMPARE(m_store->picture(name).result(), std::optional<QByteArray>());
}

void RemovalTest::aScreenshotGoesWithItsPictureItsWordsAndItsVectors()
{
    fill(*m_folder, 3);
    m_store->saveEmbeddings({{u"1"_s, Vector({1})}, {u"2"_s, Vector({1})}}, u"m"_s)
        .waitForFinished();
    QCOMPARE(deleted(u"2"_s), kNoFailure);
    QCOMPARE(ids(m_store->fetch({.limit = 9}).result()), (QStringList{u"3"_s, u"1"_s}));
    QCOMPARE(names(m_folder->images()), (QStringList{u"1.jpg"_s, u"3.jpg"_s}));
    QVERIFY(!isFound(ownWord(2)));
    QVERIFY(isFound(ownWord(3)));
    QCOMPARE(m_store->stats().result().count, 2);
    QCOMPARE(m_store->embeddings(u"m"_s).result().size(), 1);
}

void RemovalTest::anUnknownIdentityOpensNoTransaction()
{
    fill(*m_folder, 1);
    m_watch->take();
    QCOMPARE(deleted(u"2"_s), kNoFailure);
    QCOMPARE(m_watch->take(), QStringList{u"SELECT filename FROM memories WHERE id = ?"_s});
    QCOMPARE(rows(), 1);
}

void RemovalTest::aMissingPictureDoesNotKeepItsRow()
{
    fill(*m_folder, 2);
    QVERIFY(QFile::remove(m_folder->images() + u"/1.jpg"_s));
    QCOMPARE(deleted(u"1"_s), kNoFailure);
    QCOMPARE(ids(m_store->fetch({.limit = 9}).result()), QStringList{u"2"_s});
}

void RemovalTest::aRowStampedExactlyAtTheDateStays()
{
    fill(*m_folder, 5);
    QCOMPARE(pruned(3), kNoFailure);
    QCOMPARE(ids(m_store->fetch({.limit = 9}).result()), (QStringList{u"5"_s, u"4"_s, u"3"_s}));
    QCOMPARE(pruned(-1e300), kNoFailure);
    QCOMPARE(rows(), 3);
    QCOMPARE(pruned(3.0000001), kNoFailure);
    QCOMPARE(rows(), 2);
    QCOMPARE(pruned(1e300), kNoFailure);
    QCOMPARE(rows(), 0);
}

void RemovalTest::aDateThatIsNoNumberRemovesNothing()
{
    fill(*m_folder, 2);
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    for (const double date : {std::numeric_limits<double>::quiet_NaN(), kInfinite, -kInfinite}) {
        QCOMPARE(pruned(date), kNoFailure);
        QCOMPARE(rows(), 2);
    }
    QVERIFY(QFile::exists(m_folder->images() + u"/1.jpg"_s));
}

void RemovalTest::theWayWordsLeaveDependsOnHowManyGo_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("removed");
    QTest::addColumn<bool>("isRebuilt");
    // Ten against 990 is a hundredth and more; 9 against 991 is less.
    QTest::newRow("one of a thousand") << 1000 << 1 << false;
    QTest::newRow("nine of a thousand") << 1000 << 9 << false;
    QTest::newRow("ten of a thousand") << 1000 << 10 << true;
    QTest::newRow("one against a hundred") << 101 << 1 << true;
    QTest::newRow("one against a hundred and one") << 102 << 1 << false;
    QTest::newRow("as many as go at once") << 300 << 200 << true;
    QTest::newRow("one more than go at once") << 300 << 201 << true;
    QTest::newRow("all") << 20 << 20 << true;
}

void RemovalTest::theWayWordsLeaveDependsOnHowManyGo()
{
    QFETCH(int, count);
    QFETCH(int, removed);
    QFETCH(bool, isRebuilt);
    fill(*m_folder, count);
    m_watch->take();
    QCOMPARE(pruned(removed + 1), kNoFailure);
    const QString statements = m_watch->take().join(u'\n');
    QCOMPARE(statements.contains(u"'rebuild'"_s), isRebuilt || !m_store->purgesDeletedTerms());
    QCOMPARE(statements.contains(u"'secure-delete', 0"_s),
             isRebuilt && m_store->purgesDeletedTerms());
    QVERIFY(!statements.contains(u"count(*)"_s));
    QCOMPARE(secureDelete(), m_store->purgesDeletedTerms() ? u"1"_s : QString());
    QCOMPARE(rows(), count - removed);
    QVERIFY(!isFound(ownWord(removed)));
    QCOMPARE(isFound(ownWord(count)), removed < count);
    QCOMPARE(names(m_folder->images()).size(), count - removed);
}

void RemovalTest::removingManyKeepsLittleInMemory()
{
    constexpr int kRows = 4000;
    fill(*m_folder, kRows, [](int number) {
        return QString(4000, QChar(u'a' + number % 26)) + u' ' + ownWord(number);
    });
    constexpr int kAndBeginAnew = 1;
    sqlite3_memory_highwater(kAndBeginAnew);
    const qint64 before = sqlite3_memory_used();
    QCOMPARE(pruned(kRows + 1), kNoFailure);
    const qint64 kept = sqlite3_memory_highwater(0) - before;
    QCOMPARE(rows(), 0);
    // The rows themselves are sixteen million bytes.
    constexpr qint64 kLittle = 5'000'000;
    QVERIFY2(kept < kLittle, qPrintable(QString::number(kept)));
}

void RemovalTest::theLastRowsOfALibraryGo()
{
    fill(*m_folder, 1);
    QCOMPARE(deleted(u"1"_s), kNoFailure);
    QCOMPARE(rows(), 0);
    QCOMPARE(m_store->stats().result(), LibraryStats());
    // The store goes on as before.
    m_store->save(sampleMemory(u"A"_s), "jpeg").waitForFinished();
    QVERIFY(isFound(u"words"_s));
}

void RemovalTest::aPictureThatCannotBeRemovedKeepsTheRows()
{
    fill(*m_folder, 3);
    // A folder cannot be unlinked, not even by root.
    QVERIFY(QFile::remove(m_folder->images() + u"/2.jpg"_s));
    QVERIFY(QDir().mkpath(m_folder->images() + u"/2.jpg"_s));
    m_watch->take();
    QCOMPARE(pruned(9), refusal(EISDIR, m_folder->images() + u"/2.jpg"_s));
    QVERIFY(!m_watch->take().join(u'\n').contains(u"BEGIN"_s));
    QCOMPARE(rows(), 3);
    QVERIFY(isFound(ownWord(1)));
    // What came before it is gone.
    QVERIFY(!QFile::exists(m_folder->images() + u"/1.jpg"_s));
    QVERIFY(QFile::exists(m_folder->images() + u"/3.jpg"_s));
}

void RemovalTest::aRefusedTransactionKeepsTheRows()
{
    fill(*m_folder, 2);
    RawSql other(m_folder->database());
    other.run(u"BEGIN IMMEDIATE"_s);
    QCOMPARE(deleted(u"1"_s), u"database is locked"_s);
    QCOMPARE(rows(), 2);
    // A picture that was said to go is gone all the same.
    QVERIFY(!QFile::exists(m_folder->images() + u"/1.jpg"_s));
    other.run(u"ROLLBACK"_s);
    QCOMPARE(deleted(u"1"_s), kNoFailure);
    QCOMPARE(rows(), 1);
}

void RemovalTest::aFailureWithinTheTransactionUndoesItAndPurgingGoesOn()
{
    fill(*m_folder, 400);
    RawSql other(m_folder->database());
    other.run(u"CREATE TRIGGER refuse BEFORE DELETE ON memories WHEN old.id = '290' "
              "BEGIN SELECT raise(ABORT, 'not this one'); END"_s);
    // Among those that go after the first.
    QCOMPARE(pruned(300), u"not this one"_s);
    QCOMPARE(rows(), 400);
    QVERIFY(isFound(ownWord(1)));
    QCOMPARE(secureDelete(), m_store->purgesDeletedTerms() ? u"1"_s : QString());
    other.run(u"DROP TRIGGER refuse"_s);
    // The option that the rebuild had set aside is in force again: one row leaves no trace.
    QCOMPARE(deleted(u"350"_s), kNoFailure);
    m_store.reset();
    QVERIFY(!contents(m_folder->database()).contains(traceOf(350)));
}

void RemovalTest::namesThatLeadOutsideAreNotFollowed()
{
    fill(*m_folder, 1);
    QVERIFY(putFile(m_folder->beside(u"letter"_s), "dear"));
    RawSql(m_folder->database())
        .run(u"INSERT INTO memories VALUES "
             "('X', 5, 'Editor', '', 'x', '../../letter', 1, '', '')"_s);
    QCOMPARE(deleted(u"X"_s), kNoFailure);
    QCOMPARE(contents(m_folder->beside(u"letter"_s)), QByteArray("dear"));
    QCOMPARE(rows(), 1);
}

void RemovalTest::aReaderRemovesNothing()
{
    fill(*m_folder, 2);
    HistoryStore reader(HistoryStore::ReadingOnly{m_folder->root()});
    const QString refused = u"This library was opened for reading only."_s;
    QCOMPARE(failed([&] { reader.deleteMemory(u"1"_s).waitForFinished(); }), refused);
    QCOMPARE(failed([&] { reader.prune({9}).waitForFinished(); }), refused);
    QCOMPARE(failed([&] { reader.deleteAll().waitForFinished(); }), refused);
    QCOMPARE(failed([&] { reader.reconcile(0, {1e12}).waitForFinished(); }), refused);
    QCOMPARE(names(m_folder->images()).size(), 2);
    QCOMPARE(rows(), 2);
}

void RemovalTest::allOfAnEmptyLibraryIsRemoved()
{
    QCOMPARE(allDeleted(), kNoFailure);
    QCOMPARE(rows(), 0);
}

void RemovalTest::allMeansStrayFilesToo()
{
    fill(*m_folder, 3);
    m_store->saveEmbeddings({{u"1"_s, Vector({1})}}, u"m"_s).waitForFinished();
    RawSql(m_folder->database()).run(u"INSERT INTO embeddings VALUES ('LOST', 'm', x'003c')"_s);
    for (const QString& stray :
         {u"/Images/stray.jpg"_s, u"/Images/.hidden"_s, u"/Images/1.jpg.a8Xk2q"_s,
          u"/Pending/1.jpg"_s, u"/Pending/lost.jpg"_s})
        QVERIFY(putFile(m_folder->root() + stray, "bytes"));
    QCOMPARE(allDeleted(), kNoFailure);
    QCOMPARE(names(m_folder->images()), QStringList{});
    QCOMPARE(names(m_folder->pending()), QStringList{});
    QCOMPARE(rows(), 0);
    QCOMPARE(m_store->embeddings(u"m"_s).result().size(), 0);
    QCOMPARE(m_store->stats().result(), LibraryStats());
    m_store->save(sampleMemory(u"A"_s), "jpeg").waitForFinished();
    QCOMPARE(rows(), 1);
}

void RemovalTest::allMeansNamesThatAreNoTextToo()
{
    fill(*m_folder, 1);
    const QByteArray name = "caf\xe9.jpg";
    QVERIFY(putNamelessFile(m_folder->images(), name));
    QVERIFY(putNamelessFile(m_folder->pending(), name));
    QVERIFY(isNamelessFile(m_folder->images(), name) && isNamelessFile(m_folder->pending(), name));
    QCOMPARE(allDeleted(), kNoFailure);
    QVERIFY(!isNamelessFile(m_folder->images(), name));
    QVERIFY(!isNamelessFile(m_folder->pending(), name));
}

void RemovalTest::aFolderAmongThePicturesIsLeftAlone()
{
    fill(*m_folder, 1);
    QVERIFY(QDir().mkpath(m_folder->images() + u"/folder"_s));
    QVERIFY(putFile(m_folder->images() + u"/folder/inside"_s, "bytes"));
    QVERIFY(putFile(m_folder->beside(u"elsewhere"_s), "bytes"));
    QVERIFY(QFile::link(m_folder->beside(u"elsewhere"_s), m_folder->images() + u"/link"_s));
    QCOMPARE(allDeleted(), kNoFailure);
    QCOMPARE(names(m_folder->images()), (QStringList{u"folder"_s, u"link"_s}));
    QCOMPARE(contents(m_folder->images() + u"/folder/inside"_s), QByteArray("bytes"));
    QCOMPARE(contents(m_folder->beside(u"elsewhere"_s)), QByteArray("bytes"));
}

void RemovalTest::aFolderOfPicturesThatIsGoneKeepsNothing()
{
    fill(*m_folder, 2);
    QVERIFY(QDir(m_folder->images()).removeRecursively());
    QVERIFY(QDir(m_folder->pending()).removeRecursively());
    QCOMPARE(deleted(u"1"_s), kNoFailure);
    QCOMPARE(allDeleted(), kNoFailure);
    QCOMPARE(rows(), 0);
}

QTEST_GUILESS_MAIN(RemovalTest)
#include "RemovalTest.moc"
