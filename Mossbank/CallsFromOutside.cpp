// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/CallsFromOutside.h"

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Ports/ProgramActivation.h"
#include "Mossbank/QuitEvents.h"
#include "Mossbank/TerminationSignals.h"
#include "Mossbank/Views/OpenWindows.h"

#include <QGuiApplication>

#include <csignal>

namespace mossbank {

void followEnds(const TerminationSignals& signals, const QuitEvents& events, AppModel& model)
{
    QuitGuard& guard = model.quitGuard();
    QObject::connect(&signals, &TerminationSignals::received, &guard, [&guard](int signal) {
        guard.quit(signal == SIGINT ? QuitGuard::Cause::Interrupt : QuitGuard::Cause::Session);
    });
    QObject::connect(&events, &QuitEvents::sessionEnds, &guard,
                     [&guard] { guard.quit(QuitGuard::Cause::Session); });
    QObject::connect(&events, &QuitEvents::quits, &guard,
                     [&guard] { guard.quit(QuitGuard::Cause::User); });
    QObject::connect(
        &model, &AppModel::readyToQuit, qApp, [] { QCoreApplication::exit(); },
        Qt::QueuedConnection);
}

void followCalls(ProgramActivation& activation, AppModel& model)
{
    QObject::connect(&activation, &ProgramActivation::activated, &model, [&model] {
        if (model.launch().handleReopen(OpenWindows::areAny()))
            OpenWindows::bringToFront();
    });
    QObject::connect(&activation, &ProgramActivation::actionRequested, &model,
                     [&model](const QString& action) {
                         if (action == QStringView(ProgramActivation::kQuit))
                             model.quitGuard().quit(QuitGuard::Cause::User);
                     });
    activation.listen();
}

} // namespace mossbank
