// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Capture/FixedPitch.h"

#include <QImage>

#include <optional>

namespace mossbank {

/// A grey image of one line, dark on white, without the dots and strokes within its zeros.
///
/// Where letters are all equally wide, zeros often have a mark, to tell them from an O. In small
/// type recognisers take it for the waist of an eight or the bow of a six. What else has a mark
/// within an upright oval, like a theta, loses it too. `pitch`: the line's; one in letters of
/// different widths is left as it is, and the same image.
///
/// Threading: any thread.
QImage withPlainZeros(const QImage& line, const std::optional<FixedPitch>& pitch);

} // namespace mossbank
