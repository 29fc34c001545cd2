// SPDX-License-Identifier: Apache-2.0
//
// What the application object has to do with the list on show: who keeps it fresh, and what is made
// of it.
#include "Mossbank/Model/AppModel.h"
#include "tests/Core/Library/RawSql.h"
#include "tests/Model/RecorderRig.h"

#include <QDir>
#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;

class ListingWiringTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_rig = std::make_unique<RecorderRig>(false);
        launch();
    }
    void cleanup()
    {
        m_model.reset();
        m_rig.reset();
    }

    void whatIsRecordedComesOntoTheList()
    {
        listing().openWorkspace();
        record();
        QTRY_COMPARE(listing().memories().size(), 1);
        QCOMPARE(listing().memories().first().text, u"first line\nsecond line"_s);
        m_rig->drawBlock(QRect(0, 0, 200, 150));
        m_rig->clock.advance(m_rig->preferences.interval());
        QTRY_COMPARE(listing().memories().size(), 2);
        QCOMPARE(listing().stats().count, 2);
    }

    void whatWasDeletedAltogetherLeavesIt()
    {
        listing().openWorkspace();
        record();
        QTRY_COMPARE(listing().memories().size(), 1);
        m_model->housekeeping().deleteAll();
        QTRY_COMPARE(listing().memories().size(), 0);
        QTRY_COMPARE(listing().stats().count, 0);
        QCOMPARE(listing().selectedID(), std::nullopt);
    }

    void withoutAWindowNothingOfTheListIsHeld()
    {
        listing().openWorkspace();
        record();
        QTRY_COMPARE(listing().memories().size(), 1);
        listing().closeWorkspace();
        QCOMPARE(listing().memories().size(), 0);
    }

    void aListStaysWhereDeletingAllHasFailed()
    {
        listing().openWorkspace();
        record();
        QTRY_COMPARE(listing().memories().size(), 1);
        listing().showByMeaning(listing().memories());
        RawSql sql(m_rig->libraryRoot() + u"/history.sqlite"_s);
        sql.run(u"ALTER TABLE memories RENAME TO hidden"_s);
        QSignalSpy deleted(&m_model->housekeeping(), &Housekeeping::deleted);
        m_model->housekeeping().deleteAll();
        QTRY_COMPARE(deleted.count(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(listing().memories().size(), 1);
        QVERIFY(listing().isListedByMeaning());
    }

    void aListOnShowIsGroupedWhereThatIsLookedAt()
    {
        listing().openWorkspace();
        listing().setLens(Listing::Lens::Timeline);
        record();
        QTRY_COMPARE(m_model->grouping().sessions().size(), 1);
        QCOMPARE(m_model->grouping().sessions().first().memories, listing().memories());
    }

    void whatThereIsIsCountedBeforeItIsPutInOrder()
    {
        addRow();
        // A save that was cut short long ago has left it.
        const QString images = m_model->store()->images();
        const QString leftover = images + u"/b.jpg"_s;
        write(leftover);
        write(m_model->store()->pending() + u"/b.jpg"_s, m_rig->clock.now() - 3600);
        bool wasInOrder = true;
        QSignalSpy counts(&listing(), &Listing::statsChanged);
        connect(&listing(), &Listing::statsChanged, this,
                [&] { wasInOrder = !QFile::exists(leftover); });
        m_model->finishedLaunching();
        QTRY_COMPARE(listing().stats().count, 1);
        QVERIFY(!wasInOrder);
        QTRY_VERIFY(!QFile::exists(leftover));
        QCOMPARE(counts.count(), 1);
    }

private:
    Listing& listing() { return m_model->listing(); }

    void launch()
    {
        OpenedLibrary library;
        library.store = std::make_unique<HistoryStore>(
            HistoryStore::Writing{.root = m_rig->libraryRoot(), .calendar = m_rig->calendar});
        m_model = std::make_unique<AppModel>(m_rig->surroundings(), std::move(library));
    }

    void record()
    {
        m_model->recorder().toggleRecording();
        QVERIFY(QTest::qWaitFor(
            [this] { return !m_model->recorder().isCapturing() && m_rig->clock.sleepers() > 0; }));
        QVERIFY(m_model->recorder().isRecording());
    }

    void addRow()
    {
        RawSql(m_rig->libraryRoot() + u"/history.sqlite"_s)
            .rows(u"INSERT INTO memories VALUES ('a', ?1, 'Editor', 'e', 'moss', 'a.jpg', 1, "
                  "'', '')"_s,
                  {QString::number(m_rig->clock.now().secondsSince1970)});
    }

    static void write(const QString& path, std::optional<Date> at = std::nullopt)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write("x") == 1);
        file.flush();
        if (at)
            QVERIFY(file.setFileTime(
                QDateTime::fromSecsSinceEpoch(static_cast<qint64>(at->secondsSince1970)),
                QFileDevice::FileModificationTime));
    }

    std::unique_ptr<RecorderRig> m_rig;
    std::unique_ptr<AppModel> m_model;
};

QTEST_GUILESS_MAIN(ListingWiringTest)
#include "ListingWiringTest.moc"
