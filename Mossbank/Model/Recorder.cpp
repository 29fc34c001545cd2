// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Recorder.h"

#include "Mossbank/Model/CapturePass.h"
#include "Mossbank/Model/PauseControl.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/RecorderTexts.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Ports/FrontApplication.h"
#include "Mossbank/Ports/Screen.h"
#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Ports/TextRecognizer.h"

#include <algorithm>
#include <utility>

namespace mossbank {

Recorder::Recorder(Surroundings surroundings, Neighbours neighbours, QObject* parent)
    : QObject(parent)
    , m_around(std::move(surroundings))
    , m_neighbours(neighbours)
{
    m_state.status = RecorderTexts::idle();
    m_told = m_state;
    followPreferences();
}

Recorder::~Recorder() = default;

void Recorder::toggleRecording()
{
    if (m_state.isRecording) {
        stop();
        return;
    }
    m_neighbours.pauses.cancelPause();
    m_stoppedForAway = false;
    if (m_around.preferences.isDemo() || !m_neighbours.store)
        return;
    if (!m_around.screen.isAllowed()) {
        m_state.askedForPermission = true;
        m_around.screen.askForPermission();
        tellChanges();
        return;
    }
    ++m_generation;
    m_state.isRecording = true;
    m_state.status = localized("Waiting for your next screen");
    if (m_around.preferences.capturesOnAppSwitch())
        watchAppSwitches();
    m_recordingTask = Job::start(&Recorder::recordingLoop, this);
    tellChanges();
}

void Recorder::forgetLastScreen()
{
    m_seen.lastScreen.reset();
    m_seen.lastScreenSavedAt = Date::distantPast();
    ++m_seen.timesForgotten;
}

void Recorder::stop()
{
    endRecording();
    tellChanges();
}

void Recorder::endRecording()
{
    standDown();
    m_around.preferences.removeRecordsAfterRelaunch();
    m_neighbours.pauses.cancelPause();
}

void Recorder::standDown()
{
    m_state.isRecording = false;
    ++m_generation;
    m_stoppedForAway = false;
    m_state.nextCaptureAt.reset();
    m_recordingTask = Job();
    stopWatchingAppSwitches();
    // What was saved last is kept: a screen that stays the same across a stop is still skipped.
    m_seen.forgetMotion();
    restRecognizer();
    m_state.status = RecorderTexts::idle();
}

void Recorder::stopForEnd()
{
    standDown();
    tellChanges();
}

void Recorder::restRecognizer()
{
    m_restsAfterPass = m_isCapturing;
    m_around.recognizer.rest();
}

void Recorder::endPass()
{
    setSaving(false);
    m_isCapturing = false;
    if (m_restsAfterPass)
        restRecognizer();
    Q_EMIT passEnded();
}

void Recorder::stopForAbsence(const QString& message)
{
    endRecording();
    m_state.status = message;
    m_stoppedForAway = m_around.preferences.resumesAfterAway();
    tellChanges();
}

void Recorder::stopForPause(const QString& message, const std::function<void()>& begin)
{
    // The end of a recording ends a pause, too; so this one begins after it.
    endRecording();
    begin();
    m_state.status = message;
    tellChanges();
}

void Recorder::stopForLostPermission()
{
    endRecording();
    m_state.errorMessage = localized("Screen recording permission is unavailable. Enable it in "
                                     "System Settings, then reopen Mossbank.");
    tellChanges();
}

void Recorder::stopForFailure(const QString& reason)
{
    m_state.isSaving = false;
    endRecording();
    m_state.errorMessage = localized("Capture stopped: %1").arg(reason);
    tellChanges();
}

void Recorder::startWithoutAsking()
{
    if (m_state.isRecording || !m_neighbours.store)
        return;
    if (!m_around.screen.isAllowed()) {
        m_state.status = localized("Recording did not start: screen recording is not allowed");
        tellChanges();
        return;
    }
    toggleRecording();
}

void Recorder::captureNow()
{
    if (!m_captureNow.isRunning())
        m_captureNow = Job::start(&Recorder::capture, this);
}

bool Recorder::secureInputPaused() const
{
    return m_state.isRecording && m_state.status == RecorderTexts::secureInputSkipped();
}

void Recorder::openPermissions()
{
    m_around.screen.openPermissions();
}

QCoro::Task<> Recorder::recordingLoop(Cancellation cancellation)
{
    while (!cancellation.isRequested() && m_state.isRecording) {
        co_await capture(cancellation);
        if (cancellation.isRequested())
            co_return;
        // Read anew on every round; a rest under way is not shortened.
        const double delay = std::max(m_around.preferences.interval(), 1.0);
        m_state.nextCaptureAt.reset();
        if (!m_neighbours.pauses.isPaused())
            m_state.nextCaptureAt = m_around.clock.now() + delay;
        tellChanges();
        if (!co_await m_around.clock.sleep(delay, cancellation))
            co_return;
    }
}

QCoro::Task<> Recorder::capture(Cancellation cancellation)
{
    CapturePass pass(*this, std::move(cancellation));
    co_await pass.run();
}

void Recorder::watchAppSwitches()
{
    if (!m_appSwitchWatcher)
        m_appSwitchWatcher = connect(&m_around.frontApplication, &FrontApplication::activated, this,
                                     &Recorder::onAppSwitch);
}

void Recorder::stopWatchingAppSwitches()
{
    disconnect(m_appSwitchWatcher);
    m_appSwitchWatcher = {};
    m_pendingSwitchCapture = Job();
}

void Recorder::onAppSwitch()
{
    if (!m_state.isRecording || !m_around.preferences.capturesOnAppSwitch())
        return;
    // A rapid run of switches leaves one waiting capture, for the last.
    m_pendingSwitchCapture = Job::start(&Recorder::captureAfterSwitch, this);
}

QCoro::Task<> Recorder::captureAfterSwitch(Cancellation cancellation)
{
    constexpr double kUntilDrawn = 0.45;
    constexpr double kRound = 0.1;
    constexpr int kRounds = 20;
    Clock& clock = m_around.clock;
    if (!co_await clock.sleep(kUntilDrawn, cancellation))
        co_return;
    for (int round = 0; round < kRounds && m_isCapturing; ++round) {
        if (!co_await clock.sleep(kRound, cancellation))
            co_return;
    }
    if (m_state.isRecording && m_around.preferences.capturesOnAppSwitch())
        co_await capture(cancellation);
}

void Recorder::followPreferences()
{
    const Preferences& preferences = m_around.preferences;
    // A picture begun under other exclusions or another rhythm must not be saved any more.
    const auto dropPassUnderWay = [this] {
        ++m_generation;
    };
    connect(&preferences, &Preferences::intervalChanged, this, dropPassUnderWay);
    connect(&preferences, &Preferences::excludedBundlesChanged, this, dropPassUnderWay);
    connect(&preferences, &Preferences::changeModeChanged, this,
            [this] { m_seen.motion.forget(); });
    connect(&preferences, &Preferences::skipsUnchangedScreensChanged, this, [this] {
        if (!m_around.preferences.skipsUnchangedScreens()) {
            m_seen.lastScreen.reset();
            m_seen.forgetMotion();
        }
    });
    connect(&preferences, &Preferences::capturesOnAppSwitchChanged, this, [this] {
        if (m_around.preferences.capturesOnAppSwitch())
            watchAppSwitches();
        else
            stopWatchingAppSwitches();
    });
    connect(&preferences, &Preferences::resumesAfterAwayChanged, this, [this] {
        if (!m_around.preferences.resumesAfterAway())
            m_stoppedForAway = false;
    });
}

void Recorder::setSaving(bool isSaving)
{
    m_state.isSaving = isSaving;
    tellChanges();
}

void Recorder::setStatus(const QString& status)
{
    m_state.status = status;
    tellChanges();
}

void Recorder::setErrorMessage(const std::optional<QString>& message)
{
    m_state.errorMessage = message;
    tellChanges();
}

void Recorder::setRefusedBrowsers(const QStringList& names)
{
    m_state.refusedBrowsers = names;
    tellChanges();
}

void Recorder::tellChanges()
{
    const auto tell = [this](auto State::*part, void (Recorder::*signal)()) {
        if (m_told.*part != m_state.*part) {
            m_told.*part = m_state.*part;
            Q_EMIT(this->*signal)();
        }
    };
    tell(&State::isRecording, &Recorder::isRecordingChanged);
    tell(&State::isSaving, &Recorder::isSavingChanged);
    tell(&State::askedForPermission, &Recorder::askedForPermissionChanged);
    tell(&State::status, &Recorder::statusChanged);
    tell(&State::errorMessage, &Recorder::errorMessageChanged);
    tell(&State::nextCaptureAt, &Recorder::nextCaptureAtChanged);
    tell(&State::refusedBrowsers, &Recorder::refusedBrowsersChanged);
}

} // namespace mossbank
