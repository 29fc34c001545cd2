// SPDX-License-Identifier: Apache-2.0
//
// The program ended and killed at any moment of its start and of its end, over and over: what was
// saved stays, and nothing is left over.
#include "tests/Core/Library/RawSql.h"
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRandomGenerator>
#include <QSet>
#include <QTest>

#include <csignal>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int kRounds = 30;

const QString kRecords = u"Waiting for your next screen"_s;

/// Everything that lies in a folder and those within it.
QStringList filesIn(const QString& folder)
{
    QStringList files;
    QDirIterator all(folder, QDir::Files | QDir::Hidden | QDir::System,
                     QDirIterator::Subdirectories);
    while (all.hasNext())
        files.append(QDir(folder).relativeFilePath(all.next()));
    files.sort();
    return files;
}

} // namespace

class CutShortTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<RunningMossbank> m_mossbank;
    QSet<QString> m_saved;

    /// Choices of which each start has some to store.
    void choose()
    {
        m_mossbank->choose({{u"interval"_s, u"1"_s},
                            {u"skipsUnchangedScreens"_s, u"false"_s},
                            {u"opensAtLogin"_s, u"true"_s},
                            {u"recordsAfterRelaunch"_s, inSeconds(-1)},
                            {u"excludedBundles"_s, u"org.example.Heron"_s}});
    }

    /// What has been saved is there, and can be read.
    void checkLibrary()
    {
        QCOMPARE(m_mossbank->processes(), QStringList());
        if (!QFile::exists(m_mossbank->library() + u"/history.sqlite"_s))
            return;
        QSet<QString> now;
        for (const Memory& memory : m_mossbank->rows()) {
            now.insert(memory.id);
            QVERIFY(QFile::exists(m_mossbank->library() + u"/Images/"_s + memory.filename));
        }
        QVERIFY2(now.contains(m_saved), "what was saved before is lost");
        m_saved = now;
        // None but the program itself changed the choices.
        QCOMPARE(m_mossbank->choice(u"excludedBundles"_s), u"org.example.Heron"_s);
        QCOMPARE(m_mossbank->choice(u"opensAtLogin"_s), u"true"_s);
    }

    /// A start that lives on finds all in order, and puts in order what is not.
    void checkNextStart()
    {
        choose();
        QVERIFY(m_mossbank->start());
        QVERIFY2(m_mossbank->waitFor(u"Saved at"_s), qPrintable(m_mossbank->terminal()));
        QVERIFY2(!m_mossbank->terminal().contains(u"History is unavailable"_s),
                 qPrintable(m_mossbank->terminal()));
        QCOMPARE(m_mossbank->stop(SIGTERM), 0);
        checkLibrary();
        QVERIFY(!QFile::exists(m_mossbank->library() + u"/mossbank.lock"_s));
        RawSql sql(m_mossbank->library() + u"/history.sqlite"_s);
        sql.run(u"INSERT INTO memory_search(memory_search, rank) VALUES('integrity-check', 1)"_s);
        QCOMPARE(sql.value(u"PRAGMA integrity_check"_s), u"ok"_s);
        QCOMPARE(filesIn(m_mossbank->home() + u"/config"_s),
                 (QStringList{u"Mossbank/Mossbank.ini"_s,
                              u"autostart/local.mossbank.Mossbank.desktop"_s}));
    }

private Q_SLOTS:
    void init()
    {
        m_saved.clear();
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        QVERIFY(m_desktop->start(u"xterm"_s, {u"-e"_s, u"sleep"_s, u"1000"_s}, u"xterm"_s));
        m_mossbank = std::make_unique<RunningMossbank>();
    }
    void cleanup()
    {
        m_mossbank.reset();
        m_desktop.reset();
    }

    void atAnyMomentOfTheStart_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("ended") << SIGTERM;
        QTest::newRow("killed") << SIGKILL;
    }
    void atAnyMomentOfTheStart()
    {
        QFETCH(int, signal);
        QRandomGenerator random(20'261'122);
        for (int round = 0; round < kRounds; ++round) {
            choose();
            QVERIFY(m_mossbank->start());
            // Most of it takes place at the very beginning.
            QTest::qWait(static_cast<int>(random.bounded(round % 2 == 0 ? 100 : 500)));
            const int status = m_mossbank->stop(signal);
            // Before it listens to signals, one ends it as any program.
            QVERIFY2(status == -1 || (status == 0 && signal == SIGTERM),
                     qPrintable(QString::number(status)));
            checkLibrary();
        }
        checkNextStart();
    }

    void killedAtAnyMomentOfTheEnd_data()
    {
        QTest::addColumn<int>("ending");
        QTest::newRow("of the session") << SIGTERM;
        QTest::newRow("by the user") << SIGINT;
    }
    void killedAtAnyMomentOfTheEnd()
    {
        QFETCH(int, ending);
        QRandomGenerator random(20'261'123);
        for (int round = 0; round < kRounds; ++round) {
            choose();
            QVERIFY(m_mossbank->start());
            QVERIFY2(m_mossbank->waitFor(kRecords), qPrintable(m_mossbank->terminal()));
            QTest::qWait(static_cast<int>(random.bounded(500)));
            const auto process = static_cast<pid_t>(m_mossbank->process());
            QCOMPARE(::kill(process, ending), 0);
            QTest::qWait(static_cast<int>(random.bounded(40)));
            const int status = m_mossbank->stop(SIGKILL);
            QVERIFY2(status == -1 || status == 0, qPrintable(QString::number(status)));
            checkLibrary();
        }
        checkNextStart();
    }
};

QTEST_GUILESS_MAIN(CutShortTest)
#include "CutShortTest.moc"
