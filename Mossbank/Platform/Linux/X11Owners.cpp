// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11Owners.h"

#include <QHash>
#include <QSet>
#include <QSysInfo>

#include <unistd.h>

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

constexpr quint32 kMaxMachineBytes = 256;

struct AskedOwner {
    xcb_window_t window;
    xcb_get_property_cookie_t windowClass;
    xcb_get_property_cookie_t gtkID;
    xcb_get_property_cookie_t kdeFile;
    xcb_get_property_cookie_t process;
    xcb_get_property_cookie_t machine;
};

AskedOwner ask(const X11Connection& connection, xcb_window_t window)
{
    return {window,
            connection.askProperty(window, XCB_ATOM_WM_CLASS, kMaxClassBytes),
            connection.askProperty(window, connection[Atom::GtkApplicationId], kMaxClassBytes),
            connection.askProperty(window, connection[Atom::KdeNetWmDesktopFile], kMaxClassBytes),
            connection.askProperty(window, connection[Atom::NetWmPid], sizeof(quint32)),
            connection.askProperty(window, XCB_ATOM_WM_CLIENT_MACHINE, kMaxMachineBytes)};
}

/// The identity of an application, by what GTK's programs and what KDE's say of themselves: an
/// identity, and a desktop file with or without its path and ending.
QString desktopFileOf(const QString& gtkID, const QString& kdeFile)
{
    if (!gtkID.isEmpty())
        return gtkID;
    QString file = kdeFile.section(u'/', -1);
    const QString ending = QStringLiteral(".desktop");
    if (file.endsWith(ending))
        file.chop(ending.size());
    return file;
}

/// What the window says itself. Its process counts only when it is one of this machine: a number
/// from elsewhere would name a stranger here.
X11Owner answer(const X11Connection& connection, const AskedOwner& asked)
{
    const auto process = readNumber(connection.property(asked.process).get());
    const auto machineReply = connection.property(asked.machine);
    X11Owner owner = {readClass(connection.property(asked.windowClass).get()), {}};
    const auto gtkID = connection.property(asked.gtkID);
    const auto kdeFile = connection.property(asked.kdeFile);
    owner.windowClass.desktopFile =
        desktopFileOf(readText(connection, gtkID.get()), readText(connection, kdeFile.get()));
    const QString machine = readText(connection, machineReply.get());
    const bool isHere = machine.isEmpty() || machine == QSysInfo::machineHostName();
    if (process.value_or(0) != 0 && isHere)
        owner.process = *process;
    return owner;
}

quint32 ownResource(const X11Connection& connection)
{
    return xcb_get_setup(connection)->resource_id_base;
}

/// Whether the server numbers processes as this program sees them. One on another machine or in a
/// container does not, and would name strangers here.
bool knowsProcessesOfHere(const X11Connection& connection, const X11Desktop& desktop)
{
    const auto self = desktop.processes.constFind(connection.clientOf(ownResource(connection)));
    return self != desktop.processes.constEnd() && *self == ::getpid();
}

class OwnerReader {
public:
    OwnerReader(const X11Connection& connection, const X11Desktop& desktop)
        : m_connection(connection)
        , m_desktop(desktop)
    {
        if (knowsProcessesOfHere(connection, desktop))
            m_processes = desktop.processes;
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
            const auto known = m_processes.constFind(m_connection.clientOf(one.window));
            // The server's word counts more than the window's own.
            if (known != m_processes.constEnd())
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

    /// Who has a hand in a window without having named itself there, each by itself: one that has
    /// named itself says nothing of another. The maker of a frame around a program's window is the
    /// window manager, whose pixels are the frame's alone. Whoever made the window itself is last:
    /// it may be a frame whose program's window is not marked as such yet.
    QList<Kin> silent(const X11TopLevel& topLevel) const
    {
        QSet<quint32> heard;
        for (const xcb_window_t window : topLevel.speakers()) {
            if (!m_owners.value(window).windowClass.isEmpty())
                heard.insert(m_connection.clientOf(window));
        }
        const quint32 framer = m_connection.clientOf(topLevel.id);
        if (topLevel.isFrame)
            heard.insert(framer);
        QList<Kin> kins;
        for (const quint32 maker : topLevel.makers) {
            if (!heard.contains(maker))
                kins.insert(maker == framer ? kins.size() : 0, kinOf(maker, topLevel));
        }
        return kins;
    }

    Kin kinOf(quint32 maker, const X11TopLevel& topLevel) const
    {
        Kin kin = {{maker}, {}};
        const auto process = m_processes.constFind(maker);
        if (process != m_processes.constEnd())
            kin.processes.insert(*process);
        for (const xcb_window_t window : topLevel.speakers() + topLevel.guests) {
            const auto said = m_owners.value(window).process;
            if (said && m_connection.clientOf(window) == maker)
                kin.processes.insert(*said);
        }
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
        const auto known = m_processes.constFind(maker);
        return known != m_processes.constEnd() && kin.processes.contains(*known);
    }

    const X11Connection& m_connection;
    const X11Desktop& m_desktop;
    QHash<quint32, qint64> m_processes;
    QHash<xcb_window_t, X11Owner> m_owners;
};

} // namespace

QList<QList<X11Owner>> readOwners(const X11Connection& connection, const X11Desktop& desktop,
                                  const QList<X11TopLevel>& topLevels)
{
    OwnerReader reader(connection, desktop);
    QList<xcb_window_t> windows;
    for (const X11TopLevel& topLevel : topLevels)
        windows += topLevel.speakers() + topLevel.guests;
    reader.read(windows);

    QList<QList<OwnerReader::Kin>> silent;
    QList<OwnerReader::Kin> all;
    for (const X11TopLevel& topLevel : topLevels) {
        silent.append(reader.silent(topLevel));
        all += silent.constLast();
    }
    if (!all.isEmpty())
        reader.readRelatives(all);

    QList<QList<X11Owner>> owners;
    for (qsizetype index = 0; index < topLevels.size(); ++index) {
        QList<X11Owner> known = reader.named(topLevels[index].speakers());
        for (const OwnerReader::Kin& kin : std::as_const(silent[index])) {
            for (const X11Owner& owner : reader.relatives(kin)) {
                if (!known.contains(owner))
                    known.append(owner);
            }
        }
        owners.append(known);
    }
    return owners;
}

X11Owner readOwner(const X11Connection& connection, xcb_window_t window)
{
    X11Owner owner = answer(connection, ask(connection, window));
    const auto process = processBehind(connection, window);
    if (process && processBehind(connection, ownResource(connection)) == qint64{::getpid()})
        owner.process = process;
    return owner;
}

} // namespace mossbank
