// SPDX-License-Identifier: Apache-2.0
//
// One program on a library: a live one always stands in the way of the next, a dead one never,
// whatever the disk and the last power cut have left.
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"
#include "tests/Fakes/SmallDisk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QSysInfo>
#include <QTest>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int kPatience = 20'000;
const QString kRunning = u"Mossbank is already running.\n"_s;

QString lockOf(const RunningMossbank& mossbank)
{
    return mossbank.library() + u"/mossbank.lock"_s;
}

bool putFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(bytes) == bytes.size();
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString runningAs(const RunningMossbank& mossbank)
{
    return u"Mossbank is already running (process %1).\n"_s.arg(mossbank.process());
}

qint64 numberOf(std::vector<std::unique_ptr<QProcess>>& starts, QProcess::ProcessState state)
{
    return std::ranges::count_if(starts, [state](const auto& one) {
        one->waitForFinished(0);
        return one->state() == state;
    });
}

} // namespace

class SecondStartTest : public QObject {
    Q_OBJECT

    std::unique_ptr<VirtualDesktop> m_desktop;

private Q_SLOTS:
    void init()
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
    }
    void cleanup() { m_desktop.reset(); }

    void whatALockFileHoldsBlocksNobody_data()
    {
        QTest::addColumn<QByteArray>("left");
        QTest::newRow("nothing, as after a power cut") << QByteArray();
        QTest::newRow("nonsense") << QByteArray("\0\x1b[2J\n\n\xff", 9);
        QTest::newRow("no number") << QByteArray("mossbank\nhere\n");
        const QByteArray host = QSysInfo::machineHostName().toUtf8();
        const QByteArray self = QByteArray::number(QCoreApplication::applicationPid());
        QTest::newRow("a process that lives") << self + '\n' + host + '\n';
        QTest::newRow("another computer") << QByteArray("1\nferry\n");
        QTest::newRow("a megabyte") << QByteArray(1'000'000, '7');
    }
    void whatALockFileHoldsBlocksNobody()
    {
        QFETCH(QByteArray, left);
        RunningMossbank mossbank;
        QVERIFY(putFile(lockOf(mossbank), left));
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Waiting for"_s), qPrintable(mossbank.terminal()));
        const auto second = mossbank.startAgain();
        QCOMPARE(second.status, 1);
        QCOMPARE(second.text, runningAs(mossbank));
        QCOMPARE(mossbank.stop(SIGTERM), 0);
        QVERIFY(!QFile::exists(lockOf(mossbank)));
    }

    void whatIsNoFileInItsPlaceBlocksNobodyAndStays_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("a folder") << u"folder"_s;
        QTest::newRow("a link to a file of somebody's") << u"link"_s;
    }
    void whatIsNoFileInItsPlaceBlocksNobodyAndStays()
    {
        QFETCH(QString, kind);
        RunningMossbank mossbank;
        const QString precious = mossbank.home() + u"/precious"_s;
        QVERIFY(putFile(precious, "letters"));
        QVERIFY(QDir().mkpath(mossbank.library()));
        QVERIFY(kind == u"link" ? QFile::link(precious, lockOf(mossbank))
                                : QDir().mkpath(lockOf(mossbank)));
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Waiting for"_s), qPrintable(mossbank.terminal()));
        const auto second = mossbank.startAgain();
        QCOMPARE(second.status, 1);
        QCOMPARE(second.text, kRunning);
        QCOMPARE(mossbank.stop(SIGTERM), 0);
        QCOMPARE(contentOf(precious), "letters");
        QVERIFY(QFileInfo::exists(lockOf(mossbank)));
    }

    void ofManyStartsAtTheSameInstantOneRuns()
    {
        constexpr int kStarts = 8;
        RunningMossbank mossbank;
        for (int round = 0; round < 4; ++round) {
            auto starts = mossbank.startTogether(kStarts);
            const bool isDecided = QTest::qWaitFor(
                [&] { return numberOf(starts, QProcess::NotRunning) == kStarts - 1; }, kPatience);
            QVERIFY2(isDecided,
                     qPrintable(QString::number(numberOf(starts, QProcess::NotRunning))));
            // Nor does the last one end as well.
            QTest::qWait(500);
            QCOMPARE(numberOf(starts, QProcess::Running), 1);
            for (const auto& one : starts) {
                if (one->state() == QProcess::NotRunning)
                    QVERIFY2(one->readAll().startsWith("Mossbank is already running"), "");
                // The next round finds what a killed one has left.
                one->kill();
                one->waitForFinished(kPatience);
            }
        }
    }

    void oneThatStandsStillIsAlive()
    {
        RunningMossbank mossbank;
        QVERIFY(mossbank.start());
        QVERIFY(mossbank.waitFor(u"Library: "_s));
        const auto process = static_cast<pid_t>(mossbank.process());
        QCOMPARE(::kill(process, SIGSTOP), 0);
        const auto second = mossbank.startAgain();
        QCOMPARE(::kill(process, SIGCONT), 0);
        QCOMPARE(second.status, 1);
        QCOMPARE(second.text, runningAs(mossbank));
        QCOMPARE(mossbank.stop(SIGTERM), 0);
    }

    void withoutItsLockFileItIsStillTheFirst()
    {
        RunningMossbank mossbank;
        QVERIFY(mossbank.start());
        QVERIFY(mossbank.waitFor(u"Library: "_s));
        QVERIFY(QFile::remove(lockOf(mossbank)));
        const auto second = mossbank.startAgain();
        QCOMPARE(second.status, 1);
        QCOMPARE(second.text, kRunning);
        QCOMPARE(mossbank.stop(SIGTERM), 0);
    }

    // Between computers that share the folder there is the file's lock alone.
    void aFileThatIsLockedElsewhereCounts_data()
    {
        QTest::addColumn<QByteArray>("left");
        QTest::addColumn<QString>("said");
        const QByteArray host = QSysInfo::machineHostName().toUtf8();
        QTest::newRow("on another computer")
            << QByteArray("4711\nferry\n")
            << u"Mossbank is already running on ferry (process 4711).\n"_s;
        QTest::newRow("by one that wrote nothing") << QByteArray() << kRunning;
        QTest::newRow("by one that has not yet written over what a dead one left")
            << QByteArray("2000000000\n") + host + '\n'
            << kRunning;
    }
    void aFileThatIsLockedElsewhereCounts()
    {
        QFETCH(QByteArray, left);
        QFETCH(QString, said);
        RunningMossbank mossbank;
        QVERIFY(putFile(lockOf(mossbank), left));
        const int file =
            ::open(QFile::encodeName(lockOf(mossbank)).constData(), O_RDWR | O_CLOEXEC);
        const auto closes = qScopeGuard([file] { ::close(file); });
        QCOMPARE(::flock(file, LOCK_EX | LOCK_NB), 0);
        const auto start = mossbank.startAgain();
        QCOMPARE(start.status, 1);
        QCOMPARE(start.text, said);
        QCOMPARE(contentOf(lockOf(mossbank)), left);
    }

    void onAFullDiskTheFirstSaysWhatIsWrongAndIsTheOnlyOne()
    {
        RunningMossbank mossbank;
        QVERIFY(QDir().mkpath(mossbank.library()));
        const SmallDisk disk(mossbank.library(), "size=64k");
        QVERIFY2(disk.problem().isEmpty(), qPrintable(disk.problem()));
        QVERIFY(disk.leave(0));
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"History is unavailable: "_s), qPrintable(mossbank.terminal()));
        QVERIFY2(mossbank.waitFor(u"Recording is off"_s), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.startAgain().text, kRunning);
        // Nor does a second one run when there is room again.
        QVERIFY(disk.makeRoom());
        QCOMPARE(mossbank.startAgain().status, 1);
        QCOMPARE(mossbank.stop(SIGTERM), 0);
    }

    void aLibraryThatCannotBeMadeIsToldAndIsTheEnd()
    {
        RunningMossbank mossbank;
        const QString data = QFileInfo(mossbank.library()).path();
        QVERIFY(QDir().mkpath(data));
        const SmallDisk disk(data, "size=64k,nr_inodes=1");
        QVERIFY2(disk.problem().isEmpty(), qPrintable(disk.problem()));
        QVERIFY(mossbank.start());
        QCOMPARE(mossbank.waitForEnd(), 1);
        QCOMPARE(
            mossbank.terminal(),
            u"History is unavailable: No space left on device: %1\n"_s.arg(mossbank.library()));
    }

    void inAFolderThatCannotBeWrittenToTheFirstIsTheOnlyOne()
    {
        RunningMossbank mossbank;
        QVERIFY(QDir().mkpath(mossbank.library()));
        const SmallDisk disk(mossbank.library(), "ro,size=64k");
        QVERIFY2(disk.problem().isEmpty(), qPrintable(disk.problem()));
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"History is unavailable: "_s), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.startAgain().text, kRunning);
        QCOMPARE(mossbank.stop(SIGTERM), 0);
    }
};

int main(int argc, char** argv)
{
    SmallDisk::allow();
    const QCoreApplication application(argc, argv);
    SecondStartTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "SecondStartTest.moc"
