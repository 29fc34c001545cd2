// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Null/NullScreen.h"
#include "tests/Desktop/DesktopTest.h"
#include "tests/Fakes/FakeScreen.h"

#include <QSet>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

/// What every screen holds to, whoever is behind it.
class ScreenContractTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void initTestCase()
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        m_windows = std::make_unique<WindowProgram>();
        QVERIFY(m_windows->open(
            {.frame = {100, 100, 200, 200}, .colour = kGreen, .windowClass = u"Alpha"_s}));
        QVERIFY(m_windows->open(
            {.frame = {500, 100, 200, 200}, .colour = kBlue, .windowClass = u"Alpha"_s}));
    }

    void cleanupTestCase()
    {
        m_windows.reset();
        m_desktop.reset();
    }

    void anUnavailableOneSaysWhyAndFailsWithIt_data() { screens(); }
    void anUnavailableOneSaysWhyAndFailsWithIt()
    {
        const auto screen = make();
        const Availability availability = screen->availability();
        QVERIFY(isSound(availability));
        if (availability.isAvailable)
            return;
        QVERIFY(!screen->isAllowed());
        QCOMPARE(failureOf([&] { screen->content().result(); }), availability.reason);
        QCOMPARE(failureOf([&] {
                     screen->picture({1, {}, {10, 10}}).result();
                 }),
                 availability.reason);
    }

    void askingIsNoFailure_data() { screens(); }
    void askingIsNoFailure()
    {
        const auto screen = make();
        const bool before = screen->isAllowed();
        screen->askForPermission();
        screen->openPermissions();
        QCOMPARE(screen->isAllowed(), before);
    }

    void theContentIsConsistent_data() { screens(); }
    void theContentIsConsistent()
    {
        const auto screen = make();
        if (!screen->availability().isAvailable)
            return;
        const ScreenContent content = screen->content().result();
        QSet<DisplayID> displays;
        for (const auto& display : content.displays) {
            QVERIFY(!display.frame.isEmpty());
            displays.insert(display.id);
        }
        QCOMPARE(displays.size(), content.displays.size());
        QCOMPARE(content.mainDisplay.has_value(), !content.displays.isEmpty());
        QVERIFY(!content.mainDisplay || displays.contains(*content.mainDisplay));
        QSet<QString> applications;
        for (const Application& application : content.applications) {
            QVERIFY(!application.bundleID.isEmpty());
            applications.insert(application.bundleID);
        }
        QCOMPARE(applications.size(), content.applications.size());
        for (const ScreenWindow& window : content.windows)
            for (const Application& owner : window.owners)
                QVERIFY(applications.contains(owner.bundleID));
        QCOMPARE(screen->content().result().displays, content.displays);
    }

    void aPictureIsOfTheSizeAskedForAndKeepsItsPixels_data() { screens(); }
    void aPictureIsOfTheSizeAskedForAndKeepsItsPixels()
    {
        auto screen = make();
        if (!screen->availability().isAvailable)
            return;
        const ScreenContent content = screen->content().result();
        QCOMPARE(content.displays.size(), 1);
        const QSize size = content.displays.constFirst().frame.size();
        const PictureRequest request = {*content.mainDisplay, {kAlpha}, size};
        const QImage first = screen->picture(request).result();
        QCOMPARE(first.size(), size);
        const QImage copy = first.copy();
        QCOMPARE(screen->picture(request).result().size(), size);
        screen.reset();
        QCOMPARE(first, copy);
    }

private:
    static void screens()
    {
        QTest::addColumn<QString>("kind");
        for (const char* const kind : {"X11", "Null", "fake"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }

    static std::unique_ptr<Screen> make()
    {
        QFETCH(QString, kind);
        if (kind == "X11"_L1)
            return makeScreen();
        if (kind == "Null"_L1)
            return std::make_unique<NullScreen>(kReason);
        return std::make_unique<FakeScreen>();
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<WindowProgram> m_windows;
};

QTEST_GUILESS_MAIN(ScreenContractTest)
#include "ScreenContractTest.moc"
