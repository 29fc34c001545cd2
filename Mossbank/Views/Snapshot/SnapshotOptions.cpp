// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Snapshot/SnapshotOptions.h"

#include "Mossbank/Model/Texts.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

const QString kDemo = u"--demo"_s;
const QString kScale = u"--snapshot-scale"_s;

/// Digits with a sign or without, and nothing else.
std::optional<qint64> wholeNumber(const QString& written)
{
    const auto isOfNumber = [](QChar sign) {
        return (sign >= u'0' && sign <= u'9') || sign == u'-' || sign == u'+';
    };
    bool isNumber = std::ranges::all_of(written, isOfNumber);
    const qint64 number = isNumber ? written.toLongLong(&isNumber) : 0;
    return isNumber ? std::optional(number) : std::nullopt;
}

/// Also without an end, but not none.
std::optional<double> number(const QString& written)
{
    bool isNumber = !written.isEmpty() && written == written.trimmed();
    const double value = isNumber ? written.toDouble(&isNumber) : 0;
    return isNumber && !std::isnan(value) ? std::optional(value) : std::nullopt;
}

} // namespace

SnapshotOptions::SnapshotOptions(const QStringList& arguments)
    : m_arguments(arguments.mid(1))
{
}

QList<SnapshotOptions::Option> SnapshotOptions::all()
{
    return {
        {kDemo, false,
         localized("Explores a sample library of fictional screens in place of yours, which stays "
                   "closed. Nothing is recorded.")},
        {u"--snapshot"_s, true,
         localized("Draws the window to the PNG file named next, and ends. So with each of the "
                   "following: what it takes stands behind it, as an argument of its own.")},
        {u"--snapshot-first-run"_s, true, localized("Anything: the sample library stays empty.")},
        {kScale, true,
         localized("COUNT or COUNT:SECONDS: the sample library holds so many screenshots, so far "
                   "apart.")},
        {u"--snapshot-settings"_s, true, localized("The section of the settings that is drawn.")},
        {u"--snapshot-appearance"_s, true, localized("light or dark.")},
        {u"--snapshot-hold"_s, true,
         localized("Seconds to settle before it is drawn, from 0 to 30; otherwise 1.5.")},
        {u"--snapshot-query"_s, true, localized("What is searched for.")},
        {u"--snapshot-day"_s, true, localized("The day on show, counted from today: -1.")},
        {u"--snapshot-app"_s, true, localized("The application that alone is shown.")},
        {u"--snapshot-zoom"_s, true, localized("How far the timeline is zoomed in.")},
        {u"--snapshot-ask"_s, true, localized("A question, which is put into its field.")},
        {u"--snapshot-show"_s, true,
         localized("States to turn on, with commas in between: all-history, timeline, by-meaning, "
                   "text, enlarged.")},
        {u"--snapshot-engine"_s, true, localized("What answers questions in a sample run.")},
        {u"--snapshot-meaning"_s, true,
         localized("The model for searching by meaning in a sample run.")},
    };
}

QStringList SnapshotOptions::others() const
{
    QStringList left;
    bool isValue = false;
    for (const QString& argument : m_arguments) {
        const auto isNamed = [&argument](const Option& option) {
            return option.name == argument;
        };
        const QList<Option> options = all();
        const auto found = std::ranges::find_if(options, isNamed);
        if (found == options.end() && !isValue)
            left.append(argument);
        isValue = found != options.end() && found->takesValue;
    }
    return left;
}

std::optional<QString> SnapshotOptions::value(QStringView name) const
{
    const auto found = std::ranges::find(m_arguments, name);
    if (found == m_arguments.end() || found + 1 == m_arguments.end())
        return std::nullopt;
    return *(found + 1);
}

bool SnapshotOptions::isDemo() const
{
    return m_arguments.contains(kDemo);
}

std::optional<qsizetype> SnapshotOptions::scale() const
{
    const auto written = value(kScale);
    return written ? wholeNumber(written->section(u':', 0, 0)) : std::nullopt;
}

double SnapshotOptions::scaleInterval() const
{
    constexpr double kUsual = 30;
    const auto interval = number(value(kScale).value_or(QString()).section(u':', 1, 1));
    return interval && *interval > 0 && std::isfinite(*interval) ? *interval : kUsual;
}

std::optional<Appearance::Mode> SnapshotOptions::appearance() const
{
    const QString mode = value(u"--snapshot-appearance").value_or(QString());
    if (mode == u"light")
        return Appearance::Mode::Light;
    if (mode == u"dark")
        return Appearance::Mode::Dark;
    return std::nullopt;
}

double SnapshotOptions::hold() const
{
    constexpr double kUsual = 1.5;
    constexpr double kLongest = 30;
    const auto seconds = number(value(u"--snapshot-hold").value_or(QString()));
    return std::clamp(seconds.value_or(kUsual), 0.0, kLongest);
}

std::optional<int> SnapshotOptions::dayShift() const
{
    const auto days = wholeNumber(value(u"--snapshot-day").value_or(QString()));
    if (!days || *days < std::numeric_limits<int>::min() || *days > std::numeric_limits<int>::max())
        return std::nullopt;
    return static_cast<int>(*days);
}

std::optional<double> SnapshotOptions::timelineZoom() const
{
    return number(value(u"--snapshot-zoom").value_or(QString()));
}

bool SnapshotOptions::shows(QStringView state) const
{
    const QString states = value(u"--snapshot-show").value_or(QString());
    const QList<QStringView> words = QStringView(states).split(u',');
    return std::ranges::any_of(words,
                               [state](QStringView word) { return word.trimmed() == state; });
}

} // namespace mossbank
