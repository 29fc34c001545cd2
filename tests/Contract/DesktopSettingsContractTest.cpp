// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/PortalSettings.h"
#include "Mossbank/Platform/Null/NullDesktopSettings.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/StubPortal.h"
#include "tests/Desktop/TestBus.h"
#include "tests/Fakes/FakeDesktopSettings.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;
using ColourScheme = DesktopSettings::ColourScheme;

/// What everything that tells the user's choices for the desktop holds to.
class DesktopSettingsContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<TestBus>(TestBus::Kind::Session);
        QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
        m_portal = std::make_unique<StubPortal>();
        QVERIFY(m_portal->service().appear());
    }
    void cleanup()
    {
        m_settings.reset();
        m_portal.reset();
        m_bus.reset();
    }

    void eachChangeIsToldOnceWhenItIsKnown_data()
    {
        QTest::addColumn<QString>("kind");
        for (const QString& kind : {u"Linux"_s, u"Null"_s, u"fake"_s})
            QTest::newRow(qPrintable(kind)) << kind;
    }
    void eachChangeIsToldOnceWhenItIsKnown()
    {
        QFETCH(QString, kind);
        m_settings = make(kind);
        QList<ColourScheme> told;
        connect(m_settings.get(), &DesktopSettings::changed, this,
                [&] { told.append(m_settings->colourScheme()); });
        QVERIFY(isSound(m_settings->availability()));
        QCOMPARE(m_settings->availability().isAvailable, kind != u"Null"_s);
        QCOMPARE(m_settings->colourScheme(), ColourScheme::NoPreference);
        QVERIFY(!m_settings->reducesMotion());
        if (!m_settings->availability().isAvailable)
            return;
        // What is chosen from now on is heard of.
        if (kind == u"Linux"_s) {
            QVERIFY(QTest::qWaitFor([this] { return !m_portal->service().asked.isEmpty(); },
                                    kPatience));
        }
        QList<ColourScheme> expected;
        for (const auto scheme :
             {ColourScheme::Dark, ColourScheme::Light, ColourScheme::NoPreference}) {
            choose(kind, scheme);
            expected.append(scheme);
            QTRY_COMPARE_WITH_TIMEOUT(told, expected, kPatience);
            QCOMPARE(m_settings->colourScheme(), scheme);
            choose(kind, scheme);
            QVERIFY(!m_settings->reducesMotion());
        }
        for (const bool isReduced : {true, false}) {
            reduceMotion(kind, isReduced);
            expected.append(ColourScheme::NoPreference);
            QTRY_COMPARE_WITH_TIMEOUT(told, expected, kPatience);
            QCOMPARE(m_settings->reducesMotion(), isReduced);
        }
    }

private:
    static constexpr int kPatience = 20'000;

    std::unique_ptr<DesktopSettings> make(const QString& kind)
    {
        if (kind == u"Null"_s)
            return std::make_unique<NullDesktopSettings>(kReason);
        if (kind == u"fake"_s)
            return std::make_unique<FakeDesktopSettings>();
        return std::make_unique<PortalSettings>();
    }
    void choose(const QString& kind, ColourScheme scheme)
    {
        constexpr quint32 kNumbers[] = {0, 2, 1};
        if (kind == u"fake"_s)
            static_cast<FakeDesktopSettings&>(*m_settings).choose(scheme);
        else
            QVERIFY(m_portal->chooseScheme(kNumbers[static_cast<int>(scheme)]));
    }
    void reduceMotion(const QString& kind, bool isReduced)
    {
        if (kind == u"fake"_s)
            static_cast<FakeDesktopSettings&>(*m_settings).reduceMotion(isReduced);
        else
            QVERIFY(
                m_portal->choose(StubPortal::kAppearance, u"reduced-motion"_s, quint32{isReduced}));
    }

    std::unique_ptr<TestBus> m_bus;
    std::unique_ptr<StubPortal> m_portal;
    std::unique_ptr<DesktopSettings> m_settings;
};

QTEST_GUILESS_MAIN(DesktopSettingsContractTest)
#include "DesktopSettingsContractTest.moc"
