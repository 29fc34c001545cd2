// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/RecordingSwitch.h"

#include "Mossbank/Model/AppModel.h"

#include <utility>

namespace mossbank {

RecordingSwitch::RecordingSwitch(AppModel& model, CalendarSource calendar, bool isDemo,
                                 QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_calendar(std::move(calendar))
    , m_isEnabled(!isDemo)
{
    connect(&model.recorder(), &Recorder::isRecordingChanged, this, &RecordingSwitch::changed);
    connect(&model.timedPause(), &TimedPause::pausedUntilChanged, this, &RecordingSwitch::changed);
}

RecordingSwitch::State RecordingSwitch::state() const
{
    switch (RecordingState::of(m_model).kind) {
    case RecordingState::Kind::Recording:
        return Recording;
    case RecordingState::Kind::Paused:
        return Paused;
    case RecordingState::Kind::Off:
        break;
    }
    return Off;
}

QString RecordingSwitch::text() const
{
    return RecordingState::of(m_model).text(m_calendar());
}

QString RecordingSwitch::action() const
{
    return RecordingState::of(m_model).action();
}

void RecordingSwitch::toggle()
{
    if (m_isEnabled)
        m_model.recorder().toggleRecording();
}

} // namespace mossbank
