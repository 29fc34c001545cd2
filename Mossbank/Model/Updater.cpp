// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Updater.h"

#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Ports/Updates.h"

namespace mossbank {

Updater::Updater(Updates& updates, Recorder& recorder, QObject* parent)
    : QObject(parent)
    , m_updates(updates)
    , m_recorder(recorder)
{
    connect(&m_updates, &Updates::canCheckForUpdatesChanged, this,
            &Updater::canCheckForUpdatesChanged);
    connect(&m_updates, &Updates::checked, this, &Updater::tell);
}

bool Updater::canCheckForUpdates() const
{
    return m_updates.canCheckForUpdates();
}

void Updater::checkForUpdates()
{
    m_updates.checkForUpdates();
}

void Updater::tell(const UpdateAnswer& answer)
{
    switch (answer.kind) {
    case UpdateAnswer::Kind::Newest:
        m_recorder.setStatus(
            answer.isOfNow
                ? localized("This is the newest version of Mossbank")
                : localized("No newer version of Mossbank was known at the system's last check"));
        return;
    case UpdateAnswer::Kind::Newer:
        m_recorder.setStatus(
            localized("Mossbank %1 can be installed with the updates of your system")
                .arg(answer.version));
        return;
    case UpdateAnswer::Kind::Installed:
        m_recorder.setStatus(
            localized("Mossbank has been installed anew, which counts from its next start"));
        return;
    case UpdateAnswer::Kind::Failed:
        m_recorder.setErrorMessage(localized("Could not check for updates: %1").arg(answer.reason));
        return;
    }
}

} // namespace mossbank
