// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/StubPortal.h"

#include <QDBusMetaType>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace mossbank::test {

StubPortal::StubPortal()
    : m_service(u"org.freedesktop.portal.Desktop"_s, kPath)
{
    qDBusRegisterMetaType<PortalValues::All>();
    m_service.answer = [this](const QDBusMessage& question) {
        return answerTo(question);
    };
}

QDBusMessage StubPortal::answerTo(const QDBusMessage& question) const
{
    if (question.interface() != kInterface || question.member() != u"ReadAll")
        return question.createErrorReply(QDBusError::UnknownMethod, question.member());
    PortalValues::All wanted;
    for (const QString& space : question.arguments().value(0).toStringList()) {
        if (values.contains(space))
            wanted[space] = values[space];
    }
    return question.createReply(QVariant::fromValue(wanted));
}

bool StubPortal::tell(const QString& space, const QString& key, const QVariant& value)
{
    return m_service.emitSignal(kInterface, u"SettingChanged"_s,
                                {space, key, QVariant::fromValue(QDBusVariant(value))});
}

bool StubPortal::choose(const QString& space, const QString& key, const QVariant& value)
{
    values[space][key] = value;
    return tell(space, key, value);
}

bool StubPortal::chooseScheme(quint32 scheme)
{
    return choose(kAppearance, u"color-scheme"_s, scheme);
}

} // namespace mossbank::test
