// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/ChoicesInWords.h"

#include "Mossbank/Model/ExclusionForm.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/TerminalStatus.h"

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

void sayWhatCountsAsNotChosen(const Preferences& preferences)
{
    for (const QString& key : preferences.unusableKeys())
        TerminalStatus::complain(
            localized("%1 in %2 cannot be read, so that it counts as not chosen.")
                .arg(key, preferences.path()));
    for (const QString& key : preferences.unknownKeys())
        TerminalStatus::complain(
            localized("%1 in %2 is none of Mossbank's choices.").arg(key, preferences.path()));
}

void sayWhatExcludesNothing(const Preferences& preferences)
{
    const auto quoted = [](const QStringList& texts) {
        return u'"' + texts.join(u"\", \""_s) + u'"';
    };
    const QStringList others = ExclusionForm::others(preferences.excludedBundles());
    if (!others.isEmpty())
        TerminalStatus::complain(
            localized("What excludedBundles holds here looks like no application's id and may "
                      "exclude nothing: %1")
                .arg(quoted(others)));
    const QStringList meant = ExclusionForm::meant(preferences.remarkBehindExclusions());
    if (!meant.isEmpty())
        TerminalStatus::complain(
            localized("What stands behind a semicolon in excludedBundles is a remark and excludes "
                      "nothing: %1. A comma goes between two.")
                .arg(quoted(meant)));
}

} // namespace

void sayWhatChoicesMean(const Preferences& preferences)
{
    TerminalStatus::say(localized("Choices: %1").arg(preferences.path()));
    sayWhatCountsAsNotChosen(preferences);
    sayWhatExcludesNothing(preferences);
}

} // namespace mossbank
