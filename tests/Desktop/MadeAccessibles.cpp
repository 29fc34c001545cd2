// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/MadeAccessibles.h"

#include "Mossbank/Platform/Linux/Accessible.h"
#include "Mossbank/Platform/Linux/BusConnection.h"
#include "Mossbank/Platform/Linux/X11ActiveWindow.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QTest>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

struct Object {
    QString service;
    QDBusObjectPath path;
};

struct Relation {
    quint32 kind = 0;
    QList<Object> targets;
};

QDBusArgument& operator<<(QDBusArgument& argument, const Object& object)
{
    argument.beginStructure();
    argument << object.service << object.path;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Object&)
{
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const Relation& relation)
{
    argument.beginStructure();
    argument << relation.kind << relation.targets;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Relation&)
{
    return argument;
}

const QString kStatusPath = u"/org/a11y/bus"_s;
const QString kRegistryPath = u"/org/a11y/atspi/accessible/root"_s;
constexpr quint32 kEmbeds = 13;

QString pathOf(MadeAccessibles::Part part)
{
    using Part = MadeAccessibles::Part;
    switch (part) {
    case Part::Registry:
        return kRegistryPath;
    case Part::Program:
        return u"/program"_s;
    case Part::Window:
        return u"/window"_s;
    case Part::Field:
        return u"/field"_s;
    case Part::Document:
        break;
    }
    return u"/document"_s;
}

} // namespace

} // namespace mossbank::test

Q_DECLARE_METATYPE(mossbank::test::Object)
Q_DECLARE_METATYPE(mossbank::test::Relation)

namespace mossbank::test {

const QString MadeAccessibles::kTitle = u"Kingfisher - Chromium"_s;
const QString MadeAccessibles::kAddress = u"http://example.org/kingfisher"_s;

MadeAccessibles::MadeAccessibles(const QString& busAddress)
    : m_name(freshBusName())
    , m_connection(QDBusConnection::connectToBus(busAddress, m_name))
{
    qDBusRegisterMetaType<Object>();
    qDBusRegisterMetaType<QList<Object>>();
    qDBusRegisterMetaType<Relation>();
    qDBusRegisterMetaType<QList<Relation>>();
    qDBusRegisterMetaType<QList<quint32>>();
    qDBusRegisterMetaType<QMap<QString, QString>>();
    const Object document = {m_connection.baseService(), QDBusObjectPath(pathOf(Part::Document))};
    const auto state = [](AccessibleState one) {
        return static_cast<int>(one);
    };
    const QVariant name = QVariant::fromValue(QDBusVariant(kTitle));
    answer(Part::Registry, u"GetChildren"_s, {objects({Part::Program})});
    answer(Part::Program, u"GetChildren"_s, {objects({Part::Window})});
    answer(Part::Window, u"Name"_s, {name});
    answer(Part::Window, u"GetState"_s,
           {states({state(AccessibleState::Active), state(AccessibleState::Showing)})});
    answer(Part::Window, u"GetAttributes"_s, {texts({})});
    answer(Part::Window, u"GetMatches"_s, {objects({Part::Field})});
    answer(Part::Window, u"GetChildren"_s, {objects({Part::Field})});
    answer(Part::Window, u"GetRelationSet"_s,
           {QVariant::fromValue(QList<Relation>{{kEmbeds, {document}}})});
    answer(Part::Field, u"GetRole"_s, {role(static_cast<quint32>(AccessibleRole::PasswordText))});
    answer(Part::Field, u"GetState"_s,
           {states({state(AccessibleState::Focused), state(AccessibleState::Showing)})});
    answer(Part::Field, u"GetChildren"_s, {objects({})});
    answer(Part::Document, u"GetAttributes"_s, {texts({{u"URI"_s, kAddress}})});

    m_isThere = m_connection.registerVirtualObject(u"/"_s, this, QDBusConnection::SubPath) &&
                m_connection.registerService(u"org.a11y.Bus"_s) &&
                m_connection.registerService(u"org.a11y.atspi.Registry"_s);
    moveToThread(&m_thread);
    m_thread.start();
}

MadeAccessibles::~MadeAccessibles()
{
    m_connection.unregisterObject(u"/"_s, QDBusConnection::UnregisterTree);
    QDBusConnection::disconnectFromBus(m_name);
    m_thread.quit();
    m_thread.wait();
}

std::unique_ptr<PaintedWindows> MadeAccessibles::show(const QString& more)
{
    constexpr int kPatience = 20'000;
    answer(Part::Window, u"Name"_s, {QVariant::fromValue(QDBusVariant(kTitle + more))});
    auto windows = std::make_unique<PaintedWindows>();
    const quint32 window = windows->open(
        {.frame = {200, 200, 400, 300}, .windowClass = u"chromium"_s, .title = kTitle});
    const auto isActive = [&] {
        const auto active = X11ActiveWindow().read();
        return active && active->id == window;
    };
    if (!window || !QTest::qWaitFor(isActive, kPatience))
        windows.reset();
    return windows;
}

QVariant MadeAccessibles::objects(const QList<Part>& parts) const
{
    QList<Object> all;
    for (const Part part : parts)
        all.append({m_connection.baseService(), QDBusObjectPath(pathOf(part))});
    return QVariant::fromValue(all);
}

QVariant MadeAccessibles::states(const QList<int>& numbers)
{
    quint64 bits = 0;
    for (const int number : numbers)
        bits |= quint64{1} << number;
    return QVariant::fromValue(
        QList<quint32>{static_cast<quint32>(bits), static_cast<quint32>(bits >> 32U)});
}

QVariant MadeAccessibles::texts(const QMap<QString, QString>& texts)
{
    return QVariant::fromValue(texts);
}

void MadeAccessibles::answer(Part part, const QString& method, const QVariantList& values)
{
    const QMutexLocker lock(&m_mutex);
    m_answers.insert(pathOf(part) + u' ' + method, values);
}

QVariantList MadeAccessibles::answerOf(Part part, const QString& method) const
{
    return valuesFor(pathOf(part), method).value_or(QVariantList());
}

void MadeAccessibles::keepSilent()
{
    const QMutexLocker lock(&m_mutex);
    m_isSilent = true;
}

void MadeAccessibles::tellOfFocus()
{
    QDBusMessage signal = QDBusMessage::createSignal(
        pathOf(Part::Field), u"org.a11y.atspi.Event.Object"_s, u"StateChanged"_s);
    signal.setArguments({u"focused"_s, 1, 0, QVariant::fromValue(QDBusVariant(0))});
    m_connection.send(signal);
}

std::optional<QVariantList> MadeAccessibles::valuesFor(const QString& path,
                                                       const QString& method) const
{
    const QMutexLocker lock(&m_mutex);
    const auto found = m_answers.constFind(path + u' ' + method);
    return found == m_answers.constEnd() ? std::nullopt : std::optional(*found);
}

bool MadeAccessibles::handleMessage(const QDBusMessage& message, const QDBusConnection& connection)
{
    const QString path = message.path();
    const QString asked =
        message.member() == u"Get" ? message.arguments().value(1).toString() : message.member();
    if (path == kStatusPath) {
        const QVariant value = asked == u"GetAddress"
                                   ? QVariant(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"))
                                   : QVariant::fromValue(QDBusVariant(true));
        return connection.send(message.createReply(value));
    }
    if (asked == u"RegisterEvent")
        return connection.send(message.createReply());
    {
        const QMutexLocker lock(&m_mutex);
        if (m_isSilent)
            return true;
    }
    const auto values = valuesFor(path, asked);
    return connection.send(
        values ? message.createReply(*values)
               : message.createErrorReply(QDBusError::UnknownMethod, u"It has none."_s));
}

} // namespace mossbank::test
