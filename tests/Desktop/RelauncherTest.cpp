// SPDX-License-Identifier: Apache-2.0
//
// How the program starts itself anew: as real processes.
#include "Mossbank/Platform/Linux/ProcessRelauncher.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/TestBus.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int kPatience = 20'000;

const QString kProgram = QStringLiteral(MOSSBANK_RELAUNCHING_PROGRAM);

const QString kSaying = QStringLiteral(MOSSBANK_SOURCE_DIR "/tests/Desktop/data/saying");

} // namespace

class RelauncherTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>(QStringLiteral("/tmp/grey heron-XXXXXX"));
        QVERIFY(m_folder->isValid());
    }
    void cleanup()
    {
        qunsetenv("APPIMAGE");
        m_folder.reset();
    }

    void itIsItsOwnProcessWithNothingOfThisOne()
    {
        QVERIFY(QFile::copy(kSaying, at(u"heron"_s)));
        QVERIFY(write(u"go"_s, {}));
        ProcessRelauncher relauncher(at(u"heron"_s),
                                     {u"--relaunched"_s, u"a \"$HOME\" `b`"_s, u""_s});
        relauncher.openAnother();
        const QStringList told = waitUntilTold();
        const auto valueOf = [&](const QString& name) {
            const QStringList lines = told.filter(name + u' ');
            return lines.isEmpty() ? QString() : lines.first().section(u' ', 1);
        };
        QCOMPARE(told.filter(u"argument "_s),
                 (QStringList{u"argument --relaunched"_s, u"argument a \"$HOME\" `b`"_s,
                              u"argument "_s}));
        QCOMPARE(told.filter(u"file "_s), QStringList(3, u"file /dev/null"_s));
        QVERIFY(!valueOf(u"process"_s).isEmpty());
        QVERIFY(valueOf(u"session"_s).toInt() > 0);
        QVERIFY(valueOf(u"session"_s) != QString::number(::getsid(0)));
        QVERIFY(valueOf(u"parent"_s) != QString::number(QCoreApplication::applicationPid()));
    }

    void whatHasTakenItsPlaceIsStartedAndGoesOn()
    {
        QVERIFY(QFile::copy(kProgram, at(u"heron"_s)));
        QProcess first;
        endWithTest(first);
        first.setProcessChannelMode(QProcess::MergedChannels);
        first.start(at(u"heron"_s), {});
        QVERIFY(first.waitForReadyRead(kPatience));
        // As a package manager does it: the old file stays where it is, without a name.
        QVERIFY(QFile::copy(kSaying, at(u"newer"_s)));
        QVERIFY(QFile::remove(at(u"heron"_s)));
        QVERIFY(QFile::rename(at(u"newer"_s), at(u"heron"_s)));
        first.write("go on\n");
        // All that was open to it ends with it, though the other runs.
        QVERIFY(first.waitForFinished(kPatience));
        QCOMPARE(first.exitCode(), 0);
        QVERIFY(!QFile::exists(at(u"told"_s)));
        QVERIFY(write(u"go"_s, {}));
        QCOMPARE(waitUntilTold().filter(u"argument "_s), QStringList{u"argument --relaunched"_s});
    }

    void whatIsGoneCannotBeStarted()
    {
        QVERIFY(QFile::copy(kProgram, at(u"heron"_s)));
        QProcess first;
        endWithTest(first);
        first.setProcessChannelMode(QProcess::MergedChannels);
        first.start(at(u"heron"_s), {});
        QVERIFY(first.waitForReadyRead(kPatience));
        first.readAll();
        QVERIFY(QFile::remove(at(u"heron"_s)));
        first.write("go on\n");
        QVERIFY(first.waitForFinished(kPatience));
        QCOMPARE(first.exitCode(), 1);
        QCOMPARE(QString::fromUtf8(first.readAll()).trimmed(),
                 u"Mossbank cannot be started anew: %1 is no program that can be run."_s.arg(
                     at(u"heron"_s)));
    }

    void whatIsNoProgramCannotBeStarted_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("mayBeRun");
        QTest::newRow("not to be run") << QByteArray("#!/bin/sh\n") << false;
        QTest::newRow("for a program that is not there") << QByteArray("#!/nowhere/sh\n") << true;
    }
    void whatIsNoProgramCannotBeStarted()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, mayBeRun);
        QVERIFY(write(u"heron"_s, bytes));
        if (!mayBeRun)
            QVERIFY(QFile::setPermissions(at(u"heron"_s), QFile::ReadOwner));
        ProcessRelauncher relauncher(at(u"heron"_s));
        const QString failure = failureOf([&] { relauncher.openAnother(); });
        QVERIFY2(failure.startsWith(u"Mossbank cannot be started anew: "_s), qPrintable(failure));
        QVERIFY2(failure.endsWith(u'.') && !failure.endsWith(u".."_s), qPrintable(failure));
    }

    void whereItLiesIsNotKnown()
    {
        ProcessRelauncher relauncher{QString()};
        QVERIFY(!relauncher.availability().isAvailable);
        QVERIFY(isSound(relauncher.availability()));
        QCOMPARE(failureOf([&] { relauncher.openAnother(); }), relauncher.availability().reason);
    }

    void ofAnImageTheImageIsStarted()
    {
        const QString mounted = u"/tmp/.mount_HeronXyz/usr/bin/heron"_s;
        QCOMPARE(ProcessRelauncher(mounted).program(), mounted);
        qputenv("APPIMAGE", "/home/heron/Heron.AppImage");
        QCOMPARE(ProcessRelauncher(mounted).program(), u"/home/heron/Heron.AppImage"_s);
        // Started from within another's.
        QCOMPARE(ProcessRelauncher(u"/usr/bin/heron"_s).program(), u"/usr/bin/heron"_s);
    }

private:
    QString at(const QString& name) const { return m_folder->filePath(name); }

    bool write(const QString& name, const QByteArray& bytes) const
    {
        QFile file(at(name));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() &&
               file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QStringList waitUntilTold() const
    {
        if (!QTest::qWaitFor([&] { return QFile::exists(at(u"told"_s)); }, kPatience))
            return {};
        QFile file(at(u"told"_s));
        return file.open(QIODevice::ReadOnly)
                   ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)
                   : QStringList();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(RelauncherTest)
#include "RelauncherTest.moc"
