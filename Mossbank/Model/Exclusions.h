// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/Surroundings.h"
#include "Mossbank/Ports/Application.h"
#include "MossbankCore/Support/Job.h"

#include <QCoroTask>
#include <QObject>
#include <QString>

#include <optional>

namespace mossbank {

class Recorder;

/// An application that was in front.
struct ActiveApp {
    QString bundle;
    QString name;

    friend bool operator==(const ActiveApp&, const ActiveApp&) = default;
};

/// How the user puts applications on the list of those that are never recorded, without opening
/// the settings. What the list does, a capture pass says.
///
/// Threading: the main thread.
class Exclusions : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    Exclusions(Surroundings surroundings, Recorder& recorder, QObject* parent = nullptr);

    /// Notes from now on which application is in front.
    void watchActiveApps();

    /// The application that was in front before the user turned to this one.
    std::optional<ActiveApp> lastActiveApp() const;

    /// Puts the application in front on the list, or the last one before this. The recorder's
    /// status says what became of it. What is saved of it already stays.
    void excludeFrontmostApp();

    /// Has the user choose among the installed applications, and puts the chosen one on the list.
    /// Nothing while the user is choosing already.
    void addExcludedApp();

private:
    void noteActiveApp(const Application& application);
    std::optional<Application> frontmostApp() const;
    bool isExcluded(const Application& application) const;
    void exclude(const Application& application);
    QCoro::Task<> choose(Cancellation cancellation);

    Surroundings m_around;
    Recorder& m_recorder;
    std::optional<Application> m_lastActiveApp;
    /// Last: cancelled before anything above goes.
    Job m_choosing;
};

} // namespace mossbank
