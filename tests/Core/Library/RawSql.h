// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFile>
#include <QList>
#include <QString>
#include <QStringList>

#include <sqlite3.h>

#include <stdexcept>
#include <string>

namespace mossbank {

/// A database looked at past the store, for what only SQLite itself can tell.
///
/// Errors: std::runtime_error with SQLite's message, which fails the test that meets it.
class RawSql {
public:
    explicit RawSql(const QString& path, int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)
    {
        const int result =
            sqlite3_open_v2(QFile::encodeName(path).constData(), &m_connection, flags, nullptr);
        check(result == SQLITE_OK);
    }
    ~RawSql() { sqlite3_close(m_connection); }
    Q_DISABLE_COPY_MOVE(RawSql)

    void run(const QString& sql)
    {
        check(sqlite3_exec(m_connection, sql.toUtf8().constData(), nullptr, nullptr, nullptr) ==
              SQLITE_OK);
    }

    /// Every row, its columns as text joined by "|"; a null is "NULL".
    QStringList rows(const QString& sql, const QStringList& values = {})
    {
        sqlite3_stmt* statement = nullptr;
        check(sqlite3_prepare_v2(m_connection, sql.toUtf8().constData(), -1, &statement, nullptr) ==
              SQLITE_OK);
        int position = 0;
        for (const QString& value : values) {
            const QByteArray utf8 = value.toUtf8();
            sqlite3_bind_text(statement, ++position, utf8.constData(),
                              static_cast<int>(utf8.size()), SQLITE_TRANSIENT);
        }
        QStringList found;
        int result = sqlite3_step(statement);
        for (; result == SQLITE_ROW; result = sqlite3_step(statement))
            found.append(row(statement));
        sqlite3_finalize(statement);
        check(result == SQLITE_DONE);
        return found;
    }

    /// The first column of the first row.
    QString value(const QString& sql, const QStringList& values = {})
    {
        const QStringList found = rows(sql, values);
        check(!found.isEmpty());
        return found.first();
    }

    int userVersion() { return value(QStringLiteral("PRAGMA user_version")).toInt(); }

private:
    static QString row(sqlite3_stmt* statement)
    {
        QStringList columns;
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            const auto* text =
                reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
            columns.append(text ? QString::fromUtf8(text) : QStringLiteral("NULL"));
        }
        return columns.join(u'|');
    }

    void check(bool isFine)
    {
        if (!isFine)
            throw std::runtime_error(std::string(sqlite3_errmsg(m_connection)));
    }

    sqlite3* m_connection = nullptr;
};

} // namespace mossbank
