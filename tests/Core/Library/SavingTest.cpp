// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/ImageVault.h"
#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/RawSql.h"
#include "tests/Core/Library/SqlWatch.h"
#include "tests/Core/Library/Summary.h"
#include "tests/Fakes/NonceHook.h"

#include <cerrno>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

const QByteArray kJpeg = "the bytes of a picture";

} // namespace

class SavingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aSavedScreenshotIsPictureAndRow();
    void theRowTellsTheSizeOnDisk();
    void aSealedPictureIsWhatLiesOnDisk();
    void aVaultMaySetInLater();
    void theMarkerComesFirstAndGoesLast();
    void savingTheSameTwiceKeepsTheFirst();
    void anEarlierPictureIsNeverOverwritten();
    void aLinkThatLeadsNowhereTakesTheNameToo();
    void aRepeatedIdentityLeavesNoPicture();
    void namesThatClimbOutAreRefused_data();
    void namesThatClimbOutAreRefused();
    void aRefusalToSealLeavesNothing();
    void aPictureThatCannotBeWrittenLeavesNothing();
    void aNameTooLongForItsTemporaryLeavesNothing();
    void aMissingFolderOfMarkersIsMadeAgain();
    void withoutAFolderOfMarkersNothingIsSaved();
    void aMarkerThatCannotBeWrittenStopsTheSave();
    void aMarkerLeftByACrashIsUsedAgain();
    void savesAreDoneOneByOneInOrder();
    void destroyingTheStoreFinishesItsSaves();

private:
    /// Saves and hands back the message of the failure; null when it went well.
    template <typename Failure = StoreError>
    QString save(const Memory& memory)
    {
        return failure<Failure>([&] { m_store->save(memory, kJpeg).waitForFinished(); });
    }
    QStringList rows() { return RawSql(m_folder->database()).rows(u"SELECT id FROM memories"_s); }

    std::unique_ptr<LibraryFolder> m_folder;
    std::unique_ptr<HistoryStore> m_store;
    const ImageVault m_vault{SymmetricKey::random()};
};

void SavingTest::init()
{
    m_folder = std::make_unique<LibraryFolder>();
    m_store = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = m_folder->root()});
}

void SavingTest::cleanup()
{
    m_store.reset();
    NonceHook::remove();
    // Whatever a case did: index and summary agree with the rows.
    RawSql sql(m_folder->database());
    sql.run(u"INSERT INTO memory_search(memory_search, rank) VALUES('integrity-check', 1)"_s);
    QCOMPARE(summary(sql), recount(sql));
}

void SavingTest::aSavedScreenshotIsPictureAndRow()
{
    Memory memory = sampleMemory(u"A"_s);
    QCOMPARE(save(memory), kNoFailure);
    memory.bytes = kJpeg.size();
    QCOMPARE(m_store->fetch({.limit = 9, .withText = true}).result(), QList<Memory>{memory});
    QCOMPARE(contents(m_folder->images() + u"/A.jpg"_s), kJpeg);
    QCOMPARE(mode(m_folder->images() + u"/A.jpg"_s), 0600);
    QCOMPARE(names(m_folder->images()), QStringList{u"A.jpg"_s});
    QCOMPARE(names(m_folder->pending()), QStringList{});
    RawSql sql(m_folder->database());
    QCOMPARE(sql.rows(u"SELECT typeof(timestamp), typeof(bytes), typeof(id) FROM memories"_s),
             QStringList{u"real|integer|text"_s});
    QCOMPARE(sql.rows(u"SELECT * FROM memory_slots"_s),
             QStringList{u"1888888|Editor|1|%1"_s.arg(kJpeg.size())});
}

void SavingTest::theRowTellsTheSizeOnDisk()
{
    Memory memory = sampleMemory(u"A"_s);
    memory.bytes = 123'456;
    QCOMPARE(save(memory), kNoFailure);
    QCOMPARE(m_store->fetch({.limit = 1}).result().first().bytes, kJpeg.size());
    m_store->save(sampleMemory(u"EMPTY"_s), {}).waitForFinished();
    QCOMPARE(m_store->fetch({.limit = 1}).result().first().bytes, 0);
}

void SavingTest::aSealedPictureIsWhatLiesOnDisk()
{
    m_store.reset();
    m_store = std::make_unique<HistoryStore>(
        HistoryStore::Writing{.root = m_folder->root(), .vault = m_vault});
    QCOMPARE(save(sampleMemory(u"A"_s)), kNoFailure);
    const QByteArray onDisk = contents(m_folder->images() + u"/A.jpg"_s);
    QVERIFY(ImageVault::isSealed(onDisk));
    QCOMPARE(m_vault.opened(onDisk), std::optional(kJpeg));
    QCOMPARE(m_store->fetch({.limit = 1}).result().first().bytes, kJpeg.size() + 32);
}

void SavingTest::aVaultMaySetInLater()
{
    QCOMPARE(save(sampleMemory(u"PLAIN"_s)), kNoFailure);
    m_store->setVault(m_vault).waitForFinished();
    QCOMPARE(save(sampleMemory(u"SEALED"_s)), kNoFailure);
    m_store->setVault({}).waitForFinished();
    QCOMPARE(save(sampleMemory(u"AGAIN"_s)), kNoFailure);
    QCOMPARE(contents(m_folder->images() + u"/PLAIN.jpg"_s), kJpeg);
    const QByteArray sealed = contents(m_folder->images() + u"/SEALED.jpg"_s);
    QVERIFY(ImageVault::isSealed(sealed));
    QCOMPARE(m_vault.opened(sealed), std::optional(kJpeg));
    QCOMPARE(contents(m_folder->images() + u"/AGAIN.jpg"_s), kJpeg);
}

void SavingTest::theMarkerComesFirstAndGoesLast()
{
    struct Sight {
        QStringList markers;
        qint64 markerSize = -1;
        int markerMode = 0;
        QStringList pictures;
    };
    const auto look = [this] {
        const QString marker = m_folder->pending() + u"/A.jpg"_s;
        return Sight{names(m_folder->pending()), QFileInfo(marker).size(), mode(marker),
                     names(m_folder->images())};
    };
    Sight sealing;
    Sight inserting;
    m_store.reset();
    SqlWatch watch;
    NonceHook::set([&] {
        sealing = look();
        return true;
    });
    m_store = std::make_unique<HistoryStore>(
        HistoryStore::Writing{.root = m_folder->root(), .vault = m_vault});
    watch.setObserver([&](const QString& sql) {
        if (sql.startsWith(u"INSERT INTO memories "_s))
            inserting = look();
    });
    QCOMPARE(save(sampleMemory(u"A"_s)), kNoFailure);
    watch.setObserver({});

    QCOMPARE(sealing.markers, QStringList{u"A.jpg"_s});
    QCOMPARE(sealing.markerSize, 0);
    QCOMPARE(sealing.markerMode, 0600);
    QCOMPARE(sealing.pictures, QStringList{});
    QCOMPARE(inserting.markers, QStringList{u"A.jpg"_s});
    QCOMPARE(inserting.pictures, QStringList{u"A.jpg"_s});
    QCOMPARE(names(m_folder->pending()), QStringList{});
}

void SavingTest::savingTheSameTwiceKeepsTheFirst()
{
    QCOMPARE(save(sampleMemory(u"A"_s)), kNoFailure);
    QCOMPARE(save(sampleMemory(u"A"_s)), u"A screenshot with that filename already exists."_s);
    QCOMPARE(names(m_folder->images()), QStringList{u"A.jpg"_s});
    QCOMPARE(names(m_folder->pending()), QStringList{});
    QCOMPARE(rows(), QStringList{u"A"_s});
}

void SavingTest::anEarlierPictureIsNeverOverwritten()
{
    QVERIFY(putFile(m_folder->images() + u"/A.jpg"_s, "earlier"));
    QVERIFY(QDir(m_folder->images()).mkdir(u"B.jpg"_s));
    const QString taken = u"A screenshot with that filename already exists."_s;
    QCOMPARE(save(sampleMemory(u"A"_s)), taken);
    QCOMPARE(save(sampleMemory(u"B"_s)), taken);
    QCOMPARE(contents(m_folder->images() + u"/A.jpg"_s), QByteArray("earlier"));
    QCOMPARE(names(m_folder->pending()), QStringList{});
    QCOMPARE(rows(), QStringList{});
}

void SavingTest::aLinkThatLeadsNowhereTakesTheNameToo()
{
    QVERIFY(QFile::link(m_folder->beside(u"elsewhere.jpg"_s), m_folder->images() + u"/A.jpg"_s));
    QCOMPARE(save(sampleMemory(u"A"_s)), u"A screenshot with that filename already exists."_s);
    QVERIFY(!QFile::exists(m_folder->beside(u"elsewhere.jpg"_s)));
    QCOMPARE(rows(), QStringList{});
}

void SavingTest::aRepeatedIdentityLeavesNoPicture()
{
    QCOMPARE(save(sampleMemory(u"A"_s)), kNoFailure);
    Memory again = sampleMemory(u"A"_s);
    again.filename = u"other.jpg"_s;
    QCOMPARE(save(again), u"UNIQUE constraint failed: memories.id"_s);
    QCOMPARE(names(m_folder->images()), QStringList{u"A.jpg"_s});
    QCOMPARE(names(m_folder->pending()), QStringList{});
    QCOMPARE(rows(), QStringList{u"A"_s});
    QCOMPARE(save(sampleMemory(u"B"_s)), kNoFailure);
}

void SavingTest::namesThatClimbOutAreRefused_data()
{
    QTest::addColumn<QString>("filename");
    QTest::newRow("empty") << u""_s;
    QTest::newRow("the folder") << u"."_s;
    QTest::newRow("the folder above") << u".."_s;
    QTest::newRow("a sibling") << u"../a.jpg"_s;
    QTest::newRow("far away") << u"../../../../../../tmp/a.jpg"_s;
    QTest::newRow("absolute") << u"/a.jpg"_s;
    QTest::newRow("into a folder") << u"a/b.jpg"_s;
    QTest::newRow("a slash behind") << u"a/"_s;
    QTest::newRow("a zero inside") << u"a"_s + QChar(QChar::Null) + u".jpg"_s;
}

void SavingTest::namesThatClimbOutAreRefused()
{
    QFETCH(QString, filename);
    // Gone, so that even making the folder again would show.
    QVERIFY(QDir(m_folder->pending()).removeRecursively());
    const QStringList before = names(m_folder->root());
    Memory memory = sampleMemory(u"A"_s);
    memory.filename = filename;
    QCOMPARE(save(memory), u"Invalid screenshot filename."_s);
    QCOMPARE(names(m_folder->root()), before);
    QCOMPARE(names(m_folder->images()), QStringList{});
    QCOMPARE(rows(), QStringList{});
}

void SavingTest::aRefusalToSealLeavesNothing()
{
    NonceHook::set([] { return false; });
    m_store->setVault(m_vault).waitForFinished();
    QCOMPARE(save(sampleMemory(u"A"_s)), u"The screenshot could not be encrypted."_s);
    QCOMPARE(names(m_folder->images()), QStringList{});
    QCOMPARE(names(m_folder->pending()), QStringList{});
    QCOMPARE(rows(), QStringList{});
    NonceHook::remove();
    QCOMPARE(save(sampleMemory(u"A"_s)), kNoFailure);
}

void SavingTest::aPictureThatCannotBeWrittenLeavesNothing()
{
    QVERIFY(QDir(m_folder->images()).removeRecursively());
    QCOMPARE(save<FileError>(sampleMemory(u"A"_s)),
             refusal(ENOENT, m_folder->images() + u"/A.jpg"_s));
    QCOMPARE(names(m_folder->pending()), QStringList{});
    QCOMPARE(rows(), QStringList{});
    QVERIFY(!QFile::exists(m_folder->images()));
}

void SavingTest::aNameTooLongForItsTemporaryLeavesNothing()
{
    // Long enough that the marker is made and the picture's name while writing is not.
    Memory memory = sampleMemory(u"A"_s);
    memory.filename = QString(252, u'x');
    QCOMPARE(save<FileError>(memory),
             refusal(ENAMETOOLONG, m_folder->images() + u'/' + memory.filename));
    QCOMPARE(names(m_folder->images()), QStringList{});
    QCOMPARE(names(m_folder->pending()), QStringList{});
    QCOMPARE(rows(), QStringList{});
}

void SavingTest::aMissingFolderOfMarkersIsMadeAgain()
{
    QVERIFY(QDir(m_folder->pending()).removeRecursively());
    QCOMPARE(save(sampleMemory(u"A"_s)), kNoFailure);
    QCOMPARE(mode(m_folder->pending()), 0700);
    QCOMPARE(names(m_folder->pending()), QStringList{});
}

void SavingTest::withoutAFolderOfMarkersNothingIsSaved()
{
    QVERIFY(QDir(m_folder->pending()).removeRecursively());
    QVERIFY(putFile(m_folder->pending(), "in the way"));
    QCOMPARE(save<FileError>(sampleMemory(u"A"_s)), refusal(EEXIST, m_folder->pending()));
    QCOMPARE(contents(m_folder->pending()), QByteArray("in the way"));
    QCOMPARE(names(m_folder->images()), QStringList{});
    QCOMPARE(rows(), QStringList{});
}

void SavingTest::aMarkerThatCannotBeWrittenStopsTheSave()
{
    QVERIFY(QDir(m_folder->pending()).mkdir(u"A.jpg"_s));
    QCOMPARE(save<FileError>(sampleMemory(u"A"_s)),
             refusal(EISDIR, m_folder->pending() + u"/A.jpg"_s));
    QCOMPARE(names(m_folder->pending()), QStringList{u"A.jpg"_s});
    QCOMPARE(names(m_folder->images()), QStringList{});
    QCOMPARE(rows(), QStringList{});
}

void SavingTest::aMarkerLeftByACrashIsUsedAgain()
{
    QVERIFY(putFile(m_folder->pending() + u"/A.jpg"_s, {}));
    QCOMPARE(save(sampleMemory(u"A"_s)), kNoFailure);
    QCOMPARE(names(m_folder->pending()), QStringList{});
}

void SavingTest::savesAreDoneOneByOneInOrder()
{
    QList<QFuture<void>> saves;
    QStringList expected;
    for (int number = 0; number < 30; ++number) {
        const QString id = u"N%1"_s.arg(number, 2, 10, QChar(u'0'));
        saves.append(m_store->save(sampleMemory(id), kJpeg));
        expected.prepend(id);
    }
    // Asked for after them, so it sees them all.
    QCOMPARE(ids(m_store->fetch({.limit = 100}).result()), expected);
    for (QFuture<void>& save : saves)
        QVERIFY(save.isFinished());
}

void SavingTest::destroyingTheStoreFinishesItsSaves()
{
    for (int number = 0; number < 20; ++number)
        m_store->save(sampleMemory(QString::number(number)), kJpeg);
    m_store.reset();
    QCOMPARE(rows().size(), 20);
    QCOMPARE(names(m_folder->images()).size(), 20);
    QCOMPARE(names(m_folder->pending()), QStringList{});
}

QTEST_GUILESS_MAIN(SavingTest)
#include "SavingTest.moc"
