// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/Memory.h"

#include <QList>

#include <algorithm>
#include <utility>

namespace mossbank {

/// A list of screenshots with their text, newest first, for asking after those of another such
/// list in its order.
///
/// Threading: one thread at a time.
class HeldRows {
public:
    explicit HeldRows(QList<Memory> rows)
        : m_rows(std::move(rows))
    {
    }

    /// That screenshot; null where it is not among them. It may also be missed where they are not
    /// in order, or very many are of one time.
    const Memory* find(const QString& id, Date timestamp)
    {
        constexpr qsizetype kOfOneTime = 32;
        while (m_at < m_rows.size() && m_rows.at(m_at).timestamp > timestamp)
            ++m_at;
        const qsizetype end = std::min(m_rows.size(), m_at + kOfOneTime);
        for (qsizetype at = m_at; at < end && m_rows.at(at).timestamp == timestamp; ++at) {
            if (m_rows.at(at).id == id) {
                m_at = at + 1;
                return &m_rows.at(at);
            }
        }
        return nullptr;
    }

private:
    const QList<Memory> m_rows;
    /// Those before it are newer than whatever is asked for yet, or were asked for.
    qsizetype m_at = 0;
};

} // namespace mossbank
