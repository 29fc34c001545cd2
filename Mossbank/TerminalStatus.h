// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Support/Calendar.h"

#include <QObject>
#include <QString>

namespace mossbank {

class Recorder;

/// Shows on the terminal what the recorder says: each line of its status with the time, and what
/// the user must know on standard error.
class TerminalStatus : public QObject {
    Q_OBJECT

public:
    TerminalStatus(const Recorder& recorder, const Clock& clock, CalendarSource calendar,
                   QObject* parent = nullptr);

    /// Shows what stands there now.
    void show() const;

    static void say(const QString& line);
    static void complain(const QString& line);

private:
    void showStatus() const;
    void showError() const;

    const Recorder& m_recorder;
    const Clock& m_clock;
    CalendarSource m_calendar;
};

} // namespace mossbank
