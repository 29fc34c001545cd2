// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/AtspiAddressSource.h"
#include "Mossbank/Platform/Null/NullAddressSource.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/AccessibleDesktop.h"
#include "tests/Desktop/MadeAccessibles.h"
#include "tests/Desktop/TestBus.h"
#include "tests/Fakes/FakeAddressSource.h"

#include <QElapsedTimer>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

constexpr int kPatience = 10'000;
const QString kBrowser = u"chromium"_s;

} // namespace

/// What every source of page addresses holds to.
class AddressSourceContractTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void whatIsNoBrowserCannotBeAskedAndHasNoAddress_data() { rows(); }
    void whatIsNoBrowserCannotBeAskedAndHasNoAddress()
    {
        QFETCH(QString, kind);
        const bool hasBus = kind == u"Linux"_s;
        const AccessibleDesktop desktop(
            {.hasSession = hasBus, .hasAccessibility = hasBus, .isSwitchedOn = hasBus});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto source = make(kind, u"http://example.org"_s);
        QVERIFY(isSound(source->availability()));
        QCOMPARE(source->availability().isAvailable, kind == u"fake"_s || hasBus);
        QVERIFY(!source->canAsk(u"org.example.Editor"_s));
        QCOMPARE(source->ask(u"org.example.Editor"_s).result(), AddressAnswer::failed());
        // Where it is on already there is nothing to be told.
        QCOMPARE(source->switchOn().isEmpty(), hasBus);
        source->letBe();
    }

    void whoSwitchesOnAgainIsToldNothing_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("fake") << u"fake"_s;
        QTest::newRow("Linux") << u"Linux"_s;
    }
    void whoSwitchesOnAgainIsToldNothing()
    {
        QFETCH(QString, kind);
        const AccessibleDesktop desktop({.isSwitchedOn = false});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto source = make(kind, u"http://example.org"_s);
        QVERIFY(!source->switchOn().isEmpty());
        QVERIFY(QTest::qWaitFor([&] { return source->availability().isAvailable; }, kPatience));
        QCOMPARE(source->switchOn(), QString());
        // What is on stays on.
        source->letBe();
        QVERIFY(source->availability().isAvailable);
        QCOMPARE(source->switchOn(), QString());
    }

    void aBrowserInFrontTellsItsAddress_data()
    {
        rows();
        QTest::newRow("Linux, private") << u"Linux, private"_s;
    }
    void aBrowserInFrontTellsItsAddress()
    {
        QFETCH(QString, kind);
        QVERIFY(showBrowser(kind.endsWith(u"private"_s) ? u" (Incognito)"_s : QString()));
        const auto source = make(kind, MadeAccessibles::kAddress);
        QCOMPARE(source->canAsk(kBrowser), kind != u"Null"_s);
        const bool hasAddress = kind == u"fake"_s || kind == u"Linux"_s;
        const auto address = AddressAnswer::answered(MadeAccessibles::kAddress);
        if (hasAddress)
            QVERIFY(QTest::qWaitFor([&] { return answerOf(*source) == address; }, kPatience));
        for (int time = 0; !hasAddress && time < 5; ++time)
            QCOMPARE(answerOf(*source), AddressAnswer::failed());
        // Nobody else is answered for.
        QCOMPARE(source->ask(u"org.example.Editor"_s).result(), AddressAnswer::failed());
    }

    void whoDoesNotAnswerHasFailedWithinTheLimit_data() { rows(); }
    void whoDoesNotAnswerHasFailedWithinTheLimit()
    {
        QFETCH(QString, kind);
        QVERIFY(showBrowser({}));
        const auto source = make(kind, QString());
        m_browser->keepSilent();
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(answerOf(*source), AddressAnswer::failed());
        // Two seconds, and what a busy machine is about with them; at four nobody waits any more.
        QVERIFY2(timer.elapsed() < 4000, qPrintable(QString::number(timer.elapsed())));
        // Nor does it stand in the way of the next.
        QCOMPARE(answerOf(*source), AddressAnswer::failed());
    }

    void cleanup()
    {
        m_window.reset();
        m_browser.reset();
        m_bus.reset();
        m_desktop.reset();
    }

private:
    static void rows()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"Null", "fake", "Linux", "Linux without a bus"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }

    /// On the desktop that there is now. `address` is what the fake tells.
    static std::unique_ptr<AddressSource> make(const QString& kind, const QString& address)
    {
        if (kind == u"Null"_s)
            return std::make_unique<NullAddressSource>(kReason);
        if (kind == u"fake"_s) {
            auto fake = std::make_unique<FakeAddressSource>();
            fake->browsers = {kBrowser};
            fake->answerNow = AddressAnswer::answered(address);
            return fake;
        }
        if (kind == u"Linux without a bus"_s)
            qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
        const auto accessibility =
            std::make_shared<Accessibility>(std::make_shared<ApplicationCatalog>());
        if (!accessibility->waitUntilKnown(kPatience))
            qFatal("it is not known whether programs can be asked");
        return std::make_unique<AtspiAddressSource>(accessibility);
    }

    /// Refused when there was none in time, which is right nowhere here.
    static AddressAnswer answerOf(AddressSource& source)
    {
        const QFuture<AddressAnswer> answer = source.ask(kBrowser);
        return QTest::qWaitFor([&] { return answer.isFinished(); }, kPatience)
                   ? answer.result()
                   : AddressAnswer::refused();
    }

    /// A made browser is in front, and tells assistive tools more of its name than it shows.
    bool showBrowser(const QString& more)
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        m_bus = std::make_unique<TestBus>(TestBus::Kind::Session);
        if (!m_desktop->problem().isEmpty() || !m_bus->problem().isEmpty()) {
            qWarning("%s%s", qPrintable(m_desktop->problem()), qPrintable(m_bus->problem()));
            return false;
        }
        m_browser = std::make_unique<MadeAccessibles>(m_bus->address());
        m_window = m_browser->show(more);
        return m_window && m_browser->isThere();
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<TestBus> m_bus;
    std::unique_ptr<MadeAccessibles> m_browser;
    std::unique_ptr<PaintedWindows> m_window;
};

QTEST_GUILESS_MAIN(AddressSourceContractTest)
#include "AddressSourceContractTest.moc"
