// SPDX-License-Identifier: Apache-2.0
//
// How the program starts, meets itself, and ends.
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QFile>
#include <QTest>

#include <csignal>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

class ProgramTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutADisplayItSaysSoAndEnds()
    {
        const QByteArray display = qgetenv("DISPLAY");
        qunsetenv("DISPLAY");
        RunningMossbank mossbank;
        QVERIFY(mossbank.start());
        QCOMPARE(mossbank.waitForEnd(), 1);
        QCOMPARE(mossbank.terminal(), u"There is no X display: DISPLAY is not set.\n"_s);
        if (!display.isEmpty())
            qputenv("DISPLAY", display);
    }

    void doesNotRecordUnasked()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        mossbank.choose({{u"recordsAtLaunch"_s, u"false"_s}});
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Recording is off"_s), qPrintable(mossbank.terminal()));
        QTest::qWait(1500);
        QCOMPARE(mossbank.stop(SIGINT), 0);
        QVERIFY(!mossbank.terminal().contains(u"Waiting"_s));
    }

    void choicesThatCannotBeReadAreToldAndNothingIsRecorded()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        const QByteArray broken = "[General\nrecordsAtLaunch=true\nexcludedBundles=org.example.A\n";
        QFile file(mossbank.choicesFile());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(broken);
        file.close();
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Recording is off"_s), qPrintable(mossbank.terminal()));
        QVERIFY2(mossbank.terminal().contains(
                     u"The choices in %1 cannot be read, so nothing is recorded unasked. "_s.arg(
                         file.fileName())),
                 qPrintable(mossbank.terminal()));
        QTest::qWait(1500);
        QCOMPARE(mossbank.stop(SIGINT), 0);
        QVERIFY(!mossbank.terminal().contains(u"Waiting"_s));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), broken);
    }

    void exclusionsThatExcludeNothingAreTold_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<QString>("told");
        QTest::newRow("what may be installed some day")
            << u"org.example.Some-Day_2, somewhere, notepad++ ; but the bank"_s << QString();
        QTest::newRow("a path, a pattern, a remark and a word")
            << u"/usr/bin/x, org.example.A, org.example.*, org.example.B # bank, My App"_s
            << u"What excludedBundles holds here looks like no application's id and may exclude "
               "nothing: \"/usr/bin/x\", \"org.example.*\", \"org.example.B # bank\", \"My App\"\n"_s;
        QTest::newRow("semicolons")
            << u"org.example.A; org.example.B;org.example.C"_s
            << u"What stands behind a semicolon in excludedBundles is a remark and excludes "
               u"nothing: "
               "\"org.example.B\", \"org.example.C\". A comma goes between two.\n"_s;
        QTest::newRow("a semicolon in a quotation")
            << u"\"org.example.A;org.example.B\""_s
            << u"What excludedBundles holds here looks like no application's id and may exclude "
               "nothing: \"org.example.A;org.example.B\"\n"_s;
    }
    void exclusionsThatExcludeNothingAreTold()
    {
        QFETCH(QString, written);
        QFETCH(QString, told);
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        mossbank.choose({{u"excludedBundles"_s, written}});
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Waiting for"_s), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGINT), 0);
        QVERIFY2(mossbank.terminal().contains(told), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.terminal().count(u"excludedBundles"_s), told.isEmpty() ? 0 : 1);
    }

    void slipsOfThePenAreTold()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        mossbank.choose({{u"retentionDays"_s, u"for ever"_s}, {u"excludedBundle"_s, u"a.b"_s}});
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Waiting for"_s), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGINT), 0);
        for (const QString& told :
             {u"retentionDays in %1 cannot be read, so that it counts as not chosen.\n"_s,
              u"excludedBundle in %1 is none of Mossbank's choices.\n"_s})
            QVERIFY2(mossbank.terminal().contains(told.arg(mossbank.choicesFile())),
                     qPrintable(mossbank.terminal()));
    }

    void aSecondStartFindsTheFirst()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        QVERIFY(mossbank.start());
        QVERIFY(mossbank.waitFor(u"Library: "_s));
        const auto second = mossbank.startAgain();
        QCOMPARE(second.status, 1);
        QCOMPARE(second.text,
                 u"Mossbank is already running (process %1).\n"_s.arg(mossbank.process()));
        QCOMPARE(mossbank.stop(SIGINT), 0);
    }

    void aSecondStartFindsTheFirstHoweverThePathIsWritten()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        QVERIFY(mossbank.start());
        QVERIFY(mossbank.waitFor(u"Library: "_s));
        const QTemporaryDir elsewhere;
        const QString link = elsewhere.filePath(u"link"_s);
        QVERIFY(QFile::link(QFileInfo(mossbank.library()).path(), link));
        const auto second = mossbank.startAgain(link);
        QCOMPARE(second.status, 1);
        QCOMPARE(second.text,
                 u"Mossbank is already running (process %1).\n"_s.arg(mossbank.process()));
        QCOMPARE(mossbank.stop(SIGHUP), 0);
        QVERIFY(!QFile::exists(mossbank.library() + u"/mossbank.lock"_s));
    }

    void aKilledOneDoesNotStandInTheWayOfTheNext()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        QVERIFY(mossbank.start());
        QVERIFY(mossbank.waitFor(u"Library: "_s));
        QCOMPARE(mossbank.stop(SIGKILL), -1);
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Waiting for"_s), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGTERM), 0);
    }

    void aLibraryThatCannotBeOpenedIsToldAndNothingIsRecorded_data()
    {
        QTest::addColumn<bool>("isFile");
        QTest::addColumn<QString>("message");
        QTest::newRow("the library's folder is a file") << true << u"History is unavailable: "_s;
        QTest::newRow("a damaged database")
            << false << u"History is unavailable: file is not a database"_s;
    }
    void aLibraryThatCannotBeOpenedIsToldAndNothingIsRecorded()
    {
        QFETCH(bool, isFile);
        QFETCH(QString, message);
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        const QString library = mossbank.library();
        QVERIFY(QDir().mkpath(isFile ? QFileInfo(library).path() : library));
        QFile file(isFile ? library : library + u"/history.sqlite"_s);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(5000, 'm'));
        file.close();
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(message), qPrintable(mossbank.terminal()));
        QVERIFY(mossbank.waitFor(u"Recording is off"_s));
        QCOMPARE(mossbank.stop(SIGINT), 0);
        QCOMPARE(file.size(), 5000);
    }

    void wrongUseIsTold()
    {
        QProcess process;
        process.start(QStringLiteral(MOSSBANK_BINARY_DIR "/Mossbank/mossbank"), {u"--sing"_s});
        QVERIFY(process.waitForFinished());
        QVERIFY(process.exitCode() != 0);
        QVERIFY(process.readAllStandardError().contains("sing"));
    }
};

QTEST_GUILESS_MAIN(ProgramTest)
#include "ProgramTest.moc"
