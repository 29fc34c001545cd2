// SPDX-License-Identifier: Apache-2.0
//
// What whole capture passes leave in memory: they run every few seconds for weeks. A program of its
// own, so that the memory is that of the passes.
#include "tests/Model/RecorderRig.h"
#include "tests/ResidentMemory.h"

#include <functional>

using namespace mossbank;
using namespace Qt::StringLiterals;

#ifdef __SANITIZE_ADDRESS__
/// What is freed would be kept from use for long, and look like a leak.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "quarantine_size_mb=1";
}
#endif

class PassMemoryTest : public QObject {
    Q_OBJECT

#ifdef __SANITIZE_ADDRESS__
    // Each takes a hundred times as long; and what little leaks is found by other means.
    static constexpr int kPasses = 500;
#else
    static constexpr int kPasses = 10'000;
#endif

    using Trigger = void (*)(RecorderRig&);

    static void letTheRestPass(RecorderRig& rig)
    {
        rig.clock.advance(rig.preferences.interval());
    }
    static void askOutOfTurn(RecorderRig& rig)
    {
        rig.recorder->captureNow();
    }
    static void switchApplication(RecorderRig& rig)
    {
        // The second takes the place of the first.
        rig.front.activate(RecorderRig::kOther);
        rig.front.activate(RecorderRig::kEditor);
        waitFor([&rig] { return rig.clock.sleepers() == 2; });
        constexpr double kUntilDrawn = 0.45;
        rig.clock.advance(kUntilDrawn);
    }

    /// Without the rests of a wait that looks every ten milliseconds.
    static bool waitFor(const std::function<bool()>& isThere)
    {
        constexpr int kRounds = 1'000'000;
        for (int round = 0; round < kRounds && !isThere(); ++round)
            QCoreApplication::processEvents();
        return isThere();
    }

    /// One pass from its beginning to its end, each answer coming after its question when held.
    static bool pass(RecorderRig& rig, Trigger trigger)
    {
        FakeScreen& screen = rig.screen;
        screen.requests.clear();
        const int before = screen.contentsAsked;
        trigger(rig);
        if (!waitFor([&] { return screen.contentsAsked == before + 1; }))
            return false;
        if (screen.holdsContent)
            screen.releaseContent();
        if (!waitFor([&] { return screen.requests.size() == 1; }))
            return false;
        if (screen.holdsPicture)
            screen.releasePicture();
        return waitFor([&] { return !rig.recorder->isCapturing() && rig.clock.sleepers() == 1; });
    }

private Q_SLOTS:
    void thousandsOfUnchangedPassesLeaveNothingBehind_data()
    {
        QTest::addColumn<bool>("answersLater");
        QTest::addColumn<Trigger>("trigger");
        QTest::newRow("in turn, answered at once") << false << Trigger(letTheRestPass);
        QTest::newRow("in turn, answered later") << true << Trigger(letTheRestPass);
        QTest::newRow("out of turn") << true << Trigger(askOutOfTurn);
        QTest::newRow("after a switch") << true << Trigger(switchApplication);
    }
    void thousandsOfUnchangedPassesLeaveNothingBehind()
    {
        QFETCH(bool, answersLater);
        QFETCH(Trigger, trigger);
        constexpr int kWarm = 100;
        constexpr qint64 kLeeway = 2 * 1024 * 1024;
        RecorderRig rig;
        // No turn comes while passes out of turn are counted, and no refresh ever.
        rig.preferences.setInterval(1e5);
        rig.preferences.setUnchangedRefreshMinutes(1e9);
        rig.start();
        QCOMPARE(rig.saved().size(), 1);
        rig.screen.holdsContent = answersLater;
        rig.screen.holdsPicture = answersLater;
        // Each picture has pixels of its own, as those of a real screen have.
        rig.screen.onPicture = [&rig] {
            rig.screen.pictureNow = rig.screen.pictureNow.copy();
        };
        qint64 before = 0;
        for (int done = 0; done < kPasses; ++done) {
            if (done == kWarm)
                before = test::residentBytes(::getpid());
            QVERIFY(pass(rig, trigger));
        }
        const qint64 grown = test::residentBytes(::getpid()) - before;
        QVERIFY(before > 0);
        QVERIFY2(grown < kLeeway, qPrintable(QString::number(grown)));
        QCOMPARE(rig.recorder->status(), u"Skipped an unchanged screen"_s);
        QCOMPARE(rig.saved().size(), 1);
        QCOMPARE(rig.recognizer.readings(), 1);
        rig.screen.holdsContent = false;
        rig.screen.holdsPicture = false;
    }
};

QTEST_GUILESS_MAIN(PassMemoryTest)
#include "PassMemoryTest.moc"
