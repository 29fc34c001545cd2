// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/CalledActivationTest.h"

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QTest>

using namespace Qt::StringLiterals;

namespace mossbank::test {

void CalledActivationTest::init()
{
    m_activations = 0;
    m_actions.clear();
    m_bus = std::make_unique<TestBus>(TestBus::Kind::Session);
    QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
    m_other = std::make_unique<BusConnection>(QDBusConnection::SessionBus);
}

void CalledActivationTest::cleanup()
{
    m_first.reset();
    m_other.reset();
    m_bus.reset();
}

bool CalledActivationTest::listen()
{
    m_first = std::make_unique<BusActivation>(kIdentity);
    connect(m_first.get(), &ProgramActivation::activated, this, [this] { ++m_activations; });
    connect(m_first.get(), &ProgramActivation::actionRequested, this,
            [this](const QString& action) { m_actions.append(action); });
    m_first->listen();
    return QTest::qWaitFor([&] { return !owner().isEmpty(); }, kPatience) &&
           m_first->availability().isAvailable;
}

QString CalledActivationTest::ask(const QString& method, const QVariantList& arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(kIdentity, kPath, kInterface, method);
    call.setArguments(arguments);
    call.setAutoStartService(false);
    const QDBusMessage answer = answerTo(call);
    if (answer.type() == QDBusMessage::ReplyMessage)
        return {};
    return answer.errorName().isEmpty() ? u"no answer"_s : answer.errorName();
}

QString CalledActivationTest::owner()
{
    const QString bus = u"org.freedesktop.DBus"_s;
    QDBusMessage call =
        QDBusMessage::createMethodCall(bus, u"/org/freedesktop/DBus"_s, bus, u"GetNameOwner"_s);
    call.setArguments({kIdentity});
    const QDBusMessage answer = answerTo(call);
    return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0).toString()
                                                       : QString();
}

/// What answers is in this thread: nothing may block.
QDBusMessage CalledActivationTest::answerTo(const QDBusMessage& call)
{
    const QDBusPendingCall pending = (*m_other)->asyncCall(call, kPatience);
    QDBusPendingCallWatcher watcher(pending);
    const bool isThere = QTest::qWaitFor([&] { return watcher.isFinished(); }, kPatience);
    return isThere ? watcher.reply() : QDBusMessage();
}

} // namespace mossbank::test
