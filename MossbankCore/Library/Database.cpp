// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/Database.h"

#include "MossbankCore/Library/CleanMemory.h"
#include "MossbankCore/Library/CleanPages.h"
#include "MossbankCore/Library/StoreError.h"

#include <QFile>

#include <sqlite3.h>

#include <array>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr int kToTheEndingZero = -1;

} // namespace

void Statement::Finalize::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

Statement::Statement(sqlite3_stmt* handle)
    : m_handle(handle)
{
}

void Statement::bind(const QStringList& values)
{
    int position = 0;
    for (const QString& value : values)
        sqlite3_bind_text(m_handle.get(), ++position, value.toUtf8().constData(), kToTheEndingZero,
                          SQLITE_TRANSIENT);
}

void Statement::bindBlob(int position, const QByteArray& bytes)
{
    sqlite3_bind_blob64(m_handle.get(), position, bytes.constData(),
                        static_cast<sqlite3_uint64>(bytes.size()), SQLITE_TRANSIENT);
}

void Statement::reset()
{
    sqlite3_reset(m_handle.get());
}

bool Statement::step()
{
    switch (sqlite3_step(m_handle.get())) {
    case SQLITE_ROW:
        return true;
    case SQLITE_DONE:
        return false;
    default:
        throw StoreError(QString::fromUtf8(sqlite3_errmsg(sqlite3_db_handle(m_handle.get()))));
    }
}

QString Statement::text(int column) const
{
    const auto* utf8 = reinterpret_cast<const char*>(sqlite3_column_text(m_handle.get(), column));
    if (!utf8)
        return {};
    QString text = QString::fromUtf8(utf8, sqlite3_column_bytes(m_handle.get(), column));
    // Qt makes room for a unit a byte, thrice of what a Japanese text then takes.
    if (text.capacity() > text.size() + text.size() / 4)
        text.squeeze();
    return text;
}

double Statement::real(int column) const
{
    return sqlite3_column_double(m_handle.get(), column);
}

qint64 Statement::integer(int column) const
{
    return sqlite3_column_int64(m_handle.get(), column);
}

QByteArray Statement::blob(int column) const
{
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(m_handle.get(), column));
    return {bytes, sqlite3_column_bytes(m_handle.get(), column)};
}

void Database::Close::operator()(sqlite3* connection) const
{
    sqlite3_close(connection);
}

Database::Database(std::unique_ptr<sqlite3, Close> connection)
    : m_connection(std::move(connection))
{
}

std::optional<Database> Database::open(const QString& path, Access access)
{
    CleanMemory::use();
    const int flags = SQLITE_OPEN_FULLMUTEX |
                      (access == Access::ReadWrite ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE
                                                   : SQLITE_OPEN_READONLY);
    sqlite3* handle = nullptr;
    const int result =
        sqlite3_open_v2(QFile::encodeName(path).constData(), &handle, flags, CleanPages::vfs());
    std::unique_ptr<sqlite3, Close> connection(handle);
    if (result != SQLITE_OK)
        return std::nullopt;
    Database database(std::move(connection));
    // What is being sorted, and what could be undone, has words in it. SQLite would put them into a
    // file of its own in the folder for temporary ones, where nothing is ever overwritten.
    if (!database.tryExecute(u"PRAGMA temp_store=MEMORY;"_s))
        return std::nullopt;
    return database;
}

void Database::execute(const QString& sql)
{
    if (!tryExecute(sql))
        throw StoreError(errorMessage());
}

bool Database::tryExecute(const QString& sql)
{
    return sqlite3_exec(m_connection.get(), sql.toUtf8().constData(), nullptr, nullptr, nullptr) ==
           SQLITE_OK;
}

void Database::transaction(const std::function<void()>& work)
{
    execute(u"BEGIN IMMEDIATE;"_s);
    try {
        work();
        execute(u"COMMIT;"_s);
    } catch (...) {
        tryExecute(u"ROLLBACK"_s);
        throw;
    }
}

Statement Database::statement(const QString& sql)
{
    sqlite3_stmt* handle = nullptr;
    const int result = sqlite3_prepare_v2(m_connection.get(), sql.toUtf8().constData(),
                                          kToTheEndingZero, &handle, nullptr);
    if (result != SQLITE_OK || !handle)
        throw StoreError(errorMessage());
    return Statement(handle);
}

Database::GivingUp::GivingUp(Database& database, std::function<bool()> isUnwanted)
    : m_database(database)
    , m_isUnwanted(std::move(isUnwanted))
{
    m_watch = std::jthread([this](const std::stop_token& over) {
        constexpr auto kBetween = std::chrono::milliseconds(5);
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any wakeUp;
        // Again and again: an interruption that falls between two statements is forgotten.
        while (!wakeUp.wait_for(lock, over, kBetween, [&] { return over.stop_requested(); })) {
            if (m_isUnwanted())
                sqlite3_interrupt(m_database.m_connection.get());
        }
    });
}

QString Database::errorMessage() const
{
    return QString::fromUtf8(sqlite3_errmsg(m_connection.get()));
}

QString decimalText(double value)
{
    std::array<char, 32> digits = {};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return QString::fromLatin1(digits.data(), end - digits.data());
}

} // namespace mossbank
