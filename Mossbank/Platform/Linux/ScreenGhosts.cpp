// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ScreenGhosts.h"

#include "Mossbank/Platform/Linux/ScreenCover.h"

#include <algorithm>
#include <utility>

namespace mossbank {

void ScreenGhosts::look(const QList<SeenWindow>& windows, const std::optional<QRegion>& drawn,
                        qint64 now)
{
    QList<std::pair<QRect, QRect>> moves;
    QList<SeenWindow> gone;
    for (const SeenWindow& before : std::as_const(m_last)) {
        const auto after = std::ranges::find(windows, before.id, &SeenWindow::id);
        if (after != windows.end() && after->frame == before.frame)
            continue;
        gone.append(before);
        if (after != windows.end())
            moves.append({before.frame, after->frame});
    }
    // What is drawn from now on counts: some of this was drawn before they went, by themselves.
    const qsizetype older = m_ghosts.size();
    for (const SeenWindow& window : std::as_const(gone))
        haunt(window, now);
    QList<QRegion> carried(m_ghosts.size());
    for (qsizetype index = 0; index < m_ghosts.size(); ++index) {
        // The server copies a window's pixels when it moves, the foreign ones with it.
        const QRegion region = m_ghosts[index].region;
        for (const auto& [from, to] : std::as_const(moves))
            carried[index] += (region & from).translated(to.topLeft() - from.topLeft()) & to;
    }
    for (qsizetype index = 0; index < m_ghosts.size(); ++index) {
        Ghost& ghost = m_ghosts[index];
        if (index < older && drawn)
            ghost.region -= *drawn;
        ghost.region += carried[index];
    }
    m_ghosts.removeIf(
        [&](const Ghost& ghost) { return ghost.region.isEmpty() || now - ghost.since >= kLife; });
    while (m_ghosts.size() > kMaxGhosts)
        mergeOldest();
    m_last = windows;
}

QRegion ScreenGhosts::regionToCover(const QStringList& excluded) const
{
    QRegion region;
    for (const Ghost& ghost : m_ghosts) {
        const bool isExcluded = std::ranges::any_of(ghost.owners, [&](const QString& owner) {
            return excluded.contains(owner, Qt::CaseInsensitive);
        });
        if (isExcluded)
            region += ghost.region;
    }
    return region;
}

void ScreenGhosts::haunt(const SeenWindow& window, qint64 now)
{
    const QMargins shadow(kShadowWidth, kShadowWidth, kShadowWidth, kShadowWidth);
    m_ghosts.append({window.frame.marginsAdded(shadow), window.owners, now});
}

void ScreenGhosts::mergeOldest()
{
    const Ghost oldest = m_ghosts.takeFirst();
    Ghost& next = m_ghosts.first();
    next.region += oldest.region;
    next.owners += oldest.owners;
    next.owners.removeDuplicates();
}

} // namespace mossbank
