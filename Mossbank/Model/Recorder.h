// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/ScreensSeen.h"
#include "Mossbank/Model/Surroundings.h"
#include "MossbankCore/Support/Date.h"
#include "MossbankCore/Support/Job.h"

#include <QCoroTask>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace mossbank {

class AfterSave;
class BrowserAddress;
class CapturePass;
class HistoryStore;
class PauseControl;

/// Records the screen: a loop of one capture pass and one rest, for as long as recording is on,
/// and a further pass shortly after each switch of application. What one pass does, and in which
/// order, is `CapturePass`.
///
/// It speaks in two lines. `status` tells what it did last; `errorMessage` what the user must
/// know of. A pass that saves nothing is normal and leaves a line; a pass that fails ends the
/// recording.
///
/// Threading: the main thread. A pass gives it up at each wait.
/// Errors: none are thrown.
/// Signals: sent when all that has changed has changed, so that a handler may ask for anything and
/// start or stop as it likes. It must not destroy the recorder; `deleteLater` may.
class Recorder : public QObject {
    Q_OBJECT

public:
    /// The parts of the model that it deals with. They outlive it.
    struct Neighbours {
        PauseControl& pauses;
        AfterSave& afterSave;
        BrowserAddress& addresses;
        /// Absent when the library could not be opened: then nothing is ever recorded.
        HistoryStore* store;
    };

    Recorder(Surroundings surroundings, Neighbours neighbours, QObject* parent = nullptr);
    ~Recorder() override;

    /// The user's switch.
    bool isRecording() const { return m_state.isRecording; }
    /// A pass holds the capture; a second one gives way.
    bool isCapturing() const { return m_isCapturing; }
    /// A pass is between its decision to save and the end of that.
    bool isSaving() const { return m_state.isSaving; }
    const QString& status() const { return m_state.status; }
    const std::optional<QString>& errorMessage() const { return m_state.errorMessage; }
    /// When the next pass is due. For showing only.
    const std::optional<Date>& nextCaptureAt() const { return m_state.nextCaptureAt; }
    /// Names of the browsers that refused to tell their page's address.
    const QStringList& refusedBrowsers() const { return m_state.refusedBrowsers; }
    /// Recording was stopped because the user left, and should come back with them.
    bool stoppedForAway() const { return m_stoppedForAway; }
    void setStoppedForAway(bool stopped) { m_stoppedForAway = stopped; }
    /// This run has asked the system for the permission to see the screen.
    bool askedForPermission() const { return m_state.askedForPermission; }
    const ScreensSeen& screensSeen() const { return m_seen; }

    /// Starts or stops recording, by the user's hand. May have the system ask for permission.
    void toggleRecording();
    /// Ends recording and any timed pause. Whoever stops for a reason says so afterwards.
    void stop();
    /// Stops because the user has left, and says so. Whether recording should come back with them
    /// is the user's choice.
    void stopForAbsence(const QString& message);
    /// Stops for a pause that `begin` begins, and says so.
    void stopForPause(const QString& message, const std::function<void()>& begin);
    /// Stops because the program ends. What is stored for its next start stays.
    void stopForEnd();
    /// Starts recording if that is allowed already, and never has the system ask: for every start
    /// that the user did not press a button for.
    void startWithoutAsking();
    /// The next picture is saved whatever the last one showed, which is no more in the library.
    void forgetLastScreen();
    /// One pass, now, out of turn. Nothing while recording is off or another pass runs.
    void captureNow();
    /// Opens the system's settings of who may see the screen.
    void openPermissions();

    /// Recording goes on, and skips for as long as something secret may be typed.
    bool secureInputPaused() const;

    /// Says what was done last, in place of what was said before.
    void setStatus(const QString& status);
    /// Shows a failure to the user, in place of the one before.
    void setErrorMessage(const std::optional<QString>& message);

Q_SIGNALS:
    void isRecordingChanged();
    void isSavingChanged();
    void statusChanged();
    void errorMessageChanged();
    void nextCaptureAtChanged();
    void refusedBrowsersChanged();
    void askedForPermissionChanged();
    /// A pass that held the capture has come to its end, however.
    void passEnded();

private:
    friend class CapturePass;

    QCoro::Task<> recordingLoop(Cancellation cancellation);
    QCoro::Task<> capture(Cancellation cancellation);
    QCoro::Task<> captureAfterSwitch(Cancellation cancellation);

    void watchAppSwitches();
    void stopWatchingAppSwitches();
    void onAppSwitch();
    void followPreferences();

    /// What there are signals for.
    struct State {
        bool isRecording = false;
        bool isSaving = false;
        bool askedForPermission = false;
        QString status;
        std::optional<QString> errorMessage;
        std::optional<Date> nextCaptureAt;
        QStringList refusedBrowsers;
    };

    /// Ends the recording without a signal, so that whoever does it for a reason can say so first.
    void endRecording();
    /// The same, and what is stored for the next start stays.
    void standDown();
    void stopForLostPermission();
    void stopForFailure(const QString& reason);
    /// Has the recogniser forget what it read and give its memory back.
    void restRecognizer();
    /// What a pass that held the capture does last.
    void endPass();
    void setSaving(bool isSaving);
    void setRefusedBrowsers(const QStringList& names);
    /// Sends the signals of what differs from what they last told. Nothing is sent for a line that
    /// stands there already: skips come in long runs.
    void tellChanges();

    Surroundings m_around;
    Neighbours m_neighbours;
    State m_state;
    /// What the signals have told so far.
    State m_told;
    bool m_isCapturing = false;
    /// Recording was stopped in the middle of the pass under way, which may read yet.
    bool m_restsAfterPass = false;
    bool m_stoppedForAway = false;
    /// Rises with every start and stop and with each change of what a picture under way was
    /// begun under. A pass that finds it moved gives up.
    int m_generation = 0;
    ScreensSeen m_seen;
    QMetaObject::Connection m_appSwitchWatcher;
    /// Last: they are cancelled before anything above goes.
    Job m_recordingTask;
    Job m_pendingSwitchCapture;
    Job m_captureNow;
};

} // namespace mossbank
