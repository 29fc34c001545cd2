// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/RecordingState.h"

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Model/Texts.h"

namespace mossbank {

RecordingState RecordingState::of(AppModel& model)
{
    if (model.recorder().isRecording())
        return {Kind::Recording};
    if (const auto& until = model.timedPause().pausedUntil())
        return {Kind::Paused, until};
    return {Kind::Off};
}

QString RecordingState::text(const Calendar& calendar) const
{
    switch (kind) {
    case Kind::Recording:
        return localized("Recording");
    case Kind::Paused:
        return localized("Paused until %1").arg(calendar.shortTime(*until));
    case Kind::Off:
        break;
    }
    return localized("Recording off");
}

QString RecordingState::action() const
{
    switch (kind) {
    case Kind::Recording:
        return localized("Pause");
    case Kind::Paused:
        return localized("Resume");
    case Kind::Off:
        break;
    }
    return localized("Start recording");
}

} // namespace mossbank
