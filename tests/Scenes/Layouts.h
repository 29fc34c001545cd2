// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Scenes/CodeText.h"
#include "tests/Scenes/Stage.h"

namespace mossbank::test {

void paintArticle(Stage& stage);
void paintBrowser(Stage& stage);
void paintChat(Stage& stage);
void paintCode(Stage& stage);
void paintDashboard(Stage& stage);
void paintDialog(Stage& stage);
void paintFiles(Stage& stage);
void paintMail(Stage& stage);
void paintOverlap(Stage& stage);
void paintSettings(Stage& stage);
void paintSheet(Stage& stage);
void paintTerminals(Stage& stage);
/// Whatever the stage's words are: letters, a list, buttons.
void paintLetters(Stage& stage);
void paintWorkbench(Stage& stage);

/// Lines of a program with their numbers, from the top of `area` to its end.
void paintEditor(Stage& stage, const QRect& area, const CodeColours& colours,
                 const TextStyle& style);
/// What a shell printed, from the top of `area` to its end.
void paintShell(Stage& stage, const QRect& area, const CodeColours& colours,
                const TextStyle& style);

} // namespace mossbank::test
