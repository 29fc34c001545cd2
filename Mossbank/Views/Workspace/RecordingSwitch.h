// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/Workspace/RecordingState.h"

#include <QObject>
#include <QtQmlIntegration>

namespace mossbank {

class AppModel;

/// What the window shows of the recorder, and the switch for it.
///
/// Threading: the main thread.
class RecordingSwitch : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made where the window is opened")
    Q_PROPERTY(State state READ state NOTIFY changed)
    /// "Recording", "Paused until 14:05".
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(QString action READ action NOTIFY changed)
    /// The sample library is never recorded into.
    Q_PROPERTY(bool isEnabled READ isEnabled CONSTANT)

public:
    enum State { Off, Paused, Recording };
    Q_ENUM(State)

    /// The model outlives it. `isDemo`: the library is the sample library.
    RecordingSwitch(AppModel& model, CalendarSource calendar, bool isDemo,
                    QObject* parent = nullptr);

    State state() const;
    QString text() const;
    QString action() const;
    bool isEnabled() const { return m_isEnabled; }

    Q_INVOKABLE void toggle();

Q_SIGNALS:
    void changed();

private:
    AppModel& m_model;
    CalendarSource m_calendar;
    bool m_isEnabled;
};

} // namespace mossbank
