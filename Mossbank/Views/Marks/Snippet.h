// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Characters.h"

#include <QString>
#include <QStringView>

#include <vector>

namespace mossbank {

/// A piece of a screenshot's text around the first place that a query has matched, on one line,
/// with what is to be marked in it.
struct Snippet {
    QString text;
    /// In UTF-16 units of `text`.
    std::vector<FoldedText::Range> marks;

    /// Without a match it is the beginning of the text. Empty where the text is.
    static Snippet of(QStringView text, QStringView query);
};

} // namespace mossbank
