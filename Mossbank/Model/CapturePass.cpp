// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/CapturePass.h"

#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Model/RecorderTexts.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Ports/FrontApplication.h"
#include "Mossbank/Ports/ScreenState.h"
#include "Mossbank/Ports/SecureInput.h"
#include "MossbankCore/Capture/DisplayChooser.h"
#include "MossbankCore/Capture/InactivityMonitor.h"
#include "MossbankCore/Library/StoreError.h"
#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Support/Awaited.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace mossbank {

using namespace Qt::StringLiterals;

/// A step is done at once, or waits for something.
struct CapturePass::Step {
    using Now = Verdict (CapturePass::*)();
    using Waiting = QCoro::Task<Verdict> (CapturePass::*)();
    std::variant<Now, Waiting> function;
};

/// The capture pass. Nothing dear is done before everything cheap that speaks against it has been
/// asked, and what must not be recorded is asked again after each wait that it could have crept
/// into.
const CapturePass::Step CapturePass::kSteps[] = {
    // Cheap reasons not to look.
    {&CapturePass::passMayBegin},
    {&CapturePass::permissionIsThere},
    {&CapturePass::screenIsNotLocked},
    {&CapturePass::displayIsAwake},
    {&CapturePass::applicationIsInFront},
    {&CapturePass::frontIsNotMossbank},
    {&CapturePass::frontIsNotExcluded},
    {&CapturePass::inputIsNotSecure},
    {&CapturePass::takeTheCapture},
    // Asking for the picture.
    {&CapturePass::askForContent},
    {&CapturePass::findWindow},
    {&CapturePass::chooseDisplay},
    {&CapturePass::nothingExcludedIsVisible},
    {&CapturePass::takePicture},
    // The picture is there. An unchanged screen ends here, for the price of one downscale.
    {&CapturePass::nothingBecameSecretMeanwhile},
    {&CapturePass::screenHasChanged},
    // It will be saved.
    {&CapturePass::showThatItSaves},
    {&CapturePass::askForAddress},
    {&CapturePass::encodeAndRead},
    {&CapturePass::awaitAddress},
    {&CapturePass::isStillWanted},
    {&CapturePass::frontIsStillTheSame},
    {&CapturePass::save},
    // It is saved. From here on the pass goes to its end whatever became of the recording.
    {&CapturePass::remember},
    {&CapturePass::noteRefusals},
    {&CapturePass::sayThatItIsSaved},
    {&CapturePass::applyRetention},
    {&CapturePass::refresh},
};

namespace {

constexpr int kFingerprintSize = 192;
constexpr double kWidestPicture = 2048;
constexpr double kSecondsAMinute = 60;

bool owns(const QStringList& bundleIDs, const ScreenWindow& window)
{
    return std::ranges::any_of(window.owners,
                               [&](const Application& owner) { return owner.isAmong(bundleIDs); });
}

bool isOf(const ScreenWindow& window, const Application& application)
{
    return std::ranges::any_of(window.owners, [&](const Application& owner) {
        return owner.bundleID == application.bundleID;
    });
}

qint64 area(const ScreenWindow& window)
{
    return qint64{window.frame.width()} * qint64{window.frame.height()};
}

/// Never wider than the widest picture, of the display's own shape, and never empty.
QSize pictureSize(const QSize& display)
{
    const double scale = std::min(kWidestPicture / std::max(display.width(), 1), 1.0);
    return {std::max(static_cast<int>(scale * display.width()), 1),
            std::max(static_cast<int>(scale * display.height()), 1)};
}

} // namespace

CapturePass::CapturePass(Recorder& recorder, Cancellation cancellation)
    : m_recorder(&recorder)
    , m_cancellation(std::move(cancellation))
    , m_token(recorder.m_generation)
    , m_moved(ScreenFingerprint::kNotComparable)
{
}

CapturePass::~CapturePass()
{
    letGo();
}

QCoro::Task<> CapturePass::run()
{
    for (const Step& step : kSteps) {
        // It may have gone during any wait.
        if (!m_recorder)
            co_return;
        Verdict verdict = Verdict::goOn();
        try {
            if (const auto* now = std::get_if<Step::Now>(&step.function))
                verdict = (this->**now)();
            else
                verdict = co_await (this->*std::get<Step::Waiting>(step.function))();
        } catch (...) {
            // What hangs on a save reports its own failures; the record stands all the same.
            if (!m_isSaved)
                verdict = Verdict::failed(describe(std::current_exception()));
        }
        if (!verdict.goesOn()) {
            conclude(verdict);
            break;
        }
    }
    letGo();
}

// Cheap reasons not to look

CaptureVerdict CapturePass::passMayBegin()
{
    const bool isFree = m_recorder->m_state.isRecording && !m_recorder->m_isCapturing;
    return isFree && m_recorder->m_neighbours.store ? Verdict::goOn() : Verdict::silently();
}

CaptureVerdict CapturePass::permissionIsThere()
{
    return around().screen.isAllowed() ? Verdict::goOn() : Verdict::notAllowed();
}

CaptureVerdict CapturePass::screenIsNotLocked()
{
    return around().screenState.isLocked() ? Verdict::locked() : Verdict::goOn();
}

CaptureVerdict CapturePass::displayIsAwake()
{
    if (around().screenState.isMainDisplayAsleep())
        return Verdict::skip(localized("Skipped while the display is asleep"));
    return Verdict::goOn();
}

CaptureVerdict CapturePass::applicationIsInFront()
{
    const auto front = around().frontApplication.current();
    if (!front || front->bundleID.isEmpty())
        return Verdict::skip(localized("Waiting for an active application"));
    m_front = *front;
    return Verdict::goOn();
}

CaptureVerdict CapturePass::frontIsNotMossbank()
{
    if (m_front.bundleID == kOwnBundleID)
        return Verdict::skip(RecorderTexts::mossbankIsInFront());
    return Verdict::goOn();
}

CaptureVerdict CapturePass::frontIsNotExcluded()
{
    if (m_front.isAmong(around().preferences.excludedBundles()))
        return Verdict::skip(localized("Skipped an excluded app"));
    return Verdict::goOn();
}

CaptureVerdict CapturePass::inputIsNotSecure()
{
    if (around().secureInput.isActive())
        return Verdict::skip(RecorderTexts::secureInputSkipped());
    return Verdict::goOn();
}

CaptureVerdict CapturePass::takeTheCapture()
{
    m_recorder->m_isCapturing = true;
    m_holdsCapture = true;
    return Verdict::goOn();
}

// Asking for the picture

QCoro::Task<CaptureVerdict> CapturePass::askForContent()
{
    m_content = co_await awaited(around().screen.content());
    co_return isCurrent() ? Verdict::goOn() : Verdict::silently();
}

CaptureVerdict CapturePass::findWindow()
{
    for (const ScreenWindow& window : std::as_const(m_content.windows)) {
        const bool isCandidate = isOf(window, m_front) && window.isOnScreen && window.layer == 0;
        if (isCandidate && (!m_window || area(window) > area(*m_window)))
            m_window = window;
    }
    return Verdict::goOn();
}

CaptureVerdict CapturePass::chooseDisplay()
{
    const QList<Display>& displays = m_content.displays;
    auto chosen = std::find_if(displays.begin(), displays.end(), [this](const Display& display) {
        return display.id == m_content.mainDisplay;
    });
    if (displays.size() >= 2 && m_window) {
        QList<QRect> frames;
        for (const Display& display : displays)
            frames.append(display.frame);
        if (const auto best = DisplayChooser::best(m_window->frame, frames))
            chosen = displays.begin() + *best;
    }
    if (chosen == displays.end())
        throw StoreError(
            localized("No display is available. Check your display connection and try again."));
    m_display = *chosen;

    ScreensSeen& seen = m_recorder->m_seen;
    if (seen.lastDisplayID && *seen.lastDisplayID != m_display.id)
        seen.forgetMotion();
    seen.lastDisplayID = m_display.id;
    return Verdict::goOn();
}

CaptureVerdict CapturePass::nothingExcludedIsVisible()
{
    const QStringList excluded = around().preferences.excludedBundles();
    const bool isVisible = std::any_of(
        m_content.windows.begin(), m_content.windows.end(),
        [&](const ScreenWindow& window) { return window.isOnScreen && owns(excluded, window); });
    return isVisible ? Verdict::skip(localized("Skipped: an excluded app is visible"))
                     : Verdict::goOn();
}

QCoro::Task<CaptureVerdict> CapturePass::takePicture()
{
    m_takenAt = around().clock.now();
    const QString own = QString::fromUtf16(kOwnBundleID);
    const PictureRequest request = {
        .display = m_display.id,
        .included = includedApplications(),
        .size = pictureSize(m_display.frame.size()),
        .excluded = around().preferences.excludedBundles() + QStringList{own},
    };
    m_picture = co_await awaited(around().screen.picture(request));
    co_return isCurrent() ? Verdict::goOn() : Verdict::silently();
}

QStringList CapturePass::includedApplications() const
{
    const QStringList excluded = around().preferences.excludedBundles();
    QStringList included;
    for (const Application& application : m_content.applications) {
        if (application.bundleID != kOwnBundleID)
            included.append(application.bundleID);
    }
    // By one name a program may be excluded and by another not; then it is.
    for (const Application& application : m_content.applications) {
        if (application.isAmong(excluded))
            included.removeAll(application.bundleID);
    }
    return included;
}

// The picture is there

CaptureVerdict CapturePass::nothingBecameSecretMeanwhile()
{
    const bool isLocked = around().screenState.isLocked();
    if (isLocked)
        return Verdict::locked();
    return inputIsNotSecure();
}

CaptureVerdict CapturePass::screenHasChanged()
{
    const Preferences& preferences = around().preferences;
    if (!preferences.skipsUnchangedScreens())
        return Verdict::goOn();
    ScreensSeen& seen = m_recorder->m_seen;
    m_fingerprint = ScreenFingerprint::make(m_picture, kFingerprintSize);
    m_moved = seen.look(m_fingerprint);
    const double untilRefresh = preferences.unchangedRefreshMinutes() * kSecondsAMinute;
    if (seen.isUnchanged(m_fingerprint, m_moved, preferences.changeMode()) &&
        m_takenAt - seen.lastScreenSavedAt < untilRefresh)
        return Verdict::skip(localized("Skipped an unchanged screen"));
    return Verdict::goOn();
}

// How it ends

const Surroundings& CapturePass::around() const
{
    return m_recorder->m_around;
}

bool CapturePass::isCurrent() const
{
    return m_recorder && m_recorder->m_state.isRecording && m_recorder->m_generation == m_token;
}

void CapturePass::conclude(const Verdict& verdict)
{
    if (!isCurrent())
        return;
    switch (verdict.kind) {
    case Verdict::Kind::GoOn:
    case Verdict::Kind::Silent:
        break;
    case Verdict::Kind::Skip:
        m_recorder->setStatus(verdict.text);
        break;
    case Verdict::Kind::Locked:
        m_recorder->stopForAbsence(InactivityEvent(InactivityEvent::ScreenLocked).message());
        break;
    case Verdict::Kind::NotAllowed:
        m_recorder->stopForLostPermission();
        break;
    case Verdict::Kind::Failed:
        m_recorder->stopForFailure(verdict.text);
        break;
    }
}

void CapturePass::letGo()
{
    if (!m_recorder || !m_holdsCapture)
        return;
    m_holdsCapture = false;
    m_recorder->endPass();
}

} // namespace mossbank
