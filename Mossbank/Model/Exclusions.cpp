// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/Exclusions.h"

#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Ports/ApplicationChooser.h"
#include "Mossbank/Ports/FrontApplication.h"
#include "MossbankCore/Support/Awaited.h"

#include <utility>

namespace mossbank {

namespace {

/// Of somebody else, and known by something.
bool canBeExcluded(const Application& application)
{
    return !application.bundleID.isEmpty() && application.bundleID != kOwnBundleID;
}

} // namespace

Exclusions::Exclusions(Surroundings surroundings, Recorder& recorder, QObject* parent)
    : QObject(parent)
    , m_around(std::move(surroundings))
    , m_recorder(recorder)
{
}

void Exclusions::watchActiveApps()
{
    connect(&m_around.frontApplication, &FrontApplication::activated, this,
            &Exclusions::noteActiveApp);
    if (const auto front = frontmostApp())
        noteActiveApp(*front);
}

void Exclusions::noteActiveApp(const Application& application)
{
    if (canBeExcluded(application))
        m_lastActiveApp = application;
}

std::optional<ActiveApp> Exclusions::lastActiveApp() const
{
    if (!m_lastActiveApp)
        return std::nullopt;
    return ActiveApp{m_lastActiveApp->bundleID, m_lastActiveApp->shownName()};
}

std::optional<Application> Exclusions::frontmostApp() const
{
    try {
        return m_around.frontApplication.current();
    } catch (const Failure&) {
        return std::nullopt; // the desktop has gone
    }
}

void Exclusions::excludeFrontmostApp()
{
    std::optional<Application> application = m_lastActiveApp;
    if (const auto front = frontmostApp(); front && canBeExcluded(*front))
        application = front;
    if (!application) {
        m_recorder.setStatus(localized("Switch to the app you want excluded, then try again"));
        return;
    }
    const QString name = application->shownName();
    if (isExcluded(*application)) {
        m_recorder.setStatus(localized("%1 is already excluded").arg(name));
        return;
    }
    exclude(*application);
    m_recorder.setStatus(localized("Excluded %1 — no new screenshots of it").arg(name));
}

void Exclusions::addExcludedApp()
{
    if (!m_choosing.isRunning())
        m_choosing = Job::start(&Exclusions::choose, this);
}

QCoro::Task<> Exclusions::choose(Cancellation cancellation)
{
    std::optional<Application> chosen;
    try {
        chosen = co_await awaited(
            m_around.applicationChooser.choose(localized("Exclude an application")));
    } catch (const Failure&) {
        chosen.reset(); // the chooser has gone
    }
    if (cancellation.isRequested() || !chosen || chosen->bundleID.isEmpty() || isExcluded(*chosen))
        co_return;
    exclude(*chosen);
}

bool Exclusions::isExcluded(const Application& application) const
{
    return application.isAmong(m_around.preferences.excludedBundles());
}

void Exclusions::exclude(const Application& application)
{
    m_around.preferences.setExcludedBundles(m_around.preferences.excludedBundles() +
                                            QStringList{application.bundleID});
}

} // namespace mossbank
