// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QList>

namespace mossbank {

/// The columns of a full stop, in pixels of its line: `from` included and `to` not.
struct FullStop {
    int from = 0;
    int to = 0;

    friend bool operator==(const FullStop&, const FullStop&) = default;
};

/// The full stops on a grey image of one line, dark on white, as it was on the screen: what stands
/// on the line of the letters' feet, about as wide as high, with nothing above it, and hangs
/// together with nothing else. From left to right. The lower half of a colon or of a question mark
/// may be one too, and in small type a comma. One that a letter beside it runs into is none.
///
/// Threading: any thread.
QList<FullStop> fullStopsOf(const QImage& line);

/// The line with white between each of those full stops and the letters beside it: where they
/// touch, a recogniser takes the stop for a part of the letter.
QImage withRoomAround(const QList<FullStop>& stops, const QImage& line);

} // namespace mossbank
