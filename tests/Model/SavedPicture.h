// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/AppModel.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTest>

namespace mossbank::test {

/// The bytes of the one picture in the library. Empty where there is none, or there are more.
inline QByteArray onlyPictureIn(AppModel& model)
{
    const QDir images(model.store()->images());
    const QStringList names = images.entryList(QDir::Files);
    QFile file(images.filePath(names.value(0)));
    return names.size() == 1 && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The same, after it was recorded.
inline QByteArray onlyPictureOf(AppModel& model)
{
    model.recorder().toggleRecording();
    const auto isSaved = [&] {
        return model.recorder().status().startsWith(QStringLiteral("Saved at "));
    };
    return QTest::qWaitFor(isSaved) ? onlyPictureIn(model) : QByteArray();
}

} // namespace mossbank::test
