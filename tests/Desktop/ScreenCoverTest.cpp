// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ScreenCover.h"

#include <QTest>

using namespace mossbank;

namespace {

CoverWindow window(const QRect& frame, Visibility visibility)
{
    return {frame, frame, visibility};
}

} // namespace

class ScreenCoverTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingIsCoveredWhereEveryWindowMayBeSeen()
    {
        QVERIFY(regionToCover({window({0, 0, 100, 100}, Visibility::Shown),
                               window({50, 50, 100, 100}, Visibility::Unknown)})
                    .isEmpty());
    }

    void aWindowLeftOutIsCoveredWholeUnderWhateverLiesOverIt()
    {
        const QRegion covered = regionToCover({window({0, 0, 500, 500}, Visibility::Shown),
                                               window({100, 100, 50, 50}, Visibility::LeftOut)});
        QVERIFY(covered.contains(QRect(100, 100, 50, 50)));
        QVERIFY(QRegion(100, 100, 50, 50).subtracted(covered).isEmpty());
    }

    void theShadowAroundItIsCoveredToo()
    {
        const QRegion covered = regionToCover({window({100, 100, 50, 50}, Visibility::LeftOut)});
        QVERIFY(covered.contains(QPoint(90, 90)));
        QVERIFY(covered.contains(QPoint(160, 160)));
        QVERIFY(!covered.contains(QPoint(0, 0)));
        QVERIFY(!covered.contains(QPoint(300, 300)));
    }

    void aChainOfUnknownWindowsOverOneLeftOutIsCovered()
    {
        const QRect menu(160, 100, 100, 20);
        const QRect submenu(270, 100, 300, 20);
        const QRegion covered =
            regionToCover({window(submenu, Visibility::Unknown), window(menu, Visibility::Unknown),
                           window({100, 100, 50, 50}, Visibility::LeftOut)});
        QVERIFY(QRegion(menu).subtracted(covered).isEmpty());
        QVERIFY(QRegion(submenu).subtracted(covered).isEmpty());
    }

    void anUnknownWindowBelowOneLeftOutShowsBesideIt()
    {
        const QRegion covered = regionToCover({window({100, 100, 50, 50}, Visibility::LeftOut),
                                               window({0, 0, 1000, 1000}, Visibility::Unknown)});
        QVERIFY(!covered.contains(QPoint(500, 500)));
    }

    void ofAnOwnWindowOnlyWhatShowsIsCovered()
    {
        const QRegion covered = regionToCover({window({50, 0, 50, 100}, Visibility::Shown),
                                               window({0, 0, 100, 100}, Visibility::Own)});
        QCOMPARE(covered, QRegion(0, 0, 50, 100));
    }

    void anOwnWindowBehindATranslucentOneIsCovered()
    {
        const CoverWindow glass = {{50, 0, 50, 100}, QRegion(60, 0, 10, 100), Visibility::Shown};
        const QRegion covered = regionToCover({glass, window({0, 0, 100, 100}, Visibility::Own)});
        QCOMPARE(covered, QRegion(0, 0, 100, 100) - QRegion(60, 0, 10, 100));
    }
};

QTEST_GUILESS_MAIN(ScreenCoverTest)
#include "ScreenCoverTest.moc"
