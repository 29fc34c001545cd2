// SPDX-License-Identifier: Apache-2.0
//
// The second half of a capture pass: from the decision to save to what follows a save.
#include "Mossbank/Model/AfterSave.h"
#include "Mossbank/Model/BrowserAddress.h"
#include "Mossbank/Model/CapturePass.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Ports/FrontApplication.h"
#include "MossbankCore/Capture/WindowTitle.h"
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Support/Awaited.h"

#include <QUuid>

namespace mossbank {

using namespace Qt::StringLiterals;

// It will be saved

CaptureVerdict CapturePass::showThatItSaves()
{
    m_recorder->setSaving(true);
    return Verdict::goOn();
}

CaptureVerdict CapturePass::askForAddress()
{
    BrowserAddress& addresses = m_recorder->m_neighbours.addresses;
    if (around().preferences.savesAddresses() && addresses.canAsk(m_front.bundleID))
        m_address = addresses.address(m_front.bundleID, m_front.shownName());
    return Verdict::goOn();
}

QCoro::Task<CaptureVerdict> CapturePass::encodeAndRead()
{
    // A picture that is the same to the last cell says what the last one said.
    const auto knownText = m_moved == 0 ? m_recorder->m_seen.lastText : std::nullopt;
    m_processed = co_await ImageProcessor::process(m_picture, around().preferences.imageQuality(),
                                                   knownText, around().recognizer);
    co_return Verdict::goOn();
}

QCoro::Task<CaptureVerdict> CapturePass::awaitAddress()
{
    try {
        if (m_address)
            m_link = (co_await awaited(*m_address)).value_or(QString());
    } catch (...) {
        // A page without its address is worth keeping.
        m_link.clear();
    }
    co_return Verdict::goOn();
}

CaptureVerdict CapturePass::isStillWanted()
{
    return isCurrent() && !m_cancellation.isRequested() ? Verdict::goOn() : Verdict::silently();
}

CaptureVerdict CapturePass::frontIsStillTheSame()
{
    // The record is filed under the front application; it must not lie about what was on screen.
    const auto front = around().frontApplication.current();
    if (!front || front->bundleID != m_front.bundleID)
        return Verdict::skip(localized("Skipped a screen during an app switch"));
    return Verdict::goOn();
}

QCoro::Task<CaptureVerdict> CapturePass::save()
{
    m_memory = makeMemory();
    m_timesForgotten = m_recorder->m_seen.timesForgotten;
    co_await awaited(m_recorder->m_neighbours.store->save(m_memory, m_processed.jpeg));
    m_isSaved = true;
    co_return Verdict::goOn();
}

Memory CapturePass::makeMemory() const
{
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    const QString appName = m_front.shownName();
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

CaptureVerdict CapturePass::remember()
{
    ScreensSeen& seen = m_recorder->m_seen;
    if (seen.timesForgotten == m_timesForgotten) {
        seen.lastScreen = m_fingerprint;
        seen.lastScreenSavedAt = m_takenAt;
    }
    seen.lastText = m_processed.isWhole ? std::optional(m_processed.text) : std::nullopt;
    m_recorder->m_neighbours.afterSave.readForMeaning(m_memory);
    return Verdict::goOn();
}

CaptureVerdict CapturePass::noteRefusals()
{
    if (m_address)
        m_recorder->setRefusedBrowsers(m_recorder->m_neighbours.addresses.refusedNames());
    return Verdict::goOn();
}

CaptureVerdict CapturePass::sayThatItIsSaved()
{
    if (isCurrent()) {
        const QString time = around().calendar().shortTime(around().clock.now());
        m_recorder->setStatus(localized("Saved at %1").arg(time));
    }
    return Verdict::goOn();
}

QCoro::Task<CaptureVerdict> CapturePass::applyRetention()
{
    co_await m_recorder->m_neighbours.afterSave.applyRetention();
    co_return Verdict::goOn();
}

QCoro::Task<CaptureVerdict> CapturePass::refresh()
{
    co_await m_recorder->m_neighbours.afterSave.refresh();
    co_return Verdict::goOn();
}

} // namespace mossbank
