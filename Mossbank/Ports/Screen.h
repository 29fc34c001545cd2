// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Application.h"
#include "Mossbank/Ports/Availability.h"

#include <QFuture>
#include <QImage>
#include <QList>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

namespace mossbank {

/// Names a display for as long as it is connected.
using DisplayID = quint32;

/// A display. Its frame is in the desktop's coordinates, one unit a pixel of the screen.
struct Display {
    DisplayID id = 0;
    QRect frame;

    friend bool operator==(const Display&, const Display&) = default;
};

/// A window with its frame and decorations, a menu, a tooltip, a panel.
struct ScreenWindow {
    /// Several where programs draw inside each other's windows. Empty when the window tells nothing
    /// by which it could be known.
    QList<Application> owners;
    QString title;
    /// 0 for ordinary windows; below for the desktop, above for panels, menus and the like.
    int layer = 0;
    /// In the desktop's coordinates, with the decorations.
    QRect frame;
    /// Shown on some display now, covered or not. Not minimised, not on another workspace.
    bool isOnScreen = false;

    friend bool operator==(const ScreenWindow&, const ScreenWindow&) = default;
};

/// What is on offer at one moment.
struct ScreenContent {
    /// Front to back.
    QList<ScreenWindow> windows;
    QList<Display> displays;
    /// The one with the desktop's panel, or the first. Absent when there is no display.
    std::optional<DisplayID> mainDisplay;
    /// Every application that owns a window, each once, by all its names.
    QList<Application> applications;
};

/// What a picture is to show.
struct PictureRequest {
    DisplayID display = 0;
    /// The identities of the applications that may be in it. Windows of all others that are known
    /// are covered by a flat colour before anyone sees the pixels, also those that opened a moment
    /// ago; and of nobody known those that lie over such a one.
    QStringList included;
    /// The size that the picture is to have, in pixels.
    QSize size;
    /// The identities of the applications of which not even remains may be in it: what a window
    /// that closed a moment ago has left on the screen.
    QStringList excluded = {};
};

/// The displays, the windows on them and the still picture.
///
/// Threading: called on the main thread; the work may be done elsewhere.
/// Errors: a Failure through the future, within some thirty seconds also where the system does not
/// answer at all.
class Screen {
public:
    Screen() = default;
    virtual ~Screen() = default;
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    virtual Availability availability() const = 0;

    /// Whether the system lets this program see the screen. Never shows anything.
    virtual bool isAllowed() const = 0;
    /// Has the system ask the user. The answer may count from the next run only.
    virtual void askForPermission() = 0;
    /// Opens the system's own settings where the permission is given.
    virtual void openPermissions() = 0;

    /// What the user calls the displays: their makers' names for them, or else where they are
    /// plugged in. The main one comes first, and no two are the same. Empty when they cannot be
    /// told.
    virtual QStringList displayNames() const = 0;

    virtual QFuture<ScreenContent> content() = 0;

    /// The display as it is at this moment, without the pointer. Where it cannot be told what a
    /// window shows, it is covered too. Fails when the display has gone.
    virtual QFuture<QImage> picture(PictureRequest request) = 0;
};

} // namespace mossbank
