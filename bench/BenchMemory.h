// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace mossbank {

/// The memory of a process in bytes by a field of its status: "VmRSS" for what is resident, "VmHWM"
/// for its highest so far. 0 where that is not told.
inline qint64 residentBytes(const QByteArray& field, const QString& process)
{
    constexpr qint64 kKilobyte = 1024;
    QFile status(QStringLiteral("/proc/%1/status").arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(field + ':'))
            return line.simplified().split(' ').value(1).toLongLong() * kKilobyte;
    }
    return 0;
}

inline double residentMegabytes(const QByteArray& field,
                                const QString& process = QStringLiteral("self"))
{
    constexpr double kMegabyte = 1024 * 1024;
    return static_cast<double>(residentBytes(field, process)) / kMegabyte;
}

/// What of a process's memory is its own alone, in bytes. 0 where that is not told.
inline qint64 ownBytes(qint64 process)
{
    constexpr qint64 kKilobyte = 1024;
    QFile mapped(QStringLiteral("/proc/%1/smaps_rollup").arg(process));
    if (!mapped.open(QIODevice::ReadOnly))
        return 0;
    qint64 bytes = 0;
    for (const QByteArray& line : mapped.readAll().split('\n')) {
        if (line.startsWith("Private_"))
            bytes += line.simplified().split(' ').value(1).toLongLong() * kKilobyte;
    }
    return bytes;
}

} // namespace mossbank
