// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Housekeeping.h"

#include "tests/Fakes/BadDisk.h"
#include "tests/Model/RecorderRig.h"

#include <QCoroTask>
#include <QSignalSpy>

#include <cerrno>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr double kDay = 86'400;

const QByteArray kJpeg = QByteArray::fromHex("ffd8ff") + QByteArray(200, 'x');

} // namespace

class HousekeepingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_rig = std::make_unique<RecorderRig>(); }
    void cleanup() { m_rig.reset(); }

    // Retention

    void whatIsOlderThanTheUserWantsGoes()
    {
        save(u"old"_s, 30 * kDay + 1);
        save(u"young"_s, 30 * kDay - 1);
        applyRetention();
        QCOMPARE(saved(), QStringList{u"young"_s});
        QVERIFY(!m_rig->recorder->errorMessage());
    }

    void daysAreThoseOfTheCalendar()
    {
        // Between the two the clocks went forward: the day of 23 hours counts as one.
        RecorderRig& rig = *m_rig;
        rig.clock.setNow({1'711'965'600}); // 2024-04-01 12:00 in Berlin
        rig.preferences.setRetentionDays(2);
        save(u"old"_s, 47 * 3600 + 1);
        save(u"young"_s, 47 * 3600 - 1);
        Surroundings surroundings = rig.surroundings();
        surroundings.calendar = [] {
            return Calendar(QTimeZone("Europe/Berlin"), QLocale::c());
        };
        Housekeeping housekeeping(surroundings, *rig.recorder, rig.store.get());
        QCoro::waitFor(housekeeping.applyRetention(false));
        QCOMPARE(saved(), QStringList{u"young"_s});
    }

    void whatIsKeptForEverNeverGoes_data()
    {
        QTest::addColumn<int>("days");
        QTest::addColumn<bool>("force");
        for (const bool force : {false, true}) {
            QTest::addRow("0, force %d", force) << 0 << force;
            QTest::addRow("-1, force %d", force) << -1 << force;
            QTest::addRow("beyond the calendar, force %d", force)
                << std::numeric_limits<int>::max() << force;
        }
    }
    void whatIsKeptForEverNeverGoes()
    {
        QFETCH(int, days);
        QFETCH(bool, force);
        m_rig->preferences.setRetentionDays(days);
        save(u"old"_s, 20'000 * kDay);
        applyRetention(force);
        QCOMPARE(saved(), QStringList{u"old"_s});
    }

    void itRemovesOnceAMinute()
    {
        Housekeeping housekeeping(m_rig->surroundings(), *m_rig->recorder, m_rig->store.get());
        save(u"first"_s, 31 * kDay);
        QCoro::waitFor(housekeeping.applyRetention(false));
        QCOMPARE(saved(), QStringList());

        save(u"second"_s, 31 * kDay);
        m_rig->clock.advance(59.9);
        QCoro::waitFor(housekeeping.applyRetention(false));
        QCOMPARE(saved(), QStringList{u"second"_s});
        QCoro::waitFor(housekeeping.applyRetention(true));
        QCOMPARE(saved(), QStringList());

        save(u"third"_s, 31 * kDay);
        m_rig->clock.advance(59.9);
        QCoro::waitFor(housekeeping.applyRetention(false));
        QCOMPARE(saved(), QStringList{u"third"_s});
        m_rig->clock.advance(0.1);
        QCoro::waitFor(housekeeping.applyRetention(false));
        QCOMPARE(saved(), QStringList());
    }

    void ofTwoAtOnceOneRemoves()
    {
        Housekeeping housekeeping(m_rig->surroundings(), *m_rig->recorder, m_rig->store.get());
        save(u"first"_s, 31 * kDay);
        // The library is busy with a save.
        m_rig->sealing.hold();
        const auto saving = m_rig->store->save(memory(u"second"_s, 31 * kDay), kJpeg);
        auto one = housekeeping.applyRetention(false);
        auto other = housekeeping.applyRetention(false);
        QVERIFY(!one.isReady());
        QVERIFY(other.isReady());
        m_rig->sealing.release();
        QCoro::waitFor(one);
        QCOMPARE(saved(), QStringList());
    }

    void aRemovalThatFailedIsToldAndWaitsAsWell()
    {
        Housekeeping housekeeping(m_rig->surroundings(), *m_rig->recorder, m_rig->store.get());
        save(u"old"_s, 31 * kDay);
        {
            const BadDisk disk(m_rig->libraryRoot(), 1, BadDisk::Then::FailOn, EIO);
            QCoro::waitFor(housekeeping.applyRetention(false));
        }
        QVERIFY(message().startsWith(u"Could not remove expired history: "_s));
        QVERIFY(message().size() > 40);
        m_rig->recorder->setErrorMessage(std::nullopt);
        QCoro::waitFor(housekeeping.applyRetention(false));
        QCOMPARE(saved(), QStringList{u"old"_s});
        m_rig->clock.advance(60);
        QCoro::waitFor(housekeeping.applyRetention(false));
        QCOMPARE(saved(), QStringList());
        QCOMPARE(message(), QString());
    }

    // Tidying

    void whatASaveThatWasCutShortHasLeftGoes()
    {
        save(u"whole"_s, 3600);
        const QString orphan = cutShort(u"orphan"_s, 61);
        const QString fresh = cutShort(u"fresh"_s, 59);
        Housekeeping housekeeping(m_rig->surroundings(), *m_rig->recorder, m_rig->store.get());
        QCoro::waitFor(housekeeping.tidyImages());
        QVERIFY(!QFile::exists(orphan));
        QVERIFY2(QFile::exists(fresh), "it may be being saved");
        QVERIFY(QFile::exists(pictureOf(u"whole"_s)));
        QCOMPARE(message(), QString());
    }

    void aTidyingThatFailedIsTold()
    {
        cutShort(u"orphan"_s, 100);
        m_rig->start();
        Housekeeping housekeeping(m_rig->surroundings(), *m_rig->recorder, m_rig->store.get());
        const BadDisk disk(m_rig->libraryRoot(), 1, BadDisk::Then::FailOn, EIO);
        QCoro::waitFor(housekeeping.tidyImages());
        QVERIFY(message().startsWith(u"Could not tidy the screenshot folder: "_s));
        QVERIFY2(m_rig->recorder->isRecording(), "it is no reason to stop");
    }

    // Sealing

    void picturesFromBeforeTheKeyAreSealedAndCounted_data()
    {
        QTest::addColumn<int>("plain");
        QTest::addColumn<QString>("status");
        QTest::newRow("none") << 0 << u"Recording is off"_s;
        QTest::newRow("one") << 1 << u"Encrypted 1 screenshot saved earlier"_s;
        QTest::newRow("two batches and a bit")
            << 405 << u"Encrypted 405 screenshots saved earlier"_s;
    }
    void picturesFromBeforeTheKeyAreSealedAndCounted()
    {
        QFETCH(int, plain);
        QFETCH(QString, status);
        savePlain(plain);
        Housekeeping housekeeping(m_rig->surroundings(), *m_rig->recorder, m_rig->store.get());
        QCOMPARE(seal(housekeeping), (plain + 199) / 200);
        QCOMPARE(m_rig->recorder->status(), status);
        QCOMPARE(message(), QString());
        const auto all = m_rig->saved();
        for (const Memory& memory : all) {
            QFile file(m_rig->libraryRoot() + u"/Images/"_s + memory.filename);
            QVERIFY(file.open(QIODevice::ReadOnly));
            QVERIFY(!file.readAll().contains(kJpeg));
        }
    }

    void withoutAKeyNothingIsSealedAndNothingSaid()
    {
        m_rig->store->setVault(std::nullopt).waitForFinished();
        save(u"plain"_s, 100);
        Housekeeping housekeeping(m_rig->surroundings(), *m_rig->recorder, m_rig->store.get());
        QCOMPARE(seal(housekeeping), 0);
        QCOMPARE(m_rig->recorder->status(), u"Recording is off"_s);
    }

    void aSealingThatFailedHalfWayTellsBoth()
    {
        savePlain(250);
        Housekeeping housekeeping(m_rig->surroundings(), *m_rig->recorder, m_rig->store.get());
        auto task = housekeeping.sealScreenshotsFromBeforeEncryption({});
        QVERIFY(QTest::qWaitFor([&] { return m_rig->clock.sleepers() == 1; }));
        {
            const BadDisk disk(m_rig->libraryRoot(), 1, BadDisk::Then::FailOn, EIO);
            m_rig->clock.advance(0.2);
            QCoro::waitFor(task);
        }
        QVERIFY(message().startsWith(u"Some screenshots could not be encrypted: "_s));
        QCOMPARE(m_rig->recorder->status(), u"Encrypted 200 screenshots saved earlier"_s);
    }

    // Delete all

    void everythingIsDeletedAndTheSameScreenIsSavedAgain()
    {
        RecorderRig& rig = *m_rig;
        rig.start();
        rig.nextPass();
        QCOMPARE(rig.saved().size(), 1);
        Housekeeping housekeeping(rig.surroundings(), *rig.recorder, rig.store.get());
        QSignalSpy deleted(&housekeeping, &Housekeeping::deleted);
        housekeeping.deleteAll();
        QVERIFY(!rig.recorder->isRecording());
        QVERIFY(deleted.wait());
        QCOMPARE(rig.saved().size(), 0);
        QVERIFY(!rig.recorder->screensSeen().lastScreen);
        rig.start();
        QCOMPARE(rig.saved().size(), 1);
    }

    void aScreenSavedWhileAllIsDeletedIsNotTakenForTheLast()
    {
        RecorderRig& rig = *m_rig;
        rig.sealing.hold();
        rig.recorder->toggleRecording();
        QVERIFY(QTest::qWaitFor([&] { return rig.sealing.isHolding(); }));
        Housekeeping housekeeping(rig.surroundings(), *rig.recorder, rig.store.get());
        QSignalSpy deleted(&housekeeping, &Housekeeping::deleted);
        housekeeping.deleteAll();
        rig.sealing.release();
        // Both are done before anybody is told, the deletion as well as the save.
        rig.store->picture({}).waitForFinished();
        QVERIFY(deleted.wait());
        rig.settle();
        QCOMPARE(rig.saved().size(), 0);
        QVERIFY(!rig.recorder->screensSeen().lastScreen);
        QCOMPARE(rig.recorder->screensSeen().lastScreenSavedAt, Date::distantPast());
    }

    void aDeletionThatFailedIsTold()
    {
        save(u"kept"_s, 100);
        Housekeeping housekeeping(m_rig->surroundings(), *m_rig->recorder, m_rig->store.get());
        QSignalSpy deleted(&housekeeping, &Housekeeping::deleted);
        {
            const BadDisk disk(m_rig->libraryRoot(), 1, BadDisk::Then::FailOn, EIO);
            housekeeping.deleteAll();
            QVERIFY2(deleted.wait(), "what is on show has changed in any case");
        }
        QVERIFY(message().startsWith(u"Could not delete history: "_s));
    }

    void withoutALibraryNothingIsDone()
    {
        RecorderRig rig(false);
        Housekeeping housekeeping(rig.surroundings(), *rig.recorder, nullptr);
        QCoro::waitFor(housekeeping.applyRetention(true));
        QCoro::waitFor(housekeeping.tidyImages());
        QCoro::waitFor(housekeeping.sealScreenshotsFromBeforeEncryption({}));
        const QSignalSpy deleted(&housekeeping, &Housekeeping::deleted);
        housekeeping.deleteAll();
        QCoreApplication::processEvents();
        QCOMPARE(deleted.size(), 0);
        QCOMPARE(rig.recorder->status(), u"Recording is off"_s);
        QVERIFY(!rig.recorder->errorMessage());
    }

    void whoGoesMeanwhileIsNotMissed()
    {
        save(u"old"_s, 31 * kDay);
        auto housekeeping = std::make_unique<Housekeeping>(m_rig->surroundings(), *m_rig->recorder,
                                                           m_rig->store.get());
        auto task = housekeeping->applyRetention(false);
        housekeeping->deleteAll();
        housekeeping.reset();
        QCoro::waitFor(task);
        QCOMPARE(saved(), QStringList());
    }

private:
    /// One that was taken so many seconds ago.
    Memory memory(const QString& id, double age) const
    {
        return {.id = id,
                .timestamp = m_rig->clock.now() - age,
                .appName = u"Editor"_s,
                .bundleID = u"org.example.Editor"_s,
                .text = {},
                .filename = id + u".jpg"_s,
                .bytes = kJpeg.size(),
                .title = {},
                .link = {}};
    }
    void save(const QString& id, double age)
    {
        m_rig->store->save(memory(id, age), kJpeg).waitForFinished();
    }
    /// So many without a key, and then there is one.
    void savePlain(int count)
    {
        m_rig->store->setVault(std::nullopt).waitForFinished();
        for (int number = 0; number < count; ++number)
            save(u"plain-%1"_s.arg(number), 100);
        m_rig->store->setVault(m_rig->vault).waitForFinished();
    }
    QStringList saved()
    {
        QStringList ids;
        const auto all = m_rig->saved();
        for (const Memory& memory : all)
            ids.append(memory.id);
        return ids;
    }
    QString message() const { return m_rig->recorder->errorMessage().value_or(QString()); }
    QString pictureOf(const QString& id) const
    {
        return m_rig->libraryRoot() + u"/Images/"_s + id + u".jpg"_s;
    }
    /// The picture of a save that began so many seconds ago and never came to its row.
    QString cutShort(const QString& id, double age) const
    {
        const QString picture = pictureOf(id);
        const QString marker = m_rig->libraryRoot() + u"/Pending/"_s + id + u".jpg"_s;
        for (const QString& path : {picture, marker}) {
            QFile file(path);
            if (!file.open(QIODevice::WriteOnly) || file.write(kJpeg) != kJpeg.size())
                qFatal("cannot write %s", qPrintable(path));
            file.flush();
            const auto began = static_cast<qint64>((m_rig->clock.now() - age).secondsSince1970);
            file.setFileTime(QDateTime::fromSecsSinceEpoch(began), QFile::FileModificationTime);
        }
        return picture;
    }
    void applyRetention(bool force = false)
    {
        Housekeeping housekeeping(m_rig->surroundings(), *m_rig->recorder, m_rig->store.get());
        QCoro::waitFor(housekeeping.applyRetention(force));
    }
    /// To its end; how often it rested.
    int seal(Housekeeping& housekeeping)
    {
        int rests = 0;
        auto task = housekeeping.sealScreenshotsFromBeforeEncryption({});
        while (!QTest::qWaitFor([&] { return task.isReady() || m_rig->clock.sleepers() > 0; }) ||
               !task.isReady()) {
            if (qFuzzyCompare(m_rig->clock.untilNextAlarm(), 0.2))
                ++rests;
            m_rig->clock.advance(0.2);
        }
        return rests;
    }

    std::unique_ptr<RecorderRig> m_rig;
};

QTEST_GUILESS_MAIN(HousekeepingTest)
#include "HousekeepingTest.moc"
