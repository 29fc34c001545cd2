// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Calendar.h"

namespace mossbank {

class AppModel;
class Clock;
class DesktopSettings;
class FileManager;
class InstalledApplications;
class Preferences;

/// What the main window is a window on. All of it outlives the window.
struct WorkspaceParts {
    AppModel& model;
    Preferences& preferences;
    Clock& clock;
    CalendarSource calendar;
    const InstalledApplications& installedApplications;
    FileManager& fileManager;
    const DesktopSettings& desktop;
};

} // namespace mossbank
