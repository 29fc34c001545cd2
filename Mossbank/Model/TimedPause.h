// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/PauseControl.h"
#include "MossbankCore/Support/Date.h"
#include "MossbankCore/Support/Job.h"

#include <QCoroTask>
#include <QObject>

#include <optional>

namespace mossbank {

class Clock;
class Preferences;

/// A pause of recording that ends at a date, and outlives a restart of the program.
///
/// Threading: the main thread.
/// Signals: `pausedUntilChanged` is sent on the next turn of the event loop, when whoever began or
/// ended the pause is done.
class TimedPause : public QObject, public PauseControl {
    Q_OBJECT

public:
    /// Both outlive it.
    TimedPause(Clock& clock, Preferences& preferences, QObject* parent = nullptr);

    /// When the pause ends. Absent when there is none.
    const std::optional<Date>& pausedUntil() const { return m_pausedUntil; }
    bool isPaused() const override { return m_pausedUntil.has_value(); }

    /// Pauses until that date. What is stored stays as it is.
    void resumePause(Date until);
    /// Ends the pause and forgets what is stored of one.
    void cancelPause() override;

Q_SIGNALS:
    void pausedUntilChanged();
    /// The date has come. The pause is there until somebody ends it.
    void due();

private:
    QCoro::Task<> waitUntil(Date date, Cancellation cancellation);
    void setPausedUntil(std::optional<Date> date);

    Clock& m_clock;
    Preferences& m_preferences;
    std::optional<Date> m_pausedUntil;
    /// Last: cancelled before anything above goes.
    Job m_resumeTask;
};

} // namespace mossbank
