// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/PlatformFactory.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"
#include "Mossbank/Platform/Linux/AtspiAddressSource.h"
#include "Mossbank/Platform/Linux/AtspiSecureInput.h"
#include "Mossbank/Platform/Linux/BusActivation.h"
#include "Mossbank/Platform/Linux/DesktopFileApplications.h"
#include "Mossbank/Platform/Linux/DesktopFileManager.h"
#include "Mossbank/Platform/Linux/LinuxTrayHost.h"
#include "Mossbank/Platform/Linux/PackageKitUpdates.h"
#include "Mossbank/Platform/Linux/PasswordManagers.h"
#include "Mossbank/Platform/Linux/PortalSettings.h"
#include "Mossbank/Platform/Linux/ProcessRelauncher.h"
#include "Mossbank/Platform/Linux/QtX11Server.h"
#include "Mossbank/Platform/Linux/SecretServiceKeychain.h"
#include "Mossbank/Platform/Linux/SessionWatch.h"
#include "Mossbank/Platform/Linux/TesseractLineRecognizer.h"
#include "Mossbank/Platform/Linux/X11FrontApplication.h"
#include "Mossbank/Platform/Linux/X11Screen.h"
#include "Mossbank/Platform/Linux/XdgAutostart.h"
#include "Mossbank/Platform/Null/NullAddressSource.h"
#include "Mossbank/Platform/Null/NullFrontApplication.h"
#include "Mossbank/Platform/Null/NullKeychain.h"
#include "Mossbank/Platform/Null/NullLoginService.h"
#include "Mossbank/Platform/Null/NullProgramActivation.h"
#include "Mossbank/Platform/Null/NullRelauncher.h"
#include "Mossbank/Platform/Null/NullScreen.h"
#include "Mossbank/Platform/Null/NullScreenState.h"
#include "Mossbank/Platform/Null/NullSecureInput.h"
#include "Mossbank/Platform/Null/NullSessionEvents.h"
#include "Mossbank/Platform/Null/NullTrayHost.h"
#include "Mossbank/Platform/Null/NullUpdates.h"
#include "MossbankCore/Capture/TextReader.h"
#include "MossbankCore/Support/Failure.h"

#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// How long the start waits to learn what this desktop cannot tell, so that it can be said. A
/// desktop where all is well answers in some hundredths of a second.
constexpr int kPatience = 1000;

void addAccessibility(Platform& platform, const std::shared_ptr<ApplicationCatalog>& catalog)
{
    const auto accessibility = std::make_shared<Accessibility>(catalog);
    accessibility->waitUntilKnown(kPatience);
    // The prompts that are known by the class of their window are known without any bus.
    platform.secureInput = std::make_unique<AtspiSecureInput>(accessibility);
    if (sessionBusAddress().isEmpty()) {
        platform.addresses = std::make_unique<NullAddressSource>(
            u"There is no session bus, so browsers cannot be asked for the address of a page."_s);
    } else {
        platform.addresses = std::make_unique<AtspiAddressSource>(accessibility);
    }
}

void addX11(Platform& platform, const OwnProgram& own)
{
    if (isWithinWayland(X11Connection())) {
        throw Failure(u"This is a Wayland session. Mossbank can see the screen of X11 sessions "
                      "only."_s);
    }
    const auto catalog = std::make_shared<ApplicationCatalog>();
    auto screen = std::make_unique<X11Screen>(catalog, own);
    auto front = std::make_unique<X11FrontApplication>(catalog, own);
    platform.screen = std::move(screen);
    platform.frontApplication = std::move(front);
    addAccessibility(platform, catalog);
}

} // namespace

Availability windowsAvailability()
{
    try {
        const X11Connection connection;
        return {};
    } catch (const Failure& failure) {
        return Availability::missing(failure.message());
    }
}

std::function<bool()> windowSystemHasGone()
{
    return [server = QtX11Server()] {
        return server.hasGone();
    };
}

Platform makePlatform(const QString& ownBundleID)
{
    Platform platform;
    const qint64 self = QCoreApplication::applicationPid();
    try {
        addX11(platform, {self, ownBundleID, executableOf(self)});
    } catch (const Failure& failure) {
        platform.screen = std::make_unique<NullScreen>(failure.message());
        platform.frontApplication = std::make_unique<NullFrontApplication>(failure.message());
        platform.secureInput = std::make_unique<NullSecureInput>(failure.message());
        platform.addresses = std::make_unique<NullAddressSource>(failure.message());
    }
    const auto session = std::make_shared<SessionWatch>();
    platform.screenState = std::make_unique<LinuxScreenState>(session);
    platform.sessionEvents = std::make_unique<LinuxSessionEvents>(session);
    platform.installedApplications = std::make_unique<DesktopFileApplications>();
    platform.activation = makeProgramActivation(ownBundleID);
    platform.desktopSettings = std::make_unique<PortalSettings>();
    platform.fileManager = std::make_unique<DesktopFileManager>();
    platform.updates = std::make_unique<PackageKitUpdates>(executableOf(self));
    platform.relauncher = std::make_unique<ProcessRelauncher>(executableOf(self));
    platform.loginService = std::make_unique<XdgAutostart>(
        executableOf(QCoreApplication::applicationPid()), ownBundleID);
    platform.trayHost = std::make_unique<LinuxTrayHost>();
    platform.recognizer = makeTextRecognizer();
    platform.keychain = std::make_unique<SecretServiceKeychain>();
    platform.passwordManagers = passwordManagersOfLinux();
    return platform;
}

Platform makeSamplePlatform()
{
    const QString reason = u"Recording is off in the demo."_s;
    Platform platform;
    platform.screen = std::make_unique<NullScreen>(reason);
    platform.frontApplication = std::make_unique<NullFrontApplication>(reason);
    platform.screenState = std::make_unique<NullScreenState>(reason);
    platform.secureInput = std::make_unique<NullSecureInput>(reason);
    platform.sessionEvents = std::make_unique<NullSessionEvents>(reason);
    platform.addresses = std::make_unique<NullAddressSource>(reason);
    platform.installedApplications = std::make_unique<DesktopFileApplications>();
    platform.activation = std::make_unique<NullProgramActivation>(reason);
    platform.desktopSettings = std::make_unique<PortalSettings>();
    platform.fileManager = std::make_unique<DesktopFileManager>();
    platform.updates = std::make_unique<NullUpdates>(reason);
    platform.relauncher = std::make_unique<NullRelauncher>(reason);
    platform.loginService = std::make_unique<NullLoginService>(reason);
    // Its windows may be on no screen at all.
    if (QGuiApplication::platformName() == u"xcb")
        platform.trayHost = std::make_unique<LinuxTrayHost>();
    else
        platform.trayHost = std::make_unique<NullTrayHost>(reason);
    platform.recognizer = makeTextRecognizer();
    platform.keychain = std::make_unique<NullKeychain>(reason);
    platform.passwordManagers = passwordManagersOfLinux();
    return platform;
}

std::unique_ptr<ProgramActivation> makeProgramActivation(const QString& ownBundleID)
{
    return std::make_unique<BusActivation>(ownBundleID);
}

std::unique_ptr<TextRecognizer> makeTextRecognizer()
{
    return std::make_unique<TextReader>(std::make_unique<TesseractLineRecognizer>());
}

} // namespace mossbank
