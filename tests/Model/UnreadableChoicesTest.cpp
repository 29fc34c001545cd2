// SPDX-License-Identifier: Apache-2.0
//
// A file of choices with a mistake in it: what is excluded by it is not known, and may not be lost.
#include "Mossbank/Model/Preferences.h"
#include "tests/Fakes/BadDisk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <cerrno>

using namespace mossbank;
using namespace Qt::StringLiterals;

class UnreadableChoicesTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;

    QString path() const { return m_folder.filePath(u"choices.ini"_s); }
    QString kept() const { return path() + u".unreadable"_s; }

    static bool write(const QString& path, const QByteArray& content)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    }

    static QByteArray contentOf(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(not there)");
    }

    static QByteArray broken(const QByteArray& mistake = "[General")
    {
        return mistake + "\nrecordsAtLaunch=true\nexcludedBundles=a.b\nretentionDays=0\n"
                         "pausedUntil=2999-01-01T00:00:00.000\nopensAtLogin=true\n";
    }

private Q_SLOTS:
    void init()
    {
        for (const QString& name : QDir(m_folder.path()).entryList(QDir::Files))
            QVERIFY(QFile::remove(m_folder.filePath(name)));
    }

    void nothingInItCounts_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("a section without its end") << broken();
        QTest::newRow("a choice without its sign") << broken("[General]\ninterval 7");
        QTest::newRow("behind all the rest") << broken("[General]") + "excludedBundles\n";
        QTest::newRow("a quotation without its end")
            << broken("[General]") + "excludedBundles=\"c.d\n";
        QTest::newRow("the same in a remark") << broken("[General]\n# 15\" screen");
        QTest::newRow("a sign in a remark alone") << broken("[General]\ninterval ; = 7");
        QTest::newRow("zeros after a power cut") << broken("[General]") + QByteArray(4096, '\0');
    }
    void nothingInItCounts()
    {
        QFETCH(QByteArray, content);
        QVERIFY(write(path(), content));
        const Preferences preferences(path());
        const Preferences fresh(m_folder.filePath(u"none.ini"_s));
        QVERIFY(!preferences.isReadable());
        QCOMPARE(preferences.recordsAtLaunch(), false);
        QCOMPARE(preferences.excludedBundles(), fresh.excludedBundles());
        QCOMPARE(preferences.retentionDays(), 30);
        QCOMPARE(preferences.pausedUntil(), std::nullopt);
        QCOMPARE(preferences.opensAtLogin(), false);
        QVERIFY(!preferences.hasChosenAddresses());
    }

    void whatIsNoMistakeIsNone_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("remarks of both kinds") << QByteArray("# one\n ; \"two\n[General]\n\n");
        QTest::newRow("line ends of another system")
            << QByteArray("[General]\r\n\r\ninterval=7\r\n");
        QTest::newRow("a mark of UTF-8") << QByteArray("\xef\xbb\xbf[General]\ninterval=7");
        QTest::newRow("a line in two") << QByteArray("[General]\nexcludedBundles=a.b, \\\n c.d\n");
        QTest::newRow("quotations") << QByteArray(R"([General]
excludedBundles="a, ; \"b\"", c.d ; a "remark
)");
        QTest::newRow("another section") << QByteArray("[General]\ninterval=7\n[x]\ny=\n");
    }
    void whatIsNoMistakeIsNone()
    {
        QFETCH(QByteArray, content);
        QVERIFY(write(path(), content));
        QVERIFY(Preferences(path()).isReadable());
    }

    void whatHappensOfItselfLeavesItAsItIs()
    {
        QVERIFY(write(path(), broken()));
        {
            Preferences preferences(path());
            preferences.removePausedUntil();
            preferences.removeRecordsAfterRelaunch();
            QCoreApplication::processEvents();
        }
        QCOMPARE(contentOf(path()), broken());
        QVERIFY(!QFile::exists(kept()));
    }

    void aChoiceBeginsItAnewAndKeepsWhatWasThere()
    {
        QVERIFY(write(path(), broken()));
        {
            Preferences preferences(path());
            QSignalSpy told(&preferences, &Preferences::cannotBeStored);
            preferences.setExcludedBundles({u"c.d"_s});
            preferences.setInterval(7);
            QCOMPARE(told.size(), 0);
        }
        QCOMPARE(contentOf(kept()), broken());
        QCOMPARE(contentOf(path()), "[General]\nexcludedBundles=c.d\ninterval=7\n");
        QVERIFY(Preferences(path()).isReadable());
    }

    void aMistakeMadeWhileTheProgramRunsLosesNoChoice()
    {
        QVERIFY(write(path(), "[General]\nexcludedBundles=a.b\nretentionDays=0\nmine=1\n"));
        Preferences preferences(path());
        preferences.setInterval(5);
        QVERIFY(write(path(), broken("[General]\nexcludedBundles=\"c.d\n")));
        QSignalSpy told(&preferences, &Preferences::cannotBeStored);
        preferences.setInterval(7);
        QCOMPARE(told.size(), 0);
        QCOMPARE(contentOf(kept()), broken("[General]\nexcludedBundles=\"c.d\n"));
        QCOMPARE(contentOf(path()),
                 "[General]\nexcludedBundles=a.b\ninterval=7\nmine=1\nretentionDays=0\n");
        // Also when it is the exclusions that are chosen, for which it is looked at first.
        QVERIFY(write(path(), broken()));
        preferences.setExcludedBundles({u"a.b"_s, u"e.f"_s});
        QCOMPARE(Preferences(path()).excludedBundles(), (QStringList{u"a.b"_s, u"e.f"_s}));
        QCOMPARE(Preferences(path()).retentionDays(), 0);
    }

    void aFileThatIsGoneIsBegunAnew_data()
    {
        QTest::addColumn<bool>("isEmptied");
        QTest::newRow("taken away") << false;
        QTest::newRow("emptied") << true;
    }
    void aFileThatIsGoneIsBegunAnew()
    {
        QFETCH(bool, isEmptied);
        QVERIFY(write(path(), "[General]\nexcludedBundles=a.b\nretentionDays=0\n"));
        Preferences preferences(path());
        QVERIFY(isEmptied ? write(path(), "\n") : QFile::remove(path()));
        preferences.setInterval(7);
        QCOMPARE(contentOf(path()),
                 "[General]\nexcludedBundles=a.b\ninterval=7\nretentionDays=0\n");
        QVERIFY(!QFile::exists(kept()));
    }

    void aPipeInItsPlaceIsNotWaitedFor()
    {
        QCOMPARE(::mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
        Preferences preferences(path());
        QVERIFY(!preferences.isReadable());
        QSignalSpy told(&preferences, &Preferences::cannotBeStored);
        preferences.setInterval(7);
        QCOMPARE(told.size(), 1);
        QVERIFY(QFile::remove(path()));
    }

    void farTooLargeAFileIsLeftAlone()
    {
        const QByteArray large = "[General]\nrecordsAtLaunch=true\n" + QByteArray(2'000'000, '\n');
        QVERIFY(write(path(), large));
        Preferences preferences(path());
        QVERIFY(!preferences.isReadable());
        QVERIFY(!preferences.recordsAtLaunch());
        QSignalSpy told(&preferences, &Preferences::cannotBeStored);
        preferences.setInterval(7);
        QCOMPARE(told.size(), 1);
        QCOMPARE(contentOf(path()), large);
        QVERIFY(!QFile::exists(kept()));
    }

    void aLinkToALinkStaysOne()
    {
        const QString target = m_folder.filePath(u"elsewhere.ini"_s);
        const QString between = m_folder.filePath(u"between.ini"_s);
        QVERIFY(write(target, "[General]\nmine=1\n"));
        QVERIFY(QFile::link(target, between));
        QVERIFY(QFile::link(between, path()));
        Preferences(path()).setInterval(7);
        QVERIFY(QFileInfo(path()).isSymLink());
        QVERIFY(QFileInfo(between).isSymLink());
        QCOMPARE(contentOf(target), "[General]\ninterval=7\nmine=1\n");
    }

    void aLinkStaysOne()
    {
        const QString target = m_folder.filePath(u"elsewhere.ini"_s);
        for (const bool isThere : {false, true}) {
            if (isThere)
                QVERIFY(write(target, "[General]\nmine=1\n"));
            QVERIFY(QFile::link(target, path()));
            Preferences(path()).setInterval(7);
            QVERIFY(QFileInfo(path()).isSymLink());
            QCOMPARE(contentOf(target),
                     isThere ? "[General]\ninterval=7\nmine=1\n" : "[General]\ninterval=7\n");
            QVERIFY(QFile::remove(path()));
        }
    }

    void whatAKilledOneLeftGoes()
    {
        const QStringList left = {path() + u".draft"_s, path() + u".aB3xYz"_s,
                                  path() + u".draft.aB3xYz"_s};
        for (const QString& name : left)
            QVERIFY(write(name, "x"));
        QVERIFY(write(kept(), "x"));
        QVERIFY(write(m_folder.filePath(u"other.ini.aB3xYz"_s), "x"));
        const Preferences preferences(path());
        for (const QString& name : left)
            QVERIFY2(!QFile::exists(name), qPrintable(name));
        QVERIFY(QFile::exists(kept()));
        QVERIFY(QFile::exists(m_folder.filePath(u"other.ini.aB3xYz"_s)));
    }

    void nothingIsLeftBesideIt()
    {
        Preferences(path()).setInterval(7);
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden),
                 QStringList{u"choices.ini"_s});
    }

    void everyChoiceIsWrittenAtOnce()
    {
        Preferences preferences(path());
        preferences.setLens(u"ask"_s);
        QCOMPARE(contentOf(path()), "[General]\nlens=ask\n");
        preferences.setPausedUntil(Date{1'700'037'900});
        preferences.removePausedUntil();
        QCOMPARE(contentOf(path()), "[General]\nlens=ask\n");
    }

    void whatWasKeptOnceIsKept()
    {
        for (const char* const mistake : {"[General", "[Generl", "[General"}) {
            QVERIFY(write(path(), broken(mistake)));
            Preferences(path()).setInterval(7);
        }
        QCOMPARE(contentOf(kept()), broken("[General"));
        QCOMPARE(contentOf(kept() + u".2"_s), broken("[Generl"));
        QVERIFY(!QFile::exists(kept() + u".3"_s));
    }

    void whatCannotBeKeptIsNotWrittenOver()
    {
        QVERIFY(write(path(), broken()));
        {
            Preferences preferences(path());
            QSignalSpy told(&preferences, &Preferences::cannotBeStored);
            {
                const BadDisk disk(m_folder.path(), 1, BadDisk::Then::FailOn, ENOSPC);
                preferences.setOpensAtLogin(true);
                preferences.setExcludedBundles({u"c.d"_s});
            }
            QCOMPARE(told.size(), 1);
            QCOMPARE(contentOf(path()), broken());
            QCOMPARE(preferences.excludedBundles(), QStringList{u"c.d"_s});
            QVERIFY(preferences.opensAtLogin());
            // There is room again.
            preferences.setInterval(7);
        }
        QCOMPARE(contentOf(kept()), broken());
        QCOMPARE(contentOf(path()),
                 "[General]\nexcludedBundles=c.d\ninterval=7\nopensAtLogin=true\n");
    }
};

QTEST_GUILESS_MAIN(UnreadableChoicesTest)
#include "UnreadableChoicesTest.moc"
