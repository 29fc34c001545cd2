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

    static Index readIndex();
    const Index& index();
    std::optional<Application> find(const WindowClass& windowClass, const QString& executable);

    QMutex m_mutex;
    std::unique_ptr<Watch> m_watch;
    std::optional<Index> m_index;
    QHash<QString, Application> m_found;
};

} // namespace mossbank
