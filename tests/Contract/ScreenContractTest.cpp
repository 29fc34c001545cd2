// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Null/NullScreen.h"
#include "tests/Desktop/DesktopTest.h"
#include "tests/Fakes/FakeScreen.h"

#include <QSet>

#include <algorithm>

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
        QCOMPARE(failureOfPicture(*screen, {1, {}, {10, 10}}), availability.reason);
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
        if (const QString reason = screen->availability().reason; !reason.isEmpty()) {
            QCOMPARE(failureOf([&] { screen->content().result(); }), reason);
            return;
        }
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
        if (const QString reason = screen->availability().reason; !reason.isEmpty()) {
            QCOMPARE(failureOfPicture(*screen, {1, {kAlpha}, {20, 10}}), reason);
            return;
        }
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

    void anotherSizeThanTheDisplaysIsAsGood_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QSize>("size");
        for (const char* const kind : {"X11", "fake"}) {
            const auto row = [kind](const char* what, const QSize& size) {
                QTest::addRow("%s, %s", kind, what) << QString::fromLatin1(kind) << size;
            };
            row("smaller", {160, 100});
            row("of another shape", {64, 200});
            row("larger", {2500, 1600});
            row("none", {});
        }
    }
    void anotherSizeThanTheDisplaysIsAsGood()
    {
        QFETCH(QSize, size);
        const auto screen = make();
        const ScreenContent content = screen->content().result();
        const QSize own = content.displays.constFirst().frame.size();
        const QImage picture = screen->picture({*content.mainDisplay, {kAlpha}, size}).result();
        QCOMPARE(picture.size(), size.isEmpty() ? own : size);
    }

    void aDisplayThatIsNotThereIsAClearFailure_data() { availableScreens(); }
    void aDisplayThatIsNotThereIsAClearFailure()
    {
        const auto screen = make();
        DisplayID unknown = 77;
        for (const auto& display : screen->content().result().displays)
            unknown = std::max(unknown, display.id + 1);
        const PictureRequest request = {unknown, {kAlpha}, {20, 10}};
        QCOMPARE(failureOfPicture(*screen, request),
                 u"No display is available. Check your display connection and try again."_s);
        // It is as good for the next.
        const DisplayID known = *screen->content().result().mainDisplay;
        QCOMPARE(failureOfPicture(*screen, {known, {kAlpha}, {20, 10}}), QString());
    }

    void eachDisplayIsCalledByANameOfItsOwnOrNoneIs_data() { screens(); }
    void eachDisplayIsCalledByANameOfItsOwnOrNoneIs()
    {
        const auto screen = make();
        const QStringList names = screen->displayNames();
        if (!screen->availability().isAvailable) {
            QCOMPARE(names, QStringList());
            return;
        }
        // The X11 adapter has them from Qt, which has not asked in a program without windows.
        const auto named = dynamic_cast<const FakeScreen*>(screen.get())
                               ? screen->content().result().displays.size()
                               : 0;
        QCOMPARE(names.size(), named);
        QCOMPARE(QSet(names.begin(), names.end()).size(), named);
        QVERIFY(!names.contains(QString()));
    }

private:
    static void screens()
    {
        availableScreens();
        QTest::newRow("Null") << u"Null"_s;
    }

    static void availableScreens()
    {
        QTest::addColumn<QString>("kind");
        for (const char* const kind : {"X11", "fake"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }

    static QString failureOfPicture(Screen& screen, const PictureRequest& request)
    {
        return failureOf([&] { screen.picture(request).result(); });
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
