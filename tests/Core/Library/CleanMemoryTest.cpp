// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/Database.h"
#include "tests/Core/Library/LibraryTesting.h"

#include <memory>
#include <vector>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

const QByteArray kSecret = QByteArray::fromHex("9b1fd37ac2046e85f1573bd8a60c92e4");

/// Leaves the secret in memory that is free again, in pieces of many sizes.
void leaveInMemory()
{
    constexpr int kSmallest = 16;
    constexpr int kLargest = 100'000;
    std::vector<QByteArray> pieces;
    for (int size = kSmallest; size < kLargest; size += size / 3) {
        for (int piece = 0; piece < 20; ++piece)
            pieces.push_back(kSecret.repeated(size / static_cast<int>(kSecret.size()) + 1));
    }
}

} // namespace

/// What lies in the program's memory does not get into the files of a database.
class CleanMemoryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theIndexOfALogThatHoldsNothingIsEmpty();
};

void CleanMemoryTest::theIndexOfALogThatHoldsNothingIsEmpty()
{
    const LibraryFolder folder;
    const QString path = folder.beside(u"some.sqlite"_s);
    QByteArray log;
    {
        auto database = Database::open(path, Database::Access::ReadWrite);
        QVERIFY(database);
        database->execute(u"PRAGMA journal_mode=WAL; CREATE TABLE t (n); INSERT INTO t VALUES (1);"
                          "INSERT INTO t VALUES (2)"_s);
        log = contents(path + u"-wal"_s);
    }
    // As it is after a power cut between the log's header and its first page.
    constexpr qsizetype kHeader = 32;
    QVERIFY(log.size() > 2 * kHeader);
    std::fill(log.begin() + kHeader, log.end(), '\0');
    QVERIFY(putFile(path + u"-wal"_s, log));

    leaveInMemory();
    auto database = Database::open(path, Database::Access::ReadWrite);
    QVERIFY(database);
    QVERIFY(database->tryExecute(u"SELECT * FROM t"_s));
    const QByteArray index = contents(path + u"-shm"_s);
    QVERIFY(!index.isEmpty());
    QVERIFY(!index.contains(kSecret));
}

QTEST_GUILESS_MAIN(CleanMemoryTest)
#include "CleanMemoryTest.moc"
