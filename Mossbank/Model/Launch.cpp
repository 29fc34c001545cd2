// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Launch.h"

#include "Mossbank/Model/Housekeeping.h"
#include "Mossbank/Model/Listing.h"
#include "Mossbank/Model/LoginItem.h"
#include "Mossbank/Model/Pauses.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/QuitGuard.h"
#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Model/SampleLibrary.h"
#include "Mossbank/Ports/Relauncher.h"
#include "Mossbank/Ports/Screen.h"
#include "Mossbank/Ports/SessionEvents.h"
#include "MossbankCore/Library/LibraryStats.h"
#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Support/Failure.h"

#include <QElapsedTimer>

#include <cmath>
#include <utility>

namespace mossbank {

Launch::Launch(Surroundings surroundings, Parts parts, QObject* parent)
    : QObject(parent)
    , m_around(std::move(surroundings))
    , m_parts(parts)
    , m_powerOff(m_around.sessionEvents.workspace().addObserver(
          QString::fromUtf16(SessionEvents::kWillPowerOff), NotificationCenter::Delivery::Usual,
          [this](const QString&) { m_parts.quitGuard.expectQuit(); }))
{
}

Launch::~Launch()
{
    m_around.sessionEvents.workspace().removeObserver(m_powerOff);
}

void Launch::startUp()
{
    m_startingUp = Job::start(&Launch::putInOrder, this);
}

QCoro::Task<> Launch::putInOrder(Cancellation cancellation)
{
    constexpr double kNanosecondsASecond = 1e9;
    if (m_around.preferences.isDemo())
        co_await m_parts.sample.seed(cancellation);
    if (cancellation.isRequested())
        co_return;
    QElapsedTimer timer;
    timer.start();
    co_await m_parts.listing.refresh();
    if (cancellation.isRequested())
        co_return;
    m_parts.sample.tellFirstRefresh(static_cast<double>(timer.nsecsElapsed()) /
                                    kNanosecondsASecond);
    Q_EMIT listed();
    if (!cancellation.isRequested())
        co_await m_parts.housekeeping.tidyImages();
    if (!cancellation.isRequested())
        co_await m_parts.housekeeping.sealScreenshotsFromBeforeEncryption(cancellation);
}

void Launch::finishedLaunching()
{
    if (m_around.preferences.isDemo())
        return;
    m_parts.loginItem.keepWithThisCopy();
    m_parts.loginItem.refresh();
    // It is used up, also where a pause goes before it.
    const bool isRelaunched = takeRelaunch();
    if (m_parts.pauses.resumeStoredPause())
        return;
    if (m_around.preferences.recordsAtLaunch() || isRelaunched)
        m_parts.recorder.startWithoutAsking();
}

bool Launch::takeRelaunch()
{
    // An update takes less. What is older was left by something that went wrong.
    constexpr double kRelaunchTakes = 180;
    const auto stamp = m_around.preferences.recordsAfterRelaunch();
    m_around.preferences.removeRecordsAfterRelaunch();
    return stamp && std::abs(*stamp - m_around.clock.now()) < kRelaunchTakes;
}

Launch::FirstRun Launch::firstRun(const LibraryStats& stats) const
{
    if (stats.count > 0)
        return FirstRun::Done;
    // Nothing is ever seen of the screen in the sample library.
    if (!m_around.preferences.isDemo() && !m_around.screen.isAllowed())
        return FirstRun::Permission;
    if (m_parts.recorder.askedForPermission())
        return FirstRun::Reopen;
    return m_parts.recorder.isRecording() ? FirstRun::Waiting : FirstRun::Ready;
}

void Launch::becameActive()
{
    m_parts.loginItem.refresh();
    Q_EMIT systemMayHaveChanged();
}

void Launch::reopen()
{
    m_parts.quitGuard.expectQuit();
    try {
        m_around.relauncher.openAnother();
    } catch (const Failure&) {
        // This one ends in any case; the user starts it again by hand.
    }
    m_parts.quitGuard.quit(QuitGuard::Cause::User);
}

void Launch::prepareForRelaunch()
{
    m_parts.quitGuard.expectQuit();
    if (m_parts.recorder.isRecording() && !m_around.preferences.isDemo())
        m_around.preferences.setRecordsAfterRelaunch(m_around.clock.now());
}

bool Launch::handleReopen(bool hasVisibleWindows) const
{
    if (hasVisibleWindows || !m_reopenHandler)
        return true;
    m_reopenHandler();
    return false;
}

} // namespace mossbank
