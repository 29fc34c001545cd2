// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11FrontApplication.h"
#include "Mossbank/Platform/Null/NullFrontApplication.h"
#include "tests/Desktop/DesktopTest.h"
#include "tests/Fakes/FakeFrontApplication.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

/// What every source of the application in front holds to.
class FrontApplicationContractTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void initTestCase()
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        m_alpha = std::make_unique<WindowProgram>();
        m_beta = std::make_unique<WindowProgram>();
        m_alphaWindow = m_alpha->open(
            {.frame = {100, 100, 200, 200}, .colour = kGreen, .windowClass = u"Alpha"_s});
        m_betaWindow = m_beta->open(
            {.frame = {500, 100, 200, 200}, .colour = kBlue, .windowClass = u"Beta"_s});
        m_secondAlphaWindow = m_alpha->open(
            {.frame = {100, 500, 200, 200}, .colour = kGreen, .windowClass = u"Alpha"_s});
        QVERIFY(m_alphaWindow && m_betaWindow && m_secondAlphaWindow);
    }

    void cleanupTestCase()
    {
        m_alpha.reset();
        m_beta.reset();
        m_desktop.reset();
    }

    void anUnavailableOneSaysWhyAndKnowsNone_data() { kinds(); }
    void anUnavailableOneSaysWhyAndKnowsNone()
    {
        const auto front = make();
        QVERIFY(isSound(front->availability()));
        QVERIFY(front->availability().isAvailable || !front->current());
    }

    void aSwitchIsToldWithTheApplicationThatIsThenInFront_data() { kinds(); }
    void aSwitchIsToldWithTheApplicationThatIsThenInFront()
    {
        const auto front = make();
        const QSignalSpy told(front.get(), &FrontApplication::activated);
        if (!front->availability().isAvailable) {
            for (const quint32 window : {m_alphaWindow, m_betaWindow})
                QVERIFY(bringWindowToFront(window));
            QTest::qWait(kLongEnough);
            QVERIFY(told.isEmpty());
            QVERIFY(!front->current());
            return;
        }
        const auto alphaIsInFront = [&] {
            return isInFront(*front, kAlpha);
        };
        QVERIFY(bringToFront(*front, kAlpha));
        QVERIFY(QTest::qWaitFor(alphaIsInFront));
        QTest::qWait(kLongEnough);
        const auto before = told.size();
        QVERIFY(bringToFront(*front, kBeta));
        QTRY_COMPARE(told.size(), before + 1);
        const auto application = told.last()[0].value<Application>();
        QCOMPARE(application.bundleID, kBeta);
        QCOMPARE(front->current(), std::optional(application));
    }

    void theSameApplicationAgainIsNoSwitch_data() { availableKinds(); }
    void theSameApplicationAgainIsNoSwitch()
    {
        const auto front = make();
        const QSignalSpy told(front.get(), &FrontApplication::activated);
        QVERIFY(bringToFront(*front, kBeta));
        QVERIFY(bringToFront(*front, kAlpha));
        QTRY_VERIFY(!told.isEmpty() && told.last()[0].value<Application>().bundleID == kAlpha);
        const auto before = told.size();
        QVERIFY(bringToFront(*front, kAlpha, Window::Second));
        QVERIFY(bringToFront(*front, kAlpha));
        QTest::qWait(kLongEnough);
        QCOMPARE(told.size(), before);
        QVERIFY(bringToFront(*front, kBeta));
        QTRY_COMPARE(told.size(), before + 1);
    }

    void withoutAnActiveWindowThereIsNone_data() { availableKinds(); }
    void withoutAnActiveWindowThereIsNone()
    {
        const VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto front = make();
        QVERIFY(!front->current());
        WindowProgram alpha;
        const quint32 window = alpha.open(
            {.frame = {100, 100, 200, 200}, .colour = kGreen, .windowClass = u"Alpha"_s});
        auto* const fake = dynamic_cast<FakeFrontApplication*>(front.get());
        if (fake)
            fake->activate({kAlpha, u"Some name"_s});
        const auto alphaIsInFront = [&] {
            return isInFront(*front, kAlpha);
        };
        QVERIFY(QTest::qWaitFor(alphaIsInFront));
        const QSignalSpy told(front.get(), &FrontApplication::activated);
        QVERIFY(alpha.close(window));
        if (fake)
            fake->setCurrent({});
        QVERIFY(QTest::qWaitFor([&] { return !front->current(); }));
        QTest::qWait(kLongEnough);
        QVERIFY(told.isEmpty());
        QVERIFY(front->availability().isAvailable);
    }

    void onceTheDesktopHasGoneAskingFails_data() { availableKinds(); }
    void onceTheDesktopHasGoneAskingFails()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto front = make();
        QVERIFY(front->availability().isAvailable);
        desktop.killServer();
        if (auto* const fake = dynamic_cast<FakeFrontApplication*>(front.get()))
            fake->failure = kReason;
        for (int time = 0; time < 2; ++time)
            QVERIFY(!failureOf([&] { front->current(); }).isEmpty());
        QVERIFY(isSound(front->availability()));
        QVERIFY(!front->availability().isAvailable);
    }

private:
    enum class Window { First, Second };

    /// For what must not come to have come.
    static constexpr int kLongEnough = 100;

    static void kinds()
    {
        availableKinds();
        QTest::newRow("Null") << u"Null"_s;
    }

    static void availableKinds()
    {
        QTest::addColumn<QString>("kind");
        for (const char* const kind : {"X11", "fake"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }

    static std::unique_ptr<FrontApplication> make()
    {
        QFETCH(QString, kind);
        if (kind == "X11"_L1)
            return std::make_unique<X11FrontApplication>(std::make_shared<ApplicationCatalog>(),
                                                         ownProgram());
        if (kind == "Null"_L1)
            return std::make_unique<NullFrontApplication>(kReason);
        return std::make_unique<FakeFrontApplication>();
    }

    static bool isInFront(FrontApplication& front, const QString& bundleID)
    {
        return front.current().value_or(Application{}).bundleID == bundleID;
    }

    /// The first or the second window of Alpha, or the one of Beta.
    bool bringToFront(FrontApplication& front, const QString& bundleID,
                      Window which = Window::First)
    {
        if (auto* const fake = dynamic_cast<FakeFrontApplication*>(&front)) {
            fake->activate({bundleID, u"Some name"_s});
            return true;
        }
        const quint32 ofAlpha = which == Window::First ? m_alphaWindow : m_secondAlphaWindow;
        return bringWindowToFront(bundleID == kAlpha ? ofAlpha : m_betaWindow);
    }

    bool bringWindowToFront(quint32 window)
    {
        const auto outcome =
            m_desktop->run(u"wmctrl"_s, {u"-i"_s, u"-a"_s, QString::number(window)}, u"wmctrl"_s);
        if (!outcome.isSuccess)
            qWarning("%s", qPrintable(outcome.text));
        return outcome.isSuccess;
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<WindowProgram> m_alpha;
    std::unique_ptr<WindowProgram> m_beta;
    quint32 m_alphaWindow = 0;
    quint32 m_secondAlphaWindow = 0;
    quint32 m_betaWindow = 0;
};

QTEST_GUILESS_MAIN(FrontApplicationContractTest)
#include "FrontApplicationContractTest.moc"
