// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/CalledMossbank.h"

#include "Mossbank/Ports/Application.h"

#include <QDBusMessage>
#include <QTest>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

constexpr int kPatience = 20'000;

const QString kIdentity = QString::fromUtf16(kOwnBundleID);
const QString kPath = u"/local/mossbank/Mossbank"_s;
const QString kInterface = u"org.freedesktop.Application"_s;
const QString kXdotool = u"xdotool"_s;
/// The one of the terminal.
const QString kOther = u"Heron"_s;

} // namespace

CalledMossbank::CalledMossbank()
    : m_desktop(std::make_unique<VirtualDesktop>())
    , m_hasTerminal(m_desktop->start(u"xterm"_s, {u"-T"_s, kOther, u"-e"_s, u"sleep"_s, u"1000"_s},
                                     u"xterm"_s))
    , m_bus(std::make_unique<TestBus>(TestBus::Kind::Session))
    , m_connection(std::make_unique<BusConnection>(QDBusConnection::SessionBus))
    , m_mossbank(std::make_unique<RunningMossbank>())
{
    m_mossbank->setSessionBus(m_bus->address());
    m_mossbank->setVariable(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    choose();
}

CalledMossbank::~CalledMossbank()
{
    m_mossbank.reset();
    m_connection.reset();
    m_bus.reset();
    m_desktop.reset();
}

QString CalledMossbank::problem() const
{
    if (!m_hasTerminal || !m_desktop->problem().isEmpty())
        return u"no desktop: "_s + m_desktop->problem();
    return m_bus->problem() + whyMissing(kXdotool, kXdotool);
}

void CalledMossbank::choose(QMap<QString, QString> choices)
{
    choices.insert(u"interval"_s, u"1"_s);
    choices.insert(u"skipsUnchangedScreens"_s, u"false"_s);
    m_mossbank->choose(choices);
}

bool CalledMossbank::start(const QString& line, const QStringList& arguments)
{
    return m_mossbank->start(arguments) && m_mossbank->waitFor(line);
}

bool CalledMossbank::waitUntilFound()
{
    const QString bus = u"org.freedesktop.DBus"_s;
    QDBusMessage question = QDBusMessage::createMethodCall(bus, u"/org/freedesktop/DBus"_s, bus,
                                                           u"GetConnectionUnixProcessID"_s);
    question.setArguments({kIdentity});
    return QTest::qWaitFor(
        [&] {
            const QDBusMessage answer = (*m_connection)->call(question, QDBus::Block, kPatience);
            return answer.type() == QDBusMessage::ReplyMessage &&
                   answer.arguments().value(0).toLongLong() == m_mossbank->process();
        },
        kPatience);
}

bool CalledMossbank::ask(const QString& action)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(kIdentity, kPath, kInterface, u"ActivateAction"_s);
    call.setArguments({action, QVariantList(), QVariantMap()});
    call.setAutoStartService(false);
    return (*m_connection)->call(call, QDBus::Block, kPatience).type() ==
           QDBusMessage::ReplyMessage;
}

bool CalledMossbank::listen()
{
    m_listener =
        &m_bus->start(u"dbus-monitor"_s, {u"--address"_s, m_bus->address(),
                                          u"type='method_call',interface='%1'"_s.arg(kInterface)});
    // The bus tells the one that listens that it has lost its name.
    return QTest::qWaitFor(
        [&] {
            calls();
            return m_heard.contains(u"NameLost"_s);
        },
        kPatience);
}

QStringList CalledMossbank::calls()
{
    m_listener->waitForReadyRead(0);
    m_heard += QString::fromLocal8Bit(m_listener->readAll());
    QStringList calls;
    for (const QString& line : m_heard.split(u'\n')) {
        if (line.startsWith(u"method call"_s) && line.contains(u"interface="_s + kInterface))
            calls.append(line.section(u"member="_s, 1).section(u' ', 0, 0));
    }
    return calls;
}

quint32 CalledMossbank::window(const QString& title)
{
    quint32 found = 0;
    const bool isThere = QTest::qWaitFor(
        [&] {
            const QString windows =
                tool({u"search"_s, u"--onlyvisible"_s, u"--name"_s, u'^' + title + u'$'});
            found = windows.section(u'\n', 0, 0).toUInt();
            return found != 0;
        },
        kPatience);
    return isThere ? found : 0;
}

int CalledMossbank::windows()
{
    const QString windows = tool({u"search"_s, u"--onlyvisible"_s, u"--class"_s, u"mossbank"_s});
    return static_cast<int>(windows.split(u'\n', Qt::SkipEmptyParts).size());
}

bool CalledMossbank::waitUntilNoWindow()
{
    return QTest::qWaitFor([this] { return windows() == 0; }, kPatience);
}

bool CalledMossbank::waitUntilActive(quint32 window)
{
    return QTest::qWaitFor([&] { return tool({u"getwindowfocus"_s}).toUInt() == window; },
                           kPatience);
}

bool CalledMossbank::turnAway()
{
    const quint32 other = window(kOther);
    tool({u"windowactivate"_s, QString::number(other)});
    return other != 0 && waitUntilActive(other);
}

bool CalledMossbank::press(const QString& keys)
{
    return m_desktop->run(kXdotool, {u"key"_s, keys}, kXdotool).isSuccess;
}

bool CalledMossbank::waitForAnotherPicture()
{
    const qsizetype before = m_mossbank->pictureFiles().size();
    return QTest::qWaitFor([&] { return m_mossbank->pictureFiles().size() > before; }, kPatience);
}

/// What it prints. It also prints, and fails, where it finds nothing.
QString CalledMossbank::tool(const QStringList& arguments)
{
    const auto outcome = m_desktop->run(kXdotool, arguments, kXdotool);
    return outcome.isSuccess ? outcome.text.trimmed() : QString();
}

} // namespace mossbank::test
