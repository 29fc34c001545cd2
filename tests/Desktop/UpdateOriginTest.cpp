// SPDX-License-Identifier: Apache-2.0
//
// Whose program is asked about updates at all, and what is learnt of it when: on a real system bus.
#include "tests/Contract/Contract.h"
#include "tests/Desktop/AskedPackageKitTest.h"

#include <QTest>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class UpdateOriginTest final : public AskedPackageKitTest {
    Q_OBJECT

private Q_SLOTS:
    void onlyWhatTheDistributionMayHaveInstalledIsAskedAbout_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("isAsked");
        QTest::newRow("a package's") << u"/usr/bin/heron"_s << true;
        QTest::newRow("a package's library") << u"/usr/lib/heron/heron"_s << true;
        QTest::newRow("the owner's own") << u"/usr/local/bin/heron"_s << false;
        QTest::newRow("a home's") << u"/home/heron/bin/heron"_s << false;
        QTest::newRow("added") << u"/opt/heron/heron"_s << false;
        QTest::newRow("out again") << u"/usr/../home/heron"_s << false;
        QTest::newRow("named alike") << u"/usrlocal/heron"_s << false;
        QTest::newRow("nowhere") << QString() << false;
    }
    void onlyWhatTheDistributionMayHaveInstalledIsAskedAbout()
    {
        QFETCH(QString, path);
        QFETCH(bool, isAsked);
        make(path);
        QVERIFY(!m_updates->canCheckForUpdates());
        if (isAsked) {
            QTRY_VERIFY(m_packageKit->told().size() >= 3);
            return;
        }
        m_updates->checkForUpdates();
        QTRY_COMPARE(m_answers.size(), 1);
        QTest::qWait(kLongEnough);
        QCOMPARE(m_packageKit->told(), QStringList());
        QVERIFY(!m_updates->availability().isAvailable);
        QCOMPARE(m_answers, QList{UpdateAnswer::failed(m_updates->availability().reason)});
        QCOMPARE(m_changes, 0);
    }

    void nothingIsAskedUnasked()
    {
        QVERIFY(knowPackage());
        make();
        QVERIFY(m_updates->availability().isAvailable);
        QTest::qWait(kLongEnough);
        QCOMPARE(m_packageKit->told(), QStringList());
        QVERIFY(findPackage());
        QTest::qWait(kLongEnough);
        for (int time = 0; time < 10; ++time)
            QVERIFY(m_updates->canCheckForUpdates());
        QTest::qWait(kLongEnough);
        // Whose the program is, once, and nothing else.
        QCOMPARE(told(), QStringList{u"SearchFiles[4, [\"/usr/bin/heron\"]]"_s});
        QCOMPARE(m_changes, 1);
        QCOMPARE(m_answers.size(), 0);
    }

    void aProgramOfNoPackageHasNoUpdates()
    {
        QVERIFY(m_packageKit->behave(u"SearchFiles"_s, {MockedPackageKit::finished()}));
        make(kExecutable, {.again = 0ms});
        QVERIFY(!m_updates->canCheckForUpdates());
        QTRY_VERIFY(!m_updates->availability().isAvailable);
        QVERIFY(isSound(m_updates->availability()));
        for (int time = 0; time < 10; ++time)
            QVERIFY(!m_updates->canCheckForUpdates());
        QTest::qWait(kLongEnough);
        QCOMPARE(told().size(), 1);
        m_updates->checkForUpdates();
        QTRY_COMPARE(m_answers, QList{UpdateAnswer::failed(m_updates->availability().reason)});
    }

    void withoutPackageKitItSaysSoAndAsksAgainLater()
    {
        m_packageKit.reset();
        make(kExecutable, {.again = 0ms});
        QVERIFY(!m_updates->canCheckForUpdates());
        QTRY_COMPARE(m_updates->availability(),
                     Availability::missing(u"PackageKit is not installed."_s));
        m_packageKit = std::make_unique<MockedPackageKit>(*m_bus);
        QVERIFY(knowPackage());
        QVERIFY(findPackage());
        QVERIFY(m_updates->availability().isAvailable);
    }

    void whoDidNotAnswerIsLeftAloneForAWhile()
    {
        m_packageKit.reset();
        make();
        QVERIFY(!m_updates->canCheckForUpdates());
        QTRY_VERIFY(!m_updates->availability().isAvailable);
        m_packageKit = std::make_unique<MockedPackageKit>(*m_bus);
        QVERIFY(knowPackage());
        QVERIFY(!m_updates->canCheckForUpdates());
        QTest::qWait(kLongEnough);
        QCOMPARE(m_packageKit->told(), QStringList());
    }

    void withoutABusItSaysSo()
    {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus");
        make();
        QVERIFY(!m_updates->canCheckForUpdates());
        QTRY_COMPARE(m_updates->availability(),
                     Availability::missing(u"The system bus does not answer."_s));
    }
};

QTEST_GUILESS_MAIN(UpdateOriginTest)
#include "UpdateOriginTest.moc"
