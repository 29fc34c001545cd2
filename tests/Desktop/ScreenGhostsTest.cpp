// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ScreenGhosts.h"

#include "Mossbank/Platform/Linux/X11WindowWatch.h"
#include "tests/Desktop/DesktopTest.h"

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

const QRect kFrame(100, 100, 200, 100);
const QRect kHaunted = kFrame.adjusted(-32, -32, 32, 32);

/// Draws into a window, whoever has it, as its program would.
void paint(const X11Connection& connection, xcb_window_t window, QRgb colour, const QSize& size)
{
    const xcb_gcontext_t pen = xcb_generate_id(connection);
    const quint32 value = colour & 0xffffff;
    xcb_create_gc(connection, pen, window, XCB_GC_FOREGROUND, &value);
    const xcb_rectangle_t whole = {0, 0, static_cast<quint16>(size.width()),
                                   static_cast<quint16>(size.height())};
    xcb_poly_fill_rectangle(connection, window, pen, 1, &whole);
    xcb_free_gc(connection, pen);
    connection.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection));
}

} // namespace

/// What a window leaves behind on the screen when it goes.
class ScreenGhostsTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void aWindowThatStaysLeavesNothing()
    {
        ScreenGhosts ghosts;
        ghosts.look({{1, kFrame, {kBeta}}}, QRegion(), 0);
        ghosts.look({{1, kFrame, {kBeta}}}, QRegion(), 0);
        QVERIFY(ghosts.regionToCover({kBeta}).isEmpty());
    }

    void aWindowThatHasGoneOrMovedIsCoveredWithItsShadow_data()
    {
        QTest::addColumn<bool>("isMoved");
        QTest::newRow("gone") << false;
        QTest::newRow("moved") << true;
    }
    void aWindowThatHasGoneOrMovedIsCoveredWithItsShadow()
    {
        QFETCH(bool, isMoved);
        ScreenGhosts ghosts;
        ghosts.look({{1, kFrame, {kBeta}}}, QRegion(), 0);
        QList<SeenWindow> after;
        if (isMoved)
            after.append({1, kFrame.translated(500, 0), {kBeta}});
        // What was drawn in the interval in which it went may be its own.
        ghosts.look(after, QRegion(kHaunted), 0);
        QVERIFY((QRegion(kHaunted) - ghosts.regionToCover({kBeta.toUpper()})).isEmpty());
        QVERIFY(ghosts.regionToCover({kAlpha}).isEmpty());
    }

    void whatIsDrawnLaterShrinksIt()
    {
        ScreenGhosts ghosts;
        ghosts.look({{1, kFrame, {kBeta}}}, QRegion(), 0);
        ghosts.look({}, QRegion(), 0);
        const QRect half = kHaunted.adjusted(0, 0, -100, 0);
        ghosts.look({}, QRegion(half), 0);
        QCOMPARE(ghosts.regionToCover({kBeta}), QRegion(kHaunted) - half);
        ghosts.look({}, QRegion(kHaunted), 0);
        QCOMPARE(ghosts.size(), 0);
    }

    void oneOfSeveralIsCoveredAndOneOfNobodyKnownIsNot()
    {
        ScreenGhosts ghosts;
        ghosts.look({{1, kFrame, {}}, {2, kFrame.translated(900, 0), {kAlpha, kBeta}}}, QRegion(),
                    0);
        ghosts.look({}, QRegion(), 0);
        QCOMPARE(ghosts.regionToCover({kBeta}), QRegion(kHaunted.translated(900, 0)));
        QVERIFY(ghosts.regionToCover({kGamma}).isEmpty());
    }

    void aWindowThatMovesTakesForeignPixelsAlong()
    {
        ScreenGhosts ghosts;
        const QRect below(0, 0, 600, 400);
        ghosts.look({{1, kFrame, {kBeta}}, {2, below, {kAlpha}}}, QRegion(), 0);
        ghosts.look({{2, below, {kAlpha}}}, QRegion(), 0);
        ghosts.look({{2, below.translated(700, 50), {kAlpha}}}, QRegion(0, 0, 1920, 1080), 0);
        QVERIFY((QRegion(kHaunted.translated(700, 50)) - ghosts.regionToCover({kBeta})).isEmpty());
    }

    void whereNothingIsDrawnItLivesForAWhile_data()
    {
        QTest::addColumn<bool>("isTold");
        QTest::newRow("nothing is drawn") << true;
        QTest::newRow("nothing is told") << false;
    }
    void whereNothingIsDrawnItLivesForAWhile()
    {
        QFETCH(bool, isTold);
        const auto drawn = isTold ? std::optional(QRegion()) : std::nullopt;
        ScreenGhosts ghosts;
        ghosts.look({{1, kFrame, {kBeta}}}, drawn, 0);
        ghosts.look({}, drawn, 1000);
        ghosts.look({}, drawn, 1000 + ScreenGhosts::kLife - 1);
        QVERIFY(!ghosts.regionToCover({kBeta}).isEmpty());
        ghosts.look({}, drawn, 1000 + ScreenGhosts::kLife);
        QVERIFY(ghosts.regionToCover({kBeta}).isEmpty());
    }

    void manyAreMergedAndStayCovered()
    {
        ScreenGhosts ghosts;
        QList<SeenWindow> windows;
        QRegion whole;
        for (quint32 id = 0; id < 100; ++id) {
            const QRect frame(static_cast<int>(id) * 100, 500, 10, 10);
            windows.append({id, frame, id % 2 ? QStringList{kAlpha} : QStringList{kBeta}});
            if (id % 2 == 0)
                whole += frame.adjusted(-32, -32, 32, 32);
        }
        ghosts.look(windows, QRegion(), 0);
        ghosts.look({}, QRegion(), 0);
        QCOMPARE(ghosts.size(), ScreenGhosts::kMaxGhosts);
        QVERIFY((whole - ghosts.regionToCover({kBeta})).isEmpty());
    }

    void aWindowThatHasNotRepaintedShowsNothingOfAnExcludedOneThatHasClosed_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("isLookedAt");
        QTest::newRow("Damage") << QStringList() << true;
        QTest::newRow("no Damage") << QStringList{u"-extension"_s, u"DAMAGE"_s} << true;
        // As while an excluded application is in front: then no picture is asked for.
        QTest::newRow("nobody asked while it was there") << QStringList() << false;
    }
    void aWindowThatHasNotRepaintedShowsNothingOfAnExcludedOneThatHasClosed()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, isLookedAt);
        const VirtualDesktop desktop({.arguments = arguments, .hasWindowManager = false});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        WindowProgram alpha;
        WindowProgram beta;
        const QRect frame(100, 100, 600, 400);
        const quint32 below = alpha.open({.frame = frame,
                                          .windowClass = u"Alpha"_s,
                                          .overridesRedirect = true,
                                          .hasBackground = false});
        QVERIFY(below);
        const quint32 above = beta.open({.frame = {200, 200, 300, 200},
                                         .colour = kRed,
                                         .windowClass = u"Beta"_s,
                                         .overridesRedirect = true});
        QVERIFY(above);
        if (isLookedAt)
            QCOMPARE(pixelsOf(pictureOf(*screen, {kAlpha, kBeta}), kRed), 300 * 200);
        else
            QTest::qWait(5 * X11WindowWatch::kDelay);
        QVERIFY(beta.close(above));
        for (int picture = 0; picture < 3; ++picture)
            QCOMPARE(pixelsOf(pictureOf(*screen, {kAlpha}, {kBeta}), kRed), 0);
        if (!arguments.isEmpty())
            return;
        paint(X11Connection(), below, kGreen, frame.size());
        (void)pictureOf(*screen, {kAlpha}, {kBeta});
        QCOMPARE(pixelsOf(pictureOf(*screen, {kAlpha}, {kBeta}), kGreen),
                 frame.width() * frame.height());
    }
};

QTEST_GUILESS_MAIN(ScreenGhostsTest)
#include "ScreenGhostsTest.moc"
