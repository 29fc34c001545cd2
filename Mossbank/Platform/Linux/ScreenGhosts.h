// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QRect>
#include <QRegion>
#include <QStringList>

#include <optional>

namespace mossbank {

/// A window as a look at the screen met it.
struct SeenWindow {
    quint32 id = 0;
    QRect frame;
    /// The identities of its applications. Empty: nobody known.
    QStringList owners;
};

/// Where windows were that have gone or moved. What they showed stays on the screen until whoever
/// is there now has drawn: a window without a background keeps what lay over it, for as long as
/// its program takes.
///
/// A program that hangs may take for ever. But where nothing moves on the screen, such as in a
/// terminal that waits, what was drawn anew at the very moment cannot be told from what is left,
/// and would be covered for ever. So it ends after a minute, by which a program that lives has
/// drawn.
///
/// Threading: one thread at a time.
class ScreenGhosts {
public:
    /// How long a window haunts its place at the most, in milliseconds.
    static constexpr qint64 kLife = 60'000;
    static constexpr qsizetype kMaxGhosts = 32;

    /// The windows that show now and what has been drawn since the last look; absent where that is
    /// not told. `now` is in milliseconds.
    void look(const QList<SeenWindow>& windows, const std::optional<QRegion>& drawn, qint64 now);

    /// Where something may still show of an application that is among `excluded`, in any case of
    /// its letters.
    QRegion regionToCover(const QStringList& excluded) const;

    qsizetype size() const { return m_ghosts.size(); }

private:
    struct Ghost {
        QRegion region;
        QStringList owners;
        qint64 since = 0;
    };

    void haunt(const SeenWindow& window, qint64 now);
    void mergeOldest();

    QList<SeenWindow> m_last;
    QList<Ghost> m_ghosts;
};

} // namespace mossbank
