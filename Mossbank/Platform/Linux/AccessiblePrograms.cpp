// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/AccessiblePrograms.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// More than ever run together; names that have gone are forgotten with the rest.
constexpr qsizetype kMostKnown = 1000;

/// The number of the sandbox that a process runs in. Empty outside of any.
QByteArray sandboxOf(qint64 process, const QString& processes)
{
    QFile file(u"%1/%2/root/.flatpak-info"_s.arg(processes).arg(process));
    constexpr qint64 kMostBytes = 64 * 1024;
    if (!file.open(QIODevice::ReadOnly))
        return {};
    for (const QByteArray& line : file.read(kMostBytes).split('\n')) {
        if (line.startsWith("instance-id="))
            return line;
    }
    return {};
}

} // namespace

bool areOfOneProgram(qint64 one, qint64 other, const QString& processes)
{
    if (one == other)
        return true;
    const QByteArray sandbox = sandboxOf(one, processes);
    return !sandbox.isEmpty() && sandbox == sandboxOf(other, processes);
}

Asked<QList<Accessible>> AccessiblePrograms::rootsOf(qint64 process)
{
    const auto programs = co_await askPrograms(m_bus);
    if (!programs)
        co_return std::nullopt;
    QList<Accessible> roots;
    for (const Accessible& root : *programs) {
        const auto isIts = co_await isOf(root.service, process);
        // One that has gone is none; but where the bus is silent nothing is known of any.
        if (!isIts && m_bus.isLeftAlone(u"org.freedesktop.DBus"_s))
            co_return std::nullopt;
        if (isIts.value_or(false))
            roots.append(root);
    }
    co_return roots;
}

Asked<bool> AccessiblePrograms::isOf(QString service, qint64 process)
{
    if (!m_processes.contains(service)) {
        const auto found = co_await askProcess(m_bus, service);
        if (!found)
            co_return std::nullopt;
        if (m_processes.size() >= kMostKnown)
            m_processes.clear();
        m_processes.insert(service, *found);
    }
    co_return areOfOneProgram(m_processes.value(service), process);
}

QList<AccessibleWindow> windowsInFront(const QList<AccessibleWindow>& windows, const QString& title)
{
    QList<AccessibleWindow> likely;
    for (const AccessibleWindow& window : windows) {
        const bool isNamedSo =
            !title.isEmpty() && (window.name == title || window.name.startsWith(title + u' '));
        if (window.isActive || isNamedSo)
            likely.append(window);
    }
    return likely.isEmpty() ? windows : likely;
}

} // namespace mossbank
