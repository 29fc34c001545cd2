// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/FirstRunState.h"

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Model/ChoiceLabels.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Texts.h"

namespace mossbank {

using namespace Qt::StringLiterals;
using FirstRun = Launch::FirstRun;

FirstRunState::FirstRunState(const WorkspaceParts& parts, bool isDemo, QObject* parent)
    : QObject(parent)
    , m_parts(parts)
    , m_isDemo(isDemo)
{
    Recorder& recorder = parts.model.recorder();
    for (const auto signal : {&Recorder::isRecordingChanged, &Recorder::isSavingChanged,
                              &Recorder::askedForPermissionChanged})
        connect(&recorder, signal, this, &FirstRunState::changed);
    connect(&parts.model.launch(), &Launch::systemMayHaveChanged, this, &FirstRunState::changed);
    connect(&parts.model.listing(), &Listing::statsChanged, this, &FirstRunState::changed);
    for (const auto signal :
         {&Preferences::intervalChanged, &Preferences::skipsUnchangedScreensChanged})
        connect(&parts.preferences, signal, this, &FirstRunState::changed);
}

FirstRun FirstRunState::state() const
{
    return m_parts.model.launch().firstRun(m_parts.model.listing().stats());
}

bool FirstRunState::isWaiting() const
{
    return state() == FirstRun::Waiting;
}

QString FirstRunState::headline() const
{
    return localized("Give your day a memory.");
}

QString FirstRunState::note() const
{
    return m_isDemo ? localized("This is the sample library. Recording is off in the demo.")
                    : QString();
}

QString FirstRunState::body() const
{
    const QString every = ChoiceLabels::everyIntervalLabel(m_parts.preferences.interval());
    if (m_parts.preferences.skipsUnchangedScreens())
        return localized("Mossbank checks your screen %1, saves a screenshot when something has "
                         "changed and reads\nthe words in it, all on this Mac. Then you can search "
                         "what you saw.")
            .arg(every);
    return localized("Mossbank saves a screenshot %1, reads the words in it, and keeps\nall of it "
                     "on this Mac. Then you can search what you saw.")
        .arg(every);
}

QString FirstRunState::step() const
{
    const QString interval = ChoiceLabels::intervalLabel(m_parts.preferences.interval());
    switch (state()) {
    case FirstRun::Permission:
        return localized("Allow screen recording");
    case FirstRun::Waiting:
        if (m_parts.model.recorder().isSaving())
            return localized("Taking the first screenshot…");
        if (m_isInFront)
            return localized("Switch to another window and the first screenshot follows within %1")
                .arg(interval);
        return localized("First screenshot in %1").arg(interval);
    case FirstRun::Reopen:
    case FirstRun::Ready:
    case FirstRun::Done:
        break;
    }
    return {};
}

QString FirstRunState::explanation() const
{
    // There is nothing to do.
    if (m_isDemo)
        return {};
    switch (state()) {
    case FirstRun::Permission:
        return localized("macOS asks once. If it doesn't, turn Mossbank on under Screen & System "
                         "Audio Recording.");
    case FirstRun::Reopen:
        return localized("macOS gives a new screen recording permission to the next launch, not to "
                         "the app that asked.");
    case FirstRun::Waiting:
        return localized("Leave Mossbank running and use your Mac as usual.") + u' ' +
               localized("Mossbank never captures itself.");
    case FirstRun::Ready:
    case FirstRun::Done:
        break;
    }
    return localized("Nothing is captured until you do, and you can pause from the menu bar at any "
                     "time.");
}

QString FirstRunState::actionLabel() const
{
    if (m_isDemo)
        return {};
    switch (state()) {
    case FirstRun::Permission:
        return localized("Open System Settings");
    case FirstRun::Reopen:
        return localized("Reopen Mossbank");
    case FirstRun::Ready:
        return localized("Start recording");
    case FirstRun::Waiting:
    case FirstRun::Done:
        break;
    }
    return {};
}

QString FirstRunState::actionSymbol() const
{
    return state() == FirstRun::Ready ? u"record"_s : QString();
}

void FirstRunState::act()
{
    if (m_isDemo)
        return;
    switch (state()) {
    case FirstRun::Permission:
        m_parts.model.recorder().openPermissions();
        break;
    case FirstRun::Reopen:
        m_parts.model.launch().reopen();
        break;
    case FirstRun::Ready:
        m_parts.model.recorder().toggleRecording();
        break;
    case FirstRun::Waiting:
    case FirstRun::Done:
        break;
    }
}

} // namespace mossbank
