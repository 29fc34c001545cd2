// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Capture/ScreenFingerprint.h"

#include <optional>

class QImage;

namespace mossbank {

/// The picture as `size` by `size` gray cells, row after row; `size` is at least 1. A cell is the
/// mean of its pixels, and every pixel is of one cell: nothing is blurred or left out. Where cells
/// are smaller than pixels, each takes the one it lies on.
///
/// Reads each pixel once and keeps a line of sums: it costs little more than reading the picture.
///
/// `image`: four bytes a pixel, the fourth ignored. Absent when the picture is empty, or has a side
/// of more than 65,535 pixels, as no screen has; and for a `size` above 8,192.
/// Threading: any thread.
std::optional<Fingerprint> grayCells(const QImage& image, int size);

} // namespace mossbank
