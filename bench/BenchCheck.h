// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

namespace mossbank {

class Bounds;

/// `check [--rounds N]`: what a check that finds the same screen costs: the fingerprint beside a
/// plain read of the picture's bytes, the comparisons, the whole check beside a bare grab of the
/// root, and what of the memory stays after N checks (10,000 unless given).
/// `check --program SECONDS [COMMAND...]`: the processor time of the real program, which lies in
/// the same build, at one check a second: twice side by side, without a session bus and on one with
/// accessibility switched on. The command, where there is one, is a program of that session to be
/// in front.
///
/// Needs a DISPLAY; opens five windows on it, which nothing else may move or cover meanwhile.
/// Prints one JSON object a line, and a line of words for each bound of CheckBounds that was
/// exceeded. Returns the exit status: not 0 also when one was.
int benchCheck(const QStringList& arguments);

/// The second of these.
void measureProgram(int seconds, const QStringList& front, Bounds& bounds);

} // namespace mossbank
