// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

namespace mossbank::test {

/// How well the words on a picture were read. Words are runs of letters, marks and digits in lower
/// case, whatever stands between them; one that is shown twice must be read twice.
struct Score {
    /// The share of the words shown that were read, 0 to 1. 1 where nothing was to be read.
    double found = 1;
    /// Words read and not shown, for every hundred shown; where none was, as if one had been.
    double junkPerHundred = 0;
    /// The words shown and not read, and those read and not shown, each as often, by the alphabet.
    QStringList missed;
    QStringList junk;
};

/// `words` were shown, `read` is what came of reading the picture.
Score score(const QStringList& words, const QString& read);

} // namespace mossbank::test
