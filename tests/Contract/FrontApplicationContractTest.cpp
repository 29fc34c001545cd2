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
        QVERIFY(m_alphaWindow && m_betaWindow);
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
        if (!front->availability().isAvailable)
            return;
        bringToFront(*front, kAlpha);
        QTRY_COMPARE(front->current().value_or(Application{}).bundleID, kAlpha);
        QTest::qWait(100);
        const QSignalSpy told(front.get(), &FrontApplication::activated);
        bringToFront(*front, kBeta);
        QTRY_COMPARE(told.size(), 1);
        const auto application = told[0][0].value<Application>();
        QCOMPARE(application.bundleID, kBeta);
        QCOMPARE(front->current(), std::optional(application));
    }

private:
    static void kinds()
    {
        QTest::addColumn<QString>("kind");
        for (const char* const kind : {"X11", "Null", "fake"})
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

    void bringToFront(FrontApplication& front, const QString& bundleID)
    {
        if (auto* const fake = dynamic_cast<FakeFrontApplication*>(&front)) {
            fake->activate({bundleID, u"Some name"_s});
            return;
        }
        const quint32 window = bundleID == kAlpha ? m_alphaWindow : m_betaWindow;
        const auto outcome =
            m_desktop->run(u"wmctrl"_s, {u"-i"_s, u"-a"_s, QString::number(window)}, u"wmctrl"_s);
        QVERIFY2(outcome.isSuccess, qPrintable(outcome.text));
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<WindowProgram> m_alpha;
    std::unique_ptr<WindowProgram> m_beta;
    quint32 m_alphaWindow = 0;
    quint32 m_betaWindow = 0;
};

QTEST_GUILESS_MAIN(FrontApplicationContractTest)
#include "FrontApplicationContractTest.moc"
