// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ApplicationObject.h"

#include "Mossbank/Ports/ProgramActivation.h"

#include <utility>

namespace mossbank {

namespace {

constexpr int kMostInSecond = 100;
constexpr qint64 kSecond = 1000;

} // namespace

void ApplicationObject::Activate(const QVariantMap&)
{
    if (isFlood())
        return;
    m_isToShow = true;
    tellLater();
}

void ApplicationObject::Open(const QStringList&, const QVariantMap& platformData)
{
    Activate(platformData);
}

void ApplicationObject::ActivateAction(const QString& action, const QVariantList& parameters,
                                       const QVariantMap&)
{
    if (isFlood() || !parameters.isEmpty() || action != QStringView(ProgramActivation::kQuit) ||
        m_actions.contains(action))
        return;
    m_actions.append(action);
    tellLater();
}

bool ApplicationObject::isFlood()
{
    if (!m_second.isValid() || m_second.hasExpired(kSecond)) {
        m_second.start();
        m_callsInSecond = 0;
    }
    ++m_callsInSecond;
    if (m_callsInSecond > kMostInSecond && !std::exchange(m_isFlooded, true))
        Q_EMIT flooded();
    return m_isFlooded;
}

void ApplicationObject::recover()
{
    m_isFlooded = false;
    m_callsInSecond = 0;
}

void ApplicationObject::tellLater()
{
    if (std::exchange(m_isTelling, true))
        return;
    QMetaObject::invokeMethod(this, &ApplicationObject::tell, Qt::QueuedConnection);
}

void ApplicationObject::tell()
{
    m_isTelling = false;
    const QStringList actions = std::exchange(m_actions, {});
    if (std::exchange(m_isToShow, false))
        Q_EMIT activated();
    for (const QString& action : actions)
        Q_EMIT actionRequested(action);
}

} // namespace mossbank
