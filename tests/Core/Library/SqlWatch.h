// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMutex>
#include <QString>
#include <QStringList>

#include <sqlite3.h>

#include <functional>
#include <utility>

namespace mossbank {

/// Sees every statement that the connections opened while it lives begin to run, as SQLite was
/// given it. What triggers run is left out. One at a time.
class SqlWatch {
public:
    SqlWatch()
    {
        s_current = this;
        sqlite3_auto_extension(entryPoint());
    }
    ~SqlWatch()
    {
        sqlite3_cancel_auto_extension(entryPoint());
        const QMutexLocker locker(&s_mutex);
        s_current = nullptr;
    }
    Q_DISABLE_COPY_MOVE(SqlWatch)

    /// Called just before each statement runs, on its thread.
    void setObserver(std::function<void(const QString&)> observer)
    {
        const QMutexLocker locker(&s_mutex);
        m_observer = std::move(observer);
    }

    /// The statements since the last time.
    QStringList take()
    {
        const QMutexLocker locker(&s_mutex);
        return std::exchange(m_statements, {});
    }

private:
    using EntryPoint = void (*)();

    static int watch(sqlite3* connection, char**, const struct sqlite3_api_routines*)
    {
        return sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, &SqlWatch::trace, nullptr);
    }

    static EntryPoint entryPoint() { return reinterpret_cast<EntryPoint>(&SqlWatch::watch); }

    static int trace(unsigned, void*, void*, void* sql)
    {
        const QString statement = QString::fromUtf8(static_cast<const char*>(sql)).trimmed();
        const QMutexLocker locker(&s_mutex);
        if (!s_current || statement.startsWith(QStringLiteral("--")))
            return 0;
        s_current->m_statements.append(statement);
        if (s_current->m_observer)
            s_current->m_observer(statement);
        return 0;
    }

    static inline QMutex s_mutex;
    static inline SqlWatch* s_current = nullptr;
    QStringList m_statements;
    std::function<void(const QString&)> m_observer;
};

} // namespace mossbank
