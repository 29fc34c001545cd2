// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <thread>

struct sqlite3;
struct sqlite3_stmt;

namespace mossbank {

/// A prepared statement. Finalized when it goes; it must not outlive its database.
///
/// Every value but a blob is bound as text, numbers too: the affinities of the columns turn it
/// back.
class Statement {
public:
    /// Binds the values at positions 1, 2, 3 and on.
    void bind(const QStringList& values);
    /// Binds bytes as they are, at `position`.
    void bindBlob(int position, const QByteArray& bytes);

    /// Makes it ready to run again. What is bound stays bound.
    void reset();

    /// Goes to the next row. False when there is none. Throws StoreError on anything else.
    bool step();

    /// Columns of the row, from 0. A null reads as the empty text and as zero.
    QString text(int column) const;
    double real(int column) const;
    qint64 integer(int column) const;
    /// Empty for a null, too.
    QByteArray blob(int column) const;

private:
    friend class Database;
    explicit Statement(sqlite3_stmt* handle);

    struct Finalize {
        void operator()(sqlite3_stmt* statement) const;
    };
    std::unique_ptr<sqlite3_stmt, Finalize> m_handle;
};

/// A connection to a SQLite database, closed when it goes.
///
/// Threading: one thread at a time.
/// Errors: StoreError with SQLite's own message.
class Database {
public:
    enum class Access { ReadWrite, ReadOnly };

    /// Absent when the file cannot be opened. Reading and writing makes the file if need be.
    /// Opening looks at nothing inside: a damaged file shows at the first statement.
    static std::optional<Database> open(const QString& path, Access access);

    /// Runs one or more statements that yield nothing of interest.
    void execute(const QString& sql);

    /// Runs the same, and says whether it went well in place of throwing.
    bool tryExecute(const QString& sql);

    /// Does `work` within a transaction. When it throws, or the end fails, all of it is undone.
    void transaction(const std::function<void()>& work);

    Statement statement(const QString& sql);

    /// While it lives, statements give up with SQLite's error soon after `isUnwanted` says so. One
    /// at a time.
    ///
    /// `isUnwanted` is asked on a thread of its own: within a step of the full-text index SQLite
    /// asks nobody, while an interruption from outside reaches it there, too.
    class GivingUp {
    public:
        GivingUp(Database& database, std::function<bool()> isUnwanted);
        Q_DISABLE_COPY_MOVE(GivingUp)

    private:
        Database& m_database;
        std::function<bool()> m_isUnwanted;
        /// Last, so that it has ended before anything above goes.
        std::jthread m_watch;
    };

    /// SQLite's words for what went wrong last.
    QString errorMessage() const;

private:
    struct Close {
        void operator()(sqlite3* connection) const;
    };
    explicit Database(std::unique_ptr<sqlite3, Close> connection);

    std::unique_ptr<sqlite3, Close> m_connection;
};

/// The shortest decimal text that reads back as the same double.
QString decimalText(double value);

} // namespace mossbank
