// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/InactivityMonitor.h"

#include <QCoreApplication>

namespace mossbank {

using namespace Qt::StringLiterals;

QString InactivityEvent::name() const
{
    switch (m_case) {
    case Sleep:
        return u"NSWorkspaceWillSleepNotification"_s;
    case SessionResigned:
        return u"NSWorkspaceSessionDidResignActiveNotification"_s;
    case ScreenLocked:
        break;
    }
    return u"com.apple.screenIsLocked"_s;
}

const char* InactivityEvent::status() const
{
    switch (m_case) {
    case Sleep:
        return "Paused when your Mac went to sleep";
    case SessionResigned:
        return "Paused when your session became inactive";
    case ScreenLocked:
        break;
    }
    return "Paused when the screen locked";
}

QString InactivityEvent::message() const
{
    return QCoreApplication::translate("Mossbank", status());
}

QString ReturnEvent::name() const
{
    switch (m_case) {
    case Wake:
        return u"NSWorkspaceDidWakeNotification"_s;
    case SessionActive:
        return u"NSWorkspaceSessionDidBecomeActiveNotification"_s;
    case ScreenUnlocked:
        return u"com.apple.screenIsUnlocked"_s;
    case ScreensWake:
        break;
    }
    return u"NSWorkspaceScreensDidWakeNotification"_s;
}

InactivityMonitor::InactivityMonitor(NotificationCenter& workspace, NotificationCenter& distributed,
                                     OnEvent onEvent, OnReturn onReturn)
    : m_workspace(workspace)
    , m_distributed(distributed)
    , m_onEvent(std::move(onEvent))
    , m_onReturn(std::move(onReturn))
{
    for (const InactivityEvent event : InactivityEvent::kAllCases)
        observe(event.name(), event.isDistributed());
    if (!m_onReturn)
        return;
    for (const ReturnEvent event : ReturnEvent::kAllCases)
        observe(event.name(), event.isDistributed());
}

InactivityMonitor::~InactivityMonitor()
{
    for (const auto& [center, token] : m_tokens)
        center->removeObserver(token);
}

void InactivityMonitor::observe(const QString& name, bool isDistributed)
{
    NotificationCenter& center = isDistributed ? m_distributed : m_workspace;
    // A program that is set aside while the screen locks would hear of it too late.
    const auto delivery = isDistributed && center.isDistributed()
                              ? NotificationCenter::Delivery::Immediate
                              : NotificationCenter::Delivery::Usual;
    m_tokens.emplace_back(&center, center.addObserver(name, delivery, [this](const QString& told) {
        receive(told);
    }));
}

void InactivityMonitor::receive(const QString& name) const
{
    for (const InactivityEvent event : InactivityEvent::kAllCases) {
        if (event.name() == name)
            return m_onEvent(event);
    }
    if (!m_onReturn)
        return;
    for (const ReturnEvent event : ReturnEvent::kAllCases) {
        if (event.name() == name)
            return m_onReturn(event);
    }
}

} // namespace mossbank
