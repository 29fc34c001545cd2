// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/StubService.h"

#include <QDBusError>

namespace mossbank::test {

StubService::StubService(const QString& service, const QString& path)
    : m_bus(QDBusConnection::SessionBus)
    , m_service(service)
    , m_path(path)
{
    m_bus->registerVirtualObject(path, this);
}

StubService::~StubService()
{
    m_bus->unregisterObject(m_path);
}

bool StubService::appear()
{
    return m_bus->registerService(m_service);
}

void StubService::disappear()
{
    m_bus->unregisterService(m_service);
}

bool StubService::emitSignal(const QString& interface, const QString& name,
                             const QVariantList& arguments)
{
    QDBusMessage signal = QDBusMessage::createSignal(m_path, interface, name);
    signal.setArguments(arguments);
    return m_bus->send(signal);
}

bool StubService::handleMessage(const QDBusMessage& message, const QDBusConnection&)
{
    asked.append(message);
    switch (manner) {
    case Manner::Answers:
        return send(answer ? answer(message) : message.createReply());
    case Manner::Refuses:
        return send(message.createErrorReply(QDBusError::Failed, QStringLiteral("It rains.")));
    case Manner::KeepsSilent:
        break;
    }
    return true;
}

} // namespace mossbank::test
