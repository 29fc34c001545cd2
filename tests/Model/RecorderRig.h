// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/BrowserAddress.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Recorder.h"
#include "MossbankCore/Library/HistoryStore.h"
#include "tests/Fakes/FakeAddressSource.h"
#include "tests/Fakes/FakeApplicationChooser.h"
#include "tests/Fakes/FakeClock.h"
#include "tests/Fakes/FakeDesktop.h"
#include "tests/Fakes/FakeFrontApplication.h"
#include "tests/Fakes/FakeGuards.h"
#include "tests/Fakes/FakeLoginService.h"
#include "tests/Fakes/FakeNeighbours.h"
#include "tests/Fakes/FakeRelauncher.h"
#include "tests/Fakes/FakeScreen.h"
#include "tests/Fakes/FakeSessionEvents.h"
#include "tests/Fakes/FakeTextRecognizer.h"
#include "tests/Fakes/FakeUpdates.h"
#include "tests/Fakes/NonceHook.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <optional>
#include <utility>

namespace mossbank {

/// A recorder with a real library in a temporary folder, and everything else told by the test.
/// The screen is white, of one display; an editor is in front with one window.
class RecorderRig {
public:
    static inline const Application kEditor = {QStringLiteral("org.example.Editor"),
                                               QStringLiteral("Editor")};
    static inline const Application kOther = {QStringLiteral("org.example.Other"),
                                              QStringLiteral("Other")};
    static inline const Application kSecret = {QStringLiteral("org.example.Secret"),
                                               QStringLiteral("Secret")};
    static inline const Application kMossbank = {QString::fromUtf16(kOwnBundleID),
                                                 QStringLiteral("Mossbank")};

    QTemporaryDir folder;
    /// That of the library and of all that is made of the surroundings.
    const CalendarSource calendar;
    SealingHold sealing;
    std::optional<ImageVault> vault = ImageVault(SymmetricKey::random());
    FakeClock clock;
    FakeScreen screen;
    FakeFrontApplication front;
    FakeScreenState state;
    FakeSecureInput secureInput;
    FakeSessionEvents sessionEvents;
    FakeAddressSource addresses;
    FakeApplicationChooser applicationChooser;
    FakeAppearance appearance;
    FakeLoginService loginService;
    FakeQuitQuestion quitQuestion;
    FakeRelauncher relauncher;
    FakeUpdates updates;
    FakeTextRecognizer recognizer{{QStringLiteral("first line"), QStringLiteral("second line")}};
    Preferences preferences{folder.filePath(QStringLiteral("choices.ini"))};
    FakePauses pauses;
    FakeAfterSave afterSave;
    BrowserAddress pageAddresses{addresses, clock};
    std::unique_ptr<HistoryStore> store;
    std::unique_ptr<Recorder> recorder;

    explicit RecorderRig(bool withStore = true, CalendarSource days = calendarOf(QTimeZone::utc()))
        : calendar(std::move(days))
    {
        front.setCurrent(kEditor);
        screen.contentNow.windows = {window(kEditor, QRect(0, 0, 300, 180))};
        screen.contentNow.applications = {kEditor, kOther};
        preferences.setExcludedBundles({kSecret.bundleID});
        if (withStore)
            store = std::make_unique<HistoryStore>(
                HistoryStore::Writing{.root = libraryRoot(), .vault = vault, .calendar = calendar});
        makeRecorder();
    }

    ~RecorderRig()
    {
        sealing.release();
        recorder.reset();
        QThreadPool::globalInstance()->waitForDone();
    }
    Q_DISABLE_COPY_MOVE(RecorderRig)

    static CalendarSource calendarOf(const QTimeZone& zone)
    {
        return [zone] {
            return Calendar(zone, QLocale::c());
        };
    }

    /// As after a fresh launch on the same library.
    void makeRecorder()
    {
        recorder = std::make_unique<Recorder>(surroundings(),
                                              Recorder::Neighbours{.pauses = pauses,
                                                                   .afterSave = afterSave,
                                                                   .addresses = pageAddresses,
                                                                   .store = store.get()});
    }

    Surroundings surroundings() { return surroundings(preferences); }

    /// The same with other choices, which outlive what is made of them.
    Surroundings surroundings(Preferences& choices)
    {
        return {.clock = clock,
                .calendar = calendar,
                .screen = screen,
                .frontApplication = front,
                .screenState = state,
                .secureInput = secureInput,
                .sessionEvents = sessionEvents,
                .addresses = addresses,
                .applicationChooser = applicationChooser,
                .appearance = appearance,
                .loginService = loginService,
                .quitQuestion = quitQuestion,
                .relauncher = relauncher,
                .updates = updates,
                .recognizer = recognizer,
                .preferences = choices};
    }

    QString libraryRoot() const { return folder.filePath(QStringLiteral("Library")); }

    static ScreenWindow window(const Application& owner, const QRect& frame,
                               const QString& title = QStringLiteral("letter.txt — Editor"))
    {
        return {.owners = {owner}, .title = title, .layer = 0, .frame = frame, .isOnScreen = true};
    }

    /// Everything saved so far, newest first.
    QList<Memory> saved() { return store->fetch({.limit = 1000, .withText = true}).result(); }

    /// Lets everything happen that can without time passing: until no pass is under way and
    /// whoever is left sleeps.
    void settle()
    {
        const bool isQuiet = QTest::qWaitFor([this] {
            const bool loopRests = !recorder->isRecording() || clock.sleepers() > 0;
            return !recorder->isCapturing() && loopRests;
        });
        QVERIFY2(isQuiet, "a capture pass did not come to its end");
        QCoreApplication::processEvents();
    }

    /// The first pass of a recording, to its end.
    void start()
    {
        recorder->toggleRecording();
        settle();
    }

    /// Lets the rest pass and the pass after it come to its end.
    void nextPass()
    {
        clock.advance(std::max(preferences.interval(), 1.0));
        settle();
    }

    /// Changes what the screen shows.
    void drawBlock(const QRect& place, const QColor& color = Qt::black)
    {
        for (int y = place.top(); y <= place.bottom(); ++y)
            for (int x = place.left(); x <= place.right(); ++x)
                screen.pictureNow.setPixelColor(x, y, color);
    }
};

} // namespace mossbank
