// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Screen.h"

#include <QImage>
#include <QString>
#include <QStringList>

namespace mossbank::test {

class VirtualDesktop;

/// A program to open, and part of the title that its window has when it shows what it is to show.
struct ProgramSpec {
    QString program;
    QStringList arguments;
    QString package;
    QString title;
};

/// The screen with a program over all of it, at rest; or why there is none.
struct OpenedProgram {
    QImage picture;
    QString problem;
};

OpenedProgram openProgram(VirtualDesktop& desktop, Screen& screen, const ProgramSpec& spec);

/// What is text on a page of the web. Empty where there is no such file.
QString textOfPage(const QString& path);

} // namespace mossbank::test
