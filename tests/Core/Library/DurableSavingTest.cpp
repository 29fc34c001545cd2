// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/RawSql.h"

#include <linux/magic.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <functional>

namespace {

/// Called before each fsync with the path of its file or folder. Whether it goes well.
std::function<bool(const QString&)> onSync;
/// What every file is said to lie on.
long fileSystem = 0;

} // namespace

// These stand before the system's own for everything in this program.
extern "C" int statfs(const char* path, struct statfs* status) noexcept
{
    const auto result = static_cast<int>(::syscall(SYS_statfs, path, status));
    status->f_type = fileSystem;
    return result;
}

extern "C" int fsync(int file)
{
    const QString link = QStringLiteral("/proc/self/fd/%1").arg(file);
    if (onSync && !onSync(QFile::symLinkTarget(link))) {
        errno = EIO;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_fsync, file));
}

using namespace mossbank;
using namespace Qt::StringLiterals;

/// What of a save is on the disk at which moment, so that a power cut finds it in good order.
class DurableSavingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void theMarkerIsOnTheDiskBeforeThePicture_data();
    void theMarkerIsOnTheDiskBeforeThePicture();
    void aPictureThatIsTakenBackGoesFromTheDiskBeforeItsMarker();
    void whatIsNotSureToBeOnTheDiskIsNotSaved_data();
    void whatIsNotSureToBeOnTheDiskIsNotSaved();

private:
    template <typename Expected>
    QString save()
    {
        return failure<Expected>(
            [this] { m_store->save(sampleMemory(u"A"_s), "jpeg").waitForFinished(); });
    }
    /// What is synced from now on in the folders of pictures and markers, and what of the save is
    /// there at that moment.
    void watch()
    {
        onSync = [this](const QString& path) {
            const QString name = path.section(u'/', -1);
            const bool hasPicture = QFile::exists(m_folder->images() + u"/A.jpg"_s);
            const bool hasMarker = QFile::exists(m_folder->pending() + u"/A.jpg"_s);
            if (path.startsWith(m_folder->images()) || path.startsWith(m_folder->pending()))
                m_synced.append(name.section(u'.', 0, 1) + (hasMarker ? u", marker"_s : QString()) +
                                (hasPicture ? u", picture"_s : QString()));
            return true;
        };
    }

    std::unique_ptr<LibraryFolder> m_folder;
    std::unique_ptr<HistoryStore> m_store;
    QStringList m_synced;
};

void DurableSavingTest::init()
{
    m_folder = std::make_unique<LibraryFolder>();
    m_store = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = m_folder->root()});
    m_synced.clear();
    fileSystem = BTRFS_SUPER_MAGIC;
}

void DurableSavingTest::cleanup()
{
    onSync = nullptr;
    m_store.reset();
}

void DurableSavingTest::theMarkerIsOnTheDiskBeforeThePicture_data()
{
    QTest::addColumn<qint64>("system");
    QTest::addColumn<bool>("syncsInOrder");
    QTest::newRow("ext4") << qint64(EXT4_SUPER_MAGIC) << true;
    QTest::newRow("XFS") << qint64(XFS_SUPER_MAGIC) << true;
    QTest::newRow("Btrfs") << qint64(BTRFS_SUPER_MAGIC) << false;
    QTest::newRow("one over others") << qint64(OVERLAYFS_SUPER_MAGIC) << false;
    QTest::newRow("an unknown one") << qint64(4711) << false;
}

void DurableSavingTest::theMarkerIsOnTheDiskBeforeThePicture()
{
    QFETCH(qint64, system);
    QFETCH(bool, syncsInOrder);
    fileSystem = system;
    watch();
    QCOMPARE(save<Failure>(), kNoFailure);
    QStringList expected = {u"A.jpg, marker"_s, u"Images, marker, picture"_s};
    // Otherwise the first of these takes it along.
    if (!syncsInOrder)
        expected.prepend(u"Pending, marker"_s);
    QCOMPARE(m_synced, expected);
}

void DurableSavingTest::aPictureThatIsTakenBackGoesFromTheDiskBeforeItsMarker()
{
    RawSql(m_folder->database())
        .run(u"CREATE TRIGGER refuse BEFORE INSERT ON memories "
             "BEGIN SELECT raise(ABORT, 'not this one'); END"_s);
    watch();
    QCOMPARE(save<StoreError>(), u"not this one"_s);
    QCOMPARE(m_synced, (QStringList{u"Pending, marker"_s, u"A.jpg, marker"_s,
                                    u"Images, marker, picture"_s, u"Images, marker"_s}));
    QCOMPARE(names(m_folder->pending()), QStringList{});
}

void DurableSavingTest::whatIsNotSureToBeOnTheDiskIsNotSaved_data()
{
    QTest::addColumn<int>("nthSync");
    QTest::addColumn<QString>("about");
    QTest::newRow("the folder with the marker") << 1 << u"/Pending"_s;
    QTest::newRow("the picture's bytes") << 2 << u"/Images/A.jpg"_s;
    QTest::newRow("the folder with the picture") << 3 << u"/Images"_s;
}

void DurableSavingTest::whatIsNotSureToBeOnTheDiskIsNotSaved()
{
    QFETCH(int, nthSync);
    QFETCH(QString, about);
    onSync = [left = nthSync](const QString&) mutable {
        return --left != 0;
    };
    QCOMPARE(save<FileError>(), refusal(EIO, m_folder->root() + about));
    QCOMPARE(names(m_folder->images()), QStringList{});
    QCOMPARE(names(m_folder->pending()), QStringList{});
    QCOMPARE(RawSql(m_folder->database()).rows(u"SELECT id FROM memories"_s), QStringList{});
    QCOMPARE(save<Failure>(), kNoFailure);
}

QTEST_GUILESS_MAIN(DurableSavingTest)
#include "DurableSavingTest.moc"
