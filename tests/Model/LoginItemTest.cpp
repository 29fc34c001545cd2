// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/LoginItem.h"

#include "tests/Fakes/FakeLoginService.h"
#include "tests/Model/RecorderRig.h"

#include <QSignalSpy>

using namespace mossbank;
using namespace Qt::StringLiterals;
using Status = LoginService::Status;
using State = LoginItem::State;

namespace {

const QString kHere = u"/opt/mossbank/bin/mossbank"_s;
const QString kBefore = u"/home/heron/mossbank"_s;

} // namespace

class LoginItemTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_rig = std::make_unique<RecorderRig>(false);
        m_service = std::make_unique<FakeLoginService>();
        m_item = std::make_unique<LoginItem>(*m_service, m_rig->preferences, *m_rig->recorder);
    }
    void cleanup()
    {
        m_item.reset();
        m_rig.reset();
    }

    void atLaunchTheWishIsKeptWithThisCopy_data()
    {
        QTest::addColumn<bool>("wish");
        QTest::addColumn<QString>("path");
        QTest::addColumn<Status>("status");
        QTest::addColumn<bool>("wishAfter");
        QTest::addColumn<QString>("pathAfter");
        QTest::addColumn<QStringList>("calls");
        const QStringList none;
        const QStringList registered{u"register"_s};
        QTest::newRow("this copy, on") << true << kHere << Status::Enabled << true << kHere << none;
        QTest::newRow("this copy, taken off in the settings")
            << true << kHere << Status::NotRegistered << false << kHere << none;
        QTest::newRow("this copy, not yet allowed")
            << true << kHere << Status::RequiresApproval << true << kHere << none;
        QTest::newRow("a copy that has moved")
            << true << kBefore << Status::NotRegistered << true << kHere << registered;
        QTest::newRow("a copy that has moved, not yet allowed")
            << true << kBefore << Status::RequiresApproval << true << kHere << registered;
        QTest::newRow("a copy that has moved, on all the same")
            << true << kBefore << Status::Enabled << true << kHere << none;
        QTest::newRow("a new copy, nothing noted")
            << true << QString() << Status::NotRegistered << true << kHere << registered;
        QTest::newRow("a wish that was forgotten")
            << false << QString() << Status::Enabled << true << kHere << none;
        QTest::newRow("no wish") << false << QString() << Status::NotRegistered << false
                                 << QString() << none;
        QTest::newRow("this copy, nobody can tell")
            << true << kHere << Status::Unknown << true << kHere << none;
        QTest::newRow("a copy that has moved, nobody can tell")
            << true << kBefore << Status::Unknown << true << kHere << registered;
        QTest::newRow("no wish, nobody can tell")
            << false << QString() << Status::Unknown << false << QString() << none;
        QTest::newRow("no wish, one elsewhere")
            << false << kBefore << Status::NotRegistered << false << kBefore << none;
    }
    void atLaunchTheWishIsKeptWithThisCopy()
    {
        QFETCH(bool, wish);
        QFETCH(QString, path);
        QFETCH(Status, status);
        QFETCH(bool, wishAfter);
        QFETCH(QString, pathAfter);
        QFETCH(QStringList, calls);
        m_rig->preferences.setOpensAtLogin(wish);
        m_rig->preferences.setOpensAtLoginPath(path);
        m_service->statusNow = status;
        m_item->keepWithThisCopy();
        QCOMPARE(m_rig->preferences.opensAtLogin(), wishAfter);
        QCOMPARE(m_rig->preferences.opensAtLoginPath(), pathAfter);
        QCOMPARE(m_service->calls, calls);
    }

    void nobodyIsToldOfWhatFailsAtLaunch()
    {
        m_rig->preferences.setOpensAtLogin(true);
        m_service->failure = u"There is no room."_s;
        m_item->keepWithThisCopy();
        QVERIFY(!m_rig->recorder->errorMessage());
        QVERIFY(m_rig->preferences.opensAtLogin());
        QCOMPARE(m_rig->preferences.opensAtLoginPath(), kHere);
    }

    void aCopyWithoutAHomeTouchesNothing_data()
    {
        QTest::addColumn<bool>("wish");
        QTest::addColumn<Status>("status");
        QTest::newRow("wanted") << true << Status::NotRegistered;
        QTest::newRow("not wanted") << false << Status::Enabled;
    }
    void aCopyWithoutAHomeTouchesNothing()
    {
        QFETCH(bool, wish);
        QFETCH(Status, status);
        m_rig->preferences.setOpensAtLogin(wish);
        m_rig->preferences.setOpensAtLoginPath(kBefore);
        m_service->statusNow = status;
        m_service->isWithoutHomeNow = true;
        m_item->keepWithThisCopy();
        QCOMPARE(m_rig->preferences.opensAtLogin(), wish);
        QCOMPARE(m_rig->preferences.opensAtLoginPath(), kBefore);
        QVERIFY(m_service->calls.isEmpty());
    }

    void whatTheSystemSaysIsSeenWhenLookedAt_data()
    {
        QTest::addColumn<Status>("status");
        QTest::addColumn<State>("state");
        QTest::newRow("on") << Status::Enabled << State::On;
        QTest::newRow("off") << Status::NotRegistered << State::Off;
        QTest::newRow("to be allowed") << Status::RequiresApproval << State::NeedsApproval;
        QTest::newRow("unknown") << Status::Unknown << State::Unavailable;
    }
    void whatTheSystemSaysIsSeenWhenLookedAt()
    {
        QFETCH(Status, status);
        QFETCH(State, state);
        const QSignalSpy changed(m_item.get(), &LoginItem::stateChanged);
        QCOMPARE(m_item->state(), State::Off);
        m_service->statusNow = status;
        QCOMPARE(m_item->state(), State::Off);
        m_item->refresh();
        m_item->refresh();
        QCOMPARE(m_item->state(), state);
        QCOMPARE(changed.size(), state == State::Off ? 0 : 1);
    }

    void whoTakesItOffInTheSettingsWantsItNoMore()
    {
        m_item->setOpensAtLogin(true);
        QVERIFY(m_rig->preferences.opensAtLogin());
        m_service->statusNow = Status::NotRegistered;
        QVERIFY(m_rig->preferences.opensAtLogin());
        m_item->refresh();
        QVERIFY(!m_rig->preferences.opensAtLogin());
    }

    void whatCannotBeToldIsNoWish()
    {
        m_item->setOpensAtLogin(true);
        m_service->statusNow = Status::Unknown;
        m_item->refresh();
        QCOMPARE(m_item->state(), State::Unavailable);
        QVERIFY(m_rig->preferences.opensAtLogin());
    }

    void theWishIsKeptWhenItCameTrue_data()
    {
        QTest::addColumn<bool>("opens");
        QTest::addColumn<Status>("before");
        QTest::addColumn<Status>("after");
        QTest::addColumn<QStringList>("calls");
        QTest::addColumn<bool>("cameTrue");
        QTest::addColumn<QString>("message");
        const QStringList none;
        const QStringList registered{u"register"_s};
        const QStringList unregistered{u"unregister"_s};
        const QString allow = u"Allow Mossbank in System Settings → General → Login Items, then it "
                              "will open at login."_s;
        QTest::newRow("on") << true << Status::NotRegistered << Status::Enabled << registered
                            << true << QString();
        QTest::newRow("on already")
            << true << Status::Enabled << Status::Enabled << none << true << QString();
        QTest::newRow("on, to be allowed")
            << true << Status::NotRegistered << Status::RequiresApproval << registered << true
            << allow;
        QTest::newRow("on, without effect")
            << true << Status::NotRegistered << Status::NotRegistered << registered << false
            << QString();
        QTest::newRow("off") << false << Status::Enabled << Status::Enabled << unregistered << true
                             << QString();
        QTest::newRow("off already")
            << false << Status::NotRegistered << Status::Enabled << none << true << QString();
        QTest::newRow("off, not yet allowed")
            << false << Status::RequiresApproval << Status::Enabled << none << true << QString();
    }
    void theWishIsKeptWhenItCameTrue()
    {
        QFETCH(bool, opens);
        QFETCH(Status, before);
        QFETCH(Status, after);
        QFETCH(QStringList, calls);
        QFETCH(bool, cameTrue);
        QFETCH(QString, message);
        m_rig->preferences.setOpensAtLogin(!opens);
        m_service->statusNow = before;
        m_service->afterRegistering = after;
        m_item->refresh();
        m_item->setOpensAtLogin(opens);
        QCOMPARE(m_service->calls, calls);
        QCOMPARE(m_rig->preferences.opensAtLogin(), cameTrue ? opens : !opens);
        QCOMPARE(m_rig->preferences.opensAtLoginPath(), cameTrue ? kHere : QString());
        QCOMPARE(m_rig->recorder->errorMessage().value_or(QString()), message);
    }

    void aChangeThatFailsIsToldAndTheWishStaysAsItWas_data()
    {
        QTest::addColumn<bool>("opens");
        QTest::newRow("on") << true;
        QTest::newRow("off") << false;
    }
    void aChangeThatFailsIsToldAndTheWishStaysAsItWas()
    {
        QFETCH(bool, opens);
        m_rig->preferences.setOpensAtLogin(!opens);
        m_service->statusNow = opens ? Status::NotRegistered : Status::Enabled;
        m_item->refresh();
        m_service->failure = u"There is no room."_s;
        m_item->setOpensAtLogin(opens);
        QCOMPARE(m_rig->recorder->errorMessage(),
                 std::optional(u"macOS would not change the login item: There is no room."_s));
        QCOMPARE(m_rig->preferences.opensAtLogin(), !opens);
    }

private:
    std::unique_ptr<RecorderRig> m_rig;
    std::unique_ptr<FakeLoginService> m_service;
    std::unique_ptr<LoginItem> m_item;
};

QTEST_GUILESS_MAIN(LoginItemTest)
#include "LoginItemTest.moc"
