// SPDX-License-Identifier: Apache-2.0
//
// Which windows show where there are workspaces, by what window managers say and do. Some have one
// workspace for each display and tell of one only; some keep the windows of other workspaces mapped
// and do not draw them.
#include "tests/Desktop/DesktopTest.h"

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

constexpr QRect kFrame(300, 200, 320, 240);
constexpr quint32 kEveryWorkspace = 0xffffffff;
const QByteArray kComposing = "_NET_WM_CM_S0";

enum class Compositor {
    None,
    Another,
    TheManagerItself,
};

/// What a window manager says, said by a client of its own.
class Manager {
public:
    explicit Manager(quint32 workspace)
        : m_window(m_windows.open({.frame = {0, 0, 1, 1}, .overridesRedirect = true}))
    {
        m_windows.setNumbers(m_windows.root(), "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW,
                             {m_window});
        m_windows.setNumbers(m_windows.root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL,
                             {workspace});
    }

    void compose() { m_windows.take(kComposing, m_window); }

    void manage(quint32 window, quint32 workspace, bool isHidden)
    {
        constexpr quint32 kNormal = 1;
        m_windows.setNumbers(window, "WM_STATE", XCB_ATOM_CARDINAL, {kNormal, 0});
        m_windows.setNumbers(window, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, {workspace});
        if (isHidden)
            m_windows.setAtoms(window, "_NET_WM_STATE", {"_NET_WM_STATE_HIDDEN"});
    }

private:
    PaintedWindows m_windows;
    xcb_window_t m_window;
};

} // namespace

class ScreenWorkspacesTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void aMappedWindowShowsUnlessItsWorkspaceIsLeftOutOfWhatIsDrawn_data()
    {
        QTest::addColumn<Compositor>("compositor");
        QTest::addColumn<quint32>("workspace");
        QTest::addColumn<bool>("isHidden");
        QTest::addColumn<bool>("isOnScreen");
        const auto add = [](const char* name, Compositor compositor, quint32 workspace,
                            bool isHidden, bool isOnScreen) {
            QTest::newRow(name) << compositor << workspace << isHidden << isOnScreen;
        };
        using enum Compositor;
        add("on the one told of", None, 0, false, true);
        add("on another display's", None, 1, false, true);
        add("on another display's, another composes", Another, 1, false, true);
        add("on another display's, minimised", None, 1, true, false);
        add("on the one told of, minimised", Another, 0, true, false);
        add("not drawn", TheManagerItself, 1, false, false);
        add("drawn", TheManagerItself, 0, false, true);
        add("on every one", TheManagerItself, kEveryWorkspace, false, true);
        add("drawn, but minimised", TheManagerItself, 0, true, false);
    }

    void aMappedWindowShowsUnlessItsWorkspaceIsLeftOutOfWhatIsDrawn()
    {
        QFETCH(Compositor, compositor);
        QFETCH(quint32, workspace);
        QFETCH(bool, isHidden);
        QFETCH(bool, isOnScreen);
        const VirtualDesktop desktop({.hasWindowManager = false});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        Manager manager(0);
        PaintedWindows other;
        if (compositor == Compositor::TheManagerItself)
            manager.compose();
        else if (compositor == Compositor::Another)
            other.take(kComposing, other.open({.frame = {1, 1, 1, 1}, .overridesRedirect = true}));
        WindowProgram alpha;
        const quint32 window =
            alpha.open({.frame = kFrame, .colour = kGreen, .windowClass = u"Alpha"_s});
        QVERIFY(window);
        manager.manage(window, workspace, isHidden);
        const auto screen = makeScreen();
        const ScreenContent content = screen->content().result();
        const auto found = std::ranges::find_if(content.windows, [](const ScreenWindow& one) {
            return one.owners.value(0).bundleID == kAlpha;
        });
        QVERIFY(found != content.windows.end());
        QCOMPARE(found->isOnScreen, isOnScreen);
    }
};

QTEST_GUILESS_MAIN(ScreenWorkspacesTest)
#include "ScreenWorkspacesTest.moc"
