// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/MockedPackageKit.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>

namespace mossbank::test {

using namespace Qt::StringLiterals;

namespace {

constexpr int kPatience = 10'000;

const QString kService = u"org.freedesktop.PackageKit"_s;
const QString kPath = u"/org/freedesktop/PackageKit"_s;
const QString kTemplate = QStringLiteral(MOSSBANK_SOURCE_DIR "/tests/Desktop/data/packagekit.py");

} // namespace

MockedPackageKit::MockedPackageKit(TestBus& systemBus)
    : m_connection(QDBusConnection::SystemBus)
    , m_service(systemBus, QDBusConnection::SystemBus, kService, kPath,
                {u"--template"_s, kTemplate})
{
}

bool MockedPackageKit::behave(const QString& method, const QStringList& steps)
{
    return m_service.mock(kPath, u"Behave"_s, {u"{\"%1\": [%2]}"_s.arg(method, steps.join(u','))});
}

QStringList MockedPackageKit::told()
{
    const QDBusMessage answer = m_connection->call(
        QDBusMessage::createMethodCall(kService, kPath, u"org.freedesktop.DBus.Mock"_s, u"Told"_s),
        QDBus::Block, kPatience);
    return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0).toStringList()
                                                       : QStringList{u"no answer"_s};
}

QString MockedPackageKit::owner()
{
    return m_connection->interface()->serviceOwner(kService);
}

QString MockedPackageKit::package(const QString& id)
{
    return uR"({"signal": "Package", "values": [5, "%1", "a bird"]})"_s.arg(id);
}

QString MockedPackageKit::error(int code, const QString& words)
{
    return uR"({"signal": "ErrorCode", "values": [%1, "%2"]})"_s.arg(QString::number(code), words);
}

QString MockedPackageKit::finished(int exit)
{
    return uR"({"signal": "Finished", "values": [%1, 12]})"_s.arg(exit);
}

} // namespace mossbank::test
