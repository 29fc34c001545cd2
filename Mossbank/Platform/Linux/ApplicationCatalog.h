// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/WindowClass.h"
#include "Mossbank/Ports/Application.h"

#include <QHash>
#include <QMutex>
#include <QString>

#include <memory>
#include <optional>

namespace mossbank {

/// The path of what a process runs, also when that file has been replaced since. Empty when it
/// cannot be told.
QString executableOf(qint64 process);

/// Finds the installed application that a window or a process belongs to.
///
/// Threading: any thread.
/// Errors: none. What is not installed has the name of its executable, or else its class, as
/// identity; nothing known at all is an application with an empty identity.
class ApplicationCatalog {
public:
    ApplicationCatalog();
    ~ApplicationCatalog();
    Q_DISABLE_COPY_MOVE(ApplicationCatalog)

    /// The application whose windows have `windowClass`, made by `process`. Looks the process up
    /// each time: its number is given to another program as soon as it has ended.
    Application application(const WindowClass& windowClass, std::optional<qint64> process);

    /// The same by the path of the executable, which may be empty.
    Application application(const WindowClass& windowClass, const QString& executable);

    /// The installed application of this identity. Absent when there is none.
    std::optional<Application> installed(const QString& bundleID);

private:
    class Watch;
    struct Index {
        QHash<QString, Application> byClass;
        QHash<QString, Application> byID;
        /// Only those that no other application shares.
        QHash<QString, Application> byExecutable;
    };

    void readIndex();
    const Index& index();
    QStringList aliases(const WindowClass& windowClass, const QString& executable,
                        const QString& bundleID) const;
    std::optional<Application> find(const WindowClass& windowClass, const QString& executable);

    QMutex m_mutex;
    std::unique_ptr<Watch> m_watch;
    std::optional<Index> m_index;
    /// Every desktop file met in this run, by what it claims. One that goes while its application
    /// runs must not make another application of it.
    QMultiHash<QString, QString> m_idsOfClass;
    QMultiHash<QString, QString> m_idsOfExecutable;
    QHash<QString, Application> m_found;
};

} // namespace mossbank
