// SPDX-License-Identifier: Apache-2.0
//
// What is asked of PackageKit in a check, and what its answers come to: on a real system bus.
#include "tests/Desktop/AskedPackageKitTest.h"

#include <QCoreApplication>
#include <QTest>

#include <csignal>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Kind = UpdateAnswer::Kind;

namespace {

const QString kAuthorization = u"Obtaining authorization failed."_s;

constexpr int kNotAuthorized = 48;
constexpr int kNoNetwork = 2;
constexpr int kFailed = 2;

} // namespace

class UpdatesTest final : public AskedPackageKitTest {
    Q_OBJECT

private Q_SLOTS:
    void aCheckTellsWhatThereIs_data()
    {
        QTest::addColumn<QStringList>("refresh");
        QTest::addColumn<QStringList>("updates");
        QTest::addColumn<UpdateAnswer>("expected");
        using Mock = MockedPackageKit;
        const QStringList fine = {Mock::finished()};
        const QStringList refused = {Mock::error(kNotAuthorized, kAuthorization),
                                     Mock::finished(kFailed)};
        const QStringList offline = {Mock::error(kNoNetwork, u"There is no network."_s),
                                     Mock::finished(kFailed)};
        const QStringList none = {Mock::package(u"egret;2.0;amd64;marsh"_s),
                                  Mock::package(u"heron-doc;1.1-1;all;marsh"_s), Mock::finished()};
        const QStringList newer = {Mock::package(u"egret;2.0;amd64;marsh"_s),
                                   Mock::package(u"heron;1.1-1;amd64;marsh"_s), Mock::finished()};
        const QStringList same = {Mock::package(u"heron;1.0-1;i386;marsh"_s), Mock::finished()};
        const QStringList broken = {Mock::package(u"heron;1.1-1;amd64;marsh"_s),
                                    Mock::error(4, u"The lists\\n are   broken."_s),
                                    Mock::finished(kFailed)};
        const QStringList rubbish = {Mock::package(u"heron"_s),
                                     Mock::package(u";;;"_s),
                                     Mock::package(u"heron;;amd64;marsh"_s),
                                     Mock::package(u"heron;1\\u0007;amd64;marsh"_s),
                                     Mock::package(u"heron;1;amd64;marsh;more"_s),
                                     Mock::finished()};
        const UpdateAnswer found = UpdateAnswer::newer(u"1.1-1"_s);
        const auto row = [](const char* name, const QStringList& refresh,
                            const QStringList& updates, const UpdateAnswer& expected) {
            QTest::newRow(name) << refresh << updates << expected;
        };
        row("nothing newer", fine, none, UpdateAnswer::newest(true));
        row("nothing at all", fine, fine, UpdateAnswer::newest(true));
        row("a newer version", fine, newer, found);
        row("the same, for another machine", fine, same, UpdateAnswer::newest(true));
        row("not allowed to ask anew", refused, none, UpdateAnswer::newest(false));
        row("not allowed, but known", refused, newer, found);
        row("no network", offline, none,
            UpdateAnswer::failed(u"PackageKit says: There is no network."_s));
        row("no network, but known", offline, newer, found);
        row("broken", fine, broken,
            UpdateAnswer::failed(u"PackageKit says: The lists are broken."_s));
        row("cancelled", fine, {Mock::finished(3)},
            UpdateAnswer::failed(u"PackageKit failed and did not say why."_s));
        row("rubbish", fine, rubbish, UpdateAnswer::newest(true));
        const QString early =
            uR"({"error": "org.freedesktop.PackageKit.Transaction.RefusedByPolicy"})"_s;
        row("refused at once", {early}, none, UpdateAnswer::newest(false));
        row("an error", fine, {uR"({"error": "org.example.No", "words": "It rains."})"_s},
            UpdateAnswer::failed(u"PackageKit says: It rains."_s));
        row("later", {uR"({"after": 50, "signal": "Finished", "values": [1, 0]})"_s},
            {uR"({"after": 50, "signal": "Package", "values": [327685, "heron;1.1-1;a;b", ""]})"_s,
             uR"({"after": 90, "signal": "Finished", "values": [1, 0]})"_s},
            found);
        row("signals of other types",
            {uR"({"signal": "Finished", "signature": "ss", "values": ["1", "0"]})"_s},
            {uR"({"signal": "Package", "signature": "s", "values": ["heron;1.1-1;a;b"]})"_s,
             uR"({"signal": "ErrorCode", "signature": "as", "values": [["a"]]})"_s,
             Mock::finished()},
            UpdateAnswer::newest(true));
    }
    void aCheckTellsWhatThereIs()
    {
        QFETCH(QStringList, refresh);
        QFETCH(QStringList, updates);
        QFETCH(UpdateAnswer, expected);
        QVERIFY(knowPackage());
        make();
        QVERIFY(findPackage());
        QVERIFY(m_packageKit->behave(u"RefreshCache"_s, refresh));
        QVERIFY(m_packageKit->behave(u"GetUpdates"_s, updates));
        // The second time as the first.
        for (int time = 1; time <= 2; ++time) {
            m_updates->checkForUpdates();
            QVERIFY(!m_updates->canCheckForUpdates());
            m_updates->checkForUpdates();
            QCOMPARE(m_answers.size(), time - 1);
            QTRY_COMPARE_WITH_TIMEOUT(m_answers.size(), time, kPatience);
            QCOMPARE(m_answers.last().kind, expected.kind);
            QCOMPARE(m_answers.last().reason, expected.reason);
            QCOMPARE(m_answers.last().version, expected.version);
            QCOMPARE(m_answers.last(), expected);
            QVERIFY(m_updates->canCheckForUpdates());
            QCOMPARE(m_changes, 1 + 2 * time);
        }
        QCOMPARE(told(),
                 (QStringList{u"SearchFiles[4, [\"/usr/bin/heron\"]]"_s, u"RefreshCache[false]"_s,
                              u"GetUpdates[2]"_s, u"RefreshCache[false]"_s, u"GetUpdates[2]"_s}));
        QTest::qWait(kLongEnough);
        QCOMPARE(m_answers.size(), 2);
    }

    void whatHasBeenInstalledUnderTheProgramIsNotWhatRuns()
    {
        QVERIFY(!isAnotherThanRuns(QCoreApplication::applicationFilePath()));
        QVERIFY(!isAnotherThanRuns(kExecutable)); // not there
        QVERIFY(knowPackage());
        make(u"/usr/bin/env"_s); // there, and not this program
        QVERIFY(findPackage());
        QVERIFY(m_packageKit->behave(u"RefreshCache"_s, {MockedPackageKit::finished()}));
        QVERIFY(m_packageKit->behave(u"GetUpdates"_s, {MockedPackageKit::finished()}));
        m_updates->checkForUpdates();
        QTRY_COMPARE_WITH_TIMEOUT(m_answers, QList{UpdateAnswer::installed()}, kPatience);
        const QStringList newer = {MockedPackageKit::package(u"heron;1.1-1;amd64;marsh"_s),
                                   MockedPackageKit::finished()};
        QVERIFY(m_packageKit->behave(u"GetUpdates"_s, newer));
        m_updates->checkForUpdates();
        QTRY_COMPARE_WITH_TIMEOUT(m_answers.size(), 2, kPatience);
        QCOMPARE(m_answers.last(), UpdateAnswer::newer(u"1.1-1"_s));
    }

    void nobodyIsAskedForAPassword()
    {
        QVERIFY(knowPackage());
        make();
        QVERIFY(findPackage());
        QVERIFY(m_packageKit->told().contains(
            u"SetHints[[\"interactive=false\", \"background=false\"]]"_s));
    }

    void whatNeverEndsHasFailed_data()
    {
        QTest::addColumn<QString>("method");
        QTest::newRow("the lists") << u"RefreshCache"_s;
        QTest::newRow("what is new") << u"GetUpdates"_s;
    }
    void whatNeverEndsHasFailed()
    {
        QFETCH(QString, method);
        QVERIFY(knowPackage());
        make(kExecutable, {.check = 700ms});
        QVERIFY(findPackage());
        QVERIFY(m_packageKit->behave(u"RefreshCache"_s, {MockedPackageKit::finished()}));
        QVERIFY(m_packageKit->behave(method, {}));
        m_updates->checkForUpdates();
        QTRY_COMPARE_WITH_TIMEOUT(m_answers.size(), 1, kPatience);
        QCOMPARE(m_answers.last(),
                 UpdateAnswer::failed(u"PackageKit did not come to an end in time."_s));
        QVERIFY(m_updates->canCheckForUpdates());
    }

    void aPackageKitThatStandsStillIsNotWaitedFor()
    {
        QVERIFY(knowPackage());
        make(kExecutable, {.check = 500ms});
        QVERIFY(findPackage());
        ::kill(static_cast<pid_t>(m_packageKit->process().processId()), SIGSTOP);
        m_updates->checkForUpdates();
        QTRY_COMPARE_WITH_TIMEOUT(m_answers.size(), 1, kPatience);
        QCOMPARE(m_answers.last(),
                 UpdateAnswer::failed(u"PackageKit did not come to an end in time."_s));
    }

    void aPackageKitThatEndsMeanwhileIsAFailure_data()
    {
        QTest::addColumn<QString>("method");
        for (const QString& method : {u"SetHints"_s, u"RefreshCache"_s, u"GetUpdates"_s})
            QTest::newRow(qPrintable(method)) << method;
    }
    void aPackageKitThatEndsMeanwhileIsAFailure()
    {
        QFETCH(QString, method);
        QVERIFY(knowPackage());
        make();
        QVERIFY(findPackage());
        QVERIFY(m_packageKit->behave(u"RefreshCache"_s, {MockedPackageKit::finished()}));
        QVERIFY(m_packageKit->behave(method, {uR"({"exit": true})"_s}));
        m_updates->checkForUpdates();
        // Long before its limit.
        QTRY_COMPARE_WITH_TIMEOUT(m_answers.size(), 1, kPatience);
        QCOMPARE(m_answers.last().kind, Kind::Failed);
        QVERIFY(!m_answers.last().reason.isEmpty());
    }

    void aPackageKitThatEndsWhileItWorksIsAFailure()
    {
        QVERIFY(knowPackage());
        make();
        QVERIFY(findPackage());
        m_updates->checkForUpdates();
        QTRY_VERIFY(told().contains(u"RefreshCache[false]"_s));
        TestBus::end(m_packageKit->process());
        QTRY_COMPARE_WITH_TIMEOUT(m_answers.size(), 1, kPatience);
        QCOMPARE(m_answers.last(),
                 UpdateAnswer::failed(u"PackageKit ended before it had answered."_s));
    }

    void aBusThatEndsMeanwhileIsAFailure()
    {
        QVERIFY(knowPackage());
        make();
        QVERIFY(findPackage());
        m_updates->checkForUpdates();
        QTRY_VERIFY(told().contains(u"RefreshCache[false]"_s));
        TestBus::end(m_bus->process());
        QTRY_COMPARE_WITH_TIMEOUT(m_answers.size(), 1, kPatience);
        QCOMPARE(m_answers.last(), UpdateAnswer::failed(u"The system bus has gone."_s));
        QVERIFY(m_updates->canCheckForUpdates());
    }

    void aCheckBeforeItIsKnownWhoseTheProgramIsFails()
    {
        make();
        m_updates->checkForUpdates();
        QCOMPARE(m_answers.size(), 0);
        QTRY_COMPARE(m_answers.size(), 1);
        QCOMPARE(m_answers.last().kind, Kind::Failed);
        QVERIFY(!m_answers.last().reason.isEmpty());
    }

    void anotherProgramCannotAnswerInItsPlace()
    {
        QVERIFY(knowPackage());
        make(kExecutable, {.check = 1500ms});
        QVERIFY(findPackage());
        QVERIFY(m_packageKit->behave(u"RefreshCache"_s, {MockedPackageKit::finished()}));
        m_updates->checkForUpdates();
        QTRY_VERIFY(told().contains(u"GetUpdates[2]"_s));
        const QString us =
            m_packageKit->told().filter(u"CreateTransaction"_s).last().section(u' ', 1);
        BusConnection stranger(QDBusConnection::SystemBus);
        for (const QString& name : {u"Package"_s, u"Finished"_s}) {
            QDBusMessage lie = QDBusMessage::createTargetedSignal(
                us, u"/3_heron"_s, u"org.freedesktop.PackageKit.Transaction"_s, name);
            if (name == u"Package"_s)
                lie.setArguments({8U, u"heron;6.6.6;amd64;marsh"_s, QString()});
            else
                lie.setArguments({1U, 0U});
            QVERIFY(stranger->send(lie));
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_answers.size(), 1, kPatience);
        QCOMPARE(m_answers.last(),
                 UpdateAnswer::failed(u"PackageKit did not come to an end in time."_s));
    }

    void itMayGoAtAnyTime()
    {
        QVERIFY(knowPackage());
        QVERIFY(m_packageKit->behave(u"RefreshCache"_s, {MockedPackageKit::finished()}));
        QVERIFY(m_packageKit->behave(u"GetUpdates"_s, {MockedPackageKit::finished()}));
        for (int turns = 0; turns < 20; ++turns) {
            PackageKitUpdates brief(kExecutable);
            brief.canCheckForUpdates();
            for (int turn = 0; turn < turns; ++turn)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
            brief.checkForUpdates();
            for (int turn = 0; turn < turns; ++turn)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        }
        QTest::qWait(kLongEnough);
        // And does no harm to those who come after.
        make();
        QVERIFY(findPackage());
    }
};

QTEST_GUILESS_MAIN(UpdatesTest)
#include "UpdatesTest.moc"
