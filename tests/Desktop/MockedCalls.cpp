// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/MockedCalls.h"

#include <QDBusArgument>
#include <QDBusMessage>

namespace mossbank::test {

using namespace Qt::StringLiterals;

qsizetype mockedCalls(BusConnection& bus, const QString& service, const QString& path,
                      const QString& method)
{
    constexpr int kPatience = 10'000;
    QDBusMessage call = QDBusMessage::createMethodCall(
        service, path, u"org.freedesktop.DBus.Mock"_s, u"GetMethodCalls"_s);
    call.setArguments({method});
    const QDBusMessage answer = bus->call(call, QDBus::Block, kPatience);
    if (answer.type() != QDBusMessage::ReplyMessage)
        return -1;
    const auto told = answer.arguments().value(0).value<QDBusArgument>();
    qsizetype calls = 0;
    told.beginArray();
    for (; !told.atEnd(); ++calls) {
        quint64 time = 0;
        QVariantList arguments;
        told.beginStructure();
        told >> time >> arguments;
        told.endStructure();
    }
    told.endArray();
    return calls;
}

} // namespace mossbank::test
