// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11Owners.h"

#include <QHash>
#include <QSet>
#include <QSysInfo>

#include <utility>

namespace mossbank {

namespace {

constexpr quint32 kMaxMachineBytes = 256;

struct AskedOwner {
    xcb_window_t window;
    xcb_get_property_cookie_t windowClass;
    xcb_get_property_cookie_t process;
    xcb_get_property_cookie_t machine;
};

AskedOwner ask(const X11Connection& connection, xcb_window_t window)
{
    return {window, connection.askProperty(window, XCB_ATOM_WM_CLASS, kMaxClassBytes),
            connection.askProperty(window, connection[Atom::NetWmPid], sizeof(quint32)),
            connection.askProperty(window, XCB_ATOM_WM_CLIENT_MACHINE, kMaxMachineBytes)};
}

/// What the window says itself. Its process counts only when it is one of this machine: a number
/// from elsewhere would name a stranger here.
X11Owner answer(const X11Connection& connection, const AskedOwner& asked)
{
    const auto process = readNumber(connection.property(asked.process).get());
    const auto machineReply = connection.property(asked.machine);
    X11Owner owner = {readClass(connection.property(asked.windowClass).get()), {}};
    const QString machine = readText(connection, machineReply.get());
    const bool isHere = machine.isEmpty() || machine == QSysInfo::machineHostName();
    if (process.value_or(0) != 0 && isHere)
        owner.process = *process;
    return owner;
}

class OwnerReader {
public:
    OwnerReader(const X11Connection& connection, const X11Desktop& desktop)
        : m_connection(connection)
        , m_desktop(desktop)
    {
    }

    void read(const QList<xcb_window_t>& windows)
    {
        QList<AskedOwner> asked;
        for (const xcb_window_t window : windows) {
            if (!m_owners.contains(window))
                asked.append(ask(m_connection, window));
        }
        for (const AskedOwner& one : std::as_const(asked)) {
            X11Owner owner = answer(m_connection, one);
            const auto known = m_desktop.processes.constFind(m_connection.clientOf(one.window));
            // The server's word counts more than the window's own.
            if (known != m_desktop.processes.constEnd())
                owner.process = *known;
            m_owners.insert(one.window, owner);
        }
    }

    /// The programs named by the windows themselves.
    QList<X11Owner> named(const QList<xcb_window_t>& windows) const
    {
        QList<X11Owner> owners;
        for (const xcb_window_t window : windows) {
            const X11Owner owner = m_owners.value(window);
            if (!owner.windowClass.isEmpty() && !owners.contains(owner))
                owners.append(owner);
        }
        return owners;
    }

    /// By what the relatives of a window without a class can be known.
    struct Kin {
        QSet<quint32> makers;
        QSet<qint64> processes;
    };

    Kin kin(const X11TopLevel& topLevel) const
    {
        Kin kin = {topLevel.makers, {}};
        if (!topLevel.clients.isEmpty()) {
            // The frame around them is the window manager's, which is no relative.
            kin.makers.clear();
            for (const xcb_window_t client : topLevel.clients)
                kin.makers.insert(m_connection.clientOf(client));
        }
        for (const quint32 maker : std::as_const(kin.makers)) {
            const auto process = m_desktop.processes.constFind(maker);
            if (process != m_desktop.processes.constEnd())
                kin.processes.insert(*process);
        }
        if (const auto process = m_owners.value(topLevel.subject()).process)
            kin.processes.insert(*process);
        return kin;
    }

    /// Reads the windows that may be relatives, also those that do not show.
    void readRelatives(const QList<Kin>& kins)
    {
        QList<xcb_window_t> windows;
        const QList<xcb_window_t> all = m_desktop.windows + m_desktop.managed;
        for (const xcb_window_t window : all) {
            const bool isWanted = std::ranges::any_of(
                kins, [&](const Kin& kin) { return isRelative(window, {}, kin); });
            if (isWanted)
                windows.append(window);
        }
        read(windows);
    }

    QList<X11Owner> relatives(const Kin& kin) const
    {
        QList<X11Owner> owners;
        for (auto one = m_owners.constBegin(); one != m_owners.constEnd(); ++one) {
            if (!one->windowClass.isEmpty() && isRelative(one.key(), one->process, kin) &&
                !owners.contains(*one))
                owners.append(*one);
        }
        if (!owners.isEmpty())
            return owners;
        for (const qint64 process : kin.processes)
            owners.append({{}, process});
        return owners;
    }

private:
    bool isRelative(xcb_window_t window, std::optional<qint64> process, const Kin& kin) const
    {
        const quint32 maker = m_connection.clientOf(window);
        if (kin.makers.contains(maker) || (process && kin.processes.contains(*process)))
            return true;
        const auto known = m_desktop.processes.constFind(maker);
        return known != m_desktop.processes.constEnd() && kin.processes.contains(*known);
    }

    const X11Connection& m_connection;
    const X11Desktop& m_desktop;
    QHash<xcb_window_t, X11Owner> m_owners;
};

} // namespace

QList<QList<X11Owner>> readOwners(const X11Connection& connection, const X11Desktop& desktop,
                                  const QList<X11TopLevel>& topLevels)
{
    const auto speakers = [](const X11TopLevel& window) {
        return window.clients.isEmpty() ? QList{window.id} : window.clients;
    };
    OwnerReader reader(connection, desktop);
    QList<xcb_window_t> windows;
    for (const X11TopLevel& topLevel : topLevels)
        windows += speakers(topLevel);
    reader.read(windows);

    QList<QList<X11Owner>> owners;
    QList<OwnerReader::Kin> unnamed;
    for (const X11TopLevel& topLevel : topLevels) {
        owners.append(reader.named(speakers(topLevel)));
        if (owners.constLast().isEmpty())
            unnamed.append(reader.kin(topLevel));
    }
    if (unnamed.isEmpty())
        return owners;
    reader.readRelatives(unnamed);
    for (qsizetype index = 0; index < owners.size(); ++index) {
        if (owners[index].isEmpty())
            owners[index] = reader.relatives(reader.kin(topLevels[index]));
    }
    return owners;
}

X11Owner readOwner(const X11Connection& connection, xcb_window_t window)
{
    X11Owner owner = answer(connection, ask(connection, window));
    if (const auto process = processBehind(connection, window))
        owner.process = process;
    return owner;
}

} // namespace mossbank
