// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/Surroundings.h"
#include "MossbankCore/Capture/InactivityMonitor.h"
#include "MossbankCore/Capture/PauseLength.h"
#include "MossbankCore/Support/Job.h"

#include <QCoroTask>
#include <QObject>

#include <vector>

namespace mossbank {

class Recorder;
class SessionEvents;
class TimedPause;

/// Puts recording aside and brings it back: when the user leaves and returns, and for a while by
/// the user's wish. The user's hand wins over both: whoever starts recording ends them.
///
/// Threading: the main thread.
class Pauses : public QObject {
    Q_OBJECT

public:
    /// All of them outlive it.
    Pauses(Surroundings surroundings, TimedPause& timedPause, Recorder& recorder,
           QObject* parent = nullptr);
    ~Pauses() override;

    /// Pauses recording for so long. Nothing while recording is off.
    void pause(PauseLength length);
    /// Ends a timed pause without starting recording.
    void cancelTimedPause();
    /// Goes on with the pause that the last run stored, if its end is to come; one that is over is
    /// forgotten. Whether there is a pause now.
    bool resumeStoredPause();
    /// From now on neither a return nor the end of a pause starts recording: the program is about
    /// to end. What is stored of a pause stays.
    void rest();

private:
    void goAway(InactivityEvent event);
    void awaitReturn();
    QCoro::Task<> comeBackSoon(Cancellation cancellation);
    void comeBackIfThere();
    QString pausedUntil(Date date) const;
    void resumeAfterPause();

    Surroundings m_around;
    TimedPause& m_timedPause;
    Recorder& m_recorder;
    std::vector<Job> m_returns;
    bool m_isResting = false;
    /// Last: it calls into all of the above.
    InactivityMonitor m_inactivity;
};

} // namespace mossbank
