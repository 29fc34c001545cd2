// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>

namespace mossbank {

/// A grey image of one line, dark on white, without the dots and strokes within its zeros.
///
/// Where letters are all equally wide, zeros often have a mark, to tell them from an O. In small
/// type recognisers take it for the waist of an eight or the bow of a six. What else has a mark
/// within an upright oval, like a theta, loses it too. Lines in letters of different widths are
/// left as they are.
///
/// Threading: any thread.
QImage withPlainZeros(const QImage& line);

} // namespace mossbank
