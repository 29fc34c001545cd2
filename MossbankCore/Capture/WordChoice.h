// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/LineRecognizer.h"

#include <QList>

namespace mossbank {

/// What a line says, of what it says in two languages, word by word: on one line there may be
/// words of both. `preferred` is the reading that is the better on the whole, and the result where
/// the two have not the same number of words.
///
/// Threading: any thread.
QList<RecognizedWord> betterWords(const QList<RecognizedWord>& preferred,
                                  const QList<RecognizedWord>& other);

/// What a line says, of two readings: the second where it is the same but for dots and spaces and
/// has more dots. Between letters that touch it, a dot is easily lost, and none is easily made up.
QList<RecognizedWord> withDots(const QList<RecognizedWord>& words,
                               const QList<RecognizedWord>& second);

/// How many of a line's full stops were read, those within colons and ellipses too.
qsizetype fullStopsIn(const QList<RecognizedWord>& words);

/// What a line says of whose full stops so many were not read, `lost`. In `second`, where they
/// stand apart, they may have been taken for other small signs. The same words where that has not
/// the same letters, or not so many signs more.
QList<RecognizedWord> withLostStops(const QList<RecognizedWord>& words,
                                    const QList<RecognizedWord>& second, qsizetype lost);

} // namespace mossbank
