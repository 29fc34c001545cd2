// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Translations/LinuxWording.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace mossbank {

namespace {

struct Wording {
    std::string_view source;
    const char* here;
};

constexpr Wording kWordings[] = {
    {"Quit, and nothing more is saved until Mossbank is opened again. Closing the window instead "
     "keeps it recording from the menu bar.",
     "Quit, and nothing more is saved until Mossbank is opened again. Closing the window instead "
     "keeps it recording in the background."},
    {"Show in Finder", "Show in file manager"},
    {"Paused when your Mac went to sleep", "Paused when this computer went to sleep"},
    {"Screen recording permission is unavailable. Enable it in System Settings, then reopen "
     "Mossbank.",
     "Mossbank is not allowed to see the screen. Allow it in the settings of your desktop, then "
     "start Mossbank again."},
    {"macOS would not change the login item: %1", "Opening at login could not be changed: %1"},
    {"Allow Mossbank in System Settings → General → Login Items, then it will open at login.",
     "Allow Mossbank in the settings of your desktop, then it will open at login."},
    {"Still images, without audio. Over an eight-hour day that is at most %1 screenshots and %2 "
     "GB. "
     "Most checks find a screen that has not moved and stop there, so a real day is a fraction of "
     "that. Mossbank pauses when your Mac sleeps, the screen locks or your session becomes "
     "inactive, and never captures itself.",
     "Still images, without audio. Over an eight-hour day that is at most %1 screenshots and %2 "
     "GB. "
     "Most checks find a screen that has not moved and stop there, so a real day is a fraction of "
     "that. Mossbank pauses when this computer sleeps, the screen locks or your session becomes "
     "inactive, and never captures itself."},
    {"Still images, without audio. Over an eight-hour day that is at most %1 screenshots and %2 "
     "GB. "
     "Every check is being saved, because saving only on change is turned off. Mossbank pauses "
     "when your Mac sleeps, the screen locks or your session becomes inactive, and never captures "
     "itself.",
     "Still images, without audio. Over an eight-hour day that is at most %1 screenshots and %2 "
     "GB. "
     "Every check is being saved, because saving only on change is turned off. Mossbank pauses "
     "when this computer sleeps, the screen locks or your session becomes inactive, and never "
     "captures itself."},
    {"1 screenshot · %1 on this Mac", "1 screenshot · %1 on this computer"},
    {"%1 screenshots · %2 on this Mac", "%1 screenshots · %2 on this computer"},
    {"Mossbank checks your screen %1, saves a screenshot when something has changed and reads\nthe "
     "words in it, all on this Mac. Then you can search what you saw.",
     "Mossbank checks your screen %1, saves a screenshot when something has changed and reads\nthe "
     "words in it, all on this computer. Then you can search what you saw."},
    {"Mossbank saves a screenshot %1, reads the words in it, and keeps\nall of it on this Mac. "
     "Then "
     "you can search what you saw.",
     "Mossbank saves a screenshot %1, reads the words in it, and keeps\nall of it on this "
     "computer. "
     "Then you can search what you saw."},
    {"macOS asks once. If it doesn't, turn Mossbank on under Screen & System Audio Recording.",
     "The desktop asks once. If it doesn't, allow Mossbank in the settings of your desktop."},
    {"macOS gives a new screen recording permission to the next launch, not to the app that asked.",
     "The permission counts from the next start of Mossbank."},
    {"Open System Settings", "Open Settings"},
    {"Previous screenshot · ⌘←", "Previous screenshot · Ctrl+←"},
    {"Next screenshot · ⌘→", "Next screenshot · Ctrl+→"},
    {"Fit the whole screenshot in the window · ⌘0",
     "Fit the whole screenshot in the window · Ctrl+0"},
    {"Show the screenshot at its own size · ⌘1", "Show the screenshot at its own size · Ctrl+1"},
    {"Leave Mossbank running and use your Mac as usual.",
     "Leave Mossbank running and use this computer as usual."},
    {"Nothing is captured until you do, and you can pause from the menu bar at any time.",
     "Nothing is captured until you do, and you can pause at any time."},
};

} // namespace

QString LinuxWording::translate(const char*, const char* source, const char*, int) const
{
    const auto found = std::ranges::find(kWordings, std::string_view(source), &Wording::source);
    return found == std::end(kWordings) ? QString() : QString::fromUtf8(found->here);
}

} // namespace mossbank
