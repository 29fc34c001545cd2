// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/Accessible.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr quint32 kEmbeds = 13;
constexpr int kMostWindows = 64;
constexpr int kMostMatches = 8;

const QString kAccessible = u"org.a11y.atspi.Accessible"_s;

/// What a search is told: which states, and that all of them have to be there.
struct MatchRule {
    QList<int> states;
};

constexpr int kAll = 1;

QDBusArgument& operator<<(QDBusArgument& argument, const MatchRule& rule)
{
    // Attributes, roles and interfaces are left open.
    argument.beginStructure();
    argument << rule.states << kAll << QMap<QString, QString>() << kAll << QList<int>{0, 0, 0, 0}
             << kAll << QStringList() << kAll << false;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MatchRule&)
{
    return argument;
}

} // namespace

} // namespace mossbank

Q_DECLARE_METATYPE(mossbank::MatchRule)

namespace mossbank {

namespace {

/// The only value of an answer that has these types, all of which are somebody else's to choose.
std::optional<QVariant> valueOf(const QDBusMessage& answer, const QString& signature)
{
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != signature)
        return {};
    return answer.arguments().constFirst();
}

Accessible readAccessible(const QDBusArgument& argument)
{
    Accessible object;
    QDBusObjectPath path;
    argument.beginStructure();
    argument >> object.service >> path;
    argument.endStructure();
    object.path = path.path();
    return object;
}

QList<Accessible> readAccessibles(const QDBusArgument& argument)
{
    QList<Accessible> objects;
    argument.beginArray();
    while (!argument.atEnd())
        objects.append(readAccessible(argument));
    argument.endArray();
    return objects;
}

std::optional<QList<Accessible>> accessiblesIn(const QDBusMessage& answer)
{
    const auto value = valueOf(answer, u"a(so)"_s);
    return value ? std::optional(readAccessibles(value->value<QDBusArgument>())) : std::nullopt;
}

std::optional<QMap<QString, QString>> textsIn(const QDBusMessage& answer)
{
    const auto value = valueOf(answer, u"a{ss}"_s);
    return value ? std::optional(qdbus_cast<QMap<QString, QString>>(*value)) : std::nullopt;
}

// Made in functions of their own: the compiler of Debian 12 loses lists within a `co_await`.

BusCall propertyCall(const Accessible& object, const QString& name)
{
    return {object.service,
            object.path,
            u"org.freedesktop.DBus.Properties"_s,
            u"Get"_s,
            {kAccessible, name}};
}

BusCall documentCall(const Accessible& document)
{
    return {document.service, document.path, u"org.a11y.atspi.Document"_s, u"GetAttributes"_s};
}

BusCall matchesCall(const Accessible& object, AccessibleState state)
{
    static const auto kType = qDBusRegisterMetaType<MatchRule>();
    Q_ASSERT(kType.isValid());
    constexpr quint32 kInDocumentOrder = 1;
    constexpr bool kIsDeep = true;
    const quint64 bits = quint64{1} << static_cast<quint32>(state);
    const MatchRule rule = {{static_cast<int>(bits & 0xffffffffU), static_cast<int>(bits >> 32U)}};
    return {object.service,
            object.path,
            u"org.a11y.atspi.Collection"_s,
            u"GetMatches"_s,
            {QVariant::fromValue(rule), kInDocumentOrder, kMostMatches, kIsDeep}};
}

BusCall processCall(const QString& service)
{
    return {u"org.freedesktop.DBus"_s,
            u"/org/freedesktop/DBus"_s,
            u"org.freedesktop.DBus"_s,
            u"GetConnectionUnixProcessID"_s,
            {service}};
}

BusCall callTo(const Accessible& object, const QString& member)
{
    return {object.service, object.path, kAccessible, member};
}

} // namespace

Asked<quint32> askRole(AccessibilityBus& bus, Accessible object)
{
    // The name of a role is no help: some programs call a password field a text.
    const auto value = valueOf(co_await bus.ask(callTo(object, u"GetRole"_s)), u"u"_s);
    co_return value ? std::optional(value->toUInt()) : std::nullopt;
}

Asked<quint32> askRolePatiently(AccessibilityBus& bus, Accessible object)
{
    const auto value = valueOf(co_await bus.askPatiently(callTo(object, u"GetRole"_s)), u"u"_s);
    co_return value ? std::optional(value->toUInt()) : std::nullopt;
}

Asked<AccessibleStates> askStates(AccessibilityBus& bus, Accessible object)
{
    const auto value = valueOf(co_await bus.ask(callTo(object, u"GetState"_s)), u"au"_s);
    if (!value)
        co_return std::nullopt;
    const auto words = qdbus_cast<QList<quint32>>(*value);
    co_return AccessibleStates{quint64{words.value(1)} << 32U | words.value(0)};
}

Asked<QString> askName(AccessibilityBus& bus, Accessible object)
{
    const QDBusMessage answer = co_await bus.ask(propertyCall(object, u"Name"_s));
    const auto value = valueOf(answer, u"v"_s);
    co_return value ? std::optional(value->value<QDBusVariant>().variant().toString())
                    : std::nullopt;
}

Asked<Accessible> askParent(AccessibilityBus& bus, Accessible object)
{
    const QDBusMessage answer = co_await bus.ask(propertyCall(object, u"Parent"_s));
    const auto value = valueOf(answer, u"v"_s);
    if (!value)
        co_return std::nullopt;
    const QVariant parent = value->value<QDBusVariant>().variant();
    if (!parent.canConvert<QDBusArgument>())
        co_return std::nullopt;
    const auto argument = parent.value<QDBusArgument>();
    co_return argument.currentSignature() == u"(so)" ? std::optional(readAccessible(argument))
                                                     : std::nullopt;
}

Asked<QList<Accessible>> askChildren(AccessibilityBus& bus, Accessible object)
{
    co_return accessiblesIn(co_await bus.ask(callTo(object, u"GetChildren"_s)));
}

Asked<QMap<QString, QString>> askAttributes(AccessibilityBus& bus, Accessible object)
{
    co_return textsIn(co_await bus.ask(callTo(object, u"GetAttributes"_s)));
}

Asked<Accessible> askEmbedded(AccessibilityBus& bus, Accessible object)
{
    const auto value =
        valueOf(co_await bus.ask(callTo(object, u"GetRelationSet"_s)), u"a(ua(so))"_s);
    if (!value)
        co_return std::nullopt;
    const auto relations = value->value<QDBusArgument>();
    std::optional<Accessible> embedded;
    relations.beginArray();
    while (!relations.atEnd()) {
        quint32 kind = 0;
        relations.beginStructure();
        relations >> kind;
        const QList<Accessible> targets = readAccessibles(relations);
        relations.endStructure();
        if (kind == kEmbeds && !targets.isEmpty())
            embedded = targets.constFirst();
    }
    relations.endArray();
    co_return embedded;
}

Asked<QMap<QString, QString>> askDocumentAttributes(AccessibilityBus& bus, Accessible document)
{
    co_return textsIn(co_await bus.ask(documentCall(document)));
}

Asked<QList<Accessible>> askMatches(AccessibilityBus& bus, Accessible object, AccessibleState state)
{
    co_return accessiblesIn(co_await bus.askPatiently(matchesCall(object, state)));
}

Asked<QList<Accessible>> askPrograms(AccessibilityBus& bus)
{
    return askChildren(bus, {u"org.a11y.atspi.Registry"_s, u"/org/a11y/atspi/accessible/root"_s});
}

Asked<qint64> askProcess(AccessibilityBus& bus, QString service)
{
    const QDBusMessage answer = co_await bus.ask(processCall(service));
    const auto value = valueOf(answer, u"u"_s);
    co_return value ? std::optional(value->toLongLong()) : std::nullopt;
}

Asked<QList<AccessibleWindow>> askWindows(AccessibilityBus& bus, Accessible root)
{
    const auto children = co_await askChildren(bus, root);
    if (!children)
        co_return std::nullopt;
    QList<AccessibleWindow> windows;
    for (const Accessible& child : children->mid(0, kMostWindows)) {
        const auto name = co_await askName(bus, child);
        const auto states = co_await askStates(bus, child);
        // A window that closes meanwhile is none; but nothing is known of one that is silent.
        if (name && states)
            windows.append({child, *name, states->has(AccessibleState::Active)});
        else if (bus.isLeftAlone(child.service))
            co_return std::nullopt;
    }
    // One that shows windows of which nothing can be read has not closed them all.
    if (windows.isEmpty() && !children->isEmpty())
        co_return std::nullopt;
    co_return windows;
}

} // namespace mossbank
