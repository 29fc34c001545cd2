// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/LoginItem.h"

#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Ports/LoginService.h"
#include "MossbankCore/Support/Failure.h"

namespace mossbank {

namespace {

using Status = LoginService::Status;

LoginItem::State stateOf(Status status)
{
    switch (status) {
    case Status::Enabled:
        return LoginItem::State::On;
    case Status::NotRegistered:
        return LoginItem::State::Off;
    case Status::RequiresApproval:
        return LoginItem::State::NeedsApproval;
    case Status::Unknown:
        break;
    }
    return LoginItem::State::Unavailable;
}

} // namespace

LoginItem::LoginItem(LoginService& service, Preferences& preferences, Recorder& recorder,
                     QObject* parent)
    : QObject(parent)
    , m_service(service)
    , m_preferences(preferences)
    , m_recorder(recorder)
{
}

void LoginItem::keepWithThisCopy()
{
    // Choices that cannot be read may hold the wish. They are to be mended, and not written over.
    if (m_service.isWithoutHome() || !m_preferences.isReadable())
        return;
    const QString here = m_service.path();
    if (!m_preferences.opensAtLogin()) {
        // What the system says wins over a wish that was forgotten.
        if (m_service.status() == Status::Enabled) {
            m_preferences.setOpensAtLogin(true);
            m_preferences.setOpensAtLoginPath(here);
        }
        return;
    }
    if (m_preferences.opensAtLoginPath() == here) {
        if (m_service.status() == Status::NotRegistered)
            m_preferences.setOpensAtLogin(false);
        return;
    }
    // Nobody asked just now, so nobody is told.
    if (m_service.status() != Status::Enabled)
        set(true);
    m_preferences.setOpensAtLoginPath(here);
}

void LoginItem::refresh()
{
    if (m_preferences.isDemo())
        return;
    const State state = stateOf(m_service.status());
    if (state == m_state)
        return;
    if (state == State::Off && m_state == State::On && m_preferences.isReadable())
        m_preferences.setOpensAtLogin(false);
    m_state = state;
    Q_EMIT stateChanged();
}

void LoginItem::setOpensAtLogin(bool opens)
{
    if (const auto message = set(opens))
        m_recorder.setErrorMessage(message);
    refresh();
    if (m_preferences.isDemo())
        return;
    const bool isOn = m_state == State::On;
    if (opens ? isOn || m_state == State::NeedsApproval : !isOn) {
        m_preferences.setOpensAtLogin(opens);
        m_preferences.setOpensAtLoginPath(m_service.path());
    }
}

std::optional<QString> LoginItem::set(bool on)
{
    if (on == (m_service.status() == Status::Enabled))
        return std::nullopt;
    try {
        if (on)
            m_service.registerItem();
        else
            m_service.unregisterItem();
    } catch (const Failure& failure) {
        return localized("macOS would not change the login item: %1").arg(failure.message());
    }
    if (m_service.status() == Status::RequiresApproval) {
        return localized("Allow Mossbank in System Settings → General → Login Items, then it will "
                         "open at login.");
    }
    return std::nullopt;
}

} // namespace mossbank
