// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/ScreensSeen.h"

namespace mossbank {

namespace {

constexpr std::uint8_t kTolerance = 2;
/// Fewer moved cells are no obvious change.
constexpr std::int64_t kObviousCells = 61;

} // namespace

void ScreensSeen::forgetMotion()
{
    motion.forget();
    lastChecked.reset();
}

std::int64_t ScreensSeen::look(const std::optional<Fingerprint>& fingerprint)
{
    // What moves on its own is learnt from one picture looked at to the next; what is new is
    // decided against the last one saved, so that a slow drift adds up and is caught.
    motion.observe(lastChecked, fingerprint, kTolerance);
    lastChecked = fingerprint;
    return ScreenFingerprint::moved(lastScreen, fingerprint, kTolerance);
}

bool ScreensSeen::isUnchanged(const std::optional<Fingerprint>& fingerprint, std::int64_t moved,
                              const QString& changeMode) const
{
    if (changeMode == u"flicker")
        return motion.novel(lastScreen, fingerprint, kTolerance) == 0;
    if (changeMode == u"obvious")
        return moved < kObviousCells;
    return moved == 0;
}

} // namespace mossbank
