// SPDX-License-Identifier: Apache-2.0
//
// What comparing two screens takes: no memory, as it happens every few seconds for years. A program
// of its own, since it counts everything that it allocates.
#include "MossbankCore/Capture/ScreenMotion.h"

#include <QTest>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int> allocations = 0;

void* allocate(std::size_t size)
{
    ++allocations;
    void* const memory = std::malloc(size > 0 ? size : 1);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

} // namespace

// In place of the standard library's, for the whole program.
void* operator new(std::size_t size)
{
    return allocate(size);
}
void* operator new[](std::size_t size)
{
    return allocate(size);
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace mossbank {

class ComparisonCostTest : public QObject {
    Q_OBJECT

    static constexpr std::size_t kCells = 36'864;
    const std::optional<Fingerprint> m_before = Fingerprint(kCells, 10);
    std::optional<Fingerprint> m_after = m_before;

    template <typename Work>
    static int allocationsOf(Work work)
    {
        const int before = allocations;
        work();
        return allocations - before;
    }

private Q_SLOTS:
    void initTestCase()
    {
        (*m_after)[7] = 90;
        (*m_after)[kCells - 1] = 90;
    }

    void theCountCounts()
    {
        const int copied = allocationsOf([this] {
            const std::optional<Fingerprint> copy = m_after;
            QCOMPARE(copy->size(), kCells);
        });
        QCOMPARE(copied, 1);
    }

    void comparingAllocatesNothing()
    {
        std::int64_t moved = 0;
        bool changed = false;
        QCOMPARE(allocationsOf([&] { moved = ScreenFingerprint::moved(m_before, m_after, 2); }), 0);
        QCOMPARE(moved, std::int64_t{2});
        QCOMPARE(allocationsOf([&] { changed = ScreenFingerprint::changed(m_before, m_after, 2); }),
                 0);
        QVERIFY(changed);
        QCOMPARE(allocationsOf([&] { moved = ScreenFingerprint::moved({}, m_after, 2); }), 0);
        QCOMPARE(moved, ScreenFingerprint::kNotComparable);
    }

    void leavingOutWhatMovesAllocatesNothing()
    {
        ScreenMotion motion;
        std::int64_t novel = 0;
        QCOMPARE(allocationsOf([&] { novel = motion.novel(m_before, m_after, 2); }), 0);
        QCOMPARE(novel, std::int64_t{2});
        for (int time = 0; time < 3; ++time)
            motion.observe(m_before, m_after, 2);
        QCOMPARE(allocationsOf([&] { novel = motion.novel(m_before, m_after, 2); }), 0);
        QCOMPARE(novel, std::int64_t{0});
    }

    void onlyTheFirstObservationAllocates()
    {
        ScreenMotion motion;
        QCOMPARE(allocationsOf([&] { motion.observe(m_before, m_after, 2); }), 1);
        QCOMPARE(allocationsOf([&] { motion.observe(m_after, m_before, 2); }), 0);
        QCOMPARE(int{motion.sightings[7]}, 2);
    }
};

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::ComparisonCostTest)
#include "ComparisonCostTest.moc"
