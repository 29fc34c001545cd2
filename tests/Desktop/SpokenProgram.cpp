// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/SpokenProgram.h"

#include "Mossbank/Platform/Linux/BusConnection.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

constexpr int kPatience = 30'000;
/// Deeper than any window; what told of itself as a part of itself would have no end.
constexpr int kMostDepth = 64;

const QString kAccessible = u"org.a11y.atspi.Accessible"_s;
const QString kAction = u"org.a11y.atspi.Action"_s;
const QString kBus = u"org.freedesktop.DBus"_s;

QString accessibilityAddress()
{
    BusConnection session(QDBusConnection::SessionBus);
    const QDBusMessage question = QDBusMessage::createMethodCall(
        u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.a11y.Bus"_s, u"GetAddress"_s);
    return session->call(question, QDBus::Block, kPatience).arguments().value(0).toString();
}

} // namespace

SpokenProgram::SpokenProgram(qint64 process)
    : m_process(process)
    , m_connectionName(freshBusName())
    , m_bus(QDBusConnection::connectToBus(accessibilityAddress(), m_connectionName))
{
}

SpokenProgram::~SpokenProgram()
{
    QDBusConnection::disconnectFromBus(m_connectionName);
}

QDBusMessage SpokenProgram::ask(const SpokenPart& part, const QString& interface,
                                const QString& member, const QVariantList& arguments)
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(part.service, part.path, interface, member);
    question.setArguments(arguments);
    return m_bus.call(question, QDBus::Block, kPatience);
}

QString SpokenProgram::property(const SpokenPart& part, const QString& name)
{
    const QDBusMessage answer =
        ask(part, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {kAccessible, name});
    return answer.arguments().value(0).value<QDBusVariant>().variant().toString();
}

QList<SpokenPart> SpokenProgram::children(const SpokenPart& part)
{
    const QDBusMessage answer = ask(part, kAccessible, u"GetChildren"_s);
    QList<SpokenPart> children;
    if (answer.signature() != u"a(so)")
        return children;
    const auto objects = answer.arguments().constFirst().value<QDBusArgument>();
    objects.beginArray();
    while (!objects.atEnd()) {
        SpokenPart child;
        QDBusObjectPath path;
        objects.beginStructure();
        objects >> child.service >> path;
        objects.endStructure();
        child.path = path.path();
        child.depth = part.depth + 1;
        children.append(child);
    }
    objects.endArray();
    return children;
}

qint64 SpokenProgram::processOf(const SpokenPart& program)
{
    const SpokenPart bus = {.service = kBus, .path = u"/org/freedesktop/DBus"_s, .name = {}};
    return ask(bus, kBus, u"GetConnectionUnixProcessID"_s, {program.service})
        .arguments()
        .value(0)
        .toLongLong();
}

std::optional<SpokenPart> SpokenProgram::findProgram()
{
    const SpokenPart registry = {.service = u"org.a11y.atspi.Registry"_s,
                                 .path = u"/org/a11y/atspi/accessible/root"_s,
                                 .name = {},
                                 .depth = -1};
    for (const SpokenPart& program : children(registry)) {
        if (processOf(program) == m_process)
            return program;
    }
    return std::nullopt;
}

void SpokenProgram::collect(SpokenPart part, QList<SpokenPart>& found)
{
    const auto states =
        qdbus_cast<QList<quint32>>(ask(part, kAccessible, u"GetState"_s).arguments().value(0));
    part.states = quint64{states.value(1)} << 32U | states.value(0);
    if (!part.has(SpokenState::Showing) || part.depth > kMostDepth)
        return;
    part.role = ask(part, kAccessible, u"GetRole"_s).arguments().value(0).toUInt();
    part.name = property(part, u"Name"_s);
    found.append(part);
    for (const SpokenPart& child : children(part))
        collect(child, found);
}

QList<SpokenPart> SpokenProgram::parts()
{
    QList<SpokenPart> found;
    if (const auto program = findProgram())
        collect(*program, found);
    return found;
}

QList<SpokenPart> SpokenProgram::parts(SpokenRole role)
{
    QList<SpokenPart> found = parts();
    found.removeIf([role](const SpokenPart& part) { return !part.is(role); });
    return found;
}

std::optional<SpokenPart> SpokenProgram::find(SpokenRole role, const QString& name)
{
    for (const SpokenPart& part : parts(role)) {
        if (part.name == name)
            return part;
    }
    return std::nullopt;
}

QString SpokenProgram::tree()
{
    QString tree;
    for (const SpokenPart& part : parts()) {
        QStringList notes;
        if (part.has(SpokenState::Active))
            notes.append(u"active"_s);
        if (part.has(SpokenState::Focused))
            notes.append(u"focused"_s);
        if (part.has(SpokenState::Selected))
            notes.append(u"selected"_s);
        if (part.is(SpokenRole::Text))
            notes.append(u"\"%1\""_s.arg(text(part)));
        tree += QString(2 * part.depth, u' ') + QString::number(part.role) + u' ' + part.name;
        tree += (notes.isEmpty() ? QString() : u" ("_s + notes.join(u", "_s) + u')') + u'\n';
    }
    return tree.isEmpty() ? u"it tells of nothing\n"_s : tree;
}

bool SpokenProgram::press(const SpokenPart& part)
{
    // A program may have other actions before that one.
    constexpr int kMostActions = 8;
    for (int action = 0; action < kMostActions; ++action) {
        const QString name =
            ask(part, kAction, u"GetName"_s, {action}).arguments().value(0).toString();
        if (name == u"Press")
            return ask(part, kAction, u"DoAction"_s, {action}).arguments().value(0).toBool();
    }
    return false;
}

QString SpokenProgram::text(const SpokenPart& part)
{
    constexpr int kToTheEnd = -1;
    return ask(part, u"org.a11y.atspi.Text"_s, u"GetText"_s, {0, kToTheEnd})
        .arguments()
        .value(0)
        .toString();
}

QString SpokenProgram::description(const SpokenPart& part)
{
    return property(part, u"Description"_s);
}

QRect SpokenProgram::frame(const SpokenPart& part)
{
    constexpr quint32 kOnDisplay = 0;
    const QDBusMessage answer =
        ask(part, u"org.a11y.atspi.Component"_s, u"GetExtents"_s, {kOnDisplay});
    if (answer.signature() != u"(iiii)")
        return {};
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    const auto extents = answer.arguments().constFirst().value<QDBusArgument>();
    extents.beginStructure();
    extents >> x >> y >> width >> height;
    extents.endStructure();
    return {x, y, width, height};
}

} // namespace mossbank::test
