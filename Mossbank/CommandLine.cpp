// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/CommandLine.h"

#include "Mossbank/Model/Texts.h"
#include "Mossbank/Ports/Relauncher.h"

#include <QCommandLineParser>
#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace mossbank {

CommandLine parseCommandLine()
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
    // For the help alone: this parser would not have one that stands last without its value.
    for (const SnapshotOptions::Option& option : SnapshotOptions::all())
        parser.addOption({option.name.mid(2), option.help});
    const QStringList arguments = QCoreApplication::arguments();
    const SnapshotOptions snapshot(arguments);
    parser.process(arguments.mid(0, 1) + snapshot.others());
    return {.isAtLogin = parser.isSet(atLogin),
            .isRelaunched = parser.isSet(relaunched),
            .snapshot = snapshot};
}

bool runsWithoutScreen(int argc, char** argv)
{
    QStringList arguments;
    for (int number = 0; number < argc; ++number)
        arguments.append(QString::fromLocal8Bit(argv[number]));
    const SnapshotOptions options(arguments);
    const bool isElsewhere = !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
                             !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
                             arguments.contains(u"-platform"_s);
    return isElsewhere && (options.isDemo() || options.path());
}

} // namespace mossbank
