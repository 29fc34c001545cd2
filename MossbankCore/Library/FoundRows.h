// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace mossbank {

/// The rows that a search has found, by their rowids, for asking after one row after the other.
/// Rows of one time have neighbouring rowids, so that the answer mostly lies where the last one
/// did.
///
/// Threading: one thread at a time.
class FoundRows {
public:
    /// In ascending order.
    void append(qint64 row) { m_rows.push_back(row); }

    bool contains(qint64 row)
    {
        const bool isNext =
            (m_at == 0 || m_rows[m_at - 1] < row) && (m_at == m_rows.size() || row <= m_rows[m_at]);
        if (!isNext)
            m_at = static_cast<std::size_t>(std::ranges::lower_bound(m_rows, row) - m_rows.begin());
        if (m_at == m_rows.size() || m_rows[m_at] != row)
            return false;
        ++m_at;
        return true;
    }

private:
    std::vector<qint64> m_rows;
    /// The first one that is greater than what was asked for last.
    std::size_t m_at = 0;
};

} // namespace mossbank
