// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchBrowse.h"

#include "MossbankCore/Browsing/DayTimeline.h"
#include "MossbankCore/Browsing/SearchHighlight.h"
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchBounds.h"
#include "bench/BenchListing.h"
#include "bench/BenchOutput.h"
#include "bench/BenchSessions.h"
#include "bench/BenchTiming.h"

#include <QCommandLineParser>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kRounds = 15;
constexpr int kRows = 20'000;

/// Keeps the compiler from leaving out what nobody looks at.
volatile qsizetype s_sink = 0;

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
    const auto found = static_cast<qint64>(SearchHighlight::ranges(text, query).size());
    if (found < 3)
        throw Failure(u"Words that stand in the text were not found."_s);
    const PairedTimes paired = sideBySide(
        kRounds * kRounds,
        [&](int) { s_sink = static_cast<qsizetype>(SearchHighlight::ranges(text, query).size()); },
        [&](int) { s_sink = FoldedText(text).find(FoldedText(query)) ? 1 : 0; });
    printTimes({{u"bench"_s, u"browse"_s},
                {u"what"_s, u"marks of three words in 10 KB"_s},
                {u"found"_s, found},
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
    const DayTimeline timeline({moments.front().secondsSince1970}, moments, calendar, kLeast);
    bool isEmpty = false;
    const auto step = [&](int round) {
        const DayTimeline zoomed = timeline.zoomed(1 + round % 40, moments[moments.size() / 3]);
        const auto ticks = zoomed.hourTicks(kWidth, kTickSpacing, calendar);
        const auto icons = zoomed.iconSlots(entries, kWidth, kIcon, kIconSpacing, kStretch);
        isEmpty |= ticks.empty() || icons.empty();
    };
    const auto baseline = [&](int) {
        qsizetype changes = 0;
        for (std::size_t at = 1; at < entries.size(); ++at)
            changes += entries[at].app == entries[at - 1].app ? 0 : 1;
        s_sink = changes;
    };
    const PairedTimes paired = sideBySide(kRounds * kRounds, step, baseline);
    if (isEmpty)
        throw Failure(u"A strip had no hours or no icons."_s);
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
    QCommandLineParser parser;
    const QCommandLineOption rowsOption(u"rows"_s, {}, u"N"_s);
    const QCommandLineOption keepOption(u"keep"_s, {}, u"DIR"_s);
    parser.addOptions({rowsOption, keepOption});
    const bool isParsed = parser.parse(QStringList{u"browse"_s} + arguments);
    const int rows = parser.value(rowsOption).toInt();
    if (!isParsed || !parser.positionalArguments().isEmpty() ||
        (parser.isSet(rowsOption) && rows <= kRows) ||
        (parser.isSet(keepOption) && !parser.isSet(rowsOption)))
        return benchWrongUse("browse [--rows N [--keep DIR]], with N above 20000");
    Bounds bounds;
    try {
        // First: the memory of a list shows best where there was little else.
        if (parser.isSet(rowsOption))
            measureListing(rows, parser.value(keepOption), bounds);
        measureSessions(bounds);
        const QList<Memory> day = continuousDay(kRows);
        benchHighlight(day, bounds);
        benchStrip(day, bounds);
    } catch (const Failure& failure) {
        return benchFailed(failure.message());
    }
    return bounds.exitStatus();
}

} // namespace mossbank
