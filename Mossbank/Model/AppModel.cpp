// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/AppModel.h"

#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Texts.h"
#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Support/Failure.h"

#include <utility>

namespace mossbank {

OpenedLibrary OpenedLibrary::at(const QString& root)
{
    try {
        return {std::make_unique<HistoryStore>(HistoryStore::Writing{.root = root}), {}};
    } catch (const Failure& failure) {
        return {nullptr, localized("History is unavailable: %1").arg(failure.message())};
    }
}

AppModel::AppModel(Surroundings surroundings, OpenedLibrary library, QObject* parent)
    : QObject(parent)
    , m_clock(surroundings.clock)
    , m_preferences(surroundings.preferences)
    , m_store(std::move(library.store))
    , m_recorder(std::move(surroundings),
                 {.pauses = m_pauses, .afterSave = m_afterSave, .store = m_store.get()})
{
    if (library.errorMessage)
        m_recorder.setErrorMessage(library.errorMessage);
}

AppModel::~AppModel() = default;

void AppModel::finishedLaunching()
{
    if (m_preferences.recordsAtLaunch())
        m_recorder.startWithoutAsking();
}

void AppModel::prepareToQuit()
{
    if (m_recorder.isRecording())
        m_recorder.stop();
    if (!m_recorder.isCapturing()) {
        Q_EMIT readyToQuit();
        return;
    }
    connect(&m_recorder, &Recorder::passEnded, this, &AppModel::readyToQuit);
    m_quitting = Job::start(&AppModel::quitInAnyCase, this);
}

QCoro::Task<> AppModel::quitInAnyCase(Cancellation cancellation)
{
    // A pass may wait for a screen or a recogniser that has stopped answering.
    constexpr double kPatience = 10;
    if (co_await m_clock.sleep(kPatience, cancellation))
        Q_EMIT readyToQuit();
}

} // namespace mossbank
