// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

namespace mossbank {

/// `check [--rounds N]`: what a check that finds the same screen costs: the fingerprint beside a
/// plain read of the picture's bytes, the comparisons, the whole check beside a bare grab of the
/// root, and what of the memory stays after N checks (10,000 unless given).
/// `check --program SECONDS`: the processor time of the real program, which lies in the same build,
/// at one check a second.
///
/// Needs a DISPLAY; opens five windows on it, which nothing else may move or cover meanwhile.
/// Prints one JSON object a line. Returns the exit status.
int benchCheck(const QStringList& arguments);

/// The second of these.
void measureProgram(int seconds);

} // namespace mossbank
