// SPDX-License-Identifier: Apache-2.0
//
// A database with its log, damaged in every way that comes to mind, and everything that a store
// can be asked: no crash, no hang, and a sentence where it cannot be done.
#include "tests/Core/Library/Promises.h"
#include "tests/Core/RandomRounds.h"
#include "tests/Fakes/BadDisk.h"

#include <QElapsedTimer>

#include <functional>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr int kRounds = 150;
constexpr int kScreenshots = 60;
constexpr qsizetype kPage = 4096;

QRandomGenerator g_random;

qsizetype anyIn(qsizetype size)
{
    return size > 0 ? g_random.bounded(static_cast<int>(size)) : 0;
}

void flipBits(QByteArray& bytes)
{
    // The header and the heads of pages are a small part of all, and where most is decided.
    const bool inHeads = g_random.bounded(2) == 0;
    for (int flips = g_random.bounded(1, 9); flips > 0 && !bytes.isEmpty(); --flips) {
        qsizetype at = anyIn(bytes.size());
        if (inHeads)
            at = std::min(at / kPage * kPage + anyIn(110), bytes.size() - 1);
        bytes[at] = static_cast<char>(bytes.at(at) ^ (1 << g_random.bounded(8)));
    }
}

void cutShort(QByteArray& bytes)
{
    bytes.truncate(anyIn(bytes.size()));
}

void putPage(QByteArray& bytes, const QByteArray& page)
{
    const qsizetype at = anyIn(bytes.size()) / kPage * kPage;
    bytes.replace(at, std::min(kPage, bytes.size() - at), page);
}

void swapPages(QByteArray& bytes)
{
    const qsizetype one = anyIn(bytes.size()) / kPage * kPage;
    const qsizetype other = anyIn(bytes.size()) / kPage * kPage;
    const QByteArray first = bytes.mid(one, kPage);
    const QByteArray second = bytes.mid(other, kPage);
    if (first.size() != second.size())
        return;
    bytes.replace(one, first.size(), second);
    bytes.replace(other, second.size(), first);
}

void repeatPage(QByteArray& bytes)
{
    putPage(bytes, bytes.mid(anyIn(bytes.size()) / kPage * kPage, kPage));
}

void emptyPage(QByteArray& bytes)
{
    putPage(bytes, QByteArray(kPage, '\0'));
}

void fillPageWithNoise(QByteArray& bytes)
{
    QByteArray noise(kPage, '\0');
    for (char& byte : noise)
        byte = static_cast<char>(g_random.bounded(256));
    putPage(bytes, noise);
}

/// Asks for everything that changes nothing. The number of refusals; -1 for one without words.
int ask(HistoryStore& store)
{
    const QList<std::function<void()>> questions = {
        [&] { store.fetch({.query = u"moss"_s, .limit = 99, .withText = true}).result(); },
        [&] { store.fetch({.limit = 86'400, .withText = true}).result(); },
        [&] { store.fetch({.day = Date{5}, .app = u"Editor"_s, .limit = 9}).result(); },
        [&] { store.candidates({.question = u"river moss stones"_s, .limit = 99}).result(); },
        [&] { store.dayCounts({.query = u"river"_s}).result(); },
        [&] {
            store.memories({u"1"_s, u"30"_s, u"60"_s}).result();
        },
        [&] { store.stats().result(); },
        [&] { store.withoutEmbedding(u"m"_s, 99).result(); },
        [&] { store.embeddings(u"m"_s).result(); },
        [&] { store.embeddingProgress(u"m"_s).result(); },
    };
    int refused = 0;
    for (const auto& question : questions) {
        const QString said = failure<StoreError>(question);
        if (said == u"(no words)")
            return -1;
        refused += said.isNull() ? 0 : 1;
    }
    return refused;
}

/// Does everything that changes something, likewise. A damaged row may name a picture that the
/// file system does not like.
int change(HistoryStore& store)
{
    constexpr double kMinute = 60;
    const QList<std::function<void()>> changes = {
        [&] { store.save(tellingMemory(500), "jpeg").waitForFinished(); },
        [&] {
            store.saveEmbeddings({{u"3"_s, Vector({1})}}, u"m"_s).waitForFinished();
        },
        [&] { store.deleteMemory(u"30"_s).waitForFinished(); },
        [&] { store.prune({10.5}).waitForFinished(); },
        [&] { store.sealExistingPictures(2).waitForFinished(); },
        [&] { store.reconcile(0, {kMinute}).waitForFinished(); },
        [&] { store.save(tellingMemory(501), "jpeg").waitForFinished(); },
        [&] { store.deleteAll().waitForFinished(); },
        [&] { store.save(tellingMemory(502), "jpeg").waitForFinished(); },
    };
    int refused = 0;
    for (const auto& step : changes) {
        const QString said = failure<Failure>(step);
        if (said == u"(no words)")
            return -1;
        refused += said.isNull() ? 0 : 1;
    }
    return refused;
}

} // namespace

class DamagedDatabaseTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void whateverIsAskedOfADamagedDatabaseIsAnsweredOrRefused_data();
    void whateverIsAskedOfADamagedDatabaseIsAnsweredOrRefused();

private:
    using Damage = void (*)(QByteArray&);

    QByteArray m_database;
    QByteArray m_log;
    quint32 m_seed = 0;
};

void DamagedDatabaseTest::initTestCase()
{
    const LibraryFolder folder;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    fill(folder, kScreenshots, [](int of) { return tellingMemory(of).text.repeated(of % 40 + 1); });
    store.saveEmbeddings({{u"1"_s, Vector({1, 2})}, {u"2"_s, Vector({3, 4})}}, u"m"_s)
        .waitForFinished();
    // What is in the log as well would be read from there.
    RawSql(folder.database()).run(u"PRAGMA wal_checkpoint(TRUNCATE)"_s);
    m_database = contents(folder.database());
    store.save(tellingMemory(kScreenshots + 1), "jpeg").waitForFinished();
    m_log = contents(folder.database() + u"-wal"_s);
    QVERIFY(m_database.size() > 4 * kPage);
    QVERIFY(m_log.size() > 4 * kPage);
    m_seed = randomSeed();
}

void DamagedDatabaseTest::whateverIsAskedOfADamagedDatabaseIsAnsweredOrRefused_data()
{
    QTest::addColumn<Damage>("damage");
    QTest::newRow("bits flipped") << Damage(flipBits);
    QTest::newRow("cut short") << Damage(cutShort);
    QTest::newRow("pages swapped") << Damage(swapPages);
    QTest::newRow("a page twice") << Damage(repeatPage);
    QTest::newRow("a page of zeros") << Damage(emptyPage);
    QTest::newRow("a page of noise") << Damage(fillPageWithNoise);
}

void DamagedDatabaseTest::whateverIsAskedOfADamagedDatabaseIsAnsweredOrRefused()
{
    QFETCH(Damage, damage);
    g_random.seed(m_seed);
    constexpr int kKinds = 6;
    const int rounds = randomRounds(kRounds) / kKinds;
    int refused = 0;
    for (int round = 0; round < rounds; ++round) {
        const QByteArray where = u"round %1"_s.arg(round).toLatin1();
        const LibraryFolder folder;
        QVERIFY(QDir().mkpath(folder.images()));
        QByteArray database = m_database;
        QByteArray log = m_log;
        constexpr int kInTheLog = 4;
        damage(g_random.bounded(kInTheLog) == 0 ? log : database);
        QVERIFY(putFile(folder.database(), database));
        QVERIFY(putFile(folder.database() + u"-wal"_s, log));

        // Nothing is struck, but nothing waits for the disk either.
        const BadDisk disk(folder.root(), 0, BadDisk::Then::FailOnce, 0);
        QElapsedTimer timer;
        timer.start();
        int reading = 0;
        const QString toRead = failure<StoreError>([&] {
            HistoryStore reader(HistoryStore::ReadingOnly{folder.root()});
            reading = ask(reader);
        });
        int writing = 0;
        const QString toWrite = failure<StoreError>([&] {
            HistoryStore store(HistoryStore::Writing{.root = folder.root(),
                                                     .vault = ImageVault(SymmetricKey::random())});
            writing = ask(store);
            const int changing = change(store);
            writing = changing < 0 ? changing : writing + changing;
        });
        constexpr qint64 kPatience = 20'000;
        QVERIFY2(timer.elapsed() < kPatience, where);
        QVERIFY2(reading >= 0 && writing >= 0, where);
        QVERIFY2(toRead != u"(no words)" && toWrite != u"(no words)", where);
        refused += reading > 0 || writing > 0 || !toRead.isNull() || !toWrite.isNull() ? 1 : 0;
    }
    // Damage that nobody ever meets would prove nothing.
    QVERIFY(refused > 0);
}

QTEST_GUILESS_MAIN(DamagedDatabaseTest)
#include "DamagedDatabaseTest.moc"
