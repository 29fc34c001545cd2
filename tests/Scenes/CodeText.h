// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Scenes/Dice.h"
#include "tests/Scenes/SceneCanvas.h"
#include "tests/Scenes/SceneWords.h"

#include <QColor>
#include <QList>

namespace mossbank::test {

/// What an editor or a terminal colours its text with.
struct CodeColours {
    bool dark = true;
    QColor paper;
    QColor ink;
    QColor gray;
    QColor word;
    QColor string;
    QColor call;
    QColor type;
    QColor number;
};

/// One of several sets, dark or light.
CodeColours codeColours(Dice& dice, bool dark);

/// A line of a program as an editor colours it, indented by spaces.
QList<Span> codeLine(Dice& dice, SceneWords& words, const CodeColours& colours);

/// A line of a terminal: a prompt and a command, or what a program printed.
QList<Span> shellLine(Dice& dice, SceneWords& words, const CodeColours& colours);

} // namespace mossbank::test
