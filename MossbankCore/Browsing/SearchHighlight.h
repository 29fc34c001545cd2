// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Characters.h"

#include <QString>
#include <QStringView>

#include <vector>

namespace mossbank {

/// Which parts of a text a query has matched, for marking them. It agrees with what the full-text
/// index matches: words by their beginnings, whatever their case and accents.
///
/// Threading: any thread.
class SearchHighlight {
public:
    SearchHighlight() = delete;

    /// The matched words, whole, in the order of the text and apart from each other. In UTF-16
    /// units of `text`.
    static std::vector<FoldedText::Range> ranges(QStringView text, QStringView query);
};

} // namespace mossbank
