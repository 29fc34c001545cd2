// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/DesktopTest.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

constexpr QRect kFrame(200, 200, 400, 300);
constexpr QRect kInner(20, 30, 300, 200);
constexpr int kInnerPixels = 300 * 200;

/// What a pass asks for that leaves out these.
QStringList allBut(const ScreenContent& content, const QStringList& excluded)
{
    QStringList included;
    for (const Application& application : content.applications) {
        if (!application.isAmong(excluded))
            included.append(application.bundleID);
    }
    return included;
}

/// As a window manager marks what it looks after.
void markAsManaged(quint32 window)
{
    constexpr quint32 kNormal = 1;
    PaintedWindows().setNumbers(window, "WM_STATE", XCB_ATOM_CARDINAL, {kNormal, XCB_NONE});
}

bool isVisible(const ScreenContent& content, const QString& bundleID)
{
    return std::ranges::any_of(content.windows, [&](const ScreenWindow& window) {
        return window.isOnScreen &&
               std::ranges::any_of(window.owners, [&](const Application& owner) {
                   return owner.isAmong({bundleID});
               });
    });
}

} // namespace

/// Windows in which several programs draw, and windows that are known by more names than one.
class ScreenOwnersTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void whatAProgramDrawsInsideAnothersWindowIsItsOwn_data()
    {
        QTest::addColumn<bool>("hasWindowManager");
        QTest::addColumn<bool>("hasResources");
        QTest::addColumn<QString>("outerClass");
        QTest::addColumn<QString>("innerClass");
        for (const bool hasWindowManager : {false, true}) {
            const char* const manager = hasWindowManager ? "managed" : "unmanaged";
            QTest::addRow("%s, inside one with a class", manager)
                << hasWindowManager << true << u"Alpha"_s << u"Beta"_s;
            QTest::addRow("%s, inside one without a class", manager)
                << hasWindowManager << true << QString() << u"Beta"_s;
            QTest::addRow("%s, without a class inside one with a class", manager)
                << hasWindowManager << true << u"Alpha"_s << QString();
            QTest::addRow("%s, where processes are not told", manager)
                << hasWindowManager << false << u"Alpha"_s << u"Beta"_s;
        }
    }

    void whatAProgramDrawsInsideAnothersWindowIsItsOwn()
    {
        QFETCH(bool, hasWindowManager);
        QFETCH(bool, hasResources);
        QFETCH(QString, outerClass);
        QFETCH(QString, innerClass);
        QStringList arguments;
        if (!hasResources)
            arguments = {u"-extension"_s, u"X-Resource"_s};
        const VirtualDesktop desktop(
            {.arguments = arguments, .hasWindowManager = hasWindowManager});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        WindowProgram alpha;
        WindowProgram beta;
        // Whoever says nothing here has named itself elsewhere.
        QVERIFY(alpha.open({.frame = {900, 700, 40, 40},
                            .colour = kBlue,
                            .windowClass = u"Alpha"_s,
                            .overridesRedirect = true}));
        if (innerClass.isEmpty()) {
            QVERIFY(beta.open({.frame = {1400, 700, 40, 40},
                               .colour = kBlue,
                               .windowClass = u"Beta"_s,
                               .overridesRedirect = true,
                               .isMapped = false}));
        }
        const quint32 outer = alpha.open({.frame = kFrame,
                                          .colour = kGreen,
                                          .windowClass = outerClass,
                                          .overridesRedirect = !hasWindowManager});
        QVERIFY(outer);
        QVERIFY(beta.open(
            {.frame = kInner, .colour = kRed, .windowClass = innerClass, .parent = outer}));
        const ScreenContent content = screen->content().result();
        QVERIFY(isVisible(content, kBeta));
        QVERIFY(isVisible(content, kAlpha));
        QCOMPARE(pixelsOf(pictureOf(*screen, allBut(content, {})), kRed), kInnerPixels);
        QCOMPARE(pixelsOf(pictureOf(*screen, allBut(content, {kBeta})), kRed), 0);
        QCOMPARE(pixelsOf(pictureOf(*screen, allBut(content, {kAlpha})), kGreen), 0);
    }

    void aPopupWithAnothersWindowInsideIsOfBoth_data()
    {
        QTest::addColumn<bool>("hasWindowManager");
        QTest::addColumn<QString>("popupClass");
        QTest::addColumn<bool>("isDeep");
        for (const bool hasWindowManager : {false, true}) {
            const char* const manager = hasWindowManager ? "managed" : "unmanaged";
            QTest::addRow("%s, with a class", manager) << hasWindowManager << u"Alpha"_s << false;
            QTest::addRow("%s, without a class", manager) << hasWindowManager << QString() << false;
            QTest::addRow("%s, further inside", manager) << hasWindowManager << QString() << true;
        }
    }

    /// A window manager's frame looks like it: it overrides redirection, and holds another's
    /// window that a window manager looks after.
    void aPopupWithAnothersWindowInsideIsOfBoth()
    {
        QFETCH(bool, hasWindowManager);
        QFETCH(QString, popupClass);
        QFETCH(bool, isDeep);
        const VirtualDesktop desktop({.hasWindowManager = hasWindowManager});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        WindowProgram alpha;
        WindowProgram beta;
        QVERIFY(alpha.open({.frame = {900, 700, 40, 40},
                            .colour = kBlue,
                            .windowClass = u"Alpha"_s,
                            .overridesRedirect = true}));
        const quint32 popup = alpha.open({.frame = kFrame,
                                          .colour = kGreen,
                                          .windowClass = popupClass,
                                          .overridesRedirect = true});
        QVERIFY(popup);
        const quint32 parent =
            isDeep ? alpha.open({.frame = {0, 0, 390, 290}, .colour = kGreen, .parent = popup})
                   : popup;
        QVERIFY(parent);
        const quint32 inner = beta.open(
            {.frame = kInner, .colour = kRed, .windowClass = u"Beta"_s, .parent = parent});
        QVERIFY(inner);
        markAsManaged(inner);
        const ScreenContent content = screen->content().result();
        QVERIFY(isVisible(content, kBeta));
        QVERIFY(isVisible(content, kAlpha));
        QCOMPARE(pixelsOf(pictureOf(*screen, allBut(content, {})), kRed), kInnerPixels);
        for (const QString& excluded : {kAlpha, kBeta}) {
            const QImage picture = pictureOf(*screen, allBut(content, {excluded}));
            QCOMPARE(pixelsOf(picture, kRed), 0);
            QCOMPARE(pixelsOf(picture, kGreen), 0);
        }
    }

    void whatIsBesideAnothersWindowInAPopupCountsToo()
    {
        const VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        WindowProgram alpha;
        WindowProgram beta;
        WindowProgram gamma;
        const quint32 popup = alpha.open({.frame = kFrame,
                                          .colour = kGreen,
                                          .windowClass = u"Alpha"_s,
                                          .overridesRedirect = true});
        QVERIFY(popup);
        const quint32 inner = beta.open(
            {.frame = {0, 0, 50, 50}, .colour = kBlue, .windowClass = u"Beta"_s, .parent = popup});
        QVERIFY(inner);
        markAsManaged(inner);
        const quint32 pane = alpha.open({.frame = kInner, .colour = kGreen, .parent = popup});
        QVERIFY(pane);
        QVERIFY(gamma.open(
            {.frame = {0, 0, 30, 30}, .colour = kRed, .windowClass = u"Gamma"_s, .parent = pane}));
        const ScreenContent content = screen->content().result();
        QVERIFY(isVisible(content, kGamma));
        QCOMPARE(pixelsOf(pictureOf(*screen, allBut(content, {kGamma})), kRed), 0);
    }

    /// What the window manager has beside frames is not said of the programs in them.
    void aFrameIsOfTheProgramInsideAlone()
    {
        const VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        WindowProgram alpha;
        QVERIFY(alpha.open({.frame = kFrame, .colour = kGreen, .windowClass = u"Alpha"_s}));
        const ScreenContent content = screen->content().result();
        for (const ScreenWindow& window : content.windows) {
            if (window.isOnScreen && window.frame.contains(kFrame.center()))
                QCOMPARE(window.owners.size(), 1);
        }
        QVERIFY(isVisible(content, kAlpha));
    }

    void aWindowOfTwoApplicationsIsToldAsOfBoth()
    {
        const VirtualDesktop desktop({.hasWindowManager = false});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        WindowProgram program;
        for (const QString& name : {u"Alpha"_s, u"Beta"_s}) {
            QVERIFY(program.open({.frame = {700, 700, 30, 20},
                                  .colour = kGreen,
                                  .windowClass = name,
                                  .overridesRedirect = true,
                                  .isMapped = false}));
        }
        QVERIFY(program.open({.frame = kFrame, .colour = kRed, .overridesRedirect = true}));
        const ScreenContent content = screen->content().result();
        QVERIFY(isVisible(content, kAlpha));
        QVERIFY(isVisible(content, kBeta));
        QCOMPARE(pixelsOf(pictureOf(*screen, {kAlpha}), kRed), 0);
    }

    void anotherOfThisProgramIsThisProgram_data()
    {
        QTest::addColumn<QString>("windowClass");
        QTest::addColumn<bool>("isSameExecutable");
        QTest::newRow("its identity as class") << kOwn << false;
        QTest::newRow("its name as class") << u"mossbank"_s << false;
        QTest::newRow("its executable") << u"Alpha"_s << true;
    }

    void anotherOfThisProgramIsThisProgram()
    {
        QFETCH(QString, windowClass);
        QFETCH(bool, isSameExecutable);
        const VirtualDesktop desktop({.hasWindowManager = false});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        WindowProgram other;
        QVERIFY(other.open({.frame = kFrame,
                            .colour = kBlue,
                            .windowClass = windowClass,
                            .overridesRedirect = true}));
        OwnProgram own = ownProgram();
        if (isSameExecutable)
            own.executable = executableOf(other.process());
        X11Screen screen(std::make_shared<ApplicationCatalog>(), own);
        QVERIFY(isVisible(screen.content().result(), kOwn));
        QCOMPARE(pixelsOf(pictureOf(screen, {kAlpha, kOwn}), kBlue), 0);
    }
};

QTEST_GUILESS_MAIN(ScreenOwnersTest)
#include "ScreenOwnersTest.moc"
