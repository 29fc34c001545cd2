// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/LineRecognizer.h"
#include "tests/Core/Capture/DrawnText.h"

#include <QStringList>

namespace mossbank {

inline constexpr QSize kSize = {400, 200};
inline constexpr int kLineHeight = 24;

/// A picture of lines of so many letters.
inline QImage written(const QList<int>& lines, int left = 20)
{
    QImage picture = plain(kSize);
    for (qsizetype line = 0; line < lines.size(); ++line)
        write(picture, {left, 10 + static_cast<int>(line) * kLineHeight}, {lines.at(line)});
    return picture;
}

/// Those lines as they are read.
inline QStringList letters(const QList<int>& lines)
{
    QStringList texts;
    for (const int line : lines)
        texts.append(QString(line, u'H'));
    return texts;
}

/// What a recogniser may say of a line.
inline QList<RecognizedWord> word(const QString& text, double confidence)
{
    return {{text, confidence}};
}

} // namespace mossbank
