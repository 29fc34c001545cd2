// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/Surroundings.h"
#include "MossbankCore/Ports/NotificationCenter.h"
#include "MossbankCore/Support/Job.h"

#include <QCoroTask>
#include <QObject>

#include <functional>

namespace mossbank {

class Housekeeping;
class Listing;
class LoginItem;
class Pauses;
class QuitGuard;
class Recorder;
class SampleLibrary;
struct LibraryStats;

/// What happens between the start of the process and the first capture, and what brings recording
/// back: the program is left running, and returns by itself after a login or an update.
///
/// Threading: the main thread.
class Launch : public QObject {
    Q_OBJECT

public:
    /// How far a new user has come.
    enum class FirstRun {
        /// The system has to allow Mossbank to see the screen.
        Permission,
        /// It does, from the next start on.
        Reopen,
        /// Recording can be started.
        Ready,
        /// Recording, and nothing saved yet.
        Waiting,
        Done,
    };

    /// The parts of the model that it deals with. They outlive it.
    struct Parts {
        Recorder& recorder;
        Pauses& pauses;
        Housekeeping& housekeeping;
        Listing& listing;
        LoginItem& loginItem;
        QuitGuard& quitGuard;
        SampleLibrary& sample;
    };

    Launch(Surroundings surroundings, Parts parts, QObject* parent = nullptr);
    ~Launch() override;

    /// Shows what there is, and puts the library in order in the background. A sample library is
    /// filled before.
    void startUp();

    /// Once, when everything is up: a pause of the last run goes on, or else recording comes back
    /// if the user wants that at every start or an update has ended it minutes ago.
    void finishedLaunching();

    FirstRun firstRun(const LibraryStats& stats) const;

    /// The user has come back to this program, perhaps from the desktop's settings.
    void becameActive();

    /// Ends this process and has another take over: a new permission may count from then on only.
    void reopen();
    /// Before an update relaunches the program.
    void prepareForRelaunch();

    /// What shows the window when the user starts the program once more or asks for it by its icon.
    void setReopenHandler(std::function<void()> handler) { m_reopenHandler = std::move(handler); }
    /// The user has asked for the program while it runs. False when the window is being shown
    /// now; otherwise whatever is open should come to the front.
    bool handleReopen(bool hasVisibleWindows) const;

Q_SIGNALS:
    /// What there is has been looked for, and is on show where there is a window for it.
    void listed();
    /// What the system allows may be another than it was, and whoever shows it should look again.
    void systemMayHaveChanged();

private:
    QCoro::Task<> putInOrder(Cancellation cancellation);
    /// Whether recording was on when an update relaunched the program just now.
    bool takeRelaunch();

    Surroundings m_around;
    Parts m_parts;
    NotificationCenter::Token m_powerOff;
    std::function<void()> m_reopenHandler;
    /// Last: it is cancelled before anything above goes.
    Job m_startingUp;
};

} // namespace mossbank
