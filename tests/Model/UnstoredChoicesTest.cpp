// SPDX-License-Identifier: Apache-2.0
//
// What must not be captured, chosen while the choices cannot be stored.
#include "Mossbank/Model/AppModel.h"
#include "tests/Fakes/BadDisk.h"
#include "tests/Model/RecorderRig.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>

#include <cerrno>

using namespace mossbank;
using namespace Qt::StringLiterals;

class UnstoredChoicesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_model.reset();
        m_rig = std::make_unique<RecorderRig>(false);
        m_model = std::make_unique<AppModel>(m_rig->surroundings(),
                                             OpenedLibrary::at(m_rig->libraryRoot(), nullptr));
        m_model->finishedLaunching();
    }

    void cleanup()
    {
        m_disk.reset();
        m_model.reset();
        m_rig.reset();
    }

    void anExclusionThatCannotBeStoredHoldsAndIsTold_data() { troubles(); }
    void anExclusionThatCannotBeStoredHoldsAndIsTold()
    {
        QFETCH(QString, word);
        makeTrouble();
        m_model->exclusions().excludeFrontmostApp();
        QVERIFY(m_rig->preferences.excludedBundles().contains(RecorderRig::kEditor.bundleID));
        QCOMPARE(m_model->recorder().status(), u"Excluded Editor — no new screenshots of it"_s);
        QVERIFY2(isTold(word), qPrintable(error()));
    }

    void aPauseThatCannotBeStoredHoldsAndIsTold_data() { troubles(); }
    void aPauseThatCannotBeStoredHoldsAndIsTold()
    {
        QFETCH(QString, word);
        m_model->recorder().toggleRecording();
        makeTrouble();
        m_model->pauses().pause(PauseLength::OneHour);
        QVERIFY(m_model->timedPause().isPaused());
        QVERIFY(m_model->recorder().status().startsWith(u"Paused until"));
        QVERIFY2(isTold(word), qPrintable(error()));
    }

    void itIsToldOnceUntilItWentWell()
    {
        QSignalSpy told(&m_rig->preferences, &Preferences::cannotBeStored);
        Preferences& preferences = m_rig->preferences;
        fillTheDisk();
        preferences.setExcludedBundles({u"a"_s});
        preferences.setExcludedBundles({u"a"_s, u"b"_s});
        preferences.setPausedUntil(m_rig->clock.now());
        QCOMPARE(told.size(), 1);
        m_disk.reset();
        preferences.setExcludedBundles({u"a"_s, u"b"_s, u"c"_s});
        QCOMPARE(told.size(), 1);
        QVERIFY(stored().contains("a, b, c"));
        QVERIFY2(stored().contains("pausedUntil"), "what could not be stored then is stored now");
        fillTheDisk();
        preferences.setExcludedBundles({u"d"_s});
        QCOMPARE(told.size(), 2);
    }

    void itLeavesWhatIsToldAlready()
    {
        m_model->recorder().setErrorMessage(u"The other trouble."_s);
        fillTheDisk();
        m_rig->preferences.setExcludedBundles({u"a"_s});
        QVERIFY(error().startsWith(u"The other trouble. Your choices cannot be saved: "));
    }

    void whatIsStoredInTheEndIsToldNoMore()
    {
        for (const bool isOtherTold : {false, true}) {
            const auto other = isOtherTold ? std::optional(u"The other trouble."_s) : std::nullopt;
            m_model->recorder().setErrorMessage(other);
            for (int time = 0; time < 2; ++time) {
                fillTheDisk();
                m_rig->preferences.setInterval(5);
                QCOMPARE(error().count(u"Your choices cannot be saved"_s), 1);
                m_disk.reset();
                m_rig->preferences.setInterval(7);
                QCOMPARE(m_model->recorder().errorMessage(), other);
            }
        }
    }

    void aRemovalThatFailedIsTriedAgain()
    {
        Preferences& preferences = m_rig->preferences;
        preferences.setPausedUntil(m_rig->clock.now());
        fillTheDisk();
        preferences.removePausedUntil();
        QVERIFY(stored().contains("pausedUntil"));
        QVERIFY(!preferences.pausedUntil());
        m_disk.reset();
        preferences.removePausedUntil();
        QVERIFY(!stored().contains("pausedUntil"));
    }

    void whatFailedIsNotWrittenOverAMistakeMadeSince()
    {
        Preferences& preferences = m_rig->preferences;
        preferences.setInterval(5);
        fillTheDisk();
        preferences.setInterval(6);
        m_disk.reset();
        const QByteArray broken = stored() + "excludedBundles=\"a.b\n";
        write(broken);
        preferences.setRetentionDays(7);
        QFile kept(preferences.path() + u".unreadable"_s);
        QVERIFY(kept.open(QIODevice::ReadOnly));
        QCOMPARE(kept.readAll(), broken);
        QCOMPARE(stored(), "[General]\nexcludedBundles=org.example.Secret\ninterval=6\n"
                           "retentionDays=7\n");
    }

    void anExclusionMadeByHandStaysAlsoWhereTheOwnOnesCouldNotBeStored()
    {
        Preferences& preferences = m_rig->preferences;
        preferences.setExcludedBundles({u"a"_s});
        fillTheDisk();
        preferences.setExcludedBundles({u"a"_s, u"b"_s});
        m_disk.reset();
        write("[General]\nexcludedBundles=a, by.hand\n");
        preferences.setExcludedBundles({u"a"_s, u"b"_s, u"c"_s});
        const QStringList all = {u"a"_s, u"b"_s, u"c"_s, u"by.hand"_s};
        QCOMPARE(preferences.excludedBundles(), all);
        QCOMPARE(Preferences(preferences.path()).excludedBundles(), all);
    }

    void whatIsStoredIsStoredAtOnceAndNotTold()
    {
        m_model->exclusions().excludeFrontmostApp();
        QVERIFY(stored().contains(RecorderRig::kEditor.bundleID.toUtf8()));
        QCOMPARE(m_model->recorder().errorMessage(), std::nullopt);
    }

    void nonsenseInTheFileKeepsNothingFromBeingStored()
    {
        write("nonsense\n[=\n");
        m_model->exclusions().excludeFrontmostApp();
        QVERIFY(stored().contains(RecorderRig::kEditor.bundleID.toUtf8()));
        QCOMPARE(m_model->recorder().errorMessage(), std::nullopt);
    }

private:
    static void troubles()
    {
        QTest::addColumn<bool>("isFull");
        QTest::addColumn<QString>("word");
        QTest::newRow("a full disk") << true << u"No space left on device"_s;
        QTest::newRow("a folder in its place") << false << u"directory"_s;
    }

    void makeTrouble()
    {
        QFETCH(bool, isFull);
        if (isFull) {
            fillTheDisk();
            return;
        }
        const QString path = m_rig->preferences.path();
        QVERIFY(QFile::remove(path) && QDir().mkpath(path + u"/inside"_s));
    }

    void fillTheDisk()
    {
        m_disk = std::make_unique<BadDisk>(m_rig->folder.path(), 1, BadDisk::Then::FailOn, ENOSPC);
    }

    void write(const QByteArray& content) const
    {
        QFile file(m_rig->preferences.path());
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }

    QByteArray stored() const
    {
        QFile file(m_rig->preferences.path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QString error() const { return m_model->recorder().errorMessage().value_or(QString()); }
    bool isTold(const QString& word) const
    {
        return error().startsWith(u"Your choices cannot be saved: ") && error().contains(word) &&
               error().endsWith(u". They hold until Mossbank ends.");
    }

    std::unique_ptr<RecorderRig> m_rig;
    std::unique_ptr<AppModel> m_model;
    std::unique_ptr<BadDisk> m_disk;
};

QTEST_GUILESS_MAIN(UnstoredChoicesTest)
#include "UnstoredChoicesTest.moc"
