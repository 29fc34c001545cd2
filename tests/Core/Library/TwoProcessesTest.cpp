// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/RawSql.h"

#include <QProcess>
#include <QScopeGuard>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

/// The peer program, ended when it goes.
class Peer {
public:
    explicit Peer(const QStringList& arguments)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral(MOSSBANK_LIBRARY_PEER), arguments);
    }
    ~Peer()
    {
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(kPatience))
            m_process.kill();
        m_process.waitForFinished(kPatience);
    }
    Q_DISABLE_COPY_MOVE(Peer)

    /// The next line it says; empty when it says no more.
    QString line()
    {
        while (!m_process.canReadLine() && m_process.waitForReadyRead(kPatience)) {
        }
        return QString::fromUtf8(m_process.readLine()).trimmed();
    }

    /// Lets it end and hands back its exit status; -1 when it did not end by itself.
    int end()
    {
        m_process.closeWriteChannel();
        if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(kPatience))
            return -1;
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }

private:
    static constexpr int kPatience = 20'000;
    QProcess m_process;
};

} // namespace

class TwoProcessesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aWriterThatMeetsALockSaysSoAndSavesNothing();
    void openingWhileAnotherHoldsTheLockStillReads();
    void aReaderReadsWhileAWriterWrites();
    void aReaderIsNotStoppedByALock();
    void twoWritersNeverHalfSave();
};

void TwoProcessesTest::aWriterThatMeetsALockSaysSoAndSavesNothing()
{
    const LibraryFolder folder;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    store.save(sampleMemory(u"BEFORE"_s), "jpeg").waitForFinished();
    Peer peer({u"lock"_s, folder.database()});
    QCOMPARE(peer.line(), u"locked"_s);

    const auto saving = [&store] {
        store.save(sampleMemory(u"DURING"_s), "jpeg").waitForFinished();
    };
    QCOMPARE(failure<StoreError>(saving), u"database is locked"_s);
    QCOMPARE(names(folder.images()), QStringList{u"BEFORE.jpg"_s});
    QCOMPARE(names(folder.pending()), QStringList{});
    QCOMPARE(ids(store.fetch({.limit = 9}).result()), QStringList{u"BEFORE"_s});

    QCOMPARE(peer.end(), 0);
    QCOMPARE(failure<StoreError>(saving), kNoFailure);
    QCOMPARE(ids(store.fetch({.query = u"during"_s, .limit = 9}).result()),
             QStringList{u"DURING"_s});
    QCOMPARE(RawSql(folder.database()).rows(u"SELECT app_name, count FROM memory_slots"_s),
             QStringList{u"Editor|2"_s});
}

void TwoProcessesTest::openingWhileAnotherHoldsTheLockStillReads()
{
    const LibraryFolder folder;
    HistoryStore(HistoryStore::Writing{.root = folder.root()})
        .save(sampleMemory(u"A"_s), "jpeg")
        .waitForFinished();
    Peer peer({u"lock"_s, folder.database()});
    QCOMPARE(peer.line(), u"locked"_s);
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    QCOMPARE(store.schemaVersion(), 5);
    // Trying the option is a write and was refused: removals will rebuild the index, which is
    // slower and forgets as well.
    QVERIFY(!store.purgesDeletedTerms());
    QCOMPARE(ids(store.fetch({.limit = 9}).result()), QStringList{u"A"_s});
}

void TwoProcessesTest::aReaderReadsWhileAWriterWrites()
{
    const LibraryFolder folder;
    constexpr int kSaves = 60;
    {
        const HistoryStore made(HistoryStore::Writing{.root = folder.root()});
    }
    Peer writer({u"save"_s, folder.root(), QString::number(kSaves)});
    QCOMPARE(writer.line(), u"1"_s);
    HistoryStore reader(HistoryStore::ReadingOnly{folder.root()});
    qsizetype seen = 0;
    for (int said = 2; said <= kSaves; ++said) {
        QCOMPARE(writer.line(), QString::number(said));
        const auto listed = reader.fetch({.query = u"moss"_s, .limit = 100}).result();
        // What the writer has said is in; what it has not may be.
        QVERIFY(listed.size() >= said);
        QVERIFY(listed.size() >= seen);
        QCOMPARE(listed.first().id, QString::number(listed.size()));
        seen = listed.size();
    }
    QCOMPARE(writer.end(), 0);
    QCOMPARE(reader.fetch({.query = u"number"_s, .limit = 100}).result().size(), kSaves);
}

void TwoProcessesTest::aReaderIsNotStoppedByALock()
{
    const LibraryFolder folder;
    HistoryStore(HistoryStore::Writing{.root = folder.root()})
        .save(sampleMemory(u"A"_s), "jpeg")
        .waitForFinished();
    Peer peer({u"lock"_s, folder.database()});
    QCOMPARE(peer.line(), u"locked"_s);
    HistoryStore reader(HistoryStore::ReadingOnly{folder.root()});
    QCOMPARE(reader.schemaVersion(), 5);
    QCOMPARE(ids(reader.fetch({.query = u"words"_s, .limit = 9}).result()), QStringList{u"A"_s});
}

void TwoProcessesTest::twoWritersNeverHalfSave()
{
    const LibraryFolder folder;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    Peer other({u"save"_s, folder.root(), u"40"_s});
    QStringList saved;
    QStringList refused;
    for (int number = 0; number < 40; ++number) {
        const QString id = u"H%1"_s.arg(number);
        const auto said =
            failure<StoreError>([&] { store.save(sampleMemory(id), "jpeg").waitForFinished(); });
        if (!said.isNull())
            QCOMPARE(said, u"database is locked"_s);
        (said.isNull() ? saved : refused).append(id);
    }
    // The other may have met our lock and said so; either is fine, half a save is not.
    const int status = other.end();
    QVERIFY(status == 0 || status == 1);
    RawSql sql(folder.database());
    QStringList pictures = sql.rows(u"SELECT filename FROM memories ORDER BY filename"_s);
    pictures.sort();
    QCOMPARE(names(folder.images()).size(), pictures.size());
    for (const QString& picture : pictures)
        QVERIFY(QFile::exists(folder.images() + u'/' + picture));
    for (const QString& id : refused)
        QVERIFY(!pictures.contains(id + u".jpg"_s));
    for (const QString& id : saved)
        QVERIFY(pictures.contains(id + u".jpg"_s));
    QCOMPARE(names(folder.pending()), QStringList{});
}

QTEST_GUILESS_MAIN(TwoProcessesTest)
#include "TwoProcessesTest.moc"
