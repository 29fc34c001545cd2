// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/CaptureVerdict.h"
#include "Mossbank/Ports/Application.h"
#include "Mossbank/Ports/Screen.h"
#include "MossbankCore/Capture/ImageProcessor.h"
#include "MossbankCore/Capture/ScreenFingerprint.h"
#include "MossbankCore/Library/Memory.h"
#include "MossbankCore/Support/Cancellation.h"
#include "MossbankCore/Support/Date.h"

#include <QCoroTask>
#include <QFuture>
#include <QImage>
#include <QPointer>
#include <QString>

#include <optional>

namespace mossbank {

class Recorder;
struct Surroundings;

/// One look at the screen, from the first reason not to look to the record saved.
///
/// The steps and their order are the table at the top of CapturePass.cpp; nearly every one is a
/// reason not to save. A pass is *current* while recording is on and the recorder's generation is
/// the one it began under; a pass that no longer is ends without a word, and its picture is
/// dropped.
///
/// Threading: the main thread, given up at each wait. The recorder may be gone after any of them.
/// Errors: none are thrown. A failure stops the recording and is told in the recorder's
/// `errorMessage`.
class CapturePass {
public:
    CapturePass(Recorder& recorder, Cancellation cancellation);
    ~CapturePass();
    Q_DISABLE_COPY_MOVE(CapturePass)

    /// Goes through the steps. The pass must live until this has ended.
    QCoro::Task<> run();

private:
    using Verdict = CaptureVerdict;
    struct Step;
    static const Step kSteps[];

    // Each is one step of the table.
    Verdict passMayBegin();
    Verdict permissionIsThere();
    Verdict screenIsNotLocked();
    Verdict displayIsAwake();
    Verdict applicationIsInFront();
    Verdict frontIsNotMossbank();
    Verdict frontIsNotExcluded();
    Verdict inputIsNotSecure();
    Verdict takeTheCapture();
    QCoro::Task<Verdict> askForContent();
    Verdict findWindow();
    Verdict chooseDisplay();
    Verdict nothingExcludedIsVisible();
    QCoro::Task<Verdict> takePicture();
    Verdict nothingBecameSecretMeanwhile();
    Verdict screenHasChanged();
    Verdict showThatItSaves();
    Verdict askForAddress();
    QCoro::Task<Verdict> encodeAndRead();
    QCoro::Task<Verdict> awaitAddress();
    Verdict isStillWanted();
    Verdict frontIsStillTheSame();
    QCoro::Task<Verdict> save();
    Verdict remember();
    Verdict noteRefusals();
    Verdict sayThatItIsSaved();
    QCoro::Task<Verdict> applyRetention();
    QCoro::Task<Verdict> refresh();

    QStringList includedApplications() const;
    Memory makeMemory() const;

    const Surroundings& around() const;
    bool isCurrent() const;
    void conclude(const Verdict& verdict);
    void letGo();

    QPointer<Recorder> m_recorder;
    Cancellation m_cancellation;
    /// The recorder's generation that the pass began under.
    int m_token;
    bool m_holdsCapture = false;

    // What the steps have found so far, in the order in which they find it.
    Application m_front;
    ScreenContent m_content;
    std::optional<ScreenWindow> m_window;
    Display m_display;
    Date m_takenAt;
    QImage m_picture;
    std::optional<Fingerprint> m_fingerprint;
    /// Cells that moved since the last picture saved.
    std::int64_t m_moved;
    std::optional<QFuture<std::optional<QString>>> m_address;
    ProcessedImage m_processed;
    QString m_link;
    Memory m_memory;
    bool m_isSaved = false;
    /// As it was when the saving began.
    int m_timesForgotten = 0;
};

} // namespace mossbank
