// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/WindowSystem.h"

#include "Mossbank/Model/Texts.h"
#include "Mossbank/TerminalStatus.h"

#include <cstdlib>

namespace mossbank {

namespace {

/// Who was told of Qt's messages before.
QtMessageHandler g_usual = nullptr;

/// Nothing is taken leave of.
[[noreturn]] void end(const QString& sentence)
{
    TerminalStatus::complain(sentence);
    std::_Exit(1);
}

QString whyNoWindows()
{
    const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM");
    return platform.isEmpty()
               ? localized("Qt can have no windows here: what it needs for them is missing or does "
                           "not start.")
               : localized("Qt can have no windows here with QT_QPA_PLATFORM=%1. Start Mossbank "
                           "without it.")
                     .arg(platform);
}

/// It is all that Qt says before it aborts.
void whileStarting(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtFatalMsg)
        end(whyNoWindows());
    g_usual(type, context, message);
}

} // namespace

std::unique_ptr<QGuiApplication> makeWindowedApplication(int& argc, char** argv)
{
    g_usual = qInstallMessageHandler(whileStarting);
    auto application = std::make_unique<QGuiApplication>(argc, argv);
    qInstallMessageHandler(g_usual);
    return application;
}

} // namespace mossbank
