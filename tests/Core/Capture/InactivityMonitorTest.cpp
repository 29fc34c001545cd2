// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/InactivityMonitor.h"

#include <QStringList>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;
using Delivery = NotificationCenter::Delivery;

namespace {

const QStringList kLeaving = {u"NSWorkspaceWillSleepNotification"_s,
                              u"NSWorkspaceSessionDidResignActiveNotification"_s,
                              u"com.apple.screenIsLocked"_s};
const QStringList kReturning = {
    u"NSWorkspaceDidWakeNotification"_s, u"NSWorkspaceSessionDidBecomeActiveNotification"_s,
    u"com.apple.screenIsUnlocked"_s, u"NSWorkspaceScreensDidWakeNotification"_s};

} // namespace

class InactivityMonitorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_told.clear(); }

    void eachEventHasItsNameAndItsCenter()
    {
        QStringList names;
        QStringList distributed;
        for (const InactivityEvent event : InactivityEvent::kAllCases) {
            names.append(event.name());
            if (event.isDistributed())
                distributed.append(event.name());
        }
        QCOMPARE(names, kLeaving);
        names.clear();
        for (const ReturnEvent event : ReturnEvent::kAllCases) {
            names.append(event.name());
            if (event.isDistributed())
                distributed.append(event.name());
        }
        QCOMPARE(names, kReturning);
        QCOMPARE(distributed,
                 (QStringList{u"com.apple.screenIsLocked"_s, u"com.apple.screenIsUnlocked"_s}));
    }

    void eachLeavingSaysWhatItIs()
    {
        QStringList texts;
        for (const InactivityEvent event : InactivityEvent::kAllCases) {
            texts.append(QString::fromLatin1(event.status()));
            QCOMPARE(event.message(), QString::fromLatin1(event.status()));
        }
        QCOMPARE(texts, (QStringList{u"Paused when your Mac went to sleep"_s,
                                     u"Paused when your session became inactive"_s,
                                     u"Paused when the screen locked"_s}));
    }

    void eachNotificationIsPassedOnAsItsEvent()
    {
        NotificationCenter workspace;
        NotificationCenter distributed(true);
        const auto monitor = watch(workspace, distributed);
        for (const QString& name : kLeaving + kReturning) {
            m_told.clear();
            workspace.post(name);
            distributed.post(name);
            QCOMPARE(m_told, QStringList{name});
        }
        m_told.clear();
        monitor->receive(u"NSWorkspaceDidHideApplicationNotification"_s);
        monitor->receive(QString());
        QVERIFY(m_told.isEmpty());
    }

    void eachIsObservedAtItsOwnCenter()
    {
        NotificationCenter workspace;
        NotificationCenter distributed(true);
        const auto monitor = watch(workspace, distributed);
        using Observed = std::vector<std::pair<QString, Delivery>>;
        QCOMPARE(distributed.observed(), (Observed{{kLeaving.at(2), Delivery::Immediate},
                                                   {kReturning.at(2), Delivery::Immediate}}));
        QCOMPARE(workspace.observed(), (Observed{{kLeaving.at(0), Delivery::Usual},
                                                 {kLeaving.at(1), Delivery::Usual},
                                                 {kReturning.at(0), Delivery::Usual},
                                                 {kReturning.at(1), Delivery::Usual},
                                                 {kReturning.at(3), Delivery::Usual}}));
    }

    void aCenterThatIsNotDistributedIsObservedInTheUsualWay()
    {
        NotificationCenter workspace;
        NotificationCenter distributed;
        const auto monitor = watch(workspace, distributed);
        QCOMPARE(distributed.observed().size(), std::size_t(2));
        QCOMPARE(distributed.observed().front(),
                 (std::pair{u"com.apple.screenIsLocked"_s, Delivery::Usual}));
        distributed.post(kLeaving.at(2));
        QCOMPARE(m_told, QStringList{kLeaving.at(2)});
    }

    void withoutAnAskerReturnsAreNotWatched()
    {
        NotificationCenter workspace;
        NotificationCenter distributed(true);
        const InactivityMonitor monitor(
            workspace, distributed, [this](InactivityEvent event) { m_told.append(event.name()); });
        QCOMPARE(workspace.observed().size(), std::size_t(2));
        QCOMPARE(distributed.observed().size(), std::size_t(1));
        for (const QString& name : kReturning)
            monitor.receive(name);
        QVERIFY(m_told.isEmpty());
        monitor.receive(kLeaving.first());
        QCOMPARE(m_told, QStringList{kLeaving.first()});
    }

    void nothingIsToldAfterItsEnd()
    {
        NotificationCenter workspace;
        NotificationCenter distributed(true);
        watch(workspace, distributed).reset();
        QVERIFY(workspace.observed().empty());
        QVERIFY(distributed.observed().empty());
        workspace.post(kLeaving.first());
        QVERIFY(m_told.isEmpty());
    }

    void whoIsToldMayEndTheWatch()
    {
        NotificationCenter workspace;
        NotificationCenter distributed(true);
        std::unique_ptr<InactivityMonitor> monitor;
        workspace.addObserver(kLeaving.first(), Delivery::Usual,
                              [&](const QString&) { monitor.reset(); });
        monitor = watch(workspace, distributed);
        workspace.post(kLeaving.first());
        QVERIFY(!monitor);
        QVERIFY(m_told.isEmpty());
    }

private:
    std::unique_ptr<InactivityMonitor> watch(NotificationCenter& workspace,
                                             NotificationCenter& distributed)
    {
        return std::make_unique<InactivityMonitor>(
            workspace, distributed, [this](InactivityEvent event) { m_told.append(event.name()); },
            [this](ReturnEvent event) { m_told.append(event.name()); });
    }

    QStringList m_told;
};

QTEST_GUILESS_MAIN(InactivityMonitorTest)
#include "InactivityMonitorTest.moc"
