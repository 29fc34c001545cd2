// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/FilledLibrary.h"

#include <cerrno>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

/// What a sealed picture is longer by.
constexpr qint64 kGrowth = 32;

} // namespace

/// Pictures that were saved while there was no key are sealed when there is one.
class SealingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void soManyAreSealedAtATime();
    void withoutAVaultNoneIs();
    void aSealedPictureReadsAsBefore();
    void rowAndSummaryGrowWithThePicture();
    void whatIsSealedIsNotWrittenAgain();
    void aFileWithoutARowIsSealedToo();
    void whatAnEarlierSealingLeftIsTakenAway();
    void whatCannotBeReadIsPassedOver();
    void shortAndEmptyFilesAreSealed();
    void aPictureThatCannotBeWrittenIsToldAndStays();
    void aFailureOfTheDatabaseIsTold();
    void aReaderSealsNothing();

private:
    QString path(int number) const { return m_folder->images() + u'/' + pictureOf(number); }
    qsizetype sealed(qsizetype limit) { return m_store->sealExistingPictures(limit).result(); }
    qsizetype sealedFiles()
    {
        qsizetype count = 0;
        for (const QString& name : names(m_folder->images()))
            count += ImageVault::isSealed(contents(m_folder->images() + u'/' + name));
        return count;
    }

    std::unique_ptr<LibraryFolder> m_folder;
    std::unique_ptr<HistoryStore> m_store;
    std::optional<ImageVault> m_vault;
};

void SealingTest::init()
{
    m_folder = std::make_unique<LibraryFolder>();
    m_vault.emplace(SymmetricKey::random());
    m_store = std::make_unique<HistoryStore>(
        HistoryStore::Writing{.root = m_folder->root(), .vault = m_vault});
    fill(*m_folder, 3);
}

void SealingTest::cleanup()
{
    m_store.reset();
    QCOMPARE(disagreement(*m_folder), QString());
}

void SealingTest::soManyAreSealedAtATime()
{
    QCOMPARE(sealed(0), 0);
    QCOMPARE(sealedFiles(), 0);
    QCOMPARE(sealed(2), 2);
    QCOMPARE(sealedFiles(), 2);
    QCOMPARE(sealed(2), 1);
    QCOMPARE(sealed(2), 0);
    QCOMPARE(sealedFiles(), 3);
}

void SealingTest::withoutAVaultNoneIs()
{
    m_store->setVault(std::nullopt).waitForFinished();
    QCOMPARE(sealed(9), 0);
    QCOMPARE(sealedFiles(), 0);
    m_store->setVault(m_vault).waitForFinished();
    QCOMPARE(sealed(9), 3);
}

void SealingTest::aSealedPictureReadsAsBefore()
{
    QCOMPARE(sealed(9), 3);
    QVERIFY(!contents(path(1)).contains("jpeg"));
    QCOMPARE(m_vault->opened(contents(path(1))), std::optional<QByteArray>("jpeg of 1"));
    QCOMPARE(m_store->picture(u"1.jpg"_s).result(), std::optional<QByteArray>("jpeg of 1"));
    QCOMPARE(mode(path(1)), 0600);
    // Without the key, or with another, it is none.
    m_store->setVault(ImageVault(SymmetricKey::random())).waitForFinished();
    QCOMPARE(m_store->picture(u"1.jpg"_s).result(), std::optional<QByteArray>());
    m_store->setVault(std::nullopt).waitForFinished();
    QCOMPARE(m_store->picture(u"1.jpg"_s).result(), std::optional(contents(path(1))));
}

void SealingTest::rowAndSummaryGrowWithThePicture()
{
    m_store->deleteMemory(u"1"_s).waitForFinished();
    m_store->deleteMemory(u"2"_s).waitForFinished();
    m_store->deleteMemory(u"3"_s).waitForFinished();
    m_store->setVault(std::nullopt).waitForFinished();
    m_store->save(sampleMemory(u"A"_s), QByteArray(100, 'j')).waitForFinished();
    m_store->save(sampleMemory(u"B"_s), QByteArray(200, 'j')).waitForFinished();
    QCOMPARE(m_store->stats().result().bytes, 300);
    m_store->setVault(m_vault).waitForFinished();
    QCOMPARE(sealed(9), 2);
    QCOMPARE(m_store->stats().result().bytes, 300 + 2 * kGrowth);
    QList<qint64> bytes;
    for (const Memory& memory : m_store->fetch({.limit = 9}).result())
        bytes.append(memory.bytes);
    QCOMPARE(bytes, (QList<qint64>{200 + kGrowth, 100 + kGrowth}));
    m_store->deleteMemory(u"A"_s).waitForFinished();
    QCOMPARE(m_store->stats().result().bytes, 200 + kGrowth);
}

void SealingTest::whatIsSealedIsNotWrittenAgain()
{
    QCOMPARE(sealed(9), 3);
    const QByteArray before = contents(path(1));
    const auto file = Files::identity(path(1));
    QCOMPARE(sealed(9), 0);
    QCOMPARE(contents(path(1)), before);
    QCOMPARE(Files::identity(path(1)), file);
}

void SealingTest::aFileWithoutARowIsSealedToo()
{
    QVERIFY(putFile(m_folder->images() + u"/stray.jpg"_s, "stray"));
    QCOMPARE(sealed(9), 4);
    QCOMPARE(m_vault->opened(contents(m_folder->images() + u"/stray.jpg"_s)),
             std::optional<QByteArray>("stray"));
    QCOMPARE(m_store->stats().result().count, 3);
}

void SealingTest::whatAnEarlierSealingLeftIsTakenAway()
{
    // Killed while it was writing: nothing yet, or a part. The picture of one was removed since.
    for (const QString& left : {u"1.jpg.aB3x0z"_s, u"2.jpg.AAAAAA"_s, u"77.jpg.q1w2e3"_s})
        QVERIFY(putFile(m_folder->images() + u'/' + left, left.startsWith(u'1') ? "" : "BRW1part"));
    // A save under way owns up to its own; other names are of another form.
    QVERIFY(putFile(m_folder->pending() + u"/5.jpg"_s, {}));
    const QStringList stay = {u"5.jpg.aB3x0z"_s, u"6.jpg.aB3x0"_s,       u"6.jpg.aB3x0zz"_s,
                              u"6.jpg.aB3.0z"_s, u"6.jpg.aB3x\u00e9z"_s, u".aB3x0z"_s};
    for (const QString& name : stay)
        QVERIFY(putFile(m_folder->images() + u'/' + name, "BRW1"));
    // A screenshot may be called like that.
    Memory odd = sampleMemory(u"odd"_s);
    odd.filename = u"odd.abcdef"_s;
    m_store->save(odd, "jpeg").waitForFinished();

    QCOMPARE(sealed(99), 3);
    QStringList expected = stay + QStringList{u"1.jpg"_s, u"2.jpg"_s, u"3.jpg"_s, odd.filename};
    QStringList there = names(m_folder->images());
    expected.sort();
    there.sort();
    QCOMPARE(there, expected);
    QCOMPARE(m_store->picture(odd.filename).result(), std::optional<QByteArray>("jpeg"));
}

void SealingTest::whatCannotBeReadIsPassedOver()
{
    QVERIFY(QDir().mkpath(m_folder->images() + u"/folder.jpg"_s));
    QVERIFY(QFile::link(m_folder->beside(u"nowhere"_s), m_folder->images() + u"/link.jpg"_s));
    QCOMPARE(sealed(9), 3);
}

void SealingTest::shortAndEmptyFilesAreSealed()
{
    QVERIFY(putFile(m_folder->images() + u"/empty.jpg"_s, ""));
    QVERIFY(putFile(m_folder->images() + u"/short.jpg"_s, "BRW"));
    QCOMPARE(sealed(9), 5);
    QCOMPARE(m_store->picture(u"empty.jpg"_s).result(), std::optional<QByteArray>(""));
    QCOMPARE(m_store->picture(u"short.jpg"_s).result(), std::optional<QByteArray>("BRW"));
}

void SealingTest::aPictureThatCannotBeWrittenIsToldAndStays()
{
    // Its temporary file would have too long a name.
    const QString name = QString(250, u'n') + u".jpg"_s;
    QVERIFY(putFile(m_folder->images() + u'/' + name, "jpeg"));
    QCOMPARE(failure<FileError>([this] { (void)sealed(9); }),
             refusal(ENAMETOOLONG, m_folder->images() + u'/' + name));
    QCOMPARE(contents(m_folder->images() + u'/' + name), QByteArray("jpeg"));
}

void SealingTest::aFailureOfTheDatabaseIsTold()
{
    RawSql other(m_folder->database());
    other.run(u"BEGIN IMMEDIATE"_s);
    QCOMPARE(failure<StoreError>([this] { (void)sealed(9); }), u"database is locked"_s);
    other.run(u"ROLLBACK"_s);
    // The one that was written meanwhile is not counted again.
    QCOMPARE(sealedFiles(), 1);
    QCOMPARE(sealed(9), 2);
    for (const int number : {1, 2, 3})
        QVERIFY(m_store->picture(pictureOf(number)).result().has_value());
}

void SealingTest::aReaderSealsNothing()
{
    HistoryStore reader(HistoryStore::ReadingOnly{m_folder->root()});
    reader.setVault(m_vault).waitForFinished();
    QCOMPARE(failure<StoreError>([&] { reader.sealExistingPictures(9).waitForFinished(); }),
             u"This library was opened for reading only."_s);
    QCOMPARE(sealedFiles(), 0);
}

QTEST_GUILESS_MAIN(SealingTest)
#include "SealingTest.moc"
