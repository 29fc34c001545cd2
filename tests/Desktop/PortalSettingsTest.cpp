// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/PortalSettings.h"

#include "tests/Contract/Contract.h"
#include "tests/Desktop/StubPortal.h"
#include "tests/Desktop/TestBus.h"

#include <QDBusVariant>
#include <QScopeGuard>
#include <QTest>

#include <csignal>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using ColourScheme = DesktopSettings::ColourScheme;
using Manner = StubService::Manner;

namespace {

constexpr int kPatience = 20'000;
/// For what must not come to have come.
constexpr int kLongEnough = 200;

const QString kScheme = u"color-scheme"_s;
const QString kMotion = u"reduced-motion"_s;

constexpr quint32 kDark = 1;
constexpr quint32 kLight = 2;

} // namespace

/// What the desktop's portal tells, on a real bus.
class PortalSettingsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void whatIsChosenIsKnownAndChangesAreTold();
    void aPortalThatComesLaterIsAsked();
    void whatAPortalSaidStandsWhileItIsGone();
    void whatAnotherPortalDoesNotKnowIsNoLongerSo();
    void aSilentPortalHoldsNothingUpAndIsAskedAgain();
    void aPortalThatRefusesIsHeardAllTheSame();
    void withoutABusNothingIsKnown();
    void aBusThatStandsStillHoldsNothingUp();
    void anotherBusIsFound_data();
    void anotherBusIsFound();
    void wrongAnswersAreNone_data();
    void wrongAnswersAreNone();
    void aChangeDuringTheQuestionIsNotLost();
    void whatOthersTellIsNotHeard();
    void lettingGoWhileItIsAskedIsSafe();

private:
    /// Makes what asks.
    void make(const PortalSettings::Limits& limits = {});
    bool waitFor(ColourScheme scheme)
    {
        return QTest::qWaitFor([&] { return m_settings->colourScheme() == scheme; }, kPatience);
    }
    bool waitUntilAsked(int times)
    {
        return QTest::qWaitFor([&] { return m_portal->service().asked.size() >= times; },
                               kPatience);
    }

    std::unique_ptr<TestBus> m_bus;
    std::unique_ptr<StubPortal> m_portal;
    std::unique_ptr<PortalSettings> m_settings;
    int m_changes = 0;
};

void PortalSettingsTest::init()
{
    m_changes = 0;
    m_bus = std::make_unique<TestBus>(TestBus::Kind::Session);
    QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
    m_portal = std::make_unique<StubPortal>();
}

void PortalSettingsTest::cleanup()
{
    m_settings.reset();
    m_portal.reset();
    m_bus.reset();
}

void PortalSettingsTest::make(const PortalSettings::Limits& limits)
{
    m_settings = std::make_unique<PortalSettings>(limits);
    connect(m_settings.get(), &DesktopSettings::changed, this, [this] { ++m_changes; });
}

void PortalSettingsTest::whatIsChosenIsKnownAndChangesAreTold()
{
    m_portal->values = {{StubPortal::kAppearance, {{kScheme, kDark}, {kMotion, 1U}}}};
    QVERIFY(m_portal->service().appear());
    make();
    QCOMPARE(m_settings->colourScheme(), ColourScheme::NoPreference);
    QVERIFY(!m_settings->reducesMotion());
    QVERIFY(waitFor(ColourScheme::Dark));
    QVERIFY(m_settings->reducesMotion());
    QVERIFY(m_settings->availability().isAvailable);
    QCOMPARE(m_changes, 1);

    QVERIFY(m_portal->chooseScheme(kLight));
    QVERIFY(waitFor(ColourScheme::Light));
    QCOMPARE(m_changes, 2);
    QVERIFY(m_portal->choose(StubPortal::kAppearance, kMotion, 0U));
    QTRY_COMPARE_WITH_TIMEOUT(m_changes, 3, kPatience);
    QVERIFY(!m_settings->reducesMotion());
    // The same again, and what matters to others, are no changes.
    QVERIFY(m_portal->chooseScheme(kLight));
    QVERIFY(m_portal->choose(StubPortal::kAppearance, u"accent-color"_s, u"green"_s));
    QVERIFY(m_portal->choose(u"org.example.heron"_s, kScheme, kDark));
    QVERIFY(m_portal->choose(StubPortal::kAppearance, kMotion, 1U));
    QTRY_COMPARE_WITH_TIMEOUT(m_changes, 4, kPatience);
    QVERIFY(m_settings->reducesMotion());
    QCOMPARE(m_settings->colourScheme(), ColourScheme::Light);
    QCOMPARE(m_portal->service().asked.size(), 1);
}

void PortalSettingsTest::aPortalThatComesLaterIsAsked()
{
    make();
    QTRY_VERIFY_WITH_TIMEOUT(!m_settings->availability().isAvailable, kPatience);
    QVERIFY(isSound(m_settings->availability()));
    QCOMPARE(m_settings->colourScheme(), ColourScheme::NoPreference);
    m_portal->values = {{StubPortal::kAppearance, {{kScheme, kDark}}}};
    QVERIFY(m_portal->service().appear());
    QVERIFY(waitFor(ColourScheme::Dark));
    QVERIFY(m_settings->availability().isAvailable);
}

void PortalSettingsTest::whatAPortalSaidStandsWhileItIsGone()
{
    m_portal->values = {{StubPortal::kAppearance, {{kScheme, kDark}}}};
    QVERIFY(m_portal->service().appear());
    make();
    QVERIFY(waitFor(ColourScheme::Dark));
    m_portal->service().disappear();
    QTest::qWait(kLongEnough);
    QCOMPARE(m_settings->colourScheme(), ColourScheme::Dark);
    QCOMPARE(m_changes, 1);
    // Chosen while nobody told.
    m_portal->values = {{StubPortal::kAppearance, {{kScheme, kLight}}}};
    QVERIFY(m_portal->service().appear());
    QVERIFY(waitFor(ColourScheme::Light));
    QCOMPARE(m_changes, 2);
    // And what it tells is heard as before.
    QVERIFY(m_portal->chooseScheme(kDark));
    QVERIFY(waitFor(ColourScheme::Dark));
}

void PortalSettingsTest::whatAnotherPortalDoesNotKnowIsNoLongerSo()
{
    m_portal->values = {{StubPortal::kAppearance, {{kScheme, kDark}, {kMotion, 1U}}}};
    QVERIFY(m_portal->service().appear());
    make();
    QVERIFY(waitFor(ColourScheme::Dark));
    m_portal->service().disappear();
    m_portal->values = {};
    QVERIFY(m_portal->service().appear());
    QVERIFY(waitFor(ColourScheme::NoPreference));
    QVERIFY(!m_settings->reducesMotion());
    QCOMPARE(m_changes, 2);
}

void PortalSettingsTest::aSilentPortalHoldsNothingUpAndIsAskedAgain()
{
    m_portal->values = {{StubPortal::kAppearance, {{kScheme, kDark}}}};
    m_portal->service().manner = Manner::KeepsSilent;
    QVERIFY(m_portal->service().appear());
    // It lives in this thread: who waited for it here would wait to the end.
    make({.answer = 100ms, .again = 10ms});
    QVERIFY(m_portal->service().asked.isEmpty());
    QVERIFY(waitUntilAsked(3));
    QCOMPARE(m_settings->colourScheme(), ColourScheme::NoPreference);
    QVERIFY(!m_settings->availability().isAvailable);
    m_portal->service().manner = Manner::Answers;
    QVERIFY(waitFor(ColourScheme::Dark));
    QVERIFY(m_settings->availability().isAvailable);
    // From then on it is left alone.
    const qsizetype asked = m_portal->service().asked.size();
    QTest::qWait(kLongEnough);
    QCOMPARE(m_portal->service().asked.size(), asked);
}

void PortalSettingsTest::aPortalThatRefusesIsHeardAllTheSame()
{
    m_portal->service().manner = Manner::Refuses;
    QVERIFY(m_portal->service().appear());
    make({.again = 10ms});
    QTRY_VERIFY_WITH_TIMEOUT(!m_settings->availability().isAvailable, kPatience);
    QVERIFY(m_portal->chooseScheme(kDark));
    QVERIFY(waitFor(ColourScheme::Dark));
    QTest::qWait(kLongEnough);
    QCOMPARE(m_portal->service().asked.size(), 1);
}

void PortalSettingsTest::withoutABusNothingIsKnown()
{
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    const auto restore = qScopeGuard([&] {
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        qputenv("XDG_RUNTIME_DIR", runtime);
    });
    qunsetenv("XDG_RUNTIME_DIR");
    for (const char* bus : {"", "unix:path=/nowhere/bus", "heron"}) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus);
        make();
        QTRY_VERIFY_WITH_TIMEOUT(!m_settings->availability().isAvailable, kPatience);
        QVERIFY(isSound(m_settings->availability()));
        QCOMPARE(m_settings->colourScheme(), ColourScheme::NoPreference);
        QVERIFY(!m_settings->reducesMotion());
    }
}

void PortalSettingsTest::aBusThatStandsStillHoldsNothingUp()
{
    m_portal->values = {{StubPortal::kAppearance, {{kScheme, kDark}}}};
    QVERIFY(m_portal->service().appear());
    const auto process = static_cast<pid_t>(m_bus->process().processId());
    ::kill(process, SIGSTOP);
    make({.bus = 100ms, .again = 10ms});
    const bool isSaid =
        QTest::qWaitFor([&] { return !m_settings->availability().isAvailable; }, kPatience);
    ::kill(process, SIGCONT);
    QVERIFY(isSaid);
    QVERIFY(waitFor(ColourScheme::Dark));
}

void PortalSettingsTest::anotherBusIsFound_data()
{
    QTest::addColumn<QString>("when");
    for (const char* when : {"when all is known", "while the portal is asked", "while it opens"})
        QTest::newRow(when) << QString::fromLatin1(when);
}

void PortalSettingsTest::anotherBusIsFound()
{
    QFETCH(QString, when);
    m_portal->values = {{StubPortal::kAppearance, {{kScheme, kDark}}}};
    QVERIFY(m_portal->service().appear());
    if (when == u"while the portal is asked")
        m_portal->service().manner = Manner::KeepsSilent;
    if (when == u"while it opens")
        ::kill(static_cast<pid_t>(m_bus->process().processId()), SIGSTOP);
    make({.again = 10ms});
    if (when == u"while the portal is asked")
        QVERIFY(waitUntilAsked(1));
    else if (when == u"while it opens")
        QTest::qWait(kLongEnough);
    else
        QVERIFY(waitFor(ColourScheme::Dark));
    const ColourScheme before = m_settings->colourScheme();
    m_bus.reset();
    m_portal.reset();
    QTRY_VERIFY_WITH_TIMEOUT(!m_settings->availability().isAvailable, kPatience);
    QCOMPARE(m_settings->colourScheme(), before);
    m_bus = std::make_unique<TestBus>(TestBus::Kind::Session);
    m_portal = std::make_unique<StubPortal>();
    m_portal->values = {{StubPortal::kAppearance, {{kScheme, kLight}}}};
    QVERIFY(m_portal->service().appear());
    QVERIFY(waitFor(ColourScheme::Light));
    QVERIFY(m_settings->availability().isAvailable);
}

void PortalSettingsTest::wrongAnswersAreNone_data()
{
    QTest::addColumn<QVariantList>("answer");
    QTest::newRow("nothing") << QVariantList();
    QTest::newRow("a text") << QVariantList{u"dark"_s};
    QTest::newRow("a map of no namespaces") << QVariantList{QVariantMap{{kScheme, kDark}}};
    QTest::newRow("two") << QVariantList{QVariant::fromValue(PortalValues::All()), 1U};
    QTest::newRow("a value within a value")
        << QVariantList{QVariant::fromValue(QDBusVariant(u"dark"_s))};
}

void PortalSettingsTest::wrongAnswersAreNone()
{
    QFETCH(QVariantList, answer);
    m_portal->service().answer = [&](const QDBusMessage& question) {
        return question.createReply(answer);
    };
    QVERIFY(m_portal->service().appear());
    make();
    QTRY_VERIFY_WITH_TIMEOUT(!m_settings->availability().isAvailable, kPatience);
    const auto tell = [&](const QVariantList& arguments) {
        return m_portal->service().emitSignal(StubPortal::kInterface, u"SettingChanged"_s,
                                              arguments);
    };
    QVERIFY(tell({}));
    QVERIFY(tell({StubPortal::kAppearance, kScheme}));
    QVERIFY(tell({StubPortal::kAppearance, kScheme, kDark}));
    QVERIFY(tell({1U, 2U, QVariant::fromValue(QDBusVariant(kDark))}));
    // What comes after them shows that they have come.
    QVERIFY(m_portal->choose(StubPortal::kAppearance, kMotion, 1U));
    QTRY_VERIFY_WITH_TIMEOUT(m_settings->reducesMotion(), kPatience);
    QCOMPARE(m_settings->colourScheme(), ColourScheme::NoPreference);
    QCOMPARE(m_changes, 1);
}

void PortalSettingsTest::aChangeDuringTheQuestionIsNotLost()
{
    m_portal->values = {{StubPortal::kAppearance, {{kScheme, kLight}}}};
    m_portal->service().manner = Manner::KeepsSilent;
    QVERIFY(m_portal->service().appear());
    make();
    QVERIFY(waitUntilAsked(1));
    const QDBusMessage question = m_portal->service().asked.first();
    const QDBusMessage before = m_portal->answerTo(question);
    m_portal->service().manner = Manner::Answers;
    QVERIFY(m_portal->chooseScheme(kDark));
    QVERIFY(m_portal->service().send(before));
    QVERIFY(waitUntilAsked(2));
    QVERIFY(waitFor(ColourScheme::Dark));
    QTest::qWait(kLongEnough);
    QCOMPARE(m_settings->colourScheme(), ColourScheme::Dark);
    QCOMPARE(m_portal->service().asked.size(), 2);
}

void PortalSettingsTest::whatOthersTellIsNotHeard()
{
    QVERIFY(m_portal->service().appear());
    make();
    QVERIFY(waitUntilAsked(1));
    StubService other(u"org.example.Heron"_s, StubPortal::kPath);
    QVERIFY(other.appear());
    QVERIFY(other.emitSignal(
        StubPortal::kInterface, u"SettingChanged"_s,
        {StubPortal::kAppearance, kScheme, QVariant::fromValue(QDBusVariant(kDark))}));
    QTest::qWait(kLongEnough);
    QVERIFY(m_portal->choose(StubPortal::kAppearance, kMotion, 1U));
    QTRY_VERIFY_WITH_TIMEOUT(m_settings->reducesMotion(), kPatience);
    QCOMPARE(m_settings->colourScheme(), ColourScheme::NoPreference);
}

void PortalSettingsTest::lettingGoWhileItIsAskedIsSafe()
{
    m_portal->service().manner = Manner::KeepsSilent;
    QVERIFY(m_portal->service().appear());
    // Before it has said hello to the bus, and with a question under way.
    make();
    m_settings.reset();
    make();
    QVERIFY(waitUntilAsked(1));
    m_settings.reset();
    const QDBusMessage question = m_portal->service().asked.first();
    m_portal->service().send(m_portal->answerTo(question));
    QTest::qWait(kLongEnough);
    QCOMPARE(m_changes, 0);
}

QTEST_GUILESS_MAIN(PortalSettingsTest)
#include "PortalSettingsTest.moc"
