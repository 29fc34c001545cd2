// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Housekeeping.h"

#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Model/Texts.h"
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Library/LibraryLocation.h"
#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Support/Awaited.h"

#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace mossbank {

using namespace Qt::StringLiterals;

namespace {

/// Seconds between two removals that nobody asked for.
constexpr double kThrottle = 60;
/// Seconds after which a save that has not come to its end counts as cut short.
constexpr double kGrace = 60;
/// So that the library's queue is free for captures and searches in between.
constexpr qsizetype kPicturesABatch = 200;
constexpr double kRest = 0.2;

} // namespace

Housekeeping::Housekeeping(Surroundings surroundings, Recorder& recorder, HistoryStore* store,
                           QObject* parent)
    : QObject(parent)
    , m_around(std::move(surroundings))
    , m_recorder(recorder)
    , m_store(store)
{
}

QCoro::Task<> Housekeeping::applyRetention(bool force)
{
    const int days = m_around.preferences.retentionDays();
    // Choices that cannot be read may say to keep all for ever, and what is removed does not come
    // back.
    if (days < 1 || !m_store || !m_around.preferences.isRetentionKnown())
        co_return;
    const Date now = m_around.clock.now();
    const auto cutoff = m_around.calendar().daysBefore(days, now);
    if (!cutoff || (!force && now - m_lastPruneAt < kThrottle))
        co_return;
    // Before the removal: one that failed waits as well.
    m_lastPruneAt = now;
    const QPointer<Housekeeping> self(this);
    try {
        co_await awaited(m_store->prune(*cutoff));
    } catch (const Failure& failure) {
        if (self)
            report("Could not remove expired history: %1", failure.message());
    }
}

QCoro::Task<> Housekeeping::tidyImages()
{
    if (!m_store)
        co_return;
    const QPointer<Housekeeping> self(this);
    try {
        co_await awaited(m_store->reconcile(kGrace, m_around.clock.now()));
    } catch (const Failure& failure) {
        if (self)
            report("Could not tidy the screenshot folder: %1", failure.message());
    }
}

QCoro::Task<> Housekeeping::sealScreenshotsFromBeforeEncryption(Cancellation cancellation)
{
    if (!m_store)
        co_return;
    const QPointer<Housekeeping> self(this);
    qsizetype total = 0;
    try {
        while (const auto sealed =
                   co_await awaited(m_store->sealExistingPictures(kPicturesABatch))) {
            if (!self)
                co_return;
            total += sealed;
            if (!co_await m_around.clock.sleep(kRest, cancellation))
                co_return;
        }
    } catch (const Failure& failure) {
        if (self)
            report("Some screenshots could not be encrypted: %1", failure.message());
    }
    if (!self || total == 0)
        co_return;
    m_recorder.setStatus(total == 1
                             ? localized("Encrypted 1 screenshot saved earlier")
                             : localized("Encrypted %1 screenshots saved earlier").arg(total));
}

void Housekeeping::deleteAll()
{
    m_recorder.stop();
    if (!m_store)
        return;
    m_recorder.forgetLastScreen();
    // Asked for at once, and not when this thread next has nothing else to do: it may be quitting.
    m_deleting = Job::start(&Housekeeping::afterDeletion, this, m_store->deleteAll());
}

QCoro::Task<> Housekeeping::afterDeletion(QFuture<void> deletion, Cancellation cancellation)
{
    const QPointer<Housekeeping> self(this);
    bool isComplete = false;
    try {
        co_await awaited(deletion);
        isComplete = true;
    } catch (const Failure& failure) {
        if (self)
            report("Could not delete history: %1", failure.message());
    }
    if (!self || cancellation.isRequested())
        co_return;
    Q_EMIT deleted(isComplete);
}

void Housekeeping::report(const char* sentence, const QString& reason)
{
    m_recorder.setErrorMessage(localized(sentence).arg(reason));
}

QString Housekeeping::libraryFolder() const
{
    // The sample library is in a folder that means nothing to anybody.
    if (m_around.preferences.isDemo())
        return u"Mossbank"_s;
    return QFileInfo(m_store ? m_store->root() : LibraryLocation::library()).fileName();
}

QString Housekeeping::estimate(double interval, bool skipsUnchangedScreens, const QLocale& locale)
{
    constexpr double kSecondsADay = 28'800; // eight hours of it
    constexpr double kMegabytesAPicture = 0.4;
    constexpr double kMegabytesAGigabyte = 1024;
    const double count = std::round(kSecondsADay / std::max(interval, 1.0));
    const double size = count * kMegabytesAPicture / kMegabytesAGigabyte;
    const QString text =
        skipsUnchangedScreens
            ? localized("Still images, without audio. Over an eight-hour day that is at most %1 "
                        "screenshots and %2 GB. Most checks find a screen that has not moved and "
                        "stop there, so a real day is a fraction of that. Mossbank pauses when "
                        "your Mac sleeps, the screen locks or your session becomes inactive, and "
                        "never captures itself.")
            : localized("Still images, without audio. Over an eight-hour day that is at most %1 "
                        "screenshots and %2 GB. Every check is being saved, because saving only on "
                        "change is turned off. Mossbank pauses when your Mac sleeps, the screen "
                        "locks or your session becomes inactive, and never captures itself.");
    return text.arg(QString::number(count, 'f', 0), locale.toString(size, 'f', 1));
}

QString Housekeeping::storageLabel(qint64 bytes, const QLocale& locale)
{
    return bytes == 0 ? localized("0 KB")
                      : locale.formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

} // namespace mossbank
