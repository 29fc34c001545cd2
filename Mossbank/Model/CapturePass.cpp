// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/CapturePass.h"

#include "Mossbank/Model/AfterSave.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Model/RecorderTexts.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Ports/AddressSource.h"
#include "Mossbank/Ports/FrontApplication.h"
#include "Mossbank/Ports/ScreenState.h"
#include "Mossbank/Ports/SecureInput.h"
#include "MossbankCore/Capture/DisplayChooser.h"
#include "MossbankCore/Capture/WindowTitle.h"
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Library/StoreError.h"
#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Support/Awaited.h"

#include <QUuid>

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

/// How a pass ends before its last step, if it does.
class CapturePass::Verdict {
public:
    enum class Kind { GoOn, Silent, Skip, Locked, NotAllowed, Failed };

    static Verdict goOn() { return {Kind::GoOn, {}}; }
    static Verdict silently() { return {Kind::Silent, {}}; }
    /// With a line in the recorder's status; the schedule goes on.
    static Verdict skip(const QString& status) { return {Kind::Skip, status}; }
    /// The screen is locked: recording stops and may come back with the user.
    static Verdict locked() { return {Kind::Locked, {}}; }
    /// The permission to see the screen was withdrawn: recording stops.
    static Verdict notAllowed() { return {Kind::NotAllowed, {}}; }
    /// Recording stops: trying again and again would only hide it.
    static Verdict failed(const QString& reason) { return {Kind::Failed, reason}; }

    bool goesOn() const { return kind == Kind::GoOn; }

    Kind kind;
    /// The status, or the reason of a failure.
    QString text;
};

namespace {

constexpr int kFingerprintSize = 192;
constexpr std::uint8_t kTolerance = 2;
/// Fewer moved cells are no obvious change.
constexpr std::int64_t kObviousCells = 61;
constexpr double kWidestPicture = 2048;
constexpr double kSecondsAMinute = 60;

bool owns(const QStringList& bundleIDs, const ScreenWindow& window)
{
    return window.owner && bundleIDs.contains(window.owner->bundleID);
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

CapturePass::Verdict CapturePass::passMayBegin()
{
    const bool isFree = m_recorder->m_state.isRecording && !m_recorder->m_isCapturing;
    return isFree && m_recorder->m_parts.store ? Verdict::goOn() : Verdict::silently();
}

CapturePass::Verdict CapturePass::permissionIsThere()
{
    return m_recorder->m_parts.screen.isAllowed() ? Verdict::goOn() : Verdict::notAllowed();
}

CapturePass::Verdict CapturePass::screenIsNotLocked()
{
    return m_recorder->m_parts.screenState.isLocked() ? Verdict::locked() : Verdict::goOn();
}

CapturePass::Verdict CapturePass::displayIsAwake()
{
    if (m_recorder->m_parts.screenState.isMainDisplayAsleep())
        return Verdict::skip(localized("Skipped while the display is asleep"));
    return Verdict::goOn();
}

CapturePass::Verdict CapturePass::applicationIsInFront()
{
    const auto front = m_recorder->m_parts.frontApplication.current();
    if (!front || front->bundleID.isEmpty())
        return Verdict::skip(localized("Waiting for an active application"));
    m_front = *front;
    return Verdict::goOn();
}

CapturePass::Verdict CapturePass::frontIsNotMossbank()
{
    if (m_front.bundleID == kOwnBundleID)
        return Verdict::skip(RecorderTexts::mossbankIsInFront());
    return Verdict::goOn();
}

CapturePass::Verdict CapturePass::frontIsNotExcluded()
{
    if (m_recorder->m_parts.preferences.excludedBundles().contains(m_front.bundleID))
        return Verdict::skip(localized("Skipped an excluded app"));
    return Verdict::goOn();
}

CapturePass::Verdict CapturePass::inputIsNotSecure()
{
    if (m_recorder->m_parts.secureInput.isActive())
        return Verdict::skip(RecorderTexts::secureInputSkipped());
    return Verdict::goOn();
}

CapturePass::Verdict CapturePass::takeTheCapture()
{
    m_recorder->m_isCapturing = true;
    m_holdsCapture = true;
    return Verdict::goOn();
}

// Asking for the picture

QCoro::Task<CapturePass::Verdict> CapturePass::askForContent()
{
    m_content = co_await awaited(m_recorder->m_parts.screen.content());
    co_return isCurrent() ? Verdict::goOn() : Verdict::silently();
}

CapturePass::Verdict CapturePass::findWindow()
{
    for (const ScreenWindow& window : std::as_const(m_content.windows)) {
        const bool isCandidate = window.owner && window.owner->bundleID == m_front.bundleID &&
                                 window.isOnScreen && window.layer == 0;
        if (isCandidate && (!m_window || area(window) > area(*m_window)))
            m_window = window;
    }
    return Verdict::goOn();
}

CapturePass::Verdict CapturePass::chooseDisplay()
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

CapturePass::Verdict CapturePass::nothingExcludedIsVisible()
{
    const QStringList excluded = m_recorder->m_parts.preferences.excludedBundles();
    const bool isVisible = std::any_of(
        m_content.windows.begin(), m_content.windows.end(),
        [&](const ScreenWindow& window) { return window.isOnScreen && owns(excluded, window); });
    return isVisible ? Verdict::skip(localized("Skipped: an excluded app is visible"))
                     : Verdict::goOn();
}

QCoro::Task<CapturePass::Verdict> CapturePass::takePicture()
{
    m_takenAt = m_recorder->m_parts.clock.now();
    const PictureRequest request = {
        .display = m_display.id,
        .included = includedApplications(),
        .size = pictureSize(m_display.frame.size()),
    };
    m_picture = co_await awaited(m_recorder->m_parts.screen.picture(request));
    co_return isCurrent() ? Verdict::goOn() : Verdict::silently();
}

QStringList CapturePass::includedApplications() const
{
    const QStringList excluded = m_recorder->m_parts.preferences.excludedBundles();
    QStringList included;
    for (const Application& application : m_content.applications) {
        if (application.bundleID != kOwnBundleID && !excluded.contains(application.bundleID))
            included.append(application.bundleID);
    }
    return included;
}

// The picture is there

CapturePass::Verdict CapturePass::nothingBecameSecretMeanwhile()
{
    const bool isLocked = m_recorder->m_parts.screenState.isLocked();
    if (isLocked)
        return Verdict::locked();
    return inputIsNotSecure();
}

CapturePass::Verdict CapturePass::screenHasChanged()
{
    const Preferences& preferences = m_recorder->m_parts.preferences;
    if (!preferences.skipsUnchangedScreens())
        return Verdict::goOn();
    compareWithLastScreens();
    const double untilRefresh = preferences.unchangedRefreshMinutes() * kSecondsAMinute;
    if (looksUnchanged() && m_takenAt - m_recorder->m_seen.lastScreenSavedAt < untilRefresh)
        return Verdict::skip(localized("Skipped an unchanged screen"));
    return Verdict::goOn();
}

void CapturePass::compareWithLastScreens()
{
    ScreensSeen& seen = m_recorder->m_seen;
    m_fingerprint = ScreenFingerprint::make(m_picture, kFingerprintSize);
    // What moves on its own is learnt from one picture looked at to the next; what is new is
    // decided against the last one saved, so that a slow drift adds up and is caught.
    seen.motion.observe(seen.lastChecked, m_fingerprint, kTolerance);
    seen.lastChecked = m_fingerprint;
    m_moved = ScreenFingerprint::moved(seen.lastScreen, m_fingerprint, kTolerance);
}

bool CapturePass::looksUnchanged() const
{
    const ScreensSeen& seen = m_recorder->m_seen;
    const QString mode = m_recorder->m_parts.preferences.changeMode();
    if (mode == u"flicker")
        return seen.motion.novel(seen.lastScreen, m_fingerprint, kTolerance) == 0;
    if (mode == u"obvious")
        return m_moved < kObviousCells;
    return m_moved == 0;
}

// It will be saved

CapturePass::Verdict CapturePass::showThatItSaves()
{
    m_recorder->setSaving(true);
    return Verdict::goOn();
}

CapturePass::Verdict CapturePass::askForAddress()
{
    AddressSource& addresses = m_recorder->m_parts.addresses;
    if (m_recorder->m_parts.preferences.savesAddresses() && addresses.canAsk(m_front.bundleID)) {
        Application browser = m_front;
        if (browser.name.isEmpty())
            browser.name = browser.bundleID;
        m_address = addresses.address(browser);
    }
    return Verdict::goOn();
}

QCoro::Task<CapturePass::Verdict> CapturePass::encodeAndRead()
{
    // A picture that is the same to the last cell says what the last one said.
    const auto knownText = m_moved == 0 ? m_recorder->m_seen.lastText : std::nullopt;
    m_processed =
        co_await ImageProcessor::process(m_picture, m_recorder->m_parts.preferences.imageQuality(),
                                         knownText, m_recorder->m_parts.recognizer);
    co_return m_recorder ? Verdict::goOn() : Verdict::silently();
}

QCoro::Task<CapturePass::Verdict> CapturePass::awaitAddress()
{
    try {
        if (m_address)
            m_link = (co_await awaited(*m_address)).value_or(QString());
    } catch (...) {
        // A page without its address is worth keeping.
        m_link.clear();
    }
    co_return m_recorder ? Verdict::goOn() : Verdict::silently();
}

CapturePass::Verdict CapturePass::isStillWanted()
{
    return isCurrent() && !m_cancellation.isRequested() ? Verdict::goOn() : Verdict::silently();
}

CapturePass::Verdict CapturePass::frontIsStillTheSame()
{
    // The record is filed under the front application; it must not lie about what was on screen.
    const auto front = m_recorder->m_parts.frontApplication.current();
    if (!front || front->bundleID != m_front.bundleID)
        return Verdict::skip(localized("Skipped a screen during an app switch"));
    return Verdict::goOn();
}

QCoro::Task<CapturePass::Verdict> CapturePass::save()
{
    m_memory = makeMemory();
    co_await awaited(m_recorder->m_parts.store->save(m_memory, m_processed.jpeg));
    m_isSaved = true;
    co_return m_recorder ? Verdict::goOn() : Verdict::silently();
}

Memory CapturePass::makeMemory() const
{
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    const QString appName = m_front.name.isEmpty() ? m_front.bundleID : m_front.name;
    const auto title =
        m_window ? WindowTitle::worthKeeping(m_window->title, appName) : std::nullopt;
    return {
        .id = id,
        .timestamp = m_takenAt,
        .appName = appName,
        .bundleID = m_front.bundleID,
        .text = m_processed.text,
        .filename = id + u".jpg"_s,
        .bytes = m_processed.jpeg.size(),
        .title = title.value_or(QString()),
        .link = m_link,
    };
}

// It is saved

CapturePass::Verdict CapturePass::remember()
{
    ScreensSeen& seen = m_recorder->m_seen;
    seen.lastScreen = m_fingerprint;
    seen.lastScreenSavedAt = m_takenAt;
    seen.lastText = m_processed.text;
    m_recorder->m_parts.afterSave.readForMeaning(m_memory);
    return Verdict::goOn();
}

QCoro::Task<CapturePass::Verdict> CapturePass::noteRefusals()
{
    if (!m_address)
        co_return Verdict::goOn();
    std::optional<QStringList> names;
    try {
        names = co_await awaited(m_recorder->m_parts.addresses.refusedNames());
    } catch (...) {
        // The names are for showing; the next pass asks again.
        names.reset();
    }
    if (!m_recorder)
        co_return Verdict::silently();
    if (names)
        m_recorder->setRefusedBrowsers(*names);
    co_return Verdict::goOn();
}

CapturePass::Verdict CapturePass::sayThatItIsSaved()
{
    if (isCurrent()) {
        const Recorder::Parts& parts = m_recorder->m_parts;
        m_recorder->setStatus(
            localized("Saved at %1").arg(parts.calendar().shortTime(parts.clock.now())));
    }
    return Verdict::goOn();
}

QCoro::Task<CapturePass::Verdict> CapturePass::applyRetention()
{
    co_await m_recorder->m_parts.afterSave.applyRetention();
    co_return m_recorder ? Verdict::goOn() : Verdict::silently();
}

QCoro::Task<CapturePass::Verdict> CapturePass::refresh()
{
    co_await m_recorder->m_parts.afterSave.refresh();
    co_return Verdict::goOn();
}

// How it ends

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
        m_recorder->stopForLockedScreen();
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
    m_recorder->setSaving(false);
    m_recorder->m_isCapturing = false;
    Q_EMIT m_recorder->passEnded();
}

} // namespace mossbank
