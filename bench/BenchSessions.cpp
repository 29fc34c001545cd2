// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchSessions.h"

#include "Mossbank/Model/Grouping.h"
#include "MossbankCore/Browsing/DaySessions.h"
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchBounds.h"
#include "bench/BenchOutput.h"
#include "bench/BenchTiming.h"
#include "bench/SyntheticLibrary.h"

#include <functional>
#include <numeric>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kRounds = 15;
constexpr int kRows = 20'000;
constexpr int kFewerRows = 5'000;

/// Screenshots of 2 KB, each with words of its own, newest first. `moment`: when one of that number
/// was taken, in seconds since the first.
QList<Memory> screenshots(int rows, const std::function<double(int)>& moment)
{
    constexpr qsizetype kTextSize = 2048;
    constexpr int kApplications = 12;
    constexpr int kRowsAnApplication = 60;
    // The first moment of a day.
    constexpr double kDay = 1'780'272'000;
    SyntheticScreenshots source;
    QList<Memory> memories;
    int drawn = 0;
    for (int number = 0; number < rows; ++number) {
        Memory memory = source.next(drawn++);
        while (memory.text.size() < kTextSize)
            memory.text += source.next(drawn++).text;
        memory.text.truncate(kTextSize);
        memory.timestamp = {kDay + moment(number)};
        memory.appName = u"Application %1"_s.arg(number / kRowsAnApplication % kApplications);
        memory.bundleID = memory.appName;
        memories.prepend(memory);
    }
    return memories;
}

/// Half an hour of work at 30 seconds, then a longer pause than a stretch has.
QList<Memory> historyWithPauses(int rows)
{
    constexpr int kRowsAStretch = 60;
    constexpr double kApart = 30;
    return screenshots(rows, [](int number) {
        return number * kApart + number / kRowsAStretch * 2 * Grouping::kGap;
    });
}

/// Nobody looks at the sum; without it, nothing would be read.
volatile qsizetype s_sum = 0;

void readAll(const QList<Memory>& memories)
{
    s_sum = std::accumulate(memories.begin(), memories.end(), qsizetype{0},
                            [](qsizetype sum, const Memory& memory) {
                                for (const QChar unit : memory.text)
                                    sum += unit.unicode();
                                return sum;
                            });
}

/// How many stretches there are. Throws a Failure where one is not whole.
qsizetype grouped(const QList<Memory>& memories)
{
    const QList<Session> sessions =
        DaySessions::sessions(memories, Grouping::kGap, Grouping::kLongest, Grouping::kKeywords);
    qsizetype rows = 0;
    for (const Session& session : sessions) {
        rows += session.count();
        if (session.keywords.size() != Grouping::kKeywords ||
            session.titles.size() != Grouping::kKeywords || session.apps.isEmpty())
            throw Failure(u"A stretch of work is not named."_s);
    }
    if (rows != memories.size())
        throw Failure(u"Not all screenshots are in a stretch of work."_s);
    return sessions.size();
}

void measure(const QString& what, const std::function<QList<Memory>(int)>& make, Bounds& bounds)
{
    constexpr double kMost = 120;
    const QList<Memory> all = make(kRows);
    const PairedTimes paired = sideBySide(
        kRounds, [&](int) { grouped(all); }, [&](int) { readAll(all); });
    printTimes({{u"bench"_s, u"browse"_s},
                {u"what"_s, what},
                {u"rows"_s, kRows},
                {u"stretches"_s, static_cast<qint64>(grouped(all))},
                {u"baseline"_s, u"every letter of the same rows read once"_s}},
               paired);
    bounds.hold(what, median(paired.times), kMost, u"ms"_s);

    // A fourth of the rows; a tenth more than four times as long is noise.
    constexpr double kMostGrowth = 4.4;
    const QList<Memory> fewer = make(kFewerRows);
    const PairedTimes growth = sideBySide(
        kRounds, [&](int) { grouped(all); }, [&](int) { grouped(fewer); });
    printTimes({{u"bench"_s, u"browse"_s},
                {u"what"_s, what},
                {u"rows"_s, kRows},
                {u"baseline"_s, u"the same of %1 rows"_s.arg(kFewerRows)}},
               growth);
    bounds.hold(what + u", growth from a fourth of the rows"_s, growth.ratio(), kMostGrowth,
                u"times"_s);
}

} // namespace

QList<Memory> continuousDay(int rows)
{
    constexpr double kDay = 86'400;
    return screenshots(rows, [rows](int number) { return number * kDay / rows; });
}

void measureSessions(Bounds& bounds)
{
    measure(u"stretches of work of a day without a pause"_s, continuousDay, bounds);
    measure(u"stretches of work of a history with pauses"_s, historyWithPauses, bounds);
}

} // namespace mossbank
