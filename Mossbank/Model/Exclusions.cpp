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

QString nameOf(const Application& application)
{
    return application.name.isEmpty() ? application.bundleID : application.name;
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
            &Exclusions::noteActiveApp, Qt::UniqueConnection);
    if (const auto front = frontmostApp())
        noteActiveApp(*front);
}

void Exclusions::noteActiveApp(const Application& application)
{
    if (canBeExcluded(application))
        m_lastActiveApp = {application.bundleID, nameOf(application)};
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
    std::optional<ActiveApp> app = m_lastActiveApp;
    if (const auto front = frontmostApp(); front && canBeExcluded(*front))
        app = {front->bundleID, nameOf(*front)};
    if (!app) {
        m_recorder.setStatus(localized("Switch to the app you want excluded, then try again"));
        return;
    }
    if (isExcluded(app->bundle)) {
        m_recorder.setStatus(localized("%1 is already excluded").arg(app->name));
        return;
    }
    exclude(app->bundle);
    m_recorder.setStatus(localized("Excluded %1 — no new screenshots of it").arg(app->name));
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
    if (cancellation.isRequested() || !chosen || chosen->bundleID.isEmpty() ||
        isExcluded(chosen->bundleID))
        co_return;
    exclude(chosen->bundleID);
}

bool Exclusions::isExcluded(const QString& bundleID) const
{
    return m_around.preferences.excludedBundles().contains(bundleID, Qt::CaseInsensitive);
}

void Exclusions::exclude(const QString& bundleID)
{
    m_around.preferences.setExcludedBundles(m_around.preferences.excludedBundles() +
                                            QStringList{bundleID});
}

} // namespace mossbank
