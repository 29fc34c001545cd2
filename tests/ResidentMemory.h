// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFile>
#include <QString>

#include <unistd.h>

namespace mossbank::test {

/// What a process has in memory, in bytes. 0 where that is not told.
inline qint64 residentBytes(qint64 process)
{
    // Its second number: pages that are in memory.
    QFile pages(QStringLiteral("/proc/%1/statm").arg(process));
    if (!pages.open(QIODevice::ReadOnly))
        return 0;
    return pages.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
}

} // namespace mossbank::test
