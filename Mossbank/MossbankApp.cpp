// SPDX-License-Identifier: Apache-2.0
//
// The program: builds the parts, hands them over, starts.
#include "Mossbank/CallsFromOutside.h"
#include "Mossbank/ChoicesInWords.h"
#include "Mossbank/MissingParts.h"
#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Platform/PlatformFactory.h"
#include "Mossbank/QuitEvents.h"
#include "Mossbank/SingleInstance.h"
#include "Mossbank/TerminalStatus.h"
#include "Mossbank/TerminationSignals.h"
#include "Mossbank/Translations/LinuxWording.h"
#include "Mossbank/Views/ApplicationChooser/ApplicationChooserWindow.h"
#include "Mossbank/Views/PaletteAppearance.h"
#include "Mossbank/Views/QuitQuestion/QuitQuestionWindow.h"
#include "Mossbank/WindowSystem.h"
#include "MossbankCore/Library/LibraryLocation.h"
#include "MossbankCore/Support/Failure.h"
#include "MossbankCore/Support/SystemClock.h"

#include <QCommandLineParser>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QThreadPool>

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr int kFailed = 1;

struct CommandLine {
    /// The desktop starts the program, and not the user.
    bool isAtLogin = false;
    /// The one that runs is about to end for this one.
    bool isRelaunched = false;
};

CommandLine parseCommandLine(const QCoreApplication& application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(localized(
        "Records what is on the screen into a library on this computer, and nowhere else."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption atLogin(
        u"at-login"_s, localized("Said by the desktop that starts Mossbank at login."));
    QCommandLineOption relaunched(QString::fromUtf16(Relauncher::kRelaunched).mid(2));
    relaunched.setFlags(QCommandLineOption::HiddenFromHelp);
    parser.addOptions({atLogin, relaunched});
    parser.process(application);
    return {.isAtLogin = parser.isSet(atLogin), .isRelaunched = parser.isSet(relaunched)};
}

int run(const Platform& platform, const QString& library, const CommandLine& commandLine)
{
    SystemClock clock;
    ApplicationChooserWindow applicationChooser(*platform.installedApplications);
    PaletteAppearance appearance;
    QuitQuestionWindow quitQuestion;
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
                    .appearance = appearance,
                    .loginService = *platform.loginService,
                    .quitQuestion = quitQuestion,
                    .relauncher = *platform.relauncher,
                    .updates = *platform.updates,
                    .recognizer = *platform.recognizer,
                    .preferences = preferences},
                   OpenedLibrary::at(library, platform.keychain.get()));
    const TerminalStatus terminal(model.recorder(), clock, Calendar::current);
    const TerminationSignals signals;
    const QuitEvents quitEvents;
    followEnds(signals, quitEvents, model);
    followCalls(*platform.activation, model);
    QObject::connect(qApp, &QGuiApplication::applicationStateChanged, &model.launch(),
                     [&model](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive)
                             model.launch().becameActive();
                     });

    TerminalStatus::say(localized("Library: %1").arg(library));
    sayWhatChoicesMean(preferences);
    terminal.show();
    model.finishedLaunching(commandLine.isAtLogin);
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

/// Holds the library. One that another ends for waits until it has.
std::unique_ptr<SingleInstance> takeLibrary(const QString& library, bool isRelaunched)
{
    // The end of the other may wait ten seconds for what it saves, and then for a reading that
    // takes all the time it may on a busy machine.
    constexpr auto kPatience = std::chrono::minutes(2);
    constexpr auto kBetweenTries = std::chrono::milliseconds(100);
    const QDeadlineTimer deadline(isRelaunched ? kPatience : std::chrono::seconds(0));
    auto instance = std::make_unique<SingleInstance>(library);
    while (!instance->isFirst() && !deadline.hasExpired()) {
        std::this_thread::sleep_for(kBetweenTries);
        instance = std::make_unique<SingleInstance>(library);
    }
    return instance;
}

/// Whoever starts the program once more means the one that runs.
int callFirst(const SingleInstance& instance, const CommandLine& commandLine)
{
    TerminalStatus::complain(instance.whoIsFirst());
    // At login nobody asks for anything: what was to be started is running.
    if (commandLine.isAtLogin)
        return 0;
    const auto process = instance.firstProcess();
    if (!process)
        return kFailed;
    const auto activation = makeProgramActivation(QString::fromUtf16(kOwnBundleID));
    return activation->activateFirst(*process) ? 0 : kFailed;
}

int start(const Availability& windows, const CommandLine& commandLine)
{
    const QString library = LibraryLocation::library();
    const auto instance = takeLibrary(library, commandLine.isRelaunched);
    if (!instance->problem().isEmpty()) {
        TerminalStatus::complain(instance->problem());
        return kFailed;
    }
    if (!instance->isFirst())
        return callFirst(*instance, commandLine);
    if (!windows.isAvailable) {
        TerminalStatus::complain(windows.reason);
        return kFailed;
    }
    const Platform platform = makePlatform(QString::fromUtf16(kOwnBundleID));
    if (const Availability screen = platform.screen->availability(); !screen.isAvailable) {
        TerminalStatus::complain(screen.reason);
        return kFailed;
    }
    const int status = run(platform, library, commandLine);
    // A reading may be under way still; it uses the platform's recogniser.
    QThreadPool::globalInstance()->waitForDone();
    return status;
}

int startOrSayWhyNot(const Availability& windows, const CommandLine& commandLine)
{
    try {
        return start(windows, commandLine);
    } catch (const Failure& failure) {
        TerminalStatus::complain(failure.message());
        return kFailed;
    }
}

} // namespace

int main(int argc, char* argv[])
{
    keepMemoryTogether();
    openStandardFiles();
    const Availability windows = windowsAvailability();
    const auto application = makeApplication(argc, argv, windows.isAvailable);
    QCoreApplication::setApplicationName(u"Mossbank"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(MOSSBANK_VERSION));
    LinuxWording wording;
    QCoreApplication::installTranslator(&wording);
    const CommandLine commandLine = parseCommandLine(*application);
    const int status = startOrSayWhyNot(windows, commandLine);
    // Everything of this program is closed. Qt would take leave of the X server now, and wait for
    // one that has stopped answering for as long as that takes.
    std::_Exit(status);
}
