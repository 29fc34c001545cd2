// SPDX-License-Identifier: Apache-2.0
//
// What logind tells of the user's leaving and return.
#include "tests/Contract/Contract.h"
#include "tests/Desktop/WatchedSessionTest.h"

#include <QTest>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

class LogindTest final : public WatchedSessionTest {
    Q_OBJECT

private Q_SLOTS:
    void theSessionIsFound_data()
    {
        QTest::addColumn<QByteArray>("id");
        QTest::newRow("by its process") << QByteArray();
        QTest::newRow("by its name") << QByteArray("c1");
        QTest::newRow("by its process where the name is another's") << QByteArray("c2");
    }
    void theSessionIsFound()
    {
        QFETCH(QByteArray, id);
        QVERIFY(startLogind());
        if (!id.isEmpty())
            qputenv("XDG_SESSION_ID", id);
        QVERIFY(logind().setLocked(true));
        watch();
        QVERIFY(state().isLocked());
        QVERIFY(events().isOnConsole().has_value());
        QVERIFY(isSound(events().availability()));
    }

    void theSessionOfAServiceOfTheUsersIsFound_data()
    {
        QTest::addColumn<QByteArray>("id");
        QTest::newRow("without a name") << QByteArray();
        QTest::newRow("with the name of one that has ended") << QByteArray("c2");
    }
    void theSessionOfAServiceOfTheUsersIsFound()
    {
        QFETCH(QByteArray, id);
        QVERIFY(startLogind());
        QVERIFY(logind().knowItAsTheUsersOnly());
        if (!id.isEmpty())
            qputenv("XDG_SESSION_ID", id);
        QVERIFY(logind().setLocked(true));
        watch();
        QVERIFY(state().isLocked());
        QVERIFY(events().isOnConsole().has_value());
    }

    void logindTellsOfTheLock()
    {
        QVERIFY(startLogind());
        watch();
        QVERIFY(state().availability().isAvailable);
        QVERIFY(events().availability().isAvailable);
        QVERIFY(!state().isLocked());
        QVERIFY(logind().setLocked(true));
        QTRY_COMPARE(told(), QStringList{kLocked});
        QVERIFY(state().isLocked());
        QVERIFY(logind().setLocked(false));
        QTRY_COMPARE(told(), (QStringList{kLocked, kUnlocked}));
        QVERIFY(!state().isLocked());
    }

    void aLockThatWasThereBeforeIsKnown()
    {
        QVERIFY(startLogind());
        QVERIFY(logind().setLocked(true));
        watch();
        QVERIFY(state().isLocked());
        QVERIFY(logind().setLocked(false));
        QTRY_COMPARE(told(), QStringList{kUnlocked});
    }

    void logindTellsOfSleepAndOfTheSession()
    {
        QVERIFY(startLogind());
        watch();
        QCOMPARE(events().isOnConsole(), std::optional(true));
        QVERIFY(logind().sleep(true));
        QTRY_COMPARE(told(), QStringList{kSleep});
        QVERIFY(logind().sleep(false));
        QTRY_COMPARE(told(), (QStringList{kSleep, kWake}));
        forget();
        QVERIFY(logind().setActive(false));
        QTRY_COMPARE(told(), QStringList{kResigned});
        QCOMPARE(events().isOnConsole(), std::optional(false));
        QVERIFY(logind().setActive(true));
        QTRY_COMPARE(told(), (QStringList{kResigned, kActive}));
        QCOMPARE(events().isOnConsole(), std::optional(true));
    }

    void aLogindThatGoesAndComesBackIsHeardAgain()
    {
        QVERIFY(startLogind());
        watch();
        QVERIFY(logind().setLocked(true));
        QTRY_COMPARE(told(), QStringList{kLocked});
        endLogind();
        QTRY_VERIFY(!events().availability().isAvailable);
        // Who was away stays away until told otherwise.
        QVERIFY(state().isLocked());
        QVERIFY(startLogind());
        QTRY_VERIFY(events().availability().isAvailable);
        QTRY_COMPARE(told(), (QStringList{kLocked, kUnlocked}));
        QVERIFY(logind().setActive(false));
        QTRY_COMPARE(told(), (QStringList{kLocked, kUnlocked, kResigned}));
    }

    void aLogindThatComesLateIsHeard()
    {
        watch();
        QVERIFY(!events().availability().isAvailable);
        QVERIFY(!events().isOnConsole());
        QVERIFY(startLogind());
        QTRY_VERIFY(events().availability().isAvailable);
        QVERIFY(logind().setLocked(true));
        QTRY_VERIFY(told().contains(kLocked));
    }

    void onTheWayToSleepTheDisplayCountsAsAsleep()
    {
        QVERIFY(startLogind());
        watch();
        QVERIFY(logind().sleep(true));
        QTRY_COMPARE(told(), QStringList{kSleep});
        QVERIFY(state().isMainDisplayAsleep());
        QVERIFY(logind().sleep(false));
        QTRY_COMPARE(told(), (QStringList{kSleep, kWake}));
        QVERIFY(!state().isMainDisplayAsleep());
    }

    void aWakeThatNobodyToldIsFoundOut()
    {
        QVERIFY(startLogind());
        watch();
        QVERIFY(logind().sleep(true));
        QTRY_COMPARE(told(), QStringList{kSleep});
        endLogind();
        QVERIFY(state().isMainDisplayAsleep());
        QVERIFY(startLogind());
        QTRY_COMPARE(told(), (QStringList{kSleep, kWake}));
        QVERIFY(!state().isMainDisplayAsleep());
    }

    void aWakeThatIsNotAnsweredForAtFirstIsAskedForAgain()
    {
        QVERIFY(startLogind());
        watch();
        QVERIFY(logind().sleep(true));
        QTRY_COMPARE(told(), QStringList{kSleep});
        endLogind();
        // A word in place of yes or no.
        QVERIFY(startLogind(uR"({"PreparingForSleep": "perhaps"})"_s));
        QTRY_VERIFY(events().availability().isAvailable);
        QTest::qWait(kLongEnough);
        QVERIFY2(state().isMainDisplayAsleep(), "nobody has said otherwise");
        QVERIFY(logind().knowOfSleep(false));
        QTRY_COMPARE_WITH_TIMEOUT(told(), (QStringList{kSleep, kWake}), 8000);
        QVERIFY(!state().isMainDisplayAsleep());
    }

    void whatLogindSaysInAnotherTypeIsNotHeard()
    {
        QVERIFY(startLogind());
        watch();
        QVERIFY(logind().setLocked(true));
        QTRY_COMPARE(told(), QStringList{kLocked});
        // What it said before stands.
        QVERIFY(logind().tell(u"LockedHint"_s, u"false"_s));
        QVERIFY(logind().tell(u"Active"_s, QStringList{u"no"_s}));
        QVERIFY(logind().emitSignal(u"PrepareForSleep"_s, u"s"_s, u"true"_s));
        QTest::qWait(kLongEnough);
        QCOMPARE(told(), QStringList{kLocked});
        QVERIFY(state().isLocked());
        QVERIFY(!state().isMainDisplayAsleep());
        QCOMPARE(events().isOnConsole(), std::optional(true));
    }

    void aLogindWithoutAUsableWordCannotTell_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QVariantMap>("properties");
        QTest::newRow("no such object")
            << u"/org/freedesktop/login1/session/gone"_s << QVariantMap();
        QTest::newRow("no object of a session") << MockedLogind::managerPath() << QVariantMap();
        QTest::newRow("without the two")
            << MockedLogind::managerPath() << QVariantMap{{u"Id"_s, u"c1"_s}};
        QTest::newRow("of another type")
            << MockedLogind::managerPath()
            << QVariantMap{{u"LockedHint"_s, u"true"_s}, {u"Active"_s, 0}};
    }
    void aLogindWithoutAUsableWordCannotTell()
    {
        QFETCH(QString, path);
        QFETCH(QVariantMap, properties);
        QVERIFY(startLogind());
        QVERIFY(logind().setLocked(true));
        QVERIFY(logind().moveTo(path));
        QVERIFY(properties.isEmpty() || logind().know(properties));
        QVERIFY(startScreenSaver());
        watch();
        QVERIFY(isSound(events().availability()));
        QVERIFY(!events().availability().isAvailable);
        QCOMPARE(events().isOnConsole(), std::nullopt);
        // The screen saver decides alone.
        QVERIFY(state().availability().isAvailable);
        QVERIFY(!state().isLocked());
        QVERIFY(screenSaver().setActive(true));
        QTRY_COMPARE(told(), QStringList{kLocked});
        QVERIFY(screenSaver().setActive(false));
        QTRY_COMPARE(told(), (QStringList{kLocked, kUnlocked}));
        endScreenSaver();
        QTRY_VERIFY(!state().availability().isAvailable);
        QVERIFY(isSound(state().availability()));
        // Once it has a word it is there.
        QVERIFY(logind().moveTo(u"/org/freedesktop/login1/session/c1"_s));
        QTRY_VERIFY_WITH_TIMEOUT(state().isLocked(), 15'000);
        QVERIFY(state().availability().isAvailable);
        QVERIFY(events().availability().isAvailable);
        QCOMPARE(events().isOnConsole(), std::optional(true));
    }

    void aLogindThatTellsOneOfTheTwoTellsThatAlone_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QString>("other");
        QTest::newRow("the lock") << u"LockedHint"_s << u"Active"_s;
        QTest::newRow("the session in front") << u"Active"_s << u"LockedHint"_s;
    }
    void aLogindThatTellsOneOfTheTwoTellsThatAlone()
    {
        QFETCH(QString, property);
        QFETCH(QString, other);
        const bool isLock = property == u"LockedHint"_s;
        QVERIFY(startLogind());
        QVERIFY(logind().moveTo(MockedLogind::managerPath()));
        QVERIFY(logind().know({{property, true}, {other, u"true"_s}}));
        watch();
        QCOMPARE(state().availability().isAvailable, isLock);
        QCOMPARE(state().isLocked(), isLock);
        QCOMPARE(events().availability().isAvailable, !isLock);
        QCOMPARE(events().isOnConsole(), isLock ? std::nullopt : std::optional(true));
        QVERIFY(logind().tell(other, true));
        QTRY_VERIFY(state().availability().isAvailable && events().availability().isAvailable);
        QVERIFY(state().isLocked());
        QCOMPARE(events().isOnConsole(), std::optional(true));
    }

    void aLockStandsNoLongerOnceAnotherLogindKnowsNothingOfIt()
    {
        QVERIFY(startLogind());
        watch();
        QVERIFY(logind().setLocked(true));
        QVERIFY(logind().setActive(false));
        QTRY_COMPARE(told(), (QStringList{kLocked, kResigned}));
        endLogind();
        QTRY_VERIFY(!events().availability().isAvailable);
        QVERIFY(startLogind());
        QVERIFY(logind().moveTo(MockedLogind::managerPath()));
        QVERIFY(logind().know({{u"Id"_s, u"c1"_s}}));
        QTRY_VERIFY_WITH_TIMEOUT(!state().isLocked(), 15'000);
        QTRY_VERIFY_WITH_TIMEOUT(!events().isOnConsole(), 15'000);
        // Nobody has said that the session is in front again.
        QCOMPARE(told(), (QStringList{kLocked, kResigned, kUnlocked}));
    }
};

QTEST_GUILESS_MAIN(LogindTest)
#include "LogindTest.moc"
