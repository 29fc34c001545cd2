// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/WindowSystem.h"

#include "Mossbank/Model/Texts.h"
#include "Mossbank/Platform/PlatformFactory.h"
#include "Mossbank/TerminalStatus.h"

#include <QApplication>

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <functional>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// Who was told of Qt's messages before.
QtMessageHandler g_usual = nullptr;
std::function<bool()> g_hasGone;
std::atomic_flag g_isEnding;

/// Nothing is taken leave of.
[[noreturn]] void end(const QString& sentence)
{
    while (g_isEnding.test_and_set())
        ::pause(); // another thread has seen it too
    TerminalStatus::complain(sentence);
    std::_Exit(1);
}

void endIfGone()
{
    if (g_hasGone())
        end(localized("The X server has gone; Mossbank ends."));
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

/// Qt itself would wait for somebody to read it.
void passOn(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    TerminalStatus::complain(qFormatLogMessage(type, context, message));
}

/// It is all that Qt says before it aborts.
void whileStarting(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtFatalMsg)
        end(whyNoWindows());
    passOn(type, context, message);
}

/// Before Qt ends the program for a server that has gone, it says so.
void whileRunning(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    endIfGone();
    if (type == QtFatalMsg)
        g_usual(type, context, message);
    passOn(type, context, message);
}

} // namespace

std::unique_ptr<QGuiApplication> makeWindowedApplication(int& argc, char** argv)
{
    g_usual = qInstallMessageHandler(whileStarting);
    outliveSessionManager();
    // The menu of the tray is all there is of widgets. The style that the desktop names for them
    // may bring a library for each of its effects.
    QApplication::setStyle(u"Fusion"_s);
    std::unique_ptr<QGuiApplication> application = std::make_unique<QApplication>(argc, argv);
    g_hasGone = windowSystemHasGone();
    qInstallMessageHandler(whileRunning);
    // Messages may be switched off. What is asked for last at an exit comes first.
    QMetaObject::invokeMethod(
        application.get(), [] { std::atexit(endIfGone); }, Qt::QueuedConnection);
    return application;
}

} // namespace mossbank
