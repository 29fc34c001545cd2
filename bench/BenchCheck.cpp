// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchCheck.h"

#include "Mossbank/Model/ScreensSeen.h"
#include "Mossbank/Platform/Linux/X11Screen.h"
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchBounds.h"
#include "bench/BenchDesktop.h"
#include "bench/BenchMemory.h"
#include "bench/BenchOutput.h"
#include "bench/BenchTiming.h"

#include <QImage>
#include <QRandomGenerator>

#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kSize = 192;
constexpr std::uint8_t kTolerance = 2;
constexpr int kRounds = 301;
constexpr int kChecks = 10'000;
constexpr int kWarm = 100;
constexpr double kMillion = 1e6;
constexpr double kThousand = 1e3;

/// Keeps a result from being left out as unused.
volatile std::uint64_t sink = 0;

QImage noise(const QSize& size)
{
    QImage image(size, QImage::Format_RGB32);
    QRandomGenerator::global()->fillRange(reinterpret_cast<quint32*>(image.bits()),
                                          image.sizeInBytes() / qsizetype{sizeof(quint32)});
    return image;
}

// As wide as the loop that it is compared with.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__)
__attribute__((target_clones("avx2", "default")))
#endif
/// Every byte is fetched, and nothing else is done with it than has to be.
void readAll(const QImage& image)
{
    const auto* const words = reinterpret_cast<const std::uint32_t*>(image.constBits());
    const auto count = static_cast<std::size_t>(image.sizeInBytes()) / sizeof(std::uint32_t);
    std::uint32_t sum = 0;
    for (std::size_t word = 0; word < count; ++word)
        sum += words[word];
    sink = sink + sum;
}

/// `pictures` in turn: several are together more than the caches hold, so that each comes from
/// memory as one that was just taken may.
PairedTimes measureMake(const QString& from, int pictures, Bounds& bounds)
{
    std::vector<QImage> images;
    for (int picture = 0; picture < pictures; ++picture)
        images.push_back(noise({2048, 1152}));
    const auto at = [&](int round) -> const QImage& {
        return images[static_cast<std::size_t>(round) % images.size()];
    };
    // Each reads another one than the other has just read.
    const PairedTimes paired = sideBySide(
        kRounds,
        [&](int round) { sink = sink + ScreenFingerprint::make(at(2 * round), kSize)->back(); },
        [&](int round) { readAll(at(2 * round + 1)); });
    printTimes({{u"bench"_s, u"check"_s},
                {u"what"_s, u"make 2048x1152"_s},
                {u"from"_s, from},
                {u"baseline"_s, u"a plain read"_s},
                {u"least_ms"_s, rounded(quantile(paired.times, 0))},
                {u"baseline_least_ms"_s, rounded(quantile(paired.baseline, 0))}},
               paired);
    bounds.hold(u"make 2048x1152 from "_s + from, median(paired.times),
                CheckBounds::kMakeMilliseconds, u"ms"_s);
    return paired;
}

void measureMakes(Bounds& bounds)
{
    measureMake(u"the caches"_s, 1, bounds);
    // A picture that was just taken was written by another process, and is larger than what a core
    // keeps at hand.
    const PairedTimes paired = measureMake(u"memory"_s, 12, bounds);
    bounds.hold(u"make 2048x1152 from memory"_s, paired.ratio(), CheckBounds::kMakeToPlainRead,
                u"times a plain read"_s);
}

/// One comparison of all cells, beside a copy of them. In microseconds.
template <typename Compare>
double measureComparison(const QString& what, const Fingerprint& cells, Compare compare)
{
    constexpr int kTimes = 100;
    Fingerprint copy(cells.size());
    PairedTimes paired = sideBySide(
        kRounds,
        [&](int) {
            for (int time = 0; time < kTimes; ++time)
                sink = sink + static_cast<std::uint64_t>(compare());
        },
        [&](int) {
            for (int time = 0; time < kTimes; ++time) {
                std::ranges::copy(cells, copy.begin());
                sink = sink + copy[static_cast<std::size_t>(time)];
            }
        });
    const auto toOne = [](double milliseconds) {
        return milliseconds * kThousand / kTimes;
    };
    const double microseconds = toOne(median(paired.times));
    printFigures({{u"bench"_s, u"check"_s},
                  {u"what"_s, what},
                  {u"baseline"_s, u"a copy of the same cells"_s},
                  {u"baseline_microseconds"_s, rounded(toOne(median(paired.baseline)))},
                  {u"microseconds"_s, rounded(microseconds)},
                  {u"ratio"_s, rounded(paired.ratio())},
                  {u"p99"_s, rounded(toOne(quantile(paired.times, 0.99)))}});
    return microseconds;
}

void measureComparisons(Bounds& bounds)
{
    Fingerprint cells = ScreenFingerprint::make(noise({1920, 1080}), kSize).value();
    const std::optional<Fingerprint> before = cells;
    for (std::size_t cell = 0; cell < cells.size(); cell += 5000)
        cells[cell] ^= 0x40U;
    const std::optional<Fingerprint> after = std::move(cells);
    ScreenMotion motion;
    motion.observe(before, after, kTolerance);
    const auto hold = [&](const QString& what, auto compare) {
        bounds.hold(what, measureComparison(what, *after, compare),
                    CheckBounds::kComparisonMicroseconds, u"microseconds"_s);
    };
    hold(u"moved"_s, [&] { return ScreenFingerprint::moved(before, after, kTolerance); });
    hold(u"novel"_s, [&] { return motion.novel(before, after, kTolerance); });
    measureComparison(u"observe, a small change"_s, *after, [&] {
        motion.observe(before, after, kTolerance);
        return 1;
    });
    measureComparison(u"observe, a still screen"_s, *after, [&] {
        motion.observe(before, before, kTolerance);
        return 1;
    });
}

/// Of all threads of this process.
double processorMilliseconds()
{
    rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec);
    const auto micros = static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
    return seconds * kThousand + micros / kThousand;
}

/// What a capture pass does with a screen up to its decision.
class Check {
public:
    /// Whether the screen showed nothing new.
    bool run()
    {
        const ScreenContent content = m_screen.content().result();
        PictureRequest request = {content.mainDisplay.value_or(0), {}, {}, {u"bench.own"_s}};
        for (const Application& application : content.applications)
            request.included.append(application.bundleID);
        for (const Display& display : content.displays) {
            if (display.id == request.display)
                request.size = display.frame.size();
        }
        const QImage picture = m_screen.picture(request).result();
        const auto fingerprint = ScreenFingerprint::make(picture, kSize);
        const std::int64_t moved = m_seen.look(fingerprint);
        const bool isUnchanged = m_seen.isUnchanged(fingerprint, moved, u"flicker"_s);
        if (!isUnchanged)
            m_seen.lastScreen = fingerprint;
        return isUnchanged;
    }

private:
    // The windows are of this process, and yet not the program's own.
    X11Screen m_screen{std::make_shared<ApplicationCatalog>(), {0, u"bench.own"_s}};
    ScreensSeen m_seen;
};

void measureChecks(int checks, Bounds& bounds)
{
    const BareGrab bare;
    Check check;
    for (int round = 0; round < kWarm; ++round)
        check.run();
    const double residentBefore = residentMegabytes("VmRSS");
    int changed = 0;
    std::vector<double> wall;
    std::vector<double> grab;
    double processor = 0;
    double grabProcessor = 0;
    for (int round = 0; round < checks; ++round) {
        const double start = processorMilliseconds();
        wall.push_back(milliseconds([&] { changed += check.run() ? 0 : 1; }));
        const double middle = processorMilliseconds();
        grab.push_back(milliseconds([&] { bare.take(); }));
        processor += middle - start;
        grabProcessor += processorMilliseconds() - middle;
    }
    if (changed > 0)
        throw Failure(u"The screen changed %1 times while it was measured."_s.arg(changed));
    printFigures({{u"bench"_s, u"check"_s},
                  {u"what"_s, u"a whole unchanged check"_s},
                  {u"checks"_s, checks},
                  {u"baseline"_s, u"a bare grab of the root"_s},
                  {u"baseline_ms"_s, rounded(median(grab))},
                  {u"ms"_s, rounded(median(wall))},
                  {u"ratio"_s, rounded(median(wall) / median(grab))},
                  {u"p99_ms"_s, rounded(quantile(wall, 0.99))},
                  {u"processor_ms"_s, rounded(processor / checks)},
                  {u"baseline_processor_ms"_s, rounded(grabProcessor / checks)}});
    // The two lists of times are of the measurement.
    const double own = 2.0 * static_cast<double>(wall.capacity() * sizeof(double)) / kMillion;
    const double residentAfter = residentMegabytes("VmRSS") - own;
    printFigures({{u"bench"_s, u"check"_s},
                  {u"what"_s, u"resident memory"_s},
                  {u"after_%1_mb"_s.arg(kWarm), rounded(residentBefore)},
                  {u"after_%1_mb"_s.arg(kWarm + checks), rounded(residentAfter)}});
    bounds.hold(u"resident memory after %1 checks"_s.arg(kWarm + checks),
                residentAfter - residentBefore, CheckBounds::kGrowthMegabytes,
                u"MB more than after %1"_s.arg(kWarm));
    bounds.hold(u"a whole unchanged check"_s, processor / checks,
                CheckBounds::kProcessorMilliseconds, u"ms of processor time"_s);
}

/// A number above zero behind the option, or `otherwise` where the option is not there.
int numberBehind(const QString& option, const QStringList& arguments, int otherwise)
{
    const qsizetype place = arguments.indexOf(option);
    const int number = place < 0 ? otherwise : arguments.value(place + 1).toInt();
    if (number <= 0)
        throw Failure(u"The number behind %1 is no number above zero."_s.arg(option));
    return number;
}

} // namespace

int benchCheck(const QStringList& arguments)
{
    Bounds bounds;
    try {
        const std::array windows = {
            std::make_unique<BenchWindow>("BenchOne", QRect(50, 50, 700, 500), 0x205080),
            std::make_unique<BenchWindow>("BenchTwo", QRect(400, 300, 700, 500), 0x508020),
            std::make_unique<BenchWindow>("BenchOne", QRect(900, 100, 600, 400), 0x802050),
            std::make_unique<BenchWindow>("BenchTwo", QRect(200, 600, 500, 300), 0x404040),
            std::make_unique<BenchWindow>("BenchThree", QRect(1200, 600, 500, 300), 0x606060),
        };
        if (arguments.contains(u"--program"_s)) {
            const qsizetype front = arguments.indexOf(u"--program"_s) + 2;
            measureProgram(numberBehind(u"--program"_s, arguments, 1), arguments.mid(front),
                           bounds);
            return bounds.exitStatus();
        }
        const int checks = numberBehind(u"--rounds"_s, arguments, kChecks);
        measureMakes(bounds);
        measureComparisons(bounds);
        measureChecks(checks, bounds);
    } catch (const Failure& failure) {
        return benchFailed(failure.message());
    }
    return bounds.exitStatus();
}

} // namespace mossbank
