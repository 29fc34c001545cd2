// SPDX-License-Identifier: Apache-2.0
//
// A disk of three megabytes, mounted for these tests alone.
#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/RawSql.h"
#include "tests/Core/Library/Summary.h"
#include "tests/Fakes/SmallDisk.h"

#include <QRandomGenerator>

#include <cerrno>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kKilobyte = 1024;

QByteArray noise(qsizetype size)
{
    QByteArray bytes(size, '\0');
    QRandomGenerator random(1);
    for (char& byte : bytes)
        byte = static_cast<char>(random.bounded(256));
    return bytes;
}

/// Words that no page holds many of.
QString manyWords(qsizetype letters)
{
    QString text;
    QRandomGenerator random(2);
    while (text.size() < letters)
        text += QString::number(random.generate64(), 36) + u' ';
    return text;
}

} // namespace

class FullDiskTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aLibraryOnAFullDiskCannotBeMadeAndSaysSo();
    void savesUntilTheDiskIsFullAreWholeOrNothing();
    void aPictureThatDoesNotFitLeavesNothing();
    void aRowThatDoesNotFitTakesItsPictureAlong();
    void removingManyWithoutRoomToDoItSaysSoAndHalvesNoRow();
    void removingMakesItsOwnRoom_data();
    void removingMakesItsOwnRoom();
    void sealingWithoutRoomLeavesThePicturesWhole();

private:
    QString root() const { return m_folder->filePath(u"library"_s); }
    QString images() const { return root() + u"/Images"_s; }
    QString pending() const { return root() + u"/Pending"_s; }
    qsizetype free() const { return m_disk->free(); }
    bool leave(qsizetype bytes) const { return m_disk->leave(bytes); }
    bool makeRoom() const { return m_disk->makeRoom(); }
    /// Saves, and hands back the message of the failure, of whichever kind.
    static QString save(HistoryStore& store, const Memory& memory, const QByteArray& jpeg);
    void expectWhole(const QStringList& pictures) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<SmallDisk> m_disk;
};

void FullDiskTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_disk = std::make_unique<SmallDisk>(m_folder->path(), "size=3m");
    QVERIFY2(m_disk->problem().isEmpty(), qPrintable(m_disk->problem()));
}

void FullDiskTest::cleanup()
{
    m_disk.reset();
    m_folder.reset();
}

QString FullDiskTest::save(HistoryStore& store, const Memory& memory, const QByteArray& jpeg)
{
    return failure<Failure>([&] { store.save(memory, jpeg).waitForFinished(); });
}

void FullDiskTest::expectWhole(const QStringList& pictures) const
{
    QCOMPARE(names(images()), pictures);
    QCOMPARE(names(pending()), QStringList{});
    RawSql sql(root() + u"/history.sqlite"_s);
    QCOMPARE(sql.rows(u"SELECT filename FROM memories ORDER BY filename"_s), pictures);
    QCOMPARE(sql.value(u"PRAGMA integrity_check"_s), u"ok"_s);
    sql.run(u"INSERT INTO memory_search(memory_search, rank) VALUES('integrity-check', 1)"_s);
}

void FullDiskTest::aLibraryOnAFullDiskCannotBeMadeAndSaysSo()
{
    QVERIFY(leave(8 * kKilobyte));
    const auto said =
        failure<Failure>([this] { HistoryStore(HistoryStore::Writing{.root = root()}); });
    QVERIFY2(said == u"database or disk is full"_s || said == u"disk I/O error"_s,
             qPrintable(said));
    QVERIFY(makeRoom());
    HistoryStore store(HistoryStore::Writing{.root = root()});
    QCOMPARE(store.schemaVersion(), 5);
    QCOMPARE(save(store, sampleMemory(u"A"_s), "jpeg"), QString());
}

void FullDiskTest::savesUntilTheDiskIsFullAreWholeOrNothing()
{
    HistoryStore store(HistoryStore::Writing{.root = root()});
    const QByteArray picture = noise(100 * kKilobyte);
    QStringList saved;
    QString said;
    for (int number = 10; number < 99 && said.isEmpty(); ++number) {
        Memory memory = sampleMemory(QString::number(number));
        memory.text = manyWords(2000);
        said = save(store, memory, picture);
        if (said.isEmpty())
            saved.append(memory.filename);
    }
    QVERIFY(saved.size() > 5);
    QVERIFY2(said.startsWith(u"No space left on device"_s) || said == u"database or disk is full"_s,
             qPrintable(said));
    expectWhole(saved);
}

void FullDiskTest::aPictureThatDoesNotFitLeavesNothing()
{
    HistoryStore store(HistoryStore::Writing{.root = root()});
    QCOMPARE(save(store, sampleMemory(u"A"_s), "jpeg"), QString());
    QVERIFY(leave(150 * kKilobyte));
    QCOMPARE(save(store, sampleMemory(u"B"_s), noise(300 * kKilobyte)),
             refusal(ENOSPC, images() + u"/B.jpg"_s));
    expectWhole({u"A.jpg"_s});
    QVERIFY(free() >= 140 * kKilobyte);

    QVERIFY(makeRoom());
    QCOMPARE(save(store, sampleMemory(u"B"_s), noise(300 * kKilobyte)), QString());
    expectWhole({u"A.jpg"_s, u"B.jpg"_s});
}

void FullDiskTest::aRowThatDoesNotFitTakesItsPictureAlong()
{
    HistoryStore store(HistoryStore::Writing{.root = root()});
    QCOMPARE(save(store, sampleMemory(u"A"_s), "jpeg"), QString());
    Memory wordy = sampleMemory(u"B"_s);
    wordy.text = manyWords(200 * kKilobyte);
    const QByteArray picture = noise(300 * kKilobyte);
    QVERIFY(leave(picture.size() + 40 * kKilobyte));
    QCOMPARE(save(store, wordy, picture), u"database or disk is full"_s);
    expectWhole({u"A.jpg"_s});

    QVERIFY(makeRoom());
    QCOMPARE(save(store, wordy, picture), QString());
    expectWhole({u"A.jpg"_s, u"B.jpg"_s});
    QCOMPARE(ids(store.fetch({.query = wordy.text.section(u' ', 0, 0), .limit = 9}).result()),
             QStringList{u"B"_s});
}

void FullDiskTest::removingManyWithoutRoomToDoItSaysSoAndHalvesNoRow()
{
    HistoryStore store(HistoryStore::Writing{.root = root()});
    constexpr int kScreenshots = 40;
    QStringList pictures;
    for (int number = 1; number <= kScreenshots; ++number) {
        Memory memory = sampleMemory(QString::number(number));
        memory.timestamp = {static_cast<double>(number)};
        memory.text = manyWords(3000) + u"ending%1"_s.arg(number);
        // Empty pictures give no room back.
        QCOMPARE(save(store, memory, {}), QString());
        if (number > kScreenshots / 2)
            pictures.append(memory.filename);
        // Or the log would fill the disk by itself.
        RawSql(root() + u"/history.sqlite"_s).run(u"PRAGMA wal_checkpoint(TRUNCATE)"_s);
    }
    pictures.sort();
    QVERIFY(leave(24 * kKilobyte));
    const auto prune = [&store] {
        store.prune({kScreenshots / 2 + 0.5}).waitForFinished();
    };
    QCOMPARE(failure<StoreError>(prune), u"database or disk is full"_s);
    QCOMPARE(store.fetch({.limit = 999}).result().size(), kScreenshots);
    QCOMPARE(ids(store.fetch({.query = u"ending7"_s, .limit = 9}).result()), QStringList{u"7"_s});
    RawSql sql(root() + u"/history.sqlite"_s);
    QCOMPARE(sql.value(u"PRAGMA integrity_check"_s), u"ok"_s);

    QVERIFY(makeRoom());
    QCOMPARE(failure<StoreError>(prune), kNoFailure);
    expectWhole(pictures);
    QVERIFY(store.fetch({.query = u"ending7"_s, .limit = 9}).result().isEmpty());
    QCOMPARE(summary(sql), recount(sql));
}

void FullDiskTest::removingMakesItsOwnRoom_data()
{
    QTest::addColumn<bool>("isAll");
    QTest::newRow("one") << false;
    QTest::newRow("all") << true;
}

void FullDiskTest::removingMakesItsOwnRoom()
{
    QFETCH(bool, isAll);
    HistoryStore store(HistoryStore::Writing{.root = root()});
    const QByteArray picture = noise(200 * kKilobyte);
    for (const QString& id : {u"A"_s, u"B"_s, u"C"_s})
        QCOMPARE(save(store, sampleMemory(id), picture), QString());
    QVERIFY(leave(0));
    QCOMPARE(free(), 0);
    const auto removing = isAll ? store.deleteAll() : store.deleteMemory(u"B"_s);
    QCOMPARE(failure<Failure>([&] { QFuture<void>(removing).waitForFinished(); }), kNoFailure);
    expectWhole(isAll ? QStringList() : QStringList{u"A.jpg"_s, u"C.jpg"_s});
}

void FullDiskTest::sealingWithoutRoomLeavesThePicturesWhole()
{
    HistoryStore store(HistoryStore::Writing{.root = root()});
    const QByteArray picture = noise(300 * kKilobyte);
    for (const QString& id : {u"A"_s, u"B"_s, u"C"_s})
        QCOMPARE(save(store, sampleMemory(id), picture), QString());
    const ImageVault vault(SymmetricKey::random());
    store.setVault(vault).waitForFinished();
    QVERIFY(leave(100 * kKilobyte));
    const auto said =
        failure<FileError>([&store] { store.sealExistingPictures(9).waitForFinished(); });
    QVERIFY2(said.startsWith(u"No space left on device"_s), qPrintable(said));
    expectWhole({u"A.jpg"_s, u"B.jpg"_s, u"C.jpg"_s});
    for (const QString& name : names(images()))
        QCOMPARE(contents(images() + u'/' + name), picture);

    QVERIFY(makeRoom());
    QCOMPARE(store.sealExistingPictures(9).result(), 3);
    for (const QString& name : names(images()))
        QCOMPARE(vault.opened(contents(images() + u'/' + name)), std::optional(picture));
}

int main(int argc, char** argv)
{
    SmallDisk::allow();
    const QCoreApplication application(argc, argv);
    FullDiskTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "FullDiskTest.moc"
