// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/LinuxTrayHost.h"
#include "Mossbank/Platform/Null/NullTrayHost.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/NotifierPanel.h"
#include "tests/Desktop/TestBus.h"
#include "tests/Desktop/VirtualDesktop.h"
#include "tests/Fakes/FakeTrayHost.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

constexpr int kPatience = 20'000;
/// What is not told within this is not told.
constexpr int kLongEnough = 500;

const QByteArray kSelection = "_NET_SYSTEM_TRAY_S0";

} // namespace

/// What everything that knows of places for icons holds to.
class TrayHostContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<TestBus>(TestBus::Kind::Session);
        QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
        m_desktop = std::make_unique<VirtualDesktop>(
            VirtualDesktop::Options{.size = {640, 480}, .hasWindowManager = false});
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
    }
    void cleanup()
    {
        m_host.reset();
        m_told = 0;
        m_panel.reset();
        m_windows.reset();
        m_desktop.reset();
        m_bus.reset();
    }

    void itTellsWhenThePlaceComesAndGoes_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"status notifiers", "status notifiers, the watcher there before",
                                 "XEmbed", "XEmbed without a bus", "Null", "fake"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }
    void itTellsWhenThePlaceComesAndGoes()
    {
        QFETCH(QString, kind);
        make(kind);
        QVERIFY(isSound(m_host->availability()));
        QTest::qWait(kLongEnough);
        QVERIFY(!m_host->availability().isAvailable);
        QCOMPARE(m_told, 0);
        const bool everComes = kind != u"Null";
        for (int time = 1; time <= 2; ++time) {
            bring(kind, true);
            QVERIFY(isSoon(everComes));
            QCOMPARE(m_told, everComes ? 2 * time - 1 : 0);
            bring(kind, false);
            QVERIFY(isSoon(false));
            QCOMPARE(m_told, everComes ? 2 * time : 0);
        }
    }

    void onePlaceIsAsGoodAsTwo()
    {
        make(u"XEmbed"_s);
        bring(u"XEmbed"_s, true);
        QVERIFY(isSoon(true));
        bring(u"status notifiers"_s, true);
        QTest::qWait(kLongEnough);
        bring(u"XEmbed"_s, false);
        QTest::qWait(kLongEnough);
        QVERIFY(m_host->availability().isAvailable);
        QCOMPARE(m_told, 1);
        bring(u"status notifiers"_s, false);
        QVERIFY(isSoon(false));
        QCOMPARE(m_told, 2);
    }

    void whoeverDoesNotAnswerIsNotReliedOn()
    {
        m_panel = std::make_unique<NotifierPanel>(false);
        m_panel->standStill();
        make(u"XEmbed"_s);
        bring(u"XEmbed"_s, true);
        // An icon would be made only once it had answered, with the whole program waiting for it.
        // It has five seconds to answer.
        constexpr int kMilliseconds = 6500;
        QTest::qWait(kMilliseconds);
        QVERIFY(!m_host->availability().isAvailable);
        QCOMPARE(m_told, 0);
        m_panel.reset();
        QVERIFY(isSoon(true));
        QCOMPARE(m_told, 1);
    }

private:
    void make(const QString& kind)
    {
        if (kind == u"Null")
            m_host = std::make_unique<NullTrayHost>(kReason);
        else if (kind == u"fake")
            m_host = std::make_unique<FakeTrayHost>();
        else {
            if (kind.endsWith(u"before"))
                m_panel = std::make_unique<NotifierPanel>(false);
            const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
            if (kind.endsWith(u"without a bus"))
                qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
            m_host = std::make_unique<LinuxTrayHost>();
            qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        }
        connect(m_host.get(), &TrayHost::availabilityChanged, this, [this] { ++m_told; });
    }

    /// Has what shows icons come, or go.
    void bring(const QString& kind, bool isThere)
    {
        if (kind == u"fake") {
            static_cast<FakeTrayHost&>(*m_host).setThere(isThere);
        } else if (kind.startsWith(u"XEmbed")) {
            m_windows.reset();
            if (!isThere)
                return;
            m_windows = std::make_unique<PaintedWindows>();
            m_windows->take(kSelection, m_windows->open({.frame = {0, 0, 50, 20}}));
        } else if (kind.endsWith(u"before")) {
            m_panel->setHost(isThere);
        } else if (kind.startsWith(u"status notifiers")) {
            m_panel.reset();
            if (isThere)
                m_panel = std::make_unique<NotifierPanel>();
        }
    }

    bool isSoon(bool isThere)
    {
        return QTest::qWaitFor([&] { return m_host->availability().isAvailable == isThere; },
                               kPatience) &&
               isSound(m_host->availability());
    }

    std::unique_ptr<TestBus> m_bus;
    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<PaintedWindows> m_windows;
    std::unique_ptr<NotifierPanel> m_panel;
    std::unique_ptr<TrayHost> m_host;
    int m_told = 0;
};

QTEST_GUILESS_MAIN(TrayHostContractTest)
#include "TrayHostContractTest.moc"
