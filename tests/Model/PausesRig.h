// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/AppModel.h"
#include "tests/Model/RecorderRig.h"

#include <memory>

namespace mossbank {

/// The whole model, with a desktop whose user leaves and comes back when told.
class PausesRig {
protected:
    static constexpr double kUntilSettled = 1.5;
    /// A quarter to nine in the morning.
    static constexpr Date kMorning = {1'700'037'900};

    void begin()
    {
        m_model.reset();
        m_rig = std::make_unique<RecorderRig>(false);
        m_rig->clock.setNow(kMorning);
        launch();
    }

    void end()
    {
        m_model.reset();
        m_rig.reset();
    }

    void launch()
    {
        m_model.reset();
        m_isAway = false;
        m_model = std::make_unique<AppModel>(m_rig->surroundings(),
                                             OpenedLibrary::at(m_rig->libraryRoot(), nullptr));
    }

    Recorder& recorder() { return m_model->recorder(); }

    void settle()
    {
        const bool isQuiet = QTest::qWaitFor([this] {
            return !recorder().isCapturing() &&
                   (!recorder().isRecording() || m_rig->clock.sleepers() > 0);
        });
        QVERIFY2(isQuiet, "a capture pass did not come to its end");
        for (int turn = 0; turn < 3; ++turn)
            QCoreApplication::processEvents();
    }

    void start()
    {
        recorder().toggleRecording();
        settle();
        QVERIFY(recorder().isRecording());
    }

    void nextPass()
    {
        m_rig->clock.advance(m_rig->preferences.interval());
        settle();
    }

    /// Lets so many seconds pass.
    void pass(double seconds)
    {
        m_rig->clock.advance(seconds);
        settle();
    }

    /// Something happens to the desktop, it is told, and its consequences come.
    void happens(const QString& event)
    {
        const FakeSessionEvents& session = m_rig->sessionEvents;
        if (event == QStringLiteral("lock")) {
            m_rig->state.isLockedNow = true;
            session.tell(InactivityEvent(InactivityEvent::ScreenLocked));
        } else if (event == QStringLiteral("unlock")) {
            m_rig->state.isLockedNow = false;
            session.tell(ReturnEvent(ReturnEvent::ScreenUnlocked));
        } else if (event == QStringLiteral("sleep")) {
            m_rig->state.isAsleepNow = true;
            session.tell(InactivityEvent(InactivityEvent::Sleep));
        } else if (event == QStringLiteral("wake")) {
            m_rig->state.isAsleepNow = false;
            session.tell(ReturnEvent(ReturnEvent::Wake));
        } else if (event == QStringLiteral("resign")) {
            m_rig->sessionEvents.isOnConsoleNow = false;
            session.tell(InactivityEvent(InactivityEvent::SessionResigned));
        } else if (event == QStringLiteral("active")) {
            m_rig->sessionEvents.isOnConsoleNow = true;
            session.tell(ReturnEvent(ReturnEvent::SessionActive));
        } else if (event == QStringLiteral("displayOff")) {
            m_rig->state.isAsleepNow = true;
        } else if (event == QStringLiteral("displayOn")) {
            m_rig->state.isAsleepNow = false;
            session.tell(ReturnEvent(ReturnEvent::ScreensWake));
        } else {
            QFAIL(qPrintable(event));
        }
        const bool isLeaving = event == QStringLiteral("lock") ||
                               event == QStringLiteral("sleep") ||
                               event == QStringLiteral("resign");
        const bool isThere = !m_rig->state.isLockedNow && !m_rig->state.isAsleepNow &&
                             m_rig->sessionEvents.isOnConsoleNow != false;
        m_isAway = isLeaving || (m_isAway && !isThere);
        settle();
        pass(kUntilSettled);
    }

    std::unique_ptr<RecorderRig> m_rig;
    std::unique_ptr<AppModel> m_model;
    bool m_isAway = false;
};

} // namespace mossbank
