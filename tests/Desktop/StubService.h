// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusConnection.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QList>
#include <QString>
#include <QVariantList>

#include <functional>

namespace mossbank::test {

/// A service on the session bus that lives in the test itself, for what is asked without waiting.
/// It notes what it is asked, and answers as the test says.
class StubService : public QDBusVirtualObject {
    Q_OBJECT

public:
    enum class Manner { Answers, Refuses, KeepsSilent };

    /// On the bus that the environment names now. It is not there yet.
    StubService(const QString& service, const QString& path);
    ~StubService() override;

    /// Takes its name, which has to be free.
    bool appear();
    void disappear();

    Manner manner = Manner::Answers;
    /// What it was asked, in order.
    QList<QDBusMessage> asked;
    /// The answer to a question. Empty unless told.
    std::function<QDBusMessage(const QDBusMessage&)> answer;
    /// Sends an answer, now or later.
    bool send(const QDBusMessage& message) { return m_bus->send(message); }
    /// Tells everybody.
    bool emitSignal(const QString& interface, const QString& name, const QVariantList& arguments);

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    BusConnection m_bus;
    QString m_service;
    QString m_path;
};

} // namespace mossbank::test
