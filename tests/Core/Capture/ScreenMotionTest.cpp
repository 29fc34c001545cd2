// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/ScreenMotion.h"

#include "tests/Core/RandomRounds.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <vector>

namespace mossbank {

namespace {

constexpr std::size_t kCells = 100;
constexpr std::uint8_t kTolerance = 2;

/// A still screen with these cells lit.
Fingerprint lit(const std::vector<std::size_t>& cells, std::uint8_t light = 200)
{
    Fingerprint fingerprint(kCells, 50);
    for (const std::size_t cell : cells)
        fingerprint[cell] = light;
    return fingerprint;
}

std::vector<std::size_t> firstCells(std::size_t count)
{
    std::vector<std::size_t> cells(count);
    for (std::size_t cell = 0; cell < count; ++cell)
        cells[cell] = cell;
    return cells;
}

/// Lets these cells move once, in a change of their own.
void blink(ScreenMotion& motion, const std::vector<std::size_t>& cells)
{
    motion.observe(lit({}), lit(cells), kTolerance);
}

} // namespace

class ScreenMotionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itBeginsKnowingNothing();
    void aCellSettlesAfterThreeSmallChanges();
    void aCellSeenOftenerCountsNoMore();
    void aCellThatStaysStillUnlearnsByOne();
    void aStillScreenNeitherTeachesNorUnlearns();
    void aChangeOfTwelveCellsTeachesAndOneOfThirteenDoesNot();
    void aChangeWithinTheToleranceTeachesNothing();
    void whatCannotBeComparedTeachesNothing_data();
    void whatCannotBeComparedTeachesNothing();
    void anotherSizeStartsTheLearningOver();
    void settledCellsAreNoNews();
    void cellsBeyondTheSightingsAreNews();
    void whatCannotBeComparedIsNotComparable();
    void forgettingStartsTheLearningOver();
    void motionsAreComparedFieldByField();
    void aCaretIsLearntAndAWordBesideItIsNews();
    void aWholeScreenIsLearntAsItsCellsOneByOne_data();
    void aWholeScreenIsLearntAsItsCellsOneByOne();
    void theThirteenthCellMayBeTheLastOfTheScreen();
};

void ScreenMotionTest::itBeginsKnowingNothing()
{
    const ScreenMotion motion;
    QVERIFY(motion.sightings.empty());
    QCOMPARE(motion.restless(), std::int64_t{0});
    QCOMPARE(int{ScreenMotion::kSettledAfter}, 3);
    QCOMPARE(ScreenMotion::kFlickerCeiling, std::int64_t{12});
}

void ScreenMotionTest::aCellSettlesAfterThreeSmallChanges()
{
    ScreenMotion motion;
    for (int seen = 1; seen <= 3; ++seen) {
        blink(motion, {7});
        QCOMPARE(int{motion.sightings[7]}, seen);
        QCOMPARE(motion.restless(), std::int64_t{seen == 3 ? 1 : 0});
        QCOMPARE(motion.novel(lit({}), lit({7}), kTolerance), std::int64_t{seen == 3 ? 0 : 1});
    }
    QCOMPARE(motion.sightings.size(), kCells);
    QCOMPARE(int{motion.sightings[6]}, 0);
}

void ScreenMotionTest::aCellSeenOftenerCountsNoMore()
{
    ScreenMotion motion;
    for (int seen = 0; seen < 4; ++seen)
        blink(motion, {7});
    QCOMPARE(int{motion.sightings[7]}, 3);
    blink(motion, {50});
    QCOMPARE(int{motion.sightings[7]}, 2);
    QCOMPARE(motion.restless(), std::int64_t{0});
    QCOMPARE(motion.novel(lit({}), lit({7}), kTolerance), std::int64_t{1});
}

void ScreenMotionTest::aCellThatStaysStillUnlearnsByOne()
{
    ScreenMotion motion;
    blink(motion, {7, 8});
    blink(motion, {8});
    QCOMPARE(int{motion.sightings[7]}, 0);
    QCOMPARE(int{motion.sightings[8]}, 2);
    blink(motion, {50});
    blink(motion, {50});
    blink(motion, {50});
    QCOMPARE(int{motion.sightings[7]}, 0);
    QCOMPARE(int{motion.sightings[8]}, 0);
    QCOMPARE(int{motion.sightings[50]}, 3);
}

void ScreenMotionTest::aStillScreenNeitherTeachesNorUnlearns()
{
    ScreenMotion motion;
    blink(motion, {7});
    const ScreenMotion before = motion;
    blink(motion, {});
    QCOMPARE(motion, before);
}

void ScreenMotionTest::aChangeOfTwelveCellsTeachesAndOneOfThirteenDoesNot()
{
    ScreenMotion motion;
    blink(motion, firstCells(12));
    for (std::size_t cell = 0; cell < kCells; ++cell)
        QCOMPARE(int{motion.sightings[cell]}, cell < 12 ? 1 : 0);
    const ScreenMotion before = motion;
    blink(motion, firstCells(13));
    QCOMPARE(motion, before);
    blink(motion, firstCells(kCells));
    QCOMPARE(motion, before);
    blink(motion, firstCells(12));
    QCOMPARE(int{motion.sightings[11]}, 2);
}

void ScreenMotionTest::aChangeWithinTheToleranceTeachesNothing()
{
    ScreenMotion motion;
    motion.observe(lit({}), lit({7}, 52), kTolerance);
    QCOMPARE(motion.sightings, std::vector<std::uint8_t>(kCells, 0));
    motion.observe(lit({}), lit({7}, 53), kTolerance);
    QCOMPARE(int{motion.sightings[7]}, 1);
}

void ScreenMotionTest::whatCannotBeComparedTeachesNothing_data()
{
    using Cells = std::optional<Fingerprint>;
    QTest::addColumn<Cells>("earlier");
    QTest::addColumn<Cells>("later");
    QTest::newRow("earlier absent") << Cells() << Cells(lit({7}));
    QTest::newRow("later absent") << Cells(lit({7})) << Cells();
    QTest::newRow("both absent") << Cells() << Cells();
    QTest::newRow("both empty") << Cells(Fingerprint()) << Cells(Fingerprint());
    QTest::newRow("different lengths") << Cells(Fingerprint(4, 0)) << Cells(lit({7}));
}

void ScreenMotionTest::whatCannotBeComparedTeachesNothing()
{
    QFETCH(std::optional<Fingerprint>, earlier);
    QFETCH(std::optional<Fingerprint>, later);
    ScreenMotion motion;
    motion.observe(earlier, later, kTolerance);
    QVERIFY(motion.sightings.empty());
    blink(motion, {7});
    const ScreenMotion before = motion;
    motion.observe(earlier, later, kTolerance);
    QCOMPARE(motion, before);
}

void ScreenMotionTest::anotherSizeStartsTheLearningOver()
{
    const auto settled = [] {
        ScreenMotion motion;
        for (int seen = 0; seen < 3; ++seen)
            blink(motion, {7});
        return motion;
    };
    ScreenMotion still = settled();
    still.observe(Fingerprint(400, 9), Fingerprint(400, 9), kTolerance);
    QCOMPARE(still.sightings, std::vector<std::uint8_t>(400, 0));

    ScreenMotion changed = settled();
    changed.observe(Fingerprint(400, 9), Fingerprint(400, 90), kTolerance);
    QCOMPARE(changed.sightings, std::vector<std::uint8_t>(400, 0));

    ScreenMotion smaller = settled();
    smaller.observe(Fingerprint{1, 1}, Fingerprint{1, 9}, kTolerance);
    QCOMPARE(smaller.sightings, (std::vector<std::uint8_t>{0, 1}));
}

void ScreenMotionTest::settledCellsAreNoNews()
{
    ScreenMotion motion;
    motion.sightings.assign(kCells, 0);
    motion.sightings[1] = 3;
    motion.sightings[2] = 2;
    motion.sightings[3] = 255;
    QCOMPARE(motion.restless(), std::int64_t{2});
    QCOMPARE(motion.novel(lit({}), lit({0, 1, 2, 3}), kTolerance), std::int64_t{2});
    QCOMPARE(motion.novel(lit({}), lit({1, 3}), kTolerance), std::int64_t{0});
    QCOMPARE(motion.novel(lit({}), lit({}), kTolerance), std::int64_t{0});
    // A count that is beyond its cap, however it came there, comes back under it.
    blink(motion, {3});
    QCOMPARE(int{motion.sightings[3]}, 3);
}

void ScreenMotionTest::cellsBeyondTheSightingsAreNews()
{
    ScreenMotion motion;
    QCOMPARE(motion.novel(lit({}), lit({0, 99}), kTolerance),
             ScreenFingerprint::moved(lit({}), lit({0, 99}), kTolerance));
    motion.sightings = {3, 3};
    QCOMPARE(motion.novel(lit({}), lit({0, 1, 2, 99}), kTolerance), std::int64_t{2});
}

void ScreenMotionTest::whatCannotBeComparedIsNotComparable()
{
    ScreenMotion motion;
    motion.sightings.assign(kCells, 3);
    QCOMPARE(motion.novel({}, lit({}), kTolerance), ScreenFingerprint::kNotComparable);
    QCOMPARE(motion.novel(lit({}), {}, kTolerance), ScreenFingerprint::kNotComparable);
    QCOMPARE(motion.novel(Fingerprint(), Fingerprint(), kTolerance),
             ScreenFingerprint::kNotComparable);
    QCOMPARE(motion.novel(lit({}), Fingerprint(4, 0), kTolerance),
             ScreenFingerprint::kNotComparable);
}

void ScreenMotionTest::forgettingStartsTheLearningOver()
{
    ScreenMotion motion;
    for (int seen = 0; seen < 3; ++seen)
        blink(motion, {7});
    motion.forget();
    QVERIFY(motion.sightings.empty());
    QCOMPARE(motion, ScreenMotion());
    QCOMPARE(motion.novel(lit({}), lit({7}), kTolerance), std::int64_t{1});
}

void ScreenMotionTest::motionsAreComparedFieldByField()
{
    ScreenMotion one;
    ScreenMotion other;
    blink(one, {7});
    QVERIFY(!(one == other));
    blink(other, {7});
    QVERIFY(one == other);
    blink(other, {8});
    QVERIFY(!(one == other));
}

void ScreenMotionTest::aCaretIsLearntAndAWordBesideItIsNews()
{
    ScreenMotion motion;
    const Fingerprint shown = lit({40, 41});
    const Fingerprint hidden = lit({});
    for (int check = 0; check < 3; ++check)
        motion.observe(check % 2 ? shown : hidden, check % 2 ? hidden : shown, kTolerance);
    QCOMPARE(motion.restless(), std::int64_t{2});
    QCOMPARE(motion.novel(hidden, shown, kTolerance), std::int64_t{0});
    QCOMPARE(motion.novel(hidden, lit({40, 41, 60}), kTolerance), std::int64_t{1});
    QCOMPARE(ScreenFingerprint::moved(hidden, lit({40, 41, 60}), kTolerance), std::int64_t{3});
}

void ScreenMotionTest::aWholeScreenIsLearntAsItsCellsOneByOne_data()
{
    QTest::addColumn<std::size_t>("cells");
    for (const std::size_t cells : {1, 127, 128, 129, 300, 36'864})
        QTest::addRow("%zu", cells) << cells;
}

/// Small changes at random, against a count kept cell by cell.
void ScreenMotionTest::aWholeScreenIsLearntAsItsCellsOneByOne()
{
    QFETCH(std::size_t, cells);
    QRandomGenerator random(randomSeed());
    const Fingerprint first(cells, 50);
    Fingerprint shown = first;
    ScreenMotion motion;
    std::vector<int> expected(cells, 0);
    std::vector<std::size_t> restless;
    for (int cell = 0; cell < 6; ++cell)
        restless.push_back(static_cast<std::size_t>(random.bounded(static_cast<int>(cells))));
    for (int check = 0; check < 60; ++check) {
        const Fingerprint earlier = shown;
        for (const std::size_t cell : restless)
            shown[cell] = static_cast<std::uint8_t>(random.bounded(4) ? random.bounded(256) : 50);
        std::set<std::size_t> moved;
        for (const std::size_t cell : restless) {
            if (std::abs(shown[cell] - earlier[cell]) > kTolerance)
                moved.insert(cell);
        }
        for (std::size_t cell = 0; cell < cells && !moved.empty(); ++cell)
            expected[cell] = std::clamp(expected[cell] + (moved.contains(cell) ? 1 : -1), 0, 3);

        motion.observe(earlier, shown, kTolerance);
        QVERIFY(std::ranges::equal(motion.sightings, expected));
        std::int64_t news = 0;
        for (std::size_t cell = 0; cell < cells; ++cell)
            news += std::abs(shown[cell] - first[cell]) > kTolerance && expected[cell] < 3;
        QCOMPARE(motion.novel(first, shown, kTolerance), news);
        QCOMPARE(motion.restless(), std::ranges::count(expected, 3));
    }
}

void ScreenMotionTest::theThirteenthCellMayBeTheLastOfTheScreen()
{
    constexpr std::size_t kScreen = 36'864;
    const Fingerprint still(kScreen, 50);
    Fingerprint changed = still;
    for (std::size_t cell = 0; cell < 12; ++cell)
        changed[cell * 3'000] = 200;
    ScreenMotion motion;
    motion.observe(still, changed, kTolerance);
    QCOMPARE(int{motion.sightings[33'000]}, 1);
    const ScreenMotion before = motion;
    changed[kScreen - 1] = 200;
    motion.observe(still, changed, kTolerance);
    QCOMPARE(motion, before);
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::ScreenMotionTest)
#include "ScreenMotionTest.moc"
