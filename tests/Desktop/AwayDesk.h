// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Desktop/MockedSession.h"
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <memory>

namespace mossbank::test {

/// A desktop with a terminal, a logind and a screen saver, and the program that records it. Those
/// of a test can be there side by side; the last one made is the first to go.
class AwayDesk {
public:
    AwayDesk();
    ~AwayDesk();
    Q_DISABLE_COPY_MOVE(AwayDesk)

    /// Why it could not be set up. Empty when all went well.
    QString problem() const;

    /// The user goes or comes back in one way: "lock", "saver", "sleep", "session" or "blank"; with
    /// a minus before it that ends. False when it does not take place.
    bool takePlace(const QString& step);

    /// Ends what tells of it all.
    void endLogind() { m_logind.reset(); }
    void endScreenSaver() { m_screenSaver.reset(); }
    void endBuses();
    /// Another one. False when it does not come.
    bool startLogind();

    VirtualDesktop& desktop() { return *m_desktop; }
    RunningMossbank& mossbank() { return *m_mossbank; }

    /// Starts the program recording every second, whether the screen has changed or not. Before
    /// another desk is made.
    bool startMossbank(QMap<QString, QString> choices = {});

    /// How much it has saved.
    struct Kept {
        qsizetype pictures = 0;
        qsizetype rows = 0;

        friend bool operator==(const Kept&, const Kept&) = default;
    };
    Kept kept() const;

private:
    std::unique_ptr<VirtualDesktop> m_desktop;
    QString m_display;
    bool m_hasTerminal = false;
    std::unique_ptr<TestBus> m_systemBus;
    std::unique_ptr<TestBus> m_sessionBus;
    std::unique_ptr<MockedLogind> m_logind;
    std::unique_ptr<MockedScreenSaver> m_screenSaver;
    std::unique_ptr<RunningMossbank> m_mossbank;
};

} // namespace mossbank::test
