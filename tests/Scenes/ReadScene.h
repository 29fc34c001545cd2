// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Scenes/Score.h"

#include <QImage>
#include <QString>
#include <QStringList>

namespace mossbank {
class TextRecognizer;
}

namespace mossbank::test {

/// A picture, what can be read on it, and what came of reading it.
struct ReadScene {
    QString name;
    QStringList words;
    QString read;
    Score score;
    double milliseconds = 0;
};

/// Errors: throws what the recogniser throws.
ReadScene readScene(const QString& name, const QImage& image, const QStringList& words,
                    TextRecognizer& recognizer);

/// Several, taken together.
struct ReadScenes {
    double meanFound = 1;
    double worstFound = 1;
    /// The name of that picture.
    QString worst;
    double meanJunk = 0;
    double mostJunk = 0;
};

ReadScenes taken(const QList<ReadScene>& scenes);

} // namespace mossbank::test
