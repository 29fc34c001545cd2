// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/AddressSource.h"
#include "Mossbank/Ports/Availability.h"
#include "Mossbank/Ports/DesktopSettings.h"
#include "Mossbank/Ports/FileManager.h"
#include "Mossbank/Ports/FrontApplication.h"
#include "Mossbank/Ports/InstalledApplications.h"
#include "Mossbank/Ports/LoginService.h"
#include "Mossbank/Ports/ProgramActivation.h"
#include "Mossbank/Ports/Relauncher.h"
#include "Mossbank/Ports/Screen.h"
#include "Mossbank/Ports/ScreenState.h"
#include "Mossbank/Ports/SecureInput.h"
#include "Mossbank/Ports/SessionEvents.h"
#include "Mossbank/Ports/TrayHost.h"
#include "Mossbank/Ports/Updates.h"
#include "MossbankCore/Ports/Keychain.h"
#include "MossbankCore/Ports/TextRecognizer.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace mossbank {

/// What this machine's desktop offers. None is null: what it cannot do says so itself.
struct Platform {
    std::unique_ptr<Screen> screen;
    std::unique_ptr<FrontApplication> frontApplication;
    std::unique_ptr<ScreenState> screenState;
    std::unique_ptr<SecureInput> secureInput;
    std::unique_ptr<SessionEvents> sessionEvents;
    std::unique_ptr<AddressSource> addresses;
    std::unique_ptr<InstalledApplications> installedApplications;
    std::unique_ptr<ProgramActivation> activation;
    std::unique_ptr<DesktopSettings> desktopSettings;
    std::unique_ptr<FileManager> fileManager;
    std::unique_ptr<Updates> updates;
    std::unique_ptr<Relauncher> relauncher;
    std::unique_ptr<LoginService> loginService;
    std::unique_ptr<TrayHost> trayHost;
    std::unique_ptr<TextRecognizer> recognizer;
    std::unique_ptr<Keychain> keychain;
    /// The identities of what keeps passwords, and of what shows keys, on this system alone.
    QStringList passwordManagers;
};

/// Has what this program frees go back to the system rather than wait for its next use. Before any
/// other thread is there.
void keepMemoryTogether();

/// Gives back to the system what has been freed and lies between what has not. Takes some
/// milliseconds.
void giveMemoryBack();

/// Whether this program can have windows here. Asked before Qt connects to the desktop, which
/// otherwise ends a program that cannot.
Availability windowsAvailability();

/// From now on the program lives on when the session manager that Qt joins has gone. Before Qt
/// connects to the desktop.
void outliveSessionManager();

/// A question for any thread: whether what Qt has its windows on has gone. Made by the main thread
/// once the application object is there; not asked after that has gone.
std::function<bool()> windowSystemHasGone();

/// Chooses the adapters for this machine. `ownBundleID` is this program's identity.
///
/// Threading: the main thread.
Platform makePlatform(const QString& ownBundleID);

/// What is needed to look around without recording: the recogniser, what is installed, how the
/// desktop looks and shows files. It goes without a desktop too.
///
/// Threading: the main thread.
Platform makeSamplePlatform();

/// How starts of this program reach each other, alone: for one that is not the first and needs
/// nothing else.
std::unique_ptr<ProgramActivation> makeProgramActivation(const QString& ownBundleID);

/// The recogniser alone, for who has pictures and needs no desktop.
std::unique_ptr<TextRecognizer> makeTextRecognizer();

} // namespace mossbank
