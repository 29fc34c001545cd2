// SPDX-License-Identifier: Apache-2.0
//
// Each operation that changes a library, on a disk that fails at the first call, at the second, and
// so on until the operation gets through.
#include "tests/Fakes/BadDisk.h"

#include "tests/Core/Library/Promises.h"

#include <unistd.h>

#include <cerrno>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

/// What is done on the bad disk, and the rows before and after it.
struct Operation {
    /// Screenshots 1 to this are there before.
    int rows = 0;
    /// Those that the operation removes.
    QSet<int> removes = {};
    /// The one that it saves.
    std::optional<int> saves = {};
    std::function<void(HistoryStore&)> act;
    /// What it works on besides the rows.
    std::function<void(const LibraryFolder&)> prepare = [](const LibraryFolder&) {
    };
    /// Whether it has done its work, besides on the rows.
    std::function<bool(HistoryStore&)> isDone = [](HistoryStore&) {
        return true;
    };
    bool findsPlainPictures = false;
    bool settles = false;

    QSet<int> before() const
    {
        QSet<int> numbers;
        for (int number = 1; number <= rows; ++number)
            numbers.insert(number);
        return numbers;
    }
    QSet<int> after() const
    {
        QSet<int> numbers = before() - removes;
        if (saves)
            numbers.insert(*saves);
        return numbers;
    }
};

QSet<int> upTo(int number)
{
    return Operation{.rows = number, .act = {}}.before();
}

void settle(HistoryStore& store)
{
    // The markers are a moment old, so the clock is put forward.
    constexpr double kMinute = 60;
    const Date now = {static_cast<double>(QDateTime::currentSecsSinceEpoch())};
    store.reconcile(0, now + kMinute).waitForFinished();
}

/// Pictures are never written over but replaced, so the copy may share them.
bool copyLibrary(const LibraryFolder& from, const LibraryFolder& to)
{
    bool isCopied = QDir().mkpath(to.images()) && QDir().mkpath(to.pending()) &&
                    QFile::copy(from.database(), to.database());
    for (const auto& folder : {u"/Images/"_s, u"/Pending/"_s}) {
        for (const QString& name : names(from.root() + folder)) {
            const QByteArray one = QFile::encodeName(from.root() + folder + name);
            const QByteArray other = QFile::encodeName(to.root() + folder + name);
            isCopied = isCopied && ::link(one.constData(), other.constData()) == 0;
        }
    }
    return isCopied;
}

/// How many rows tell another size than their picture has.
int wrongSizes(const LibraryFolder& folder, HistoryStore& store)
{
    int wrong = 0;
    for (const Memory& memory : store.fetch({.limit = 86'400}).result()) {
        const QFileInfo picture(folder.images() + u'/' + memory.filename);
        wrong += picture.exists() && picture.size() != memory.bytes ? 1 : 0;
    }
    return wrong;
}

Operation saving()
{
    return {.rows = 5, .saves = 6, .act = [](HistoryStore& store) {
                store.save(tellingMemory(6), tellingPicture(6)).waitForFinished();
            }};
}

Operation removingOneOf(int rows)
{
    return {.rows = rows, .removes = {3}, .act = [](HistoryStore& store) {
                store.deleteMemory(u"3"_s).waitForFinished();
            }};
}

Operation pruning()
{
    constexpr int kRemoved = 15;
    return {.rows = 125, .removes = upTo(kRemoved), .act = [](HistoryStore& store) {
                store.prune({kRemoved + 0.5}).waitForFinished();
            }};
}

Operation removingAll()
{
    constexpr int kRows = 12;
    return {.rows = kRows,
            .removes = upTo(kRows),
            .act = [](HistoryStore& store) { store.deleteAll().waitForFinished(); },
            .prepare =
                [](const LibraryFolder& folder) {
                    putFile(folder.images() + u"/stray.jpg"_s, "stray");
                    putFile(folder.pending() + u"/stray.jpg"_s, {});
                },
            .isDone =
                [](HistoryStore& store) {
                    return names(store.images()).isEmpty() && names(store.pending()).isEmpty();
                }};
}

Operation sealing()
{
    constexpr int kRows = 4;
    const auto layPlain = [](const LibraryFolder& folder) {
        for (int number = 1; number <= kRows; ++number) {
            const QByteArray plain = tellingPicture(number);
            putFile(folder.images() + u'/' + pictureOf(number), plain);
            RawSql sql(folder.database());
            sql.run(u"PRAGMA secure_delete=ON;"
                    "UPDATE memory_slots SET bytes = bytes - 32;"
                    "UPDATE memories SET bytes = bytes - 32 WHERE id = '%1'"_s.arg(number));
        }
    };
    const auto isSealed = [](HistoryStore& store) {
        for (const QString& name : names(store.images())) {
            if (!ImageVault::isSealed(contents(store.images() + u'/' + name)))
                return false;
        }
        return true;
    };
    return {.rows = kRows,
            .act = [](HistoryStore& store) { store.sealExistingPictures(99).waitForFinished(); },
            .prepare = layPlain,
            .isDone = isSealed,
            .findsPlainPictures = true};
}

Operation reconciling()
{
    return {.rows = 4,
            .act = settle,
            .prepare =
                [](const LibraryFolder& folder) {
                    for (const QString& name : {u"1.jpg"_s, u"70.jpg"_s, u"80.jpg"_s})
                        putFile(folder.pending() + u'/' + name, {});
                    for (const QString& name : {u"70.jpg"_s, u"70.jpg.aB3x0z"_s})
                        putFile(folder.images() + u'/' + name, "sealed");
                    RawSql(folder.database())
                        .run(u"INSERT INTO embeddings VALUES ('LOST', 'm', x'003c')"_s);
                },
            .isDone =
                [](HistoryStore& store) {
                    return names(store.pending()).isEmpty() &&
                           store.embeddingProgress(u"m"_s).result().embedded == 0;
                },
            .settles = true};
}

Operation keepingVectors()
{
    constexpr int kRows = 10;
    const auto act = [](HistoryStore& store) {
        QList<HistoryStore::Embedding> vectors;
        for (int number = 1; number <= kRows; ++number)
            vectors.append({QString::number(number), Vector(QList<float>(300, 0.25F))});
        store.saveEmbeddings(vectors, u"m"_s).waitForFinished();
    };
    return {.rows = kRows, .act = act, .isDone = [](HistoryStore& store) {
                return store.embeddingProgress(u"m"_s).result().embedded == kRows;
            }};
}

} // namespace

Q_DECLARE_METATYPE(Operation)
Q_DECLARE_METATYPE(mossbank::BadDisk::Then)

class BadDiskTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whateverCallFailsNothingIsHalfDoneAndItIsTold_data();
    void whateverCallFailsNothingIsHalfDoneAndItIsTold();
    void aRemovalTriedAgainMakesSureOfThePicturesToo();

private:
    std::unique_ptr<HistoryStore> open(const LibraryFolder& folder) const
    {
        return std::make_unique<HistoryStore>(
            HistoryStore::Writing{.root = folder.root(), .vault = m_vault});
    }
    void fillSealed(const LibraryFolder& folder, int count) const;
    /// Runs it with the nth call struck. False when there are not so many calls.
    bool strikeOnce(const Operation& operation, int nth, BadDisk::Then then);
    /// What is wrong after the failure or after the second try; empty when all is well.
    QString afterStrike(const Operation& operation, const LibraryFolder& folder,
                        HistoryStore& store, bool wasToldDone);

    std::unique_ptr<LibraryFolder> m_template;
    QString m_wrong;
    QStringList m_passedOver;
    const ImageVault m_vault{SymmetricKey::random()};
};

void BadDiskTest::fillSealed(const LibraryFolder& folder, int count) const
{
    open(folder).reset();
    RawSql sql(folder.database());
    sql.run(u"PRAGMA secure_delete=ON; BEGIN"_s);
    for (int number = 1; number <= count; ++number) {
        const Memory memory = tellingMemory(number);
        const QByteArray sealed = m_vault.sealed(tellingPicture(number));
        sql.rows(u"INSERT INTO memories VALUES (?,?,?,?,?,?,?,?,?)"_s,
                 {memory.id, decimalText(memory.timestamp.secondsSince1970), memory.appName,
                  memory.bundleID, memory.text, memory.filename, QString::number(sealed.size()),
                  memory.title, memory.link});
        putFile(folder.images() + u'/' + memory.filename, sealed);
    }
    sql.run(u"COMMIT"_s);
}

QString BadDiskTest::afterStrike(const Operation& operation, const LibraryFolder& folder,
                                 HistoryStore& store, bool wasToldDone)
{
    const QSet<int> rows = rowsOf(store);
    if (rows != operation.after() && (wasToldDone || rows != operation.before()))
        return u"half done: "_s + listed(rows);
    if (wasToldDone && !operation.isDone(store))
        return u"told to be done, and is not"_s;
    if (const QString said = disagreement(folder); !said.isEmpty())
        return said;
    // The one between its file and its row may be off.
    if (wrongSizes(folder, store) > (operation.findsPlainPictures ? 1 : 0))
        return u"sizes are wrong"_s;

    if (!operation.saves || rows == operation.before()) {
        if (!operation.settles)
            settle(store);
        const QString again = failure<Failure>([&] { operation.act(store); });
        if (!again.isNull())
            return u"failed again: "_s + again;
    }
    settle(store);
    if (const QSet<int> now = rowsOf(store); now != operation.after())
        return u"not done the second time: "_s + listed(now);
    if (!operation.isDone(store))
        return u"not done the second time"_s;
    if (const QString broken = brokenPromise(folder, store); !broken.isEmpty())
        return u"after the second time: "_s + broken;
    const QString option = RawSql(folder.database())
                               .rows(u"SELECT v FROM memory_search_config "
                                     "WHERE k = 'secure-delete'"_s)
                               .join(u',');
    return option == (store.purgesDeletedTerms() ? u"1"_s : QString())
               ? QString()
               : u"words are no longer purged"_s;
}

bool BadDiskTest::strikeOnce(const Operation& operation, int nth, BadDisk::Then then)
{
    const LibraryFolder folder;
    if (!copyLibrary(*m_template, folder)) {
        m_wrong = u"no library to work on"_s;
        return false;
    }
    auto store = open(folder);
    QString told;
    QByteArray struck;
    {
        const BadDisk disk(folder.root(), nth, then,
                           then == BadDisk::Then::FailOnce ? EIO : ENOSPC);
        told = failure<Failure>([&] { operation.act(*store); });
        struck = BadDisk::struck();
        // On a disk that stays bad the program ends, too.
        if (then == BadDisk::Then::FailOn)
            store.reset();
    }
    if (struck.isEmpty()) {
        m_wrong = told;
        return false;
    }
    if (!store)
        store = open(folder);
    if (told.isNull())
        m_passedOver.append(QString::fromUtf8(struck));
    const QString wrong =
        told == u"(no words)" ? told : afterStrike(operation, folder, *store, told.isNull());
    if (!wrong.isEmpty())
        m_wrong = u"%1 (call %2, told \"%3\"): %4"_s.arg(QString::fromUtf8(struck))
                      .arg(nth)
                      .arg(told, wrong);
    return wrong.isEmpty();
}

void BadDiskTest::whateverCallFailsNothingIsHalfDoneAndItIsTold_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<BadDisk::Then>("then");
    const auto rows = [](const char* name, const Operation& operation) {
        QTest::addRow("%s, and the next call goes well", name)
            << operation << BadDisk::Then::FailOnce;
        QTest::addRow("%s, and all that follow fail", name) << operation << BadDisk::Then::FailOn;
    };
    rows("saving", saving());
    rows("removing one of many", removingOneOf(104));
    rows("removing one of few", removingOneOf(12));
    rows("pruning", pruning());
    rows("removing all", removingAll());
    rows("sealing", sealing());
    rows("reconciling", reconciling());
    rows("keeping vectors", keepingVectors());
}

void BadDiskTest::whateverCallFailsNothingIsHalfDoneAndItIsTold()
{
    QFETCH(Operation, operation);
    QFETCH(BadDisk::Then, then);
    m_template = std::make_unique<LibraryFolder>();
    fillSealed(*m_template, operation.rows);
    operation.prepare(*m_template);
    m_wrong.clear();
    m_passedOver.clear();
    int nth = 1;
    while (strikeOnce(operation, nth, then))
        ++nth;
    QVERIFY2(m_wrong.isEmpty(), qPrintable(m_wrong));
    // A marker that stays is settled later, and nobody needs to hear of it.
    const QStringList markerStays = {u"unlink 6.jpg"_s};
    // SQLite does what it can for the name of a new log, and goes on where that fails.
    m_passedOver.removeAll(u"sync library"_s);
    QCOMPARE(m_passedOver, operation.saves ? markerStays : QStringList());
    constexpr int kFewestCalls = 8;
    QVERIFY2(nth > kFewestCalls, qPrintable(QString::number(nth)));
}

void BadDiskTest::aRemovalTriedAgainMakesSureOfThePicturesToo()
{
    const LibraryFolder folder;
    fillSealed(folder, 3);
    const auto store = open(folder);
    constexpr int kSyncOfTheFolder = 2;
    for (int attempt = 0; attempt < 2; ++attempt) {
        const BadDisk disk(folder.root(), kSyncOfTheFolder, BadDisk::Then::FailOnce, EIO);
        QCOMPARE(failure<FileError>([&] { store->deleteMemory(u"3"_s).waitForFinished(); }),
                 refusal(EIO, folder.images()));
        QCOMPARE(BadDisk::struck(), QByteArray("sync Images"));
    }
    QCOMPARE(rowsOf(*store), upTo(3));
    store->deleteMemory(u"3"_s).waitForFinished();
    QCOMPARE(rowsOf(*store), upTo(2));
}

QTEST_GUILESS_MAIN(BadDiskTest)
#include "BadDiskTest.moc"
