// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/Sidebar.h"

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Model/ChoiceLabels.h"
#include "Mossbank/Model/ChoiceLists.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Views/Workspace/Choice.h"
#include "Mossbank/Views/Workspace/ShownLens.h"
#include "MossbankCore/Ports/Clock.h"

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

Choice choiceOf(Listing::Lens lens)
{
    switch (lens) {
    case Listing::Lens::Moments:
        return {localized("Moments"), u"photo"_s, Listing::help(lens)};
    case Listing::Lens::Timeline:
        return {localized("Timeline"), u"list"_s, Listing::help(lens)};
    case Listing::Lens::Ask:
        break;
    }
    return {localized("Ask"), u"sparkle"_s, Listing::help(lens)};
}

/// What is stored may be the name of none.
QString known(const QString& mode)
{
    for (const QStringView one : ChoiceLists::kAppearanceModes) {
        if (one == mode)
            return mode;
    }
    return QString::fromUtf16(ChoiceLists::kAppearanceModes.front());
}

} // namespace

Sidebar::Sidebar(const WorkspaceParts& parts, QObject* parent)
    : QObject(parent)
    , m_parts(parts)
    , m_listing(parts.model.listing())
{
    connect(&m_listing, &Listing::lensChanged, this, &Sidebar::lensChanged);
    connect(&m_listing, &Listing::dayChanged, this, &Sidebar::dayChanged);
    connect(&m_listing, &Listing::statsChanged, this, &Sidebar::statsChanged);
    connect(&m_parts.model.recorder(), &Recorder::isSavingChanged, this, &Sidebar::savingChanged);
    connect(&m_parts.preferences, &Preferences::appearanceModeChanged, this,
            &Sidebar::appearanceChanged);
}

QVariantList Sidebar::lenses() const
{
    QVariantList choices;
    for (const Listing::Lens lens : kShownLenses) {
        Choice choice = choiceOf(lens);
        choice.isChosen = lens == shownLens(m_listing);
        choices.append(QVariant::fromValue(choice));
    }
    return choices;
}

void Sidebar::chooseLens(int number)
{
    if (number >= 0 && number < static_cast<int>(kShownLenses.size()))
        m_listing.setLens(kShownLenses.at(static_cast<std::size_t>(number)));
}

QVariantList Sidebar::appearances() const
{
    QVariantList choices;
    for (const char16_t* const name : ChoiceLists::kAppearanceModes) {
        const QString mode = QString::fromUtf16(name);
        choices.append(QVariant::fromValue(
            Choice{.label = ChoiceLabels::appearanceLabel(mode),
                   .isChosen = mode == known(m_parts.preferences.appearanceMode())}));
    }
    return choices;
}

QString Sidebar::appearanceLabel() const
{
    return localized("Appearance: %1")
        .arg(ChoiceLabels::appearanceLabel(m_parts.preferences.appearanceMode()));
}

void Sidebar::chooseAppearance(int number)
{
    const auto& modes = ChoiceLists::kAppearanceModes;
    if (number >= 0 && number < static_cast<int>(modes.size()))
        m_parts.preferences.setAppearanceMode(
            QString::fromUtf16(modes.at(static_cast<std::size_t>(number))));
}

bool Sidebar::isToday() const
{
    const auto today =
        m_parts.calendar().dateInterval(Calendar::Component::Day, m_parts.clock.now());
    return m_listing.day() && today && today->contains(*m_listing.day());
}

bool Sidebar::isAllHistory() const
{
    return !m_listing.day();
}

QString Sidebar::countToday() const
{
    const auto today =
        m_parts.calendar().dateInterval(Calendar::Component::Day, m_parts.clock.now());
    const qsizetype count = today ? m_listing.stats().days.value(today->start) : 0;
    return count > 0 ? m_parts.calendar().locale().toString(count) : QString();
}

QString Sidebar::countOfAll() const
{
    const qsizetype count = m_listing.stats().count;
    return count > 0 ? m_parts.calendar().locale().toString(count) : QString();
}

void Sidebar::showToday()
{
    m_listing.setDay(m_parts.clock.now());
}

void Sidebar::showAllHistory()
{
    m_listing.setDay(std::nullopt);
}

QString Sidebar::storage() const
{
    const LibraryStats& stats = m_listing.stats();
    const QLocale locale = m_parts.calendar().locale();
    const QString size = Housekeeping::storageLabel(stats.bytes, locale);
    if (stats.count == 0)
        return localized("No screenshots yet");
    if (stats.count == 1)
        return localized("1 screenshot · %1 on this Mac").arg(size);
    return localized("%1 screenshots · %2 on this Mac", stats.count)
        .arg(locale.toString(stats.count), size);
}

bool Sidebar::isSaving() const
{
    return m_parts.model.recorder().isSaving();
}

} // namespace mossbank
