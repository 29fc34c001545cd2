// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/Memory.h"

#include <QList>

namespace mossbank {

class Bounds;

/// A day of so many screenshots of 2 KB of text without a pause, newest first, in applications that
/// change every few minutes.
QList<Memory> continuousDay(int rows);

/// What it takes to group a day without a pause, and a history with many: as many stretches as it
/// has hours, and hundreds.
void measureSessions(Bounds& bounds);

} // namespace mossbank
