// SPDX-License-Identifier: Apache-2.0
//
// The program: builds the parts, hands them over, starts.
#include "Mossbank/MissingParts.h"
#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Platform/PlatformFactory.h"
#include "Mossbank/SingleInstance.h"
#include "Mossbank/TerminalStatus.h"
#include "Mossbank/TerminationSignals.h"
#include "Mossbank/Translations/LinuxWording.h"
#include "Mossbank/Views/ApplicationChooser/ApplicationChooserWindow.h"
#include "Mossbank/WindowSystem.h"
#include "MossbankCore/Library/LibraryLocation.h"
#include "MossbankCore/Support/Failure.h"
#include "MossbankCore/Support/SystemClock.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QThreadPool>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr int kFailed = 1;

void parseCommandLine(const QCoreApplication& application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(localized(
        "Records what is on the screen into a library on this computer, and nowhere else."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(application);
}

void sayHowToRecord(const Preferences& preferences)
{
    if (!preferences.isReadable()) {
        TerminalStatus::complain(
            localized("The choices in %1 cannot be read.").arg(preferences.path()));
        return;
    }
    if (!preferences.recordsAtLaunch())
        TerminalStatus::say(
            localized("To record, set recordsAtLaunch=true in %1 and start Mossbank again.")
                .arg(preferences.path()));
}

int run(const Platform& platform, const QString& library)
{
    SystemClock clock;
    ApplicationChooserWindow applicationChooser(*platform.installedApplications);
    Preferences preferences(Preferences::userPath(), platform.passwordManagers);
    AppModel model({.clock = clock,
                    .calendar = Calendar::current,
                    .screen = *platform.screen,
                    .frontApplication = *platform.frontApplication,
                    .screenState = *platform.screenState,
                    .secureInput = *platform.secureInput,
                    .sessionEvents = *platform.sessionEvents,
                    .addresses = *platform.addresses,
                    .applicationChooser = applicationChooser,
                    .recognizer = *platform.recognizer,
                    .preferences = preferences},
                   OpenedLibrary::at(library, platform.keychain.get()));
    const TerminalStatus terminal(model.recorder(), clock, Calendar::current);
    const TerminationSignals signals;
    QObject::connect(&signals, &TerminationSignals::received, &model, &AppModel::prepareToQuit);
    QObject::connect(&model, &AppModel::readyToQuit, qApp, &QCoreApplication::quit,
                     Qt::QueuedConnection);

    TerminalStatus::say(localized("Library: %1").arg(library));
    sayHowToRecord(preferences);
    terminal.show();
    model.finishedLaunching();
    const MissingParts missing(platform, preferences);
    return QCoreApplication::exec();
}

/// A program that is started without them would have its lines written into whatever it opens
/// first.
void openStandardFiles()
{
    for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest number that is free, which is this one.
        if (::fcntl(file, F_GETFD) < 0 && ::open("/dev/null", O_RDWR) < 0)
            std::abort();
    }
}

/// Where there can be no windows, one that can still say so.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv, bool hasWindows)
{
    if (!hasWindows)
        return std::make_unique<QCoreApplication>(argc, argv);
    auto application = makeWindowedApplication(argc, argv);
    // It goes on recording without any.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return application;
}

int start(const Availability& windows)
{
    const QString library = LibraryLocation::library();
    const SingleInstance instance(library);
    if (!instance.problem().isEmpty()) {
        TerminalStatus::complain(instance.problem());
        return kFailed;
    }
    if (!instance.isFirst()) {
        TerminalStatus::complain(instance.whoIsFirst());
        return kFailed;
    }
    if (!windows.isAvailable) {
        TerminalStatus::complain(windows.reason);
        return kFailed;
    }
    const Platform platform = makePlatform(QString::fromUtf16(kOwnBundleID));
    if (const Availability screen = platform.screen->availability(); !screen.isAvailable) {
        TerminalStatus::complain(screen.reason);
        return kFailed;
    }
    const int status = run(platform, library);
    // A reading may be under way still; it uses the platform's recogniser.
    QThreadPool::globalInstance()->waitForDone();
    return status;
}

int startOrSayWhyNot(const Availability& windows)
{
    try {
        return start(windows);
    } catch (const Failure& failure) {
        TerminalStatus::complain(failure.message());
        return kFailed;
    }
}

} // namespace

int main(int argc, char* argv[])
{
    openStandardFiles();
    const Availability windows = windowsAvailability();
    const auto application = makeApplication(argc, argv, windows.isAvailable);
    QCoreApplication::setApplicationName(u"Mossbank"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(MOSSBANK_VERSION));
    LinuxWording wording;
    QCoreApplication::installTranslator(&wording);
    parseCommandLine(*application);
    const int status = startOrSayWhyNot(windows);
    // Everything of this program is closed. Qt would take leave of the X server now, and wait for
    // one that has stopped answering for as long as that takes.
    std::_Exit(status);
}
