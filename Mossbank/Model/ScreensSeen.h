// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Screen.h"
#include "MossbankCore/Capture/ScreenFingerprint.h"
#include "MossbankCore/Capture/ScreenMotion.h"
#include "MossbankCore/Support/Date.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace mossbank {

/// What the recorder remembers of the screens that it has looked at, and what it takes for a
/// change.
struct ScreensSeen {
    /// What keeps moving on its own.
    ScreenMotion motion;
    /// Of the last picture looked at, saved or not.
    std::optional<Fingerprint> lastChecked;
    /// Of the last picture saved.
    std::optional<Fingerprint> lastScreen;
    /// How often the last picture saved was forgotten. One that was being saved meanwhile is not
    /// taken for the last one: it has been deleted.
    int timesForgotten = 0;
    /// When the last picture saved was taken.
    Date lastScreenSavedAt = Date::distantPast();
    /// The words of the last picture saved. None where it was not read to its end: the next picture
    /// is read again, whether or not it is the same.
    std::optional<QString> lastText;
    /// The display of the last pass that got as far as choosing one.
    std::optional<DisplayID> lastDisplayID;

    /// Starts learning afresh what moves on its own: the next picture has none before it.
    void forgetMotion();

    /// Takes in a picture as looked at, and learns from it. The cells that moved since the last
    /// picture saved; ScreenFingerprint::kNotComparable where there is nothing to compare.
    std::int64_t look(const std::optional<Fingerprint>& fingerprint);

    /// Whether a picture just looked at shows nothing new since the last one saved, `moved` cells
    /// having moved. "flicker" leaves out what moves on its own, "obvious" small changes; any
    /// other mode leaves out nothing.
    bool isUnchanged(const std::optional<Fingerprint>& fingerprint, std::int64_t moved,
                     const QString& changeMode) const;
};

} // namespace mossbank
