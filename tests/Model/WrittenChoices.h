// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

namespace mossbank {

/// A file of choices in that folder, as somebody has written it. Its path.
inline QString writtenChoices(const QTemporaryDir& folder, const QByteArray& content)
{
    const QString path = folder.filePath(QStringLiteral("choices.ini"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

} // namespace mossbank
