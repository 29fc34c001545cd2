// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/NotificationCenter.h"

#include <QString>

#include <array>
#include <functional>
#include <utility>
#include <vector>

namespace mossbank {

/// The user leaves.
class InactivityEvent {
public:
    enum Case { Sleep, SessionResigned, ScreenLocked };

    static constexpr std::array kAllCases = {Sleep, SessionResigned, ScreenLocked};

    // An event is as good as its case.
    constexpr InactivityEvent(Case event) // NOLINT(google-explicit-constructor)
        : m_case(event)
    {
    }

    /// Of the notification that tells it.
    QString name() const;
    /// Whether that comes by the distributed center.
    bool isDistributed() const { return m_case == ScreenLocked; }
    /// What recording says of it, in English.
    const char* status() const;
    /// The same in the user's language.
    QString message() const;

    friend constexpr bool operator==(InactivityEvent, InactivityEvent) = default;

private:
    Case m_case;
};

/// The user may be back.
class ReturnEvent {
public:
    enum Case { Wake, SessionActive, ScreenUnlocked, ScreensWake };

    static constexpr std::array kAllCases = {Wake, SessionActive, ScreenUnlocked, ScreensWake};

    // An event is as good as its case.
    constexpr ReturnEvent(Case event) // NOLINT(google-explicit-constructor)
        : m_case(event)
    {
    }

    /// Of the notification that tells it.
    QString name() const;
    /// Whether that comes by the distributed center.
    bool isDistributed() const { return m_case == ScreenUnlocked; }

    friend constexpr bool operator==(ReturnEvent, ReturnEvent) = default;

private:
    Case m_case;
};

/// Watches for the user's leaving and coming back, from its making to its end.
///
/// Threading: the callbacks run where the centers tell.
class InactivityMonitor {
public:
    using OnEvent = std::function<void(InactivityEvent)>;
    using OnReturn = std::function<void(ReturnEvent)>;

    /// The centers outlive it. Without `onReturn` returns are not watched.
    InactivityMonitor(NotificationCenter& workspace, NotificationCenter& distributed,
                      OnEvent onEvent, OnReturn onReturn = {});
    ~InactivityMonitor();
    InactivityMonitor(const InactivityMonitor&) = delete;
    InactivityMonitor& operator=(const InactivityMonitor&) = delete;

    /// Passes on what a notification of this name tells. Another name does nothing.
    void receive(const QString& name) const;

private:
    void observe(const QString& name, bool isDistributed);

    NotificationCenter& m_workspace;
    NotificationCenter& m_distributed;
    OnEvent m_onEvent;
    OnReturn m_onReturn;
    std::vector<std::pair<NotificationCenter*, NotificationCenter::Token>> m_tokens;
};

} // namespace mossbank
