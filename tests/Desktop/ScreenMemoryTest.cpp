// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/ScreensSeen.h"
#include "tests/Desktop/DesktopTest.h"
#include "tests/ResidentMemory.h"

#include <QDir>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

qsizetype openFiles()
{
    return QDir(u"/proc/self/fd"_s).entryList(QDir::Files | QDir::System).size();
}

} // namespace

/// Left running for weeks, nothing may pile up.
class ScreenMemoryTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void twoThousandPicturesLeaveNothingBehind()
    {
        const VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        WindowProgram alpha;
        WindowProgram beta;
        QVERIFY(alpha.open(
            {.frame = {200, 200, 300, 200}, .colour = kGreen, .windowClass = u"Alpha"_s}));
        QVERIFY(
            beta.open({.frame = {900, 200, 300, 200}, .colour = kRed, .windowClass = u"Beta"_s}));
        QImage last;
        const auto look = [&] {
            const ScreenContent content = screen->content().result();
            last = screen->picture({*content.mainDisplay, {kAlpha}, {1920, 1080}}).result();
        };
        for (int round = 0; round < 50; ++round)
            look();
        const qint64 ownBefore = residentBytes(::getpid());
        const qint64 serverBefore = residentBytes(desktop.serverProcess());
        const qsizetype filesBefore = openFiles();
        QVERIFY(ownBefore > 0 && serverBefore > 0);
        for (int round = 0; round < 2000; ++round)
            look();
        constexpr qint64 kLeeway = 2'000'000; // a quarter of one picture
        const qint64 own = residentBytes(::getpid()) - ownBefore;
        const qint64 server = residentBytes(desktop.serverProcess()) - serverBefore;
        QVERIFY2(own < kLeeway, qPrintable(QString::number(own)));
        QVERIFY2(server < kLeeway, qPrintable(QString::number(server)));
        QCOMPARE(openFiles(), filesBefore);
        QVERIFY(!last.isNull());
    }

    /// What a capture pass does, up to its decision.
    void twoThousandUnchangedChecksLeaveNothingBehind()
    {
        const VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        WindowProgram alpha;
        QVERIFY(alpha.open(
            {.frame = {200, 200, 300, 200}, .colour = kGreen, .windowClass = u"Alpha"_s}));
        ScreensSeen seen;
        int changes = 0;
        const auto check = [&] {
            const ScreenContent content = screen->content().result();
            const QImage picture =
                screen->picture({*content.mainDisplay, {kAlpha}, {1920, 1080}}).result();
            const auto fingerprint = ScreenFingerprint::make(picture, 192);
            const auto moved = seen.look(fingerprint);
            if (!seen.isUnchanged(fingerprint, moved, u"flicker"_s))
                ++changes;
            seen.lastScreen = fingerprint;
        };
        for (int round = 0; round < 100; ++round)
            check();
        // By then the window manager has drawn its frame.
        changes = 0;
        const qint64 before = residentBytes(::getpid());
        const qsizetype filesBefore = openFiles();
        for (int round = 0; round < 2000; ++round)
            check();
        constexpr qint64 kLeeway = 2'000'000;
        const qint64 grown = residentBytes(::getpid()) - before;
        QVERIFY2(grown < kLeeway, qPrintable(QString::number(grown)));
        QCOMPARE(openFiles(), filesBefore);
        QCOMPARE(changes, 0);
    }

    void picturesThatAreKeptAreGivenBackLater()
    {
        const VirtualDesktop desktop({.hasWindowManager = false});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        const qint64 before = residentBytes(::getpid());
        QList<QImage> kept;
        for (int round = 0; round < 10; ++round)
            kept.append(pictureOf(*screen, {}));
        kept.clear();
        QVERIFY(!pictureOf(*screen, {}).isNull());
        constexpr qint64 kPicture = 1920 * 1080 * 4;
        const qint64 grown = residentBytes(::getpid()) - before;
        QVERIFY2(grown < 4 * kPicture, qPrintable(QString::number(grown)));
    }
};

QTEST_GUILESS_MAIN(ScreenMemoryTest)
#include "ScreenMemoryTest.moc"
