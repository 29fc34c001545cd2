// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/FilledLibrary.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr Date kNow = {1'700'000'000};
constexpr double kGrace = 60;

} // namespace

/// What saves that were cut short leave, and how it is settled.
class ReconciliationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void withoutMarkersNoPictureIsLookedAt();
    void vectorsWithoutTheirScreenshotGoFirst();
    void aMarkerIsSettledByRowAndPicture_data();
    void aMarkerIsSettledByRowAndPicture();
    void aYoungMarkerIsLeft_data();
    void aYoungMarkerIsLeft();
    void whatAnInterruptedWriteLeftGoesToo();
    void otherPicturesAreNotTouched();
    void severalMarkersAreSettledAtOnce();
    void aMissingFolderOfMarkersIsNone();
    void aFolderAmongTheMarkersIsNone();
    void aPictureThatCannotBeRemovedKeepsItsMarker();
    void aLockedLibraryIsToldAndSettledLater();

private:
    void putMarker(const QString& name, double age = 2 * kGrace)
    {
        const QString path = m_folder->pending() + u'/' + name;
        QVERIFY(putFile(path, {}));
        const timespec then = {static_cast<time_t>(kNow.secondsSince1970 - age), 0};
        const timespec times[] = {then, then};
        QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
    }
    void putPicture(const QString& name)
    {
        QVERIFY(putFile(m_folder->images() + u'/' + name, "jpeg"));
    }
    qsizetype reconciled() { return m_store->reconcile(kGrace, kNow).result(); }
    QStringList markers() { return names(m_folder->pending()); }
    QStringList pictures() { return names(m_folder->images()); }

    std::unique_ptr<LibraryFolder> m_folder;
    std::unique_ptr<HistoryStore> m_store;
};

void ReconciliationTest::init()
{
    m_folder = std::make_unique<LibraryFolder>();
    m_store = std::make_unique<HistoryStore>(HistoryStore::Writing{.root = m_folder->root()});
    fill(*m_folder, 3);
}

void ReconciliationTest::cleanup()
{
    m_store.reset();
    QCOMPARE(disagreement(*m_folder), QString());
}

void ReconciliationTest::withoutMarkersNoPictureIsLookedAt()
{
    putPicture(u"nobody's.jpg"_s);
    // Were it listed, this would be a failure.
    QVERIFY(QDir().rename(m_folder->images(), m_folder->beside(u"pictures"_s)));
    QVERIFY(putFile(m_folder->images(), "not a folder"));
    QCOMPARE(reconciled(), 0);
    QVERIFY(QFile::exists(m_folder->beside(u"pictures/nobody's.jpg"_s)));
}

void ReconciliationTest::vectorsWithoutTheirScreenshotGoFirst()
{
    RawSql sql(m_folder->database());
    sql.run(u"INSERT INTO embeddings VALUES ('1', 'm', x'003c'), ('LOST', 'm', x'003c')"_s);
    QCOMPARE(reconciled(), 0);
    QCOMPARE(sql.rows(u"SELECT id FROM embeddings"_s), QStringList{u"1"_s});
}

void ReconciliationTest::aMarkerIsSettledByRowAndPicture_data()
{
    QTest::addColumn<bool>("hasRow");
    QTest::addColumn<bool>("hasPicture");
    QTest::addColumn<qsizetype>("removed");
    QTest::newRow("row and picture") << true << true << qsizetype(0);
    QTest::newRow("row alone") << true << false << qsizetype(0);
    QTest::newRow("picture alone") << false << true << qsizetype(1);
    QTest::newRow("neither") << false << false << qsizetype(0);
}

void ReconciliationTest::aMarkerIsSettledByRowAndPicture()
{
    QFETCH(bool, hasRow);
    QFETCH(bool, hasPicture);
    QFETCH(qsizetype, removed);
    if (!hasRow)
        RawSql(m_folder->database()).run(u"DELETE FROM memories WHERE id = '2'"_s);
    if (!hasPicture)
        QVERIFY(QFile::remove(m_folder->images() + u"/2.jpg"_s));
    putMarker(u"2.jpg"_s);
    QCOMPARE(reconciled(), removed);
    QCOMPARE(markers(), QStringList{});
    QCOMPARE(QFile::exists(m_folder->images() + u"/2.jpg"_s), hasRow && hasPicture);
    QCOMPARE(m_store->fetch({.limit = 9}).result().size(), hasRow ? 3 : 2);
    QVERIFY(QFile::exists(m_folder->images() + u"/1.jpg"_s));
}

void ReconciliationTest::aYoungMarkerIsLeft_data()
{
    QTest::addColumn<double>("age");
    QTest::addColumn<bool>("isLeft");
    QTest::newRow("half the grace") << kGrace / 2 << true;
    QTest::newRow("to the moment") << kGrace << true;
    QTest::newRow("older") << kGrace + 1 << false;
    QTest::newRow("of the future") << -1000.0 << true;
}

void ReconciliationTest::aYoungMarkerIsLeft()
{
    QFETCH(double, age);
    QFETCH(bool, isLeft);
    putPicture(u"9.jpg"_s);
    putMarker(u"9.jpg"_s, age);
    QCOMPARE(reconciled(), isLeft ? 0 : 1);
    QCOMPARE(markers().size(), isLeft ? 1 : 0);
    QCOMPARE(pictures().contains(u"9.jpg"_s), isLeft);
    // A later call takes it up.
    QCOMPARE(m_store->reconcile(kGrace, kNow + 10'000).result(), isLeft ? 1 : 0);
    QCOMPARE(markers(), QStringList{});
}

void ReconciliationTest::whatAnInterruptedWriteLeftGoesToo()
{
    putPicture(u"9.jpg"_s);
    putPicture(u"9.jpg.tmp"_s);
    putPicture(u"9.jpgx"_s);
    putPicture(u"19.jpg.tmp"_s);
    putMarker(u"9.jpg"_s);
    QCOMPARE(reconciled(), 2);
    QCOMPARE(pictures(),
             (QStringList{u"1.jpg"_s, u"19.jpg.tmp"_s, u"2.jpg"_s, u"3.jpg"_s, u"9.jpgx"_s}));
}

void ReconciliationTest::otherPicturesAreNotTouched()
{
    putPicture(u"nobody's.jpg"_s);
    putMarker(u"9.jpg"_s);
    QVERIFY(QFile::remove(m_folder->images() + u"/1.jpg"_s));
    QCOMPARE(reconciled(), 0);
    QVERIFY(pictures().contains(u"nobody's.jpg"_s));
    // Nor is a row whose picture is missing.
    QCOMPARE(m_store->fetch({.limit = 9}).result().size(), 3);
}

void ReconciliationTest::severalMarkersAreSettledAtOnce()
{
    for (const QString& name : {u"7.jpg"_s, u"8.jpg"_s, u"9.jpg"_s}) {
        putPicture(name);
        putMarker(name);
    }
    putMarker(u"1.jpg"_s);
    QCOMPARE(reconciled(), 3);
    QCOMPARE(markers(), QStringList{});
    QCOMPARE(pictures(), (QStringList{u"1.jpg"_s, u"2.jpg"_s, u"3.jpg"_s}));
}

void ReconciliationTest::aMissingFolderOfMarkersIsNone()
{
    QVERIFY(QDir(m_folder->pending()).removeRecursively());
    QCOMPARE(reconciled(), 0);
}

void ReconciliationTest::aFolderAmongTheMarkersIsNone()
{
    QVERIFY(QDir().mkpath(m_folder->pending() + u"/1.jpg"_s));
    QCOMPARE(reconciled(), 0);
    QCOMPARE(markers(), QStringList{u"1.jpg"_s});
    QVERIFY(QFile::exists(m_folder->images() + u"/1.jpg"_s));
}

void ReconciliationTest::aPictureThatCannotBeRemovedKeepsItsMarker()
{
    // Where the pictures should be is something else.
    QVERIFY(QDir().rename(m_folder->images(), m_folder->beside(u"pictures"_s)));
    QVERIFY(putFile(m_folder->images(), "not a folder"));
    putMarker(u"9.jpg"_s);
    QCOMPARE(failure<FileError>([this] { reconciled(); }), refusal(ENOTDIR, m_folder->images()));
    QCOMPARE(markers(), QStringList{u"9.jpg"_s});
}

void ReconciliationTest::aLockedLibraryIsToldAndSettledLater()
{
    putPicture(u"9.jpg"_s);
    putMarker(u"9.jpg"_s);
    RawSql other(m_folder->database());
    other.run(u"BEGIN IMMEDIATE"_s);
    QCOMPARE(failure<StoreError>([this] { reconciled(); }), u"database is locked"_s);
    QCOMPARE(markers(), QStringList{u"9.jpg"_s});
    other.run(u"ROLLBACK"_s);
    QCOMPARE(reconciled(), 1);
}

QTEST_GUILESS_MAIN(ReconciliationTest)
#include "ReconciliationTest.moc"
