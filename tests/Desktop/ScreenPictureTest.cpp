// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/DesktopTest.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

/// What is in a picture and what is not, looked at pixel by pixel.
class ScreenPictureTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void initTestCase()
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        m_screen = makeScreen();
    }

    void cleanupTestCase()
    {
        m_screen.reset();
        m_desktop.reset();
    }

    /// The window manager takes the frames of a program that has ended away in its own time.
    void cleanup()
    {
        const auto areGone = [this] {
            const QList<ScreenWindow> windows = m_screen->content().result().windows;
            return std::ranges::none_of(
                windows, [](const auto& window) { return window.frame.width() > 1; });
        };
        QTRY_VERIFY(areGone());
    }

    void anIncludedWindowIsInThePictureWhole()
    {
        WindowProgram alpha;
        QVERIFY(alpha.open(
            {.frame = {200, 200, 300, 200}, .colour = kGreen, .windowClass = u"Alpha"_s}));
        QTRY_COMPARE(pixelsOf(pictureOf(*m_screen, {kAlpha}), kGreen), 300 * 200);
    }

    void anExcludedWindowIsInNoPicture()
    {
        WindowProgram alpha;
        WindowProgram beta;
        QVERIFY(
            beta.open({.frame = {200, 200, 300, 200}, .colour = kRed, .windowClass = u"Beta"_s}));
        QTRY_COMPARE(pixelsOf(pictureOf(*m_screen, {kBeta}), kRed), 300 * 200);
        // Not the active one any more.
        QVERIFY(alpha.open(
            {.frame = {700, 200, 300, 200}, .colour = kGreen, .windowClass = u"Alpha"_s}));
        const QImage picture = pictureOf(*m_screen, {kAlpha});
        QCOMPARE(pixelsOf(picture, kRed), 0);
        QCOMPARE(pixelsOf(picture, kGreen), 300 * 200);
    }

    void aWindowInsideAnothersIsOfBoth()
    {
        WindowProgram alpha;
        WindowProgram beta;
        const quint32 host = alpha.open(
            {.frame = {700, 200, 400, 300}, .colour = kGreen, .windowClass = u"Alpha"_s});
        QVERIFY(host);
        QVERIFY(beta.open({.frame = {50, 50, 200, 150},
                           .colour = kRed,
                           .windowClass = u"Beta"_s,
                           .parent = host}));
        const ScreenContent content = m_screen->content().result();
        const bool isTold = std::ranges::any_of(content.windows, [](const ScreenWindow& window) {
            return std::ranges::any_of(
                window.owners, [](const Application& owner) { return owner.bundleID == kBeta; });
        });
        QVERIFY(isTold);
        QCOMPARE(pixelsOf(pictureOf(*m_screen, {kAlpha}), kRed), 0);
        QCOMPARE(pixelsOf(pictureOf(*m_screen, {kAlpha, kBeta}), kRed), 200 * 150);
    }

    void anExcludedWindowPartlyCoveredIsInNoPicture()
    {
        WindowProgram alpha;
        WindowProgram beta;
        QVERIFY(
            beta.open({.frame = {200, 200, 400, 300}, .colour = kRed, .windowClass = u"Beta"_s}));
        QVERIFY(alpha.open(
            {.frame = {400, 300, 400, 300}, .colour = kGreen, .windowClass = u"Alpha"_s}));
        const QImage picture = pictureOf(*m_screen, {kAlpha});
        QCOMPARE(pixelsOf(picture, kRed), 0);
        QVERIFY(pixelsOf(picture, kGreen) > 0);
    }

    void anExcludedWindowOfAProgramThatHangsIsInNoPicture()
    {
        WindowProgram alpha;
        WindowProgram beta;
        QVERIFY(
            beta.open({.frame = {200, 200, 400, 300}, .colour = kRed, .windowClass = u"Beta"_s}));
        const quint32 over = alpha.open(
            {.frame = {300, 250, 100, 100}, .colour = kGreen, .windowClass = u"Alpha"_s});
        QVERIFY(over);
        beta.standStill();
        QCOMPARE(pixelsOf(pictureOf(*m_screen, {kAlpha}), kRed), 0);
        // What it uncovers now cannot be painted by the program itself.
        QVERIFY(alpha.close(over));
        QCOMPARE(pixelsOf(pictureOf(*m_screen, {kAlpha}), kRed), 0);
    }

    void aMenuWithoutClassGoesWithItsApplication()
    {
        WindowProgram alpha;
        WindowProgram beta;
        QVERIFY(
            beta.open({.frame = {200, 200, 300, 200}, .colour = kRed, .windowClass = u"Beta"_s}));
        QVERIFY(alpha.open(
            {.frame = {900, 200, 300, 200}, .colour = kGreen, .windowClass = u"Alpha"_s}));
        // Far from its window, over another's.
        QVERIFY(beta.open(
            {.frame = {1000, 250, 120, 90}, .colour = kYellow, .overridesRedirect = true}));
        QCOMPARE(pixelsOf(pictureOf(*m_screen, {kAlpha}), kYellow), 0);
        QCOMPARE(pixelsOf(pictureOf(*m_screen, {kAlpha, kBeta}), kYellow), 120 * 90);
    }

    void aMenuOfAnApplicationWhoseWindowIsHiddenGoesWithIt()
    {
        WindowProgram beta;
        QVERIFY(beta.open({.frame = {200, 200, 300, 200},
                           .colour = kRed,
                           .windowClass = u"Beta"_s,
                           .isMapped = false}));
        QVERIFY(beta.open(
            {.frame = {1000, 250, 120, 90}, .colour = kYellow, .overridesRedirect = true}));
        QCOMPARE(pixelsOf(pictureOf(*m_screen, {kAlpha}), kYellow), 0);
        QCOMPARE(pixelsOf(pictureOf(*m_screen, {kBeta}), kYellow), 120 * 90);
    }

    void aWindowThatOpensBetweenListAndPictureIsInNoPicture()
    {
        const ScreenContent content = m_screen->content().result();
        QStringList included = {kAlpha};
        for (const Application& application : content.applications)
            included.append(application.bundleID);
        WindowProgram beta;
        QVERIFY(
            beta.open({.frame = {200, 200, 300, 200}, .colour = kRed, .windowClass = u"Beta"_s}));
        const QImage picture = m_screen->picture({*content.mainDisplay, included, {}}).result();
        QCOMPARE(pixelsOf(picture, kRed), 0);
    }

    void aWindowThatClosesBetweenListAndPictureIsNoFailure()
    {
        auto beta = std::make_unique<WindowProgram>();
        QVERIFY(
            beta->open({.frame = {200, 200, 300, 200}, .colour = kRed, .windowClass = u"Beta"_s}));
        const ScreenContent content = m_screen->content().result();
        beta.reset();
        const QImage picture = m_screen->picture({*content.mainDisplay, {kBeta}, {}}).result();
        QCOMPARE(picture.size(), QSize(1920, 1080));
    }

    void anOwnWindowIsInNoPictureAndTheOneInFrontOfItIsWhole()
    {
        PaintedWindows own;
        WindowProgram alpha;
        QVERIFY(own.open(
            {.frame = {200, 200, 400, 300}, .colour = kBlue, .windowClass = u"Whatever"_s}));
        QVERIFY(alpha.open(
            {.frame = {300, 250, 200, 150}, .colour = kGreen, .windowClass = u"Alpha"_s}));
        QTRY_COMPARE(pixelsOf(pictureOf(*m_screen, {kAlpha, kOwn}), kGreen), 200 * 150);
        QCOMPARE(pixelsOf(pictureOf(*m_screen, {kAlpha, kOwn}), kBlue), 0);
    }

    void anOwnMenuWithoutClassIsInNoPicture()
    {
        PaintedWindows own;
        QVERIFY(
            own.open({.frame = {600, 300, 200, 150}, .colour = kBlue, .overridesRedirect = true}));
        // To somebody else it is a window like any other.
        X11Screen stranger(std::make_shared<ApplicationCatalog>(), {0, u"nobody"_s});
        const QString self = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
        QCOMPARE(pixelsOf(pictureOf(stranger, {self}), kBlue), 200 * 150);
        QCOMPARE(pixelsOf(pictureOf(*m_screen, {kAlpha}), kBlue), 0);
    }

    void aPictureOfTheDesktopAloneIsAsItIs()
    {
        const QImage picture = pictureOf(*m_screen, {});
        QCOMPARE(picture.size(), QSize(1920, 1080));
        QCOMPARE(picture.format(), QImage::Format_RGB32);
    }

    void aPictureIsOfTheSizeAskedFor()
    {
        WindowProgram alpha;
        QVERIFY(alpha.open(
            {.frame = {400, 400, 800, 400}, .colour = kGreen, .windowClass = u"Alpha"_s}));
        const ScreenContent content = m_screen->content().result();
        const QImage picture =
            m_screen->picture({*content.mainDisplay, {kAlpha}, {960, 540}}).result();
        QCOMPARE(picture.size(), QSize(960, 540));
        QCOMPARE(picture.pixel(400, 300), kGreen);
    }

    void aDisplayThatHasGoneIsAClearFailure()
    {
        const QString failure = failureOf([this] {
            m_screen->picture({12345, {}, {100, 100}}).result();
        });
        QCOMPARE(failure,
                 u"No display is available. Check your display connection and try again."_s);
        QVERIFY(!pictureOf(*m_screen, {}).isNull());
    }

    void aPictureOutlivesTheScreen()
    {
        WindowProgram alpha;
        QVERIFY(alpha.open(
            {.frame = {200, 200, 300, 200}, .colour = kGreen, .windowClass = u"Alpha"_s}));
        auto screen = makeScreen();
        QImage picture = pictureOf(*screen, {kAlpha});
        screen.reset();
        QTRY_COMPARE(pixelsOf(picture, kGreen), 300 * 200);
        picture.fill(kRed);
        QCOMPARE(picture.pixel(0, 0), kRed);
    }

    void aPictureDoesNotChangeWithTheNext()
    {
        WindowProgram alpha;
        QVERIFY(alpha.open(
            {.frame = {200, 200, 300, 200}, .colour = kGreen, .windowClass = u"Alpha"_s}));
        const QImage with = pictureOf(*m_screen, {kAlpha});
        const QImage without = pictureOf(*m_screen, {});
        const QImage third = pictureOf(*m_screen, {});
        QCOMPARE(pixelsOf(with, kGreen), 300 * 200);
        QCOMPARE(pixelsOf(without, kGreen), 0);
        QCOMPARE(pixelsOf(third, kGreen), 0);
    }

private:
    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<X11Screen> m_screen;
};

QTEST_GUILESS_MAIN(ScreenPictureTest)
#include "ScreenPictureTest.moc"
