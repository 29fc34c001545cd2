// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchListing.h"

#include "MossbankCore/Support/Failure.h"
#include "bench/BenchBounds.h"
#include "bench/BenchMemory.h"
#include "bench/BenchOutput.h"
#include "bench/BenchTiming.h"
#include "bench/QuietModel.h"
#include "bench/SyntheticLibrary.h"
#include "bench/TurnWatch.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <malloc.h>

#include <array>
#include <functional>
#include <numeric>
#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kOnLastDay = 20'000;
constexpr int kRounds = 11;
constexpr double kMostOfATurn = 30;

const QString kBench = u"browse"_s;
const QString kListed =
    u"SELECT id, timestamp, app_name, bundle_id, text, filename, bytes, title, link FROM memories "
    "WHERE %1 ORDER BY timestamp DESC, rowid DESC LIMIT %2"_s;

/// The library, what is shown of it, and the same looked up without anything between.
struct Measured {
    SyntheticScreenshots& screenshots;
    QuietModel& model;
    BareDatabase& bare;
    Date lastDay;

    Listing& listing() const { return model.listing(); }
};

/// Has something done and lets the event loop turn until the signal is sent, and whoever sent it
/// has come back.
template <typename Sender, typename Signal>
void until(
    const Sender& sender, Signal signal, const std::function<void()>& begin,
    const std::function<bool()>& isEnough = [] { return true; })
{
    constexpr int kPatience = 60'000;
    QEventLoop loop;
    bool isLate = false;
    QObject::connect(&sender, signal, &loop, [&] {
        if (isEnough())
            loop.quit();
    });
    QTimer::singleShot(kPatience, &loop, [&] {
        isLate = true;
        loop.quit();
    });
    begin();
    loop.exec();
    if (isLate)
        throw Failure(u"The list does not come."_s);
}

void list(const Measured& measured, const std::function<void()>& begin)
{
    until(measured.listing(), &Listing::memoriesChanged, begin);
    if (const auto& problem = measured.model.errorMessage())
        throw Failure(*problem);
}

void refresh(const Measured& measured)
{
    list(measured, [&] { (void)measured.listing().refresh(); });
}

QStringList ofTheLastDay(const Measured& measured)
{
    constexpr double kDay = 86'400;
    const double start = measured.lastDay.secondsSince1970;
    return {QString::number(start, 'f', 0), QString::number(start + kDay, 'f', 0)};
}

QList<Memory> bareDay(const Measured& measured)
{
    return measured.bare.readMemories(
        kListed.arg(u"timestamp >= ? AND timestamp < ?"_s, QString::number(kOnLastDay + 1)),
        ofTheLastDay(measured));
}

void requireEqual(const QList<Memory>& listed, const QList<Memory>& expected)
{
    if (listed.isEmpty() || listed != expected)
        throw Failure(u"The list has %1 rows, and is not the one of %2 rows that was asked for."_s
                          .arg(listed.size())
                          .arg(expected.size()));
}

constexpr double kMegabyte = 1024 * 1024;

/// From now on `VmHWM` tells of what comes.
void forgetHighest()
{
    QFile file(u"/proc/self/clear_refs"_s);
    if (!file.open(QIODevice::WriteOnly) || file.write("5") != 1)
        throw FileError(file.errorString(), file.fileName());
}

/// What the process has more than before, highest until now where that is asked for.
double grownMegabytes(const QByteArray& field, qint64 before)
{
    return static_cast<double>(residentBytes(field, u"self"_s) - before) / kMegabyte;
}

void measureMemory(const Measured& measured, Bounds& bounds)
{
    constexpr double kMost = 2.2;
    ::malloc_trim(0);
    const qint64 before = residentBytes("VmRSS", u"self"_s);
    list(measured, [&] { measured.listing().setDay(measured.lastDay); });
    const double first = grownMegabytes("VmRSS", before);
    forgetHighest();
    refresh(measured);
    const double highest = grownMegabytes("VmHWM", before);
    const double second = grownMegabytes("VmRSS", before);
    for (int again = 0; again < kRounds; ++again)
        refresh(measured);
    const double after = grownMegabytes("VmRSS", before);
    // Only now: what is looked up for comparison takes memory, too.
    const QList<Memory>& memories = measured.listing().memories();
    qint64 units = 0;
    qint64 utf8 = 0;
    for (const Memory& memory : memories) {
        units += memory.text.size();
        utf8 += memory.text.toUtf8().size();
    }
    const double text = static_cast<double>(units) * sizeof(QChar) / kMegabyte;
    const double stored = static_cast<double>(utf8) / kMegabyte;
    const auto print = [&](const char* what, double grown) {
        printFigures({{u"bench"_s, kBench},
                      {u"what"_s, QString::fromUtf8(what)},
                      {u"rows"_s, static_cast<qint64>(memories.size())},
                      {u"grown_mb"_s, rounded(grown)},
                      {u"baseline"_s, u"the text as the list holds it, two bytes a unit"_s},
                      {u"baseline_mb"_s, rounded(text)},
                      {u"ratio"_s, rounded(grown / text)},
                      {u"text_in_utf8_mb"_s, rounded(stored)},
                      {u"ratio_to_utf8"_s, rounded(grown / stored)}});
    };
    print("memory of a day's list", first);
    print("the same, highest while it was made anew, the one before still there", highest);
    print("the same, after that", second);
    print("the same, after eleven more", after);
    requireEqual(memories, bareDay(measured));
    bounds.hold(u"memory of a day's list"_s, first / text, kMost, u"times its text"_s);
    bounds.hold(u"memory while that list is made anew"_s, highest / text, kMost,
                u"times its text"_s);
}

void measureRefresh(const Measured& measured, Bounds& bounds)
{
    constexpr double kMost = 200;
    TurnWatch watch;
    std::vector<double> turns;
    std::vector<double> processor;
    QList<Memory> expected;
    const PairedTimes paired = sideBySide(
        kRounds,
        [&](int) {
            watch.start();
            refresh(measured);
            const TurnWatch::Longest longest = watch.stop();
            turns.push_back(longest.passed);
            processor.push_back(longest.processor);
        },
        [&](int) { expected = bareDay(measured); });
    requireEqual(measured.listing().memories(), expected);
    printTimes({{u"bench"_s, kBench},
                {u"what"_s, u"refresh of a day, to published"_s},
                {u"rows"_s, static_cast<qint64>(expected.size())},
                {u"baseline"_s, u"the bare query into the same structs"_s},
                {u"longest_turn_ms"_s, rounded(median(turns))},
                {u"longest_turn_processor_ms"_s, rounded(median(processor))},
                {u"longest_turn_of_all_ms"_s, rounded(quantile(turns, 1))}},
               paired);
    bounds.hold(u"refresh of a day"_s, median(paired.times), kMost, u"ms"_s);
    bounds.hold(u"refresh of a day, in one piece on the main thread"_s, median(turns), kMostOfATurn,
                u"ms"_s);
}

/// What a change of the lens takes on the main thread, and the stretches of work behind it.
void measureGrouping(const Measured& measured, Bounds& bounds)
{
    TurnWatch watch;
    std::vector<double> times;
    std::vector<double> turns;
    std::vector<double> processor;
    for (int round = 0; round < kRounds; ++round) {
        measured.listing().setLens(Listing::Lens::Moments);
        watch.start();
        times.push_back(milliseconds([&] {
            until(measured.model.grouping(), &Grouping::sessionsChanged,
                  [&] { measured.listing().setLens(Listing::Lens::Timeline); });
        }));
        const TurnWatch::Longest longest = watch.stop();
        turns.push_back(longest.passed);
        processor.push_back(longest.processor);
        qsizetype grouped = 0;
        for (const Session& session : measured.model.grouping().sessions())
            grouped += session.count();
        if (grouped != measured.listing().memories().size())
            throw Failure(u"Not all of the list was grouped."_s);
    }
    measured.listing().setLens(Listing::Lens::Moments);
    printTimes({{u"bench"_s, kBench},
                {u"what"_s, u"that day grouped after a change of the lens"_s},
                {u"longest_turn_ms"_s, rounded(median(turns))},
                {u"longest_turn_processor_ms"_s, rounded(median(processor))}},
               times);
    bounds.hold(u"grouping of a day, in one piece on the main thread"_s, median(turns),
                kMostOfATurn, u"ms"_s);
}

/// What is typed, and the same looked up barely.
struct Search {
    QString what;
    QString word;
    std::optional<Date> day;
    QString condition;
    QStringList values;
    int limit = 0;
};

struct Typed {
    double longestKey = 0;
    double untilListed = 0;
    TurnWatch::Longest turn;
};

Typed type(const Measured& measured, const QString& word, int millisecondsApart)
{
    Listing& listing = measured.listing();
    Typed typed;
    std::chrono::steady_clock::time_point lastKey;
    TurnWatch watch;
    QObject keys;
    const auto press = [&](qsizetype letters) {
        lastKey = std::chrono::steady_clock::now();
        const double key = milliseconds([&] { listing.setQuery(word.first(letters)); });
        typed.longestKey = std::max(typed.longestKey, key);
    };
    until(
        listing, &Listing::memoriesChanged,
        [&] {
            watch.start();
            for (qsizetype letters = 1; letters <= word.size(); ++letters)
                QTimer::singleShot(static_cast<int>(letters) * millisecondsApart, Qt::PreciseTimer,
                                   &keys, [&press, letters] { press(letters); });
        },
        [&] { return listing.query() == word; });
    typed.untilListed =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - lastKey)
            .count();
    typed.turn = watch.stop();
    return typed;
}

/// What is listed of a search was counted by day as well.
void requireCounted(const Listing& listing)
{
    const QMap<Date, qsizetype> matches = listing.dayMatches().value_or(QMap<Date, qsizetype>());
    const qsizetype all = std::accumulate(matches.cbegin(), matches.cend(), qsizetype{0});
    const qsizetype least = listing.memories().size();
    if (all < least || (listing.day() && matches.value(*listing.day()) != least))
        throw Failure(u"The days were not counted."_s);
}

void measureTyping(const Measured& measured, const Search& search, int millisecondsApart,
                   Bounds& bounds)
{
    constexpr int kTimes = 5;
    constexpr double kUntilTyped = 180;
    constexpr double kMost = kUntilTyped + 150;
    // A picture of a screen of 60 a second.
    constexpr double kMostOfAKey = 16;
    if (measured.listing().day() != search.day)
        list(measured, [&] { measured.listing().setDay(search.day); });
    PairedTimes paired;
    std::vector<double> keys;
    std::vector<double> turns;
    std::vector<double> processor;
    std::vector<double> listed;
    QList<Memory> expected;
    for (int round = 0; round < kTimes; ++round) {
        const Typed typed = type(measured, search.word, millisecondsApart);
        listed.push_back(typed.untilListed);
        paired.times.push_back(typed.untilListed - kUntilTyped);
        keys.push_back(typed.longestKey);
        turns.push_back(typed.turn.passed);
        processor.push_back(typed.turn.processor);
        paired.baseline.push_back(milliseconds([&] {
            expected = measured.bare.readMemories(
                kListed.arg(search.condition, QString::number(search.limit)), search.values);
        }));
        requireEqual(measured.listing().memories(), expected);
        requireCounted(measured.listing());
        list(measured, [&] { measured.listing().setQuery({}); });
    }
    printTimes({{u"bench"_s, kBench},
                {u"what"_s, u"typing, from the end of the pause for typing to published"_s},
                {u"word"_s, search.what},
                {u"letters"_s, search.word.size()},
                {u"apart_ms"_s, millisecondsApart},
                {u"listed"_s, static_cast<qint64>(expected.size())},
                {u"baseline"_s, u"the bare query into the same structs"_s},
                {u"after_last_key_ms"_s, rounded(median(listed))},
                {u"longest_key_ms"_s, rounded(quantile(keys, 1))},
                {u"longest_turn_ms"_s, rounded(median(turns))},
                {u"longest_turn_processor_ms"_s, rounded(median(processor))},
                {u"longest_turn_of_all_ms"_s, rounded(quantile(turns, 1))}},
               paired);
    bounds.hold(u"a key, %1"_s.arg(search.what), quantile(keys, 1), kMostOfAKey, u"ms"_s);
    bounds.hold(u"one piece on the main thread, %1"_s.arg(search.what), median(turns), kMostOfATurn,
                u"ms"_s);
    bounds.hold(u"the list after the last key, %1"_s.arg(search.what), median(listed), kMost,
                u"ms"_s);
}

void measureSearches(const Measured& measured, Bounds& bounds)
{
    constexpr qsizetype kLetters = 8;
    constexpr int kPage = 1500;
    constexpr std::array kParts = {std::pair(0.9, "on most"), std::pair(0.001, "rare")};
    const QString matches =
        u"rowid IN (SELECT rowid FROM memory_search WHERE memory_search MATCH ?)"_s;
    // Slower than the pause for typing, each key has a search begin that the next one overtakes.
    constexpr int kQuickly = 100;
    constexpr int kSlowly = 250;
    for (const auto& [part, name] : kParts) {
        const QString word = measured.screenshots.wordOn(part, kLetters);
        const QString expression = u"\"%1\"*"_s.arg(word);
        // The plus has it walk the times and stop at the limit, where there are many.
        const Search everywhere = {.what = u"%1, all history"_s.arg(QString::fromUtf8(name)),
                                   .word = word,
                                   .day = {},
                                   .condition = part > 0.1 ? u"+"_s + matches : matches,
                                   .values = {expression},
                                   .limit = kPage};
        measureTyping(measured, everywhere, kQuickly, bounds);
        measureTyping(measured, everywhere, kSlowly, bounds);
        measureTyping(measured,
                      {.what = u"%1, the day"_s.arg(QString::fromUtf8(name)),
                       .word = word,
                       .day = measured.lastDay,
                       .condition = u"timestamp >= ? AND timestamp < ? AND +"_s + matches,
                       .values = ofTheLastDay(measured) + QStringList{expression},
                       .limit = kOnLastDay},
                      kQuickly, bounds);
    }
}

} // namespace

void measureListing(int rows, const QString& kept, Bounds& bounds)
{
    const QTemporaryDir own;
    const QString folder = kept.isEmpty() ? own.path() : kept;
    QDir().mkpath(folder);
    SyntheticScreenshots screenshots;
    const QString library = keptLibrary(folder, rows, screenshots, kOnLastDay);
    QuietModel model(library);
    BareDatabase bare(library + u"/history.sqlite"_s);
    const Measured measured = {.screenshots = screenshots,
                               .model = model,
                               .bare = bare,
                               .lastDay = SyntheticScreenshots::dayAfter(rows - kOnLastDay - 1)};
    // Today has nothing, and all that is asked for is made ready by it.
    list(measured, [&] { measured.listing().openWorkspace(); });
    measureMemory(measured, bounds);
    measureRefresh(measured, bounds);
    measureGrouping(measured, bounds);
    measureSearches(measured, bounds);
}

} // namespace mossbank
