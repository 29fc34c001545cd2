// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Capture/ScreenFingerprint.h"

#include <optional>

class QImage;

namespace mossbank {

/// The picture as `size` by `size` gray cells, row after row. A cell is the mean of the part of the
/// picture that lies under it, pixels at its edge counting by the share that does: nothing is
/// blurred or left out. Where cells are smaller than pixels, each takes what it lies on.
///
/// Reads each pixel once and keeps a line of sums: it costs little more than reading the picture.
///
/// `image`: four bytes a pixel, the fourth ignored. Absent when the picture is empty, or higher
/// than any screen (half a million lines).
/// Threading: any thread.
std::optional<Fingerprint> grayCells(const QImage& image, int size);

} // namespace mossbank
