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
        QVERIFY(logind().tell(u"LockedHint"_s, u"true"_s));
        QVERIFY(logind().tell(u"Active"_s, 0));
        watch();
        QVERIFY(events().availability().isAvailable);
        QVERIFY(!state().isLocked());
        QCOMPARE(events().isOnConsole(), std::nullopt);
        QVERIFY(logind().tell(u"LockedHint"_s, 1));
        QVERIFY(logind().tell(u"Active"_s, QStringList{u"no"_s}));
        QVERIFY(logind().emitSignal(u"PrepareForSleep"_s, u"s"_s, u"true"_s));
        QTest::qWait(kLongEnough);
        QCOMPARE(told(), QStringList());
        QVERIFY(!state().isLocked());
        QVERIFY(!state().isMainDisplayAsleep());
        QCOMPARE(events().isOnConsole(), std::nullopt);
        QVERIFY(logind().setLocked(true));
        QTRY_COMPARE(told(), QStringList{kLocked});
        // What it said before stands.
        QVERIFY(logind().tell(u"LockedHint"_s, u"false"_s));
        QTest::qWait(kLongEnough);
        QVERIFY(state().isLocked());
    }
};

QTEST_GUILESS_MAIN(LogindTest)
#include "LogindTest.moc"
