// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusActivation.h"
#include "Mossbank/Platform/Linux/BusConnection.h"
#include "tests/Desktop/TestBus.h"

#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <memory>

namespace mossbank::test {

/// A test of what is called over a session bus. Each of its cases has a bus of its own, and a
/// caller on it.
class CalledActivationTest : public QObject {
    Q_OBJECT

protected Q_SLOTS:
    void init();
    void cleanup();

protected:
    static inline const QString kIdentity = QStringLiteral("org.example.grey-heron");
    static inline const QString kPath = QStringLiteral("/org/example/grey_heron");
    static inline const QString kInterface = QStringLiteral("org.freedesktop.Application");

    static constexpr int kPatience = 20'000;
    /// For what must not come to have come.
    static constexpr int kLongEnough = 200;

    /// Has the first one listen, and waits until it is found.
    bool listen();
    /// The error that a call of the first is answered with. Empty when it is none.
    QString ask(const QString& method, const QVariantList& arguments);
    /// Who has the name. Empty when nobody has.
    QString owner();

    std::unique_ptr<TestBus> m_bus;
    std::unique_ptr<BusConnection> m_other;
    std::unique_ptr<BusActivation> m_first;
    int m_activations = 0;
    QStringList m_actions;

private:
    QDBusMessage answerTo(const QDBusMessage& call);
};

} // namespace mossbank::test
