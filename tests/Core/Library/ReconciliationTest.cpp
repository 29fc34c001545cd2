// SPDX-License-Identifier: Apache-2.0
#include "tests/Core/Library/FilledLibrary.h"
#include "tests/Fakes/BadDisk.h"

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
    void whatAnInterruptedWriteLeftNeedNotHaveANameThatIsText();
    void aMarkerWhoseNameIsNoTextIsSettled();
    void otherPicturesAreNotTouched();
    void severalMarkersAreSettledAtOnce();
    void aMissingFolderOfMarkersIsNone();
    void aFolderAmongTheMarkersIsNone();
    void picturesThatCannotBeListedKeepTheirMarkers();
    void whatCannotBeRemovedIsToldAndSettledLater_data();
    void whatCannotBeRemovedIsToldAndSettledLater();
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

void ReconciliationTest::whatAnInterruptedWriteLeftNeedNotHaveANameThatIsText()
{
    const QByteArray left = "9.jpg.\xe9";
    QVERIFY(putNamelessFile(m_folder->images(), left));
    putMarker(u"9.jpg"_s);
    QCOMPARE(reconciled(), 1);
    QVERIFY(!isNamelessFile(m_folder->images(), left));
}

void ReconciliationTest::aMarkerWhoseNameIsNoTextIsSettled()
{
    const QByteArray name = "caf\xe9.jpg";
    const QByteArray another = "caf\xe8.jpg";
    QVERIFY(putNamelessFile(m_folder->images(), name));
    QVERIFY(putNamelessFile(m_folder->images(), another));
    QVERIFY(putNamelessFile(m_folder->pending(), name));
    const Date now = {static_cast<double>(QDateTime::currentSecsSinceEpoch())};
    QCOMPARE(m_store->reconcile(kGrace, now + 2 * kGrace).result(), 1);
    QVERIFY(!isNamelessFile(m_folder->images(), name));
    QVERIFY(!isNamelessFile(m_folder->pending(), name));
    // The test's folder would stay with it.
    QVERIFY(Files::removeFile(m_folder->images(), another));
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

void ReconciliationTest::picturesThatCannotBeListedKeepTheirMarkers()
{
    // Where the pictures should be is something else.
    QVERIFY(QDir().rename(m_folder->images(), m_folder->beside(u"pictures"_s)));
    QVERIFY(putFile(m_folder->images(), "not a folder"));
    putMarker(u"9.jpg"_s);
    QCOMPARE(failure<FileError>([this] { reconciled(); }), refusal(ENOTDIR, m_folder->images()));
    QCOMPARE(markers(), QStringList{u"9.jpg"_s});
}

void ReconciliationTest::whatCannotBeRemovedIsToldAndSettledLater_data()
{
    QTest::addColumn<QStringList>("unfinished");
    QTest::addColumn<bool>("isMarker");
    QTest::addColumn<int>("nth");
    QTest::addColumn<qsizetype>("picturesLeft");
    QTest::addColumn<qsizetype>("markersLeft");
    // After each marker's pictures their folder is synced, which counts as well.
    const QStringList two = {u"8.jpg"_s, u"9.jpg"_s};
    const QStringList written = {u"9.jpg"_s, u"9.jpg.aB3x0z"_s};
    const auto row = [](const char* name, const QStringList& unfinished, bool isMarker, int nth,
                        qsizetype picturesLeft, qsizetype markersLeft) {
        QTest::newRow(name) << unfinished << isMarker << nth << picturesLeft << markersLeft;
    };
    row("a picture", {u"9.jpg"_s}, false, 1, 1, 1);
    row("the picture of the second marker", two, false, 3, 1, 1);
    row("one of a picture's two files", written, false, 2, 1, 1);
    row("a marker", {u"9.jpg"_s}, true, 1, 0, 1);
    row("the second marker", two, true, 2, 0, 1);
}

void ReconciliationTest::whatCannotBeRemovedIsToldAndSettledLater()
{
    QFETCH(QStringList, unfinished);
    QFETCH(bool, isMarker);
    QFETCH(int, nth);
    QFETCH(qsizetype, picturesLeft);
    QFETCH(qsizetype, markersLeft);
    for (const QString& name : std::as_const(unfinished)) {
        putPicture(name);
        if (name.endsWith(u".jpg"_s))
            putMarker(name);
    }
    const QStringList rows = {u"1.jpg"_s, u"2.jpg"_s, u"3.jpg"_s};
    const QString where = isMarker ? m_folder->pending() : m_folder->images();
    QString told;
    QString struck;
    {
        const BadDisk disk(where, nth, BadDisk::Then::FailOnce, EACCES);
        told = failure<FileError>([this] { reconciled(); });
        struck = QString::fromUtf8(BadDisk::struck());
    }
    QVERIFY2(struck.startsWith(u"unlink "_s), qPrintable(struck));
    QCOMPARE(told, refusal(EACCES, where + u'/' + struck.section(u' ', 1)));
    // What came before it is done, and what comes after it is not begun.
    QCOMPARE(pictures().size(), rows.size() + picturesLeft);
    QCOMPARE(markers().size(), markersLeft);
    QVERIFY(QFile::exists(where + u'/' + struck.section(u' ', 1)));
    QCOMPARE(reconciled(), picturesLeft);
    QCOMPARE(pictures(), rows);
    QCOMPARE(markers(), QStringList{});
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
