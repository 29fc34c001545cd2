// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/OldLibraries.h"
#include "tests/Core/Library/RawSql.h"

#include <QRandomGenerator>

#include <sys/fsuid.h>
#include <unistd.h>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

/// This thread, and the threads it starts, meet the file system as nobody while it lives, also
/// when the tests run as root. Whoever is not root already is stopped by rights.
class AsNobody {
public:
    AsNobody()
        : m_before(static_cast<uid_t>(setfsuid(kNobody)))
    {
    }
    ~AsNobody() { setfsuid(m_before); }
    Q_DISABLE_COPY_MOVE(AsNobody)

    /// Whether rights count now.
    static bool isInForce()
    {
        constexpr uid_t kOnlyAsking = static_cast<uid_t>(-1);
        return setfsuid(kOnlyAsking) != 0;
    }

private:
    static constexpr uid_t kNobody = 65'534;
    uid_t m_before;
};

/// Rights for everybody, or a test as nobody would be stopped too early.
bool share(const QString& path, int rights)
{
    return QFile::setPermissions(path, QFile::Permissions::fromInt(rights));
}

constexpr int kEverything = 0x7777;
constexpr int kReading = 0x5555;
constexpr int kReadingFile = 0x4444;

/// Opens for writing and hands back the refusal of either kind.
template <typename Failure = StoreError>
QString opening(const LibraryFolder& folder)
{
    return failure<Failure>(
        [&folder] { HistoryStore(HistoryStore::Writing{.root = folder.root()}); });
}

} // namespace

class BadLibraryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aDatabaseThatIsNoLongerThereTakesNoSave_data();
    void aDatabaseThatIsNoLongerThereTakesNoSave();
    void aLibraryBelowAFileCannotBeMade();
    void aLibraryThatIsAFileCannotBeOpened();
    void aLibraryInAFolderOfOthersCannotBeMade();
    void aFolderThatCannotBeMadeLeavesTheLibraryThere_data();
    void aFolderThatCannotBeMadeLeavesTheLibraryThere();
    void aFolderInPlaceOfTheDatabaseCannotBeOpened();
    void aDatabaseThatMayNotBeReadCannotBeOpened();
    void aLibraryThatMayNotBeWrittenSaysSo();
    void readingALibraryThatMayNotBeWritten();
    void aDamagedDatabaseIsASentenceAndStaysAsItWas_data();
    void aDamagedDatabaseIsASentenceAndStaysAsItWas();
    void aDatabaseCutShortNeverCrashes_data();
    void aDatabaseCutShortNeverCrashes();
    void pagesOfNonsenseNeverCrash();
    void anEmptyFileIsAFreshLibrary_data();
    void anEmptyFileIsAFreshLibrary();
    void tablesOfSomebodyElseAreASentence();
    void aDatabaseLostWhileOpenHurtsNothing();
};

void BadLibraryTest::aLibraryBelowAFileCannotBeMade()
{
    const LibraryFolder folder;
    QVERIFY(putFile(folder.root(), "a file"));
    const QString below = folder.root() + u"/library"_s;
    QCOMPARE(failure<FileError>([&] { HistoryStore(HistoryStore::Writing{.root = below}); }),
             refusal(EEXIST, folder.root()));
    QCOMPARE(contents(folder.root()), QByteArray("a file"));
}

void BadLibraryTest::aLibraryThatIsAFileCannotBeOpened()
{
    const LibraryFolder folder;
    QVERIFY(putFile(folder.root(), "a file"));
    QCOMPARE(opening<FileError>(folder), refusal(EEXIST, folder.root()));
    QCOMPARE(contents(folder.root()), QByteArray("a file"));
    QCOMPARE(failure<StoreError>([&] { HistoryStore(HistoryStore::ReadingOnly{folder.root()}); }),
             u"No Mossbank library at %1."_s.arg(folder.root()));
}

void BadLibraryTest::aLibraryInAFolderOfOthersCannotBeMade()
{
    const LibraryFolder folder;
    QVERIFY(share(folder.beside(u"."_s), kReading));
    {
        const AsNobody nobody;
        QVERIFY2(AsNobody::isInForce(), "root without CAP_SETUID cannot test rights");
        QCOMPARE(opening<FileError>(folder), refusal(EACCES, folder.root()));
    }
    QVERIFY(!QFile::exists(folder.root()));
    QVERIFY(share(folder.beside(u"."_s), kEverything));
}

void BadLibraryTest::aFolderThatCannotBeMadeLeavesTheLibraryThere_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("pictures") << u"Images"_s;
    QTest::newRow("markers") << u"Pending"_s;
}

void BadLibraryTest::aFolderThatCannotBeMadeLeavesTheLibraryThere()
{
    QFETCH(QString, name);
    const LibraryFolder folder;
    const QString inTheWay = folder.root() + u'/' + name;
    QVERIFY(QDir().mkpath(folder.root()));
    QVERIFY(putFile(inTheWay, "in the way"));
    QCOMPARE(opening<FileError>(folder), refusal(EEXIST, inTheWay));
    QVERIFY(QFileInfo(folder.root()).isDir());
    QVERIFY(!QFile::exists(folder.database()));
    QCOMPARE(contents(inTheWay), QByteArray("in the way"));
}

void BadLibraryTest::aFolderInPlaceOfTheDatabaseCannotBeOpened()
{
    const LibraryFolder folder;
    QVERIFY(QDir().mkpath(folder.database()));
    QCOMPARE(opening(folder), u"Could not open the history database."_s);
    QCOMPARE(failure<StoreError>([&] { HistoryStore(HistoryStore::ReadingOnly{folder.root()}); }),
             u"Could not open the history database at %1."_s.arg(folder.database()));
}

void BadLibraryTest::aDatabaseThatMayNotBeReadCannotBeOpened()
{
    const LibraryFolder folder;
    {
        const HistoryStore made(HistoryStore::Writing{.root = folder.root()});
    }
    QVERIFY(share(folder.beside(u"."_s), kEverything));
    QVERIFY(share(folder.root(), kEverything));
    QVERIFY(share(folder.database(), 0));
    const AsNobody nobody;
    QVERIFY2(AsNobody::isInForce(), "root without CAP_SETUID cannot test rights");
    QCOMPARE(failure<StoreError>([&] { HistoryStore(HistoryStore::ReadingOnly{folder.root()}); }),
             u"Could not open the history database at %1."_s.arg(folder.database()));
    // Last: trying to write gives the rights back where the file is the user's own.
    QCOMPARE(opening(folder), u"Could not open the history database."_s);
}

void BadLibraryTest::aLibraryThatMayNotBeWrittenSaysSo()
{
    const LibraryFolder folder;
    HistoryStore(HistoryStore::Writing{.root = folder.root()})
        .save(sampleMemory(u"A"_s), "jpeg")
        .waitForFinished();
    const QByteArray before = contents(folder.database());
    QVERIFY(share(folder.beside(u"."_s), kReading));
    QVERIFY(share(folder.database(), kReadingFile));
    for (const QString& closed : {folder.images(), folder.pending(), folder.root()})
        QVERIFY(share(closed, kReading));
    {
        const AsNobody nobody;
        QVERIFY2(AsNobody::isInForce(), "root without CAP_SETUID cannot test rights");
        const auto said = opening(folder);
        QCOMPARE(said, u"attempt to write a readonly database"_s);
    }
    QCOMPARE(contents(folder.database()), before);
    for (const QString& open :
         {folder.beside(u"."_s), folder.root(), folder.images(), folder.pending()})
        QVERIFY(share(open, kEverything));
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    QCOMPARE(ids(store.fetch({.limit = 9}).result()), QStringList{u"A"_s});
}

void BadLibraryTest::readingALibraryThatMayNotBeWritten()
{
    // A log can be read only beside its index, which somebody has to make: while the program
    // runs they are there, afterwards a reader without rights is told.
    const LibraryFolder folder;
    auto writer = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = folder.root()});
    writer->save(sampleMemory(u"A"_s), "jpeg").waitForFinished();
    QVERIFY(share(folder.beside(u"."_s), kReading));
    QVERIFY(share(folder.root(), kReading));
    for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s})
        QVERIFY(share(folder.database() + suffix, kReadingFile));
    {
        const AsNobody nobody;
        QVERIFY2(AsNobody::isInForce(), "root without CAP_SETUID cannot test rights");
        HistoryStore reader(HistoryStore::ReadingOnly{folder.root()});
        QCOMPARE(reader.schemaVersion(), 5);
        QCOMPARE(ids(reader.fetch({.query = u"words"_s, .limit = 9}).result()),
                 QStringList{u"A"_s});
    }
    QVERIFY(share(folder.root(), kEverything));
    writer.reset();
    QVERIFY(share(folder.root(), kReading));
    {
        const AsNobody nobody;
        HistoryStore reader(HistoryStore::ReadingOnly{folder.root()});
        const auto said =
            failure<StoreError>([&reader] { reader.fetch({.limit = 9}).waitForFinished(); });
        QCOMPARE(said, u"attempt to write a readonly database"_s);
    }
    QVERIFY(share(folder.root(), kEverything));
    QVERIFY(share(folder.beside(u"."_s), kEverything));
}

void BadLibraryTest::aDamagedDatabaseIsASentenceAndStaysAsItWas_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QByteArray noise(20'000, '\0');
    QRandomGenerator random(5);
    for (char& byte : noise)
        byte = static_cast<char>(random.bounded(256));
    QTest::newRow("noise") << noise;
    QTest::newRow("a text") << QByteArray("this is no database\n").repeated(100);
    QTest::newRow("two bytes") << QByteArray("xy");
    QTest::newRow("zeros") << QByteArray(8192, '\0');
}

void BadLibraryTest::aDamagedDatabaseIsASentenceAndStaysAsItWas()
{
    QFETCH(QByteArray, bytes);
    const LibraryFolder folder;
    QVERIFY(QDir().mkpath(folder.root()));
    QVERIFY(putFile(folder.database(), bytes));
    QCOMPARE(opening(folder), u"file is not a database"_s);
    QCOMPARE(contents(folder.database()), bytes);
    QCOMPARE(mode(folder.database()), 0600);

    HistoryStore reader(HistoryStore::ReadingOnly{folder.root()});
    QCOMPARE(reader.schemaVersion(), 0);
    QCOMPARE(failure<StoreError>([&reader] { reader.fetch({.limit = 9}).waitForFinished(); }),
             u"file is not a database"_s);
    QCOMPARE(contents(folder.database()), bytes);
}

void BadLibraryTest::aDatabaseCutShortNeverCrashes_data()
{
    QTest::addColumn<qsizetype>("length");
    for (const qsizetype length : {2, 15, 16, 50, 99, 100, 101, 511, 512, 1000, 4095, 4096, 4097,
                                   8192, 12'288, 16'384, 20'480, 28'672, 36'864})
        QTest::newRow(qPrintable(u"%1 bytes"_s.arg(length))) << length;
}

void BadLibraryTest::aDatabaseCutShortNeverCrashes()
{
    QFETCH(qsizetype, length);
    const QByteArray whole = contents(oldDatabase(4));
    QVERIFY(whole.size() > length);
    const LibraryFolder folder;
    QVERIFY(QDir().mkpath(folder.root()));
    QVERIFY(putFile(folder.database(), whole.first(length)));
    const auto use = [&folder] {
        HistoryStore store(HistoryStore::Writing{.root = folder.root()});
        store.fetch({.query = u"istanbul"_s, .limit = 9, .withText = true}).waitForFinished();
        store.fetch({.limit = 9, .withText = true}).waitForFinished();
        store.save(sampleMemory(u"NEW"_s), "jpeg").waitForFinished();
    };
    const auto said = failure<StoreError>(use);
    // A file without its end is missing pages that something points at.
    QVERIFY2(!said.isNull(), "a database without its end was taken for whole");
    QVERIFY2(said == u"file is not a database"_s || said == u"database disk image is malformed"_s,
             qPrintable(said));
    QCOMPARE(names(folder.images()), QStringList{});
    QCOMPARE(names(folder.pending()), QStringList{});
}

void BadLibraryTest::pagesOfNonsenseNeverCrash()
{
    const QByteArray whole = contents(oldDatabase(4));
    QRandomGenerator random(20'260'301);
    int refused = 0;
    for (int attempt = 0; attempt < 60; ++attempt) {
        const LibraryFolder folder;
        QVERIFY(QDir().mkpath(folder.root()));
        QByteArray bytes = whole;
        const auto from =
            static_cast<qsizetype>(random.bounded(100, static_cast<int>(whole.size())));
        for (qsizetype at = from; at < std::min(from + 600, bytes.size()); ++at)
            bytes[at] = static_cast<char>(random.bounded(256));
        QVERIFY(putFile(folder.database(), bytes));
        const auto said = failure<StoreError>([&folder] {
            HistoryStore store(HistoryStore::Writing{.root = folder.root()});
            store.fetch({.query = u"kirmizi"_s, .limit = 9, .withText = true}).waitForFinished();
            store.fetch({.limit = 9, .withText = true}).waitForFinished();
            store.save(sampleMemory(u"NEW"_s), "jpeg").waitForFinished();
        });
        if (!said.isNull())
            ++refused;
        QCOMPARE(names(folder.pending()), QStringList{});
        QCOMPARE(names(folder.images()).size(), said.isNull() ? 1 : 0);
    }
    QVERIFY(refused > 0);
}

void BadLibraryTest::anEmptyFileIsAFreshLibrary_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing in it") << QByteArray();
    // SQLite takes a single byte for none: it once put one into new files itself.
    QTest::newRow("one byte") << QByteArray("x");
}

void BadLibraryTest::anEmptyFileIsAFreshLibrary()
{
    QFETCH(QByteArray, bytes);
    const LibraryFolder folder;
    QVERIFY(QDir().mkpath(folder.root()));
    QVERIFY(putFile(folder.database(), bytes));
    {
        HistoryStore reader(HistoryStore::ReadingOnly{folder.root()});
        QCOMPARE(failure<StoreError>([&reader] { reader.fetch({.limit = 9}).waitForFinished(); }),
                 u"no such table: memories"_s);
    }
    QCOMPARE(contents(folder.database()), bytes);
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    QCOMPARE(store.schemaVersion(), 5);
}

void BadLibraryTest::tablesOfSomebodyElseAreASentence()
{
    const LibraryFolder folder;
    QVERIFY(QDir().mkpath(folder.root()));
    RawSql(folder.database()).run(u"CREATE TABLE memories (something TEXT)"_s);
    QCOMPARE(opening(folder), u"no such column: timestamp"_s);
    RawSql sql(folder.database());
    QCOMPARE(sql.rows(u"SELECT name FROM sqlite_schema"_s), QStringList{u"memories"_s});
}

void BadLibraryTest::aDatabaseLostWhileOpenHurtsNothing()
{
    const LibraryFolder folder;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    QVERIFY(QDir(folder.root()).removeRecursively());
    QCOMPARE(failure<StoreError>(
                 [&store] { store.save(sampleMemory(u"A"_s), "jpeg").waitForFinished(); }),
             u"The history database was removed or replaced."_s);
    QCOMPARE(names(folder.pending()), QStringList{});
    QCOMPARE(store.fetch({.limit = 9}).result(), QList<Memory>());
}

void BadLibraryTest::aDatabaseThatIsNoLongerThereTakesNoSave_data()
{
    QTest::addColumn<bool>("isReplaced");
    QTest::newRow("removed") << false;
    QTest::newRow("replaced") << true;
}

void BadLibraryTest::aDatabaseThatIsNoLongerThereTakesNoSave()
{
    QFETCH(bool, isReplaced);
    const LibraryFolder folder;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    store.save(sampleMemory(u"A"_s), "jpeg").waitForFinished();
    QVERIFY(QFile::rename(folder.database(), folder.root() + u"/elsewhere"_s));
    if (isReplaced)
        QVERIFY(QFile::copy(folder.root() + u"/elsewhere"_s, folder.database()));
    QCOMPARE(failure<StoreError>(
                 [&store] { store.save(sampleMemory(u"B"_s), "jpeg").waitForFinished(); }),
             u"The history database was removed or replaced."_s);
    QCOMPARE(names(folder.images()), QStringList{u"A.jpg"_s});
    QCOMPARE(names(folder.pending()), QStringList{});
}

QTEST_GUILESS_MAIN(BadLibraryTest)
#include "BadLibraryTest.moc"
