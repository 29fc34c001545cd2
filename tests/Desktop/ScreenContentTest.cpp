// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/DesktopTest.h"

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

constexpr QRect kFrame(300, 200, 320, 240);

QList<ScreenWindow> windowsOf(const ScreenContent& content, const QString& bundleID)
{
    QList<ScreenWindow> windows;
    for (const ScreenWindow& window : content.windows) {
        if (window.owners.value(0).bundleID == bundleID)
            windows.append(window);
    }
    return windows;
}

} // namespace

/// The list of windows that a pass decides by.
class ScreenContentTest final : public QObject {
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

    void aWindowHasItsOwnerTitleLayerAndFrame()
    {
        WindowProgram alpha;
        QVERIFY(alpha.open({.frame = kFrame,
                            .colour = kGreen,
                            .windowClass = u"Alpha"_s,
                            .title = u"Übersicht – Ağaç"_s}));
        const ScreenContent content = m_screen->content().result();
        const auto windows = windowsOf(content, kAlpha);
        QCOMPARE(windows.size(), 1);
        QCOMPARE(windows[0].owners.value(0).name, u"Alpha of the tests"_s);
        QCOMPARE(windows[0].title, u"Übersicht – Ağaç"_s);
        QCOMPARE(windows[0].layer, 0);
        QVERIFY(windows[0].isOnScreen);
        // With the title bar that the window manager adds.
        QVERIFY(windows[0].frame.width() >= kFrame.width());
        QVERIFY(windows[0].frame.height() > kFrame.height());
        const Application application = windows[0].owners.value(0);
        QVERIFY(content.applications.contains(application));
        // By the program that it really is it is known as well, whatever it calls itself.
        QVERIFY(application.isAmong({u"org.example.ALPHA"_s}));
        QVERIFY(application.isAmong({u"desktop_window_program"_s}));
        QVERIFY(!application.isAmong({kBeta}));
    }

    void windowsComeFrontToBackAndTheirApplicationOnce()
    {
        WindowProgram alpha;
        QVERIFY(alpha.open(
            {.frame = kFrame, .colour = kGreen, .windowClass = u"Alpha"_s, .title = u"back"_s}));
        QVERIFY(alpha.open(
            {.frame = kFrame, .colour = kGreen, .windowClass = u"Alpha"_s, .title = u"front"_s}));
        const ScreenContent content = m_screen->content().result();
        const auto windows = windowsOf(content, kAlpha);
        QCOMPARE(windows.size(), 2);
        QCOMPARE(windows[0].title, u"front"_s);
        QCOMPARE(windows[1].title, u"back"_s);
        const auto isAlpha = [](const Application& one) {
            return one.bundleID == kAlpha;
        };
        QCOMPARE(std::ranges::count_if(content.applications, isAlpha), 1);
    }

    void theLayerFollowsTheKindOfWindow_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<bool>("overridesRedirect");
        QTest::addColumn<int>("sign");
        QTest::newRow("none") << QString() << false << 0;
        QTest::newRow("normal") << u"_NET_WM_WINDOW_TYPE_NORMAL"_s << false << 0;
        QTest::newRow("dialog") << u"_NET_WM_WINDOW_TYPE_DIALOG"_s << false << 0;
        QTest::newRow("utility") << u"_NET_WM_WINDOW_TYPE_UTILITY"_s << false << 0;
        QTest::newRow("desktop") << u"_NET_WM_WINDOW_TYPE_DESKTOP"_s << false << -1;
        QTest::newRow("dock") << u"_NET_WM_WINDOW_TYPE_DOCK"_s << false << 1;
        QTest::newRow("notification") << u"_NET_WM_WINDOW_TYPE_NOTIFICATION"_s << false << 1;
        QTest::newRow("menu of nobody's") << QString() << true << 1;
        QTest::newRow("tooltip") << u"_NET_WM_WINDOW_TYPE_TOOLTIP"_s << true << 1;
        QTest::newRow("popup that calls itself normal")
            << u"_NET_WM_WINDOW_TYPE_NORMAL"_s << true << 1;
    }

    void theLayerFollowsTheKindOfWindow()
    {
        QFETCH(QString, type);
        QFETCH(bool, overridesRedirect);
        QFETCH(int, sign);
        WindowProgram alpha;
        QVERIFY(alpha.open({.frame = kFrame,
                            .colour = kGreen,
                            .windowClass = u"Alpha"_s,
                            .type = type,
                            .overridesRedirect = overridesRedirect}));
        const auto windows = windowsOf(m_screen->content().result(), kAlpha);
        QCOMPARE(windows.size(), 1);
        QCOMPARE((windows[0].layer > 0) - (windows[0].layer < 0), sign);
    }

    void aMinimisedWindowIsListedButNotOnScreen()
    {
        WindowProgram alpha;
        const quint32 window = alpha.open(
            {.frame = kFrame, .colour = kGreen, .windowClass = u"Alpha"_s, .title = u"away"_s});
        QVERIFY(window);
        const auto outcome = m_desktop->run(
            u"xdotool"_s, {u"windowminimize"_s, QString::number(window)}, u"xdotool"_s);
        QVERIFY2(outcome.isSuccess, qPrintable(outcome.text));
        QTRY_VERIFY(!windowsOf(m_screen->content().result(), kAlpha).value(0).isOnScreen);
        const auto windows = windowsOf(m_screen->content().result(), kAlpha);
        QCOMPARE(windows.size(), 1);
        QCOMPARE(windows[0].title, u"away"_s);
        QCOMPARE(pixelsOf(pictureOf(*m_screen, {kAlpha}), kGreen), 0);
    }

    void aWindowOnAnotherWorkspaceIsNotOnScreen()
    {
        WindowProgram alpha;
        const quint32 window =
            alpha.open({.frame = kFrame, .colour = kGreen, .windowClass = u"Alpha"_s});
        QVERIFY(windowsOf(m_screen->content().result(), kAlpha).value(0).isOnScreen);
        const auto outcome = m_desktop->run(
            u"wmctrl"_s, {u"-i"_s, u"-r"_s, QString::number(window), u"-t"_s, u"1"_s}, u"wmctrl"_s);
        QVERIFY2(outcome.isSuccess, qPrintable(outcome.text));
        QTRY_VERIFY(!windowsOf(m_screen->content().result(), kAlpha).value(0).isOnScreen);
        QCOMPARE(windowsOf(m_screen->content().result(), kAlpha).size(), 1);
    }

    void aWindowOutsideEveryDisplayIsNotOnScreen()
    {
        WindowProgram alpha;
        QVERIFY(alpha.open({.frame = {5000, 5000, 100, 100},
                            .colour = kGreen,
                            .windowClass = u"Alpha"_s,
                            .overridesRedirect = true}));
        const auto windows = windowsOf(m_screen->content().result(), kAlpha);
        QCOMPARE(windows.size(), 1);
        QVERIFY(!windows[0].isOnScreen);
    }

    void aTitleOfAMegabyteIsCutAndHoldsUpNobody()
    {
        WindowProgram alpha;
        const QString title = QString(u"ağ"_s).repeated(350'000);
        QVERIFY(alpha.open({.frame = kFrame,
                            .colour = kGreen,
                            .windowClass = u"Alpha"_s,
                            .title = title,
                            .overridesRedirect = true}));
        const auto windows = windowsOf(m_screen->content().result(), kAlpha);
        QCOMPARE(windows.size(), 1);
        QVERIFY(windows[0].title.size() >= 160);
        QVERIFY(windows[0].title.size() < 10'000);
        QVERIFY(title.startsWith(windows[0].title));
    }

    void aWindowWithoutClassIsOfItsProcess()
    {
        WindowProgram nameless;
        QVERIFY(nameless.open({.frame = kFrame, .colour = kGreen}));
        const auto windows = windowsOf(m_screen->content().result(), u"desktop_window_program"_s);
        QCOMPARE(windows.size(), 1);
        QCOMPARE(windows[0].layer, 0);
    }

    void anOwnWindowIsOfThisProgramWhateverItsClass()
    {
        PaintedWindows own;
        QVERIFY(own.open(
            {.frame = kFrame, .colour = kBlue, .windowClass = u"Alpha"_s, .title = u"own"_s}));
        QTRY_COMPARE(windowsOf(m_screen->content().result(), kOwn).size(), 1);
        QCOMPARE(windowsOf(m_screen->content().result(), kAlpha).size(), 0);
    }

    void theTerminalIsKnownByItsDesktopFile()
    {
        QVERIFY2(m_desktop->start(u"xterm"_s, {u"-T"_s, u"a terminal"_s}, u"xterm"_s),
                 qPrintable(m_desktop->problem()));
        QTRY_COMPARE(windowsOf(m_screen->content().result(), u"debian-xterm"_s).size(), 1);
        const auto windows = windowsOf(m_screen->content().result(), u"debian-xterm"_s);
        QCOMPARE(windows[0].title, u"a terminal"_s);
        QCOMPARE(windows[0].owners.value(0).name, u"XTerm"_s);
    }

private:
    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<X11Screen> m_screen;
};

QTEST_GUILESS_MAIN(ScreenContentTest)
#include "ScreenContentTest.moc"
