// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/FilledLibrary.h"

#include <QDirIterator>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

/// Text of a screenshot: a word of its own, in letters that the index keeps as they are, among
/// words that all have.
QString textWith(int number)
{
    return u"the moss by the river and the stones %1 under the bridge in the rain"_s.arg(
        ownWord(number));
}

} // namespace

/// Words of removed screenshots, looked for as raw bytes in every file of the library.
class ForgettingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void removedWordsAreNowhereOnTheDisk_data();
    void removedWordsAreNowhereOnTheDisk();
    void titlesAddressesAndVectorsGoToo();
    void whatSomebodysReadingKeptGoesWithTheNextTry();

private:
    /// Everything in every file of the library.
    static QByteArray onDisk(const LibraryFolder& folder)
    {
        QByteArray all;
        QDirIterator files(folder.root(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext())
            all += contents(files.next());
        return all;
    }
};

void ForgettingTest::removedWordsAreNowhereOnTheDisk_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("removed");
    // Two more are removed with them. Up to nine of a thousand are taken out where they stand.
    QTest::newRow("one of a few") << 50 << 1;
    QTest::newRow("a few") << 1000 << 1;
    QTest::newRow("less than a hundredth") << 1000 << 7;
    QTest::newRow("a hundredth") << 1000 << 8;
    QTest::newRow("half") << 1000 << 500;
    QTest::newRow("all") << 1000 << 1000;
}

void ForgettingTest::removedWordsAreNowhereOnTheDisk()
{
    QFETCH(int, count);
    QFETCH(int, removed);
    const LibraryFolder folder;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    fill(folder, count, textWith);
    // Some through the store, so that they are still in the log, and not all in one segment.
    for (const int number : {count + 1, count + 2}) {
        Memory memory = sampleMemory(QString::number(number));
        memory.text = textWith(number);
        memory.timestamp = {0.5};
        store.save(memory, "jpeg").waitForFinished();
    }
    QVERIFY(onDisk(folder).contains(traceOf(1)));
    QVERIFY(onDisk(folder).contains(traceOf(count + 1)));

    const bool isAll = removed == count;
    if (isAll)
        store.deleteAll().waitForFinished();
    else
        store.prune({removed + 0.5}).waitForFinished();

    QList<int> gone = {count + 1, count + 2};
    for (int number = 1; number <= removed; ++number)
        gone.append(number);
    const QByteArray left = onDisk(folder);
    for (const int number : std::as_const(gone))
        QVERIFY2(!left.contains(traceOf(number)), qPrintable(QString::number(number)));
    // What stays is found this way.
    QCOMPARE(left.contains(traceOf(count)), !isAll);
    QCOMPARE(left.contains("river"), !isAll);
    QCOMPARE(disagreement(folder), QString());
}

void ForgettingTest::titlesAddressesAndVectorsGoToo()
{
    const LibraryFolder folder;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    fill(folder, 300);
    Memory memory = sampleMemory(u"IDENTITY-OF-IT"_s);
    memory.title = u"qwtitle"_s;
    memory.link = u"https://qwaddress.example/"_s;
    memory.appName = u"Qwapplication"_s;
    memory.bundleID = u"qw.bundle"_s;
    store.save(memory, "jpeg").waitForFinished();
    const Vector vector(QList<float>{0.5F, 0.25F, 0.125F, 0.0625F, 0.75F});
    store.saveEmbeddings({{memory.id, vector}}, u"m"_s).waitForFinished();
    const QList<QByteArray> traces = {"qwtitle",   "qwaddress",      "Qwapplication",
                                      "qw.bundle", "IDENTITY-OF-IT", vector.data()};
    for (const QByteArray& trace : traces)
        QVERIFY2(onDisk(folder).contains(trace), trace.toHex().constData());
    store.deleteMemory(memory.id).waitForFinished();
    for (const QByteArray& trace : traces)
        QVERIFY2(!onDisk(folder).contains(trace), trace.toHex().constData());
}

void ForgettingTest::whatSomebodysReadingKeptGoesWithTheNextTry()
{
    const LibraryFolder folder;
    HistoryStore store(HistoryStore::Writing{.root = folder.root()});
    fill(folder, 200, textWith);
    {
        RawSql reader(folder.database());
        reader.run(u"BEGIN; SELECT count(*) FROM memories"_s);
        QCOMPARE(failure<StoreError>([&] { store.prune({3.5}).waitForFinished(); }),
                 u"database is locked"_s);
    }
    QVERIFY(onDisk(folder).contains(traceOf(1)));
    // There is nothing to remove any more.
    store.prune({3.5}).waitForFinished();
    const QByteArray left = onDisk(folder);
    for (const int number : {1, 2, 3})
        QVERIFY(!left.contains(traceOf(number)));
    QVERIFY(left.contains(traceOf(4)));
    QCOMPARE(disagreement(folder), QString());
}

QTEST_GUILESS_MAIN(ForgettingTest)
#include "ForgettingTest.moc"
