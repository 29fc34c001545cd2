// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchBrowse.h"

#include "MossbankCore/Browsing/DaySessions.h"
#include "MossbankCore/Browsing/DayTimeline.h"
#include "MossbankCore/Browsing/SearchHighlight.h"
#include "bench/BenchBounds.h"
#include "bench/BenchOutput.h"
#include "bench/BenchTiming.h"
#include "bench/SyntheticLibrary.h"

#include <numeric>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kRounds = 15;
constexpr int kRows = 20'000;
constexpr int kFewerRows = 5'000;
constexpr double kSecondsADay = 86'400;
/// The first moment of a day.
constexpr double kDay = 1'780'272'000;

constexpr double kGap = 600;
constexpr double kLongest = 3600;
constexpr qsizetype kKeywords = 4;

/// Keeps the compiler from leaving out what nobody looks at.
volatile qsizetype s_sink = 0;

/// A day of so many screenshots, newest first, in applications that change every few minutes.
QList<Memory> makeDay(int rows)
{
    constexpr qsizetype kTextSize = 2048;
    constexpr int kApplications = 12;
    constexpr int kRowsAStretch = 60;
    SyntheticScreenshots screenshots;
    QList<Memory> day;
    for (int number = 0; number < rows; ++number) {
        Memory memory = screenshots.next(number);
        while (memory.text.size() < kTextSize)
            memory.text += u' ' + memory.text;
        memory.text.truncate(kTextSize);
        memory.timestamp = {kDay + number * kSecondsADay / rows};
        memory.appName = u"Application %1"_s.arg(number / kRowsAStretch % kApplications);
        memory.bundleID = memory.appName;
        day.prepend(memory);
    }
    return day;
}

qsizetype readAll(const QList<Memory>& memories)
{
    return std::accumulate(memories.begin(), memories.end(), qsizetype{0},
                           [](qsizetype sum, const Memory& memory) {
                               for (const QChar unit : memory.text)
                                   sum += unit.unicode();
                               return sum;
                           });
}

void benchSessions(const QList<Memory>& day, Bounds& bounds)
{
    constexpr double kMost = 120;
    const auto group = [](const QList<Memory>& memories) {
        s_sink = DaySessions::sessions(memories, kGap, kLongest, kKeywords).size();
    };
    const PairedTimes paired = sideBySide(
        kRounds, [&](int) { group(day); }, [&](int) { s_sink = readAll(day); });
    printTimes({{u"bench"_s, u"browse"_s},
                {u"what"_s, u"stretches of work"_s},
                {u"rows"_s, static_cast<qint64>(day.size())},
                {u"baseline"_s, u"every letter of the same rows read once"_s}},
               paired);
    bounds.hold(u"stretches of work"_s, median(paired.times), kMost, u"ms"_s);

    // A fourth of the rows; a tenth more than four times as long is noise.
    constexpr double kMostGrowth = 4.4;
    const QList<Memory> fewer = makeDay(kFewerRows);
    const PairedTimes growth = sideBySide(
        kRounds, [&](int) { group(day); }, [&](int) { group(fewer); });
    printTimes({{u"bench"_s, u"browse"_s},
                {u"what"_s, u"stretches of work"_s},
                {u"baseline"_s, u"the same of %1 rows"_s.arg(kFewerRows)}},
               growth);
    bounds.hold(u"growth of that from a fourth of the rows"_s, growth.ratio(), kMostGrowth,
                u"times"_s);
}

void benchHighlight(const QList<Memory>& day, Bounds& bounds)
{
    constexpr double kMost = 1;
    constexpr qsizetype kSize = 10'240;
    QString text;
    for (qsizetype at = 0; text.size() < kSize; ++at)
        text += day.at(at).text + u' ';
    text.truncate(kSize);
    const std::vector<QStringView> words = Characters::words(text);
    const QString query =
        QStringList{words[10].toString(), words[200].toString(), words[400].first(3).toString()}
            .join(u' ');
    const PairedTimes paired = sideBySide(
        kRounds * kRounds,
        [&](int) { s_sink = static_cast<qsizetype>(SearchHighlight::ranges(text, query).size()); },
        [&](int) { s_sink = FoldedText(text).find(FoldedText(query)) ? 1 : 0; });
    printTimes({{u"bench"_s, u"browse"_s},
                {u"what"_s, u"marks of three words in 10 KB"_s},
                {u"found"_s, static_cast<qint64>(SearchHighlight::ranges(text, query).size())},
                {u"baseline"_s, u"the text prepared and searched once"_s}},
               paired);
    bounds.hold(u"marks of a search"_s, median(paired.times), kMost, u"ms"_s);
}

void benchStrip(const QList<Memory>& day, Bounds& bounds)
{
    constexpr double kMost = 2;
    constexpr double kWidth = 900;
    constexpr double kTickSpacing = 56;
    constexpr double kIcon = 14;
    constexpr double kIconSpacing = 3;
    constexpr double kStretch = 900;
    constexpr double kLeast = 7200;
    const Calendar calendar(QTimeZone("Europe/Berlin"), QLocale::c());
    std::vector<Date> moments;
    std::vector<DayTimeline::Entry> entries;
    for (auto memory = day.rbegin(); memory != day.rend(); ++memory) {
        moments.push_back(memory->timestamp);
        entries.push_back({memory->timestamp, memory->appName});
    }
    const DayTimeline timeline({kDay + kSecondsADay / 2}, moments, calendar, kLeast);
    const auto step = [&](int round) {
        const DayTimeline zoomed = timeline.zoomed(1 + round % 40, moments[moments.size() / 3]);
        s_sink = static_cast<qsizetype>(
            zoomed.hourTicks(kWidth, kTickSpacing, calendar).size() +
            zoomed.iconSlots(entries, kWidth, kIcon, kIconSpacing, kStretch).size());
    };
    const auto baseline = [&](int) {
        qsizetype changes = 0;
        for (std::size_t at = 1; at < entries.size(); ++at)
            changes += entries[at].app == entries[at - 1].app ? 0 : 1;
        s_sink = changes;
    };
    const PairedTimes paired = sideBySide(kRounds * kRounds, step, baseline);
    printTimes({{u"bench"_s, u"browse"_s},
                {u"what"_s, u"a step of the day's strip"_s},
                {u"moments"_s, static_cast<qint64>(moments.size())},
                {u"baseline"_s, u"neighbouring applications compared once"_s}},
               paired);
    bounds.hold(u"a step of the strip"_s, median(paired.times), kMost, u"ms"_s);
}

} // namespace

int benchBrowse(const QStringList& arguments)
{
    if (!arguments.isEmpty())
        return benchWrongUse("browse");
    Bounds bounds;
    const QList<Memory> day = makeDay(kRows);
    benchSessions(day, bounds);
    benchHighlight(day, bounds);
    benchStrip(day, bounds);
    return bounds.exitStatus();
}

} // namespace mossbank
