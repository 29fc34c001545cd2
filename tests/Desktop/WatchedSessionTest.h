// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/SessionWatch.h"
#include "MossbankCore/Capture/InactivityMonitor.h"
#include "tests/Desktop/MockedSession.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QObject>
#include <QStringList>

#include <memory>

namespace mossbank::test {

inline const QString kSleep = InactivityEvent(InactivityEvent::Sleep).name();
inline const QString kResigned = InactivityEvent(InactivityEvent::SessionResigned).name();
inline const QString kLocked = InactivityEvent(InactivityEvent::ScreenLocked).name();
inline const QString kWake = ReturnEvent(ReturnEvent::Wake).name();
inline const QString kActive = ReturnEvent(ReturnEvent::SessionActive).name();
inline const QString kUnlocked = ReturnEvent(ReturnEvent::ScreenUnlocked).name();

/// A test of what is told of the user's leaving and return. Each of its cases has a display and
/// buses of its own, on which there is nobody yet.
class WatchedSessionTest : public QObject {
    Q_OBJECT

protected Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

protected:
    /// Milliseconds for what must not come to have come.
    static constexpr int kLongEnough = 200;

    TestBus& systemBus() { return *m_systemBus; }
    TestBus& sessionBus() { return *m_sessionBus; }

    /// Whether it has come to be there. `parameters` as for MockedLogind.
    bool startLogind(const QString& parameters = {});
    MockedLogind& logind() { return *m_logind; }
    void endLogind() { m_logind.reset(); }

    bool startScreenSaver();
    MockedScreenSaver& screenSaver() { return *m_screenSaver; }
    void endScreenSaver() { m_screenSaver.reset(); }

    /// From now on it is listened to.
    void watch();
    ScreenState& state() { return *m_state; }
    SessionEvents& events() { return *m_events; }
    /// The names of all events since, or since they were forgotten.
    const QStringList& told() const { return m_told; }
    void forget() { m_told.clear(); }

private:
    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<TestBus> m_systemBus;
    std::unique_ptr<TestBus> m_sessionBus;
    std::unique_ptr<MockedLogind> m_logind;
    std::unique_ptr<MockedScreenSaver> m_screenSaver;
    std::unique_ptr<LinuxScreenState> m_state;
    std::unique_ptr<LinuxSessionEvents> m_events;
    std::unique_ptr<InactivityMonitor> m_monitor;
    QStringList m_told;
};

} // namespace mossbank::test
