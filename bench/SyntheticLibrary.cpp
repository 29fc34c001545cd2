// SPDX-License-Identifier: Apache-2.0
#include "bench/SyntheticLibrary.h"

#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Support/Failure.h"

#include <QDir>
#include <QFile>
#include <QSet>

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr int kVocabulary = 60'000;
constexpr int kWordsOfAScreenshot = 300;
constexpr int kWordsOfATitle = 6;

} // namespace

SyntheticScreenshots::SyntheticScreenshots()
{
    QSet<QString> known;
    while (m_vocabulary.size() < kVocabulary) {
        QString word;
        const int letters = m_random.bounded(2, 12);
        for (int letter = 0; letter < letters; ++letter)
            word += QChar(static_cast<char16_t>(u'a' + m_random.bounded(26)));
        if (known.contains(word))
            continue;
        known.insert(word);
        m_vocabulary.append(word);
    }
    m_sorted = m_vocabulary;
    m_sorted.sort();
    double sum = 0;
    for (int rank = 1; rank <= kVocabulary; ++rank) {
        sum += 1.0 / rank;
        m_upTo.push_back(sum);
    }
    for (double& upTo : m_upTo)
        upTo /= sum;
}

QString SyntheticScreenshots::words(int count)
{
    QString text;
    for (int word = 0; word < count; ++word) {
        const auto place = std::ranges::lower_bound(m_upTo, m_random.generateDouble());
        text += m_vocabulary.at(std::min<qsizetype>(place - m_upTo.begin(), kVocabulary - 1));
        text += u' ';
    }
    return text;
}

QByteArray SyntheticScreenshots::noise(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes)
        byte = static_cast<char>(m_random.bounded(256));
    return bytes;
}

bool SyntheticScreenshots::beginsAnother(const QString& word) const
{
    const auto next = std::ranges::upper_bound(m_sorted, word);
    return next != m_sorted.end() && next->startsWith(word);
}

QString SyntheticScreenshots::wordOn(double part, qsizetype letters) const
{
    // A screenshot lacks a word of chance p with a chance of (1 - p) to the power of its words.
    const double chance = 1 - std::pow(1 - part, 1.0 / kWordsOfAScreenshot);
    const auto isWanted = [&](qsizetype rank) {
        const QString& word = m_vocabulary.at(rank);
        return m_upTo.at(static_cast<std::size_t>(rank)) -
                       m_upTo.at(static_cast<std::size_t>(rank - 1)) <=
                   chance &&
               (letters == 0 || word.size() == letters) && !beginsAnother(word);
    };
    qsizetype rank = 1;
    while (rank < kVocabulary - 1 && !isWanted(rank))
        ++rank;
    return m_vocabulary.at(rank);
}

Date SyntheticScreenshots::dayAfter(int number)
{
    constexpr double kDay = 86'400;
    return {(std::floor((kFirstTime + number * kSecondsBetween) / kDay) + 1) * kDay};
}

Memory SyntheticScreenshots::next(int number)
{
    static const std::array kApps = {u"Editor"_s, u"Browser"_s, u"Terminal"_s, u"Mail"_s,
                                     u"Notes"_s,  u"Chat"_s,    u"Sheets"_s,   u"Reader"_s};
    constexpr std::size_t kStretch = 20; // screenshots before another application comes
    Memory memory;
    memory.id = u"%1"_s.arg(number, 36, 10, QChar(u'0'));
    memory.timestamp = {kFirstTime + number * kSecondsBetween};
    memory.appName = kApps.at(static_cast<std::size_t>(number) / kStretch % kApps.size());
    memory.bundleID = u"org.example."_s + memory.appName.toLower();
    memory.text = words(kWordsOfAScreenshot);
    memory.filename = memory.id + u".jpg"_s;
    memory.bytes = kPictureBytes;
    memory.title = words(kWordsOfATitle);
    memory.link = u"https://example.org/"_s + memory.id;
    return memory;
}

BareDatabase::BareDatabase(const QString& path)
{
    check(sqlite3_open(QFile::encodeName(path).constData(), &m_connection));
}

BareDatabase::~BareDatabase()
{
    sqlite3_close(m_connection);
}

void BareDatabase::run(const QString& sql)
{
    check(sqlite3_exec(m_connection, sql.toUtf8().constData(), nullptr, nullptr, nullptr));
}

sqlite3_stmt* BareDatabase::prepare(const QString& sql)
{
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v2(m_connection, sql.toUtf8().constData(), -1, &statement, nullptr));
    return statement;
}

namespace {

void writeSynced(const QString& path, const QByteArray& bytes)
{
    constexpr mode_t kForUserAlone = 0600;
    const int file =
        ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL, kForUserAlone);
    const bool isWritten =
        file >= 0 &&
        ::write(file, bytes.constData(), static_cast<std::size_t>(bytes.size())) == bytes.size() &&
        ::fsync(file) == 0;
    if (file >= 0)
        ::close(file);
    if (!isWritten)
        throw FileError(u"could not be written"_s, path);
}

void bindText(sqlite3_stmt* statement, int position, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    sqlite3_bind_text(statement, position, utf8.constData(), static_cast<int>(utf8.size()),
                      SQLITE_TRANSIENT);
}

} // namespace

void BareDatabase::each(const QString& sql, const QStringList& values,
                        const std::function<void(sqlite3_stmt*)>& take)
{
    sqlite3_stmt* const statement = prepare(sql);
    int position = 0;
    for (const QString& value : values)
        bindText(statement, ++position, value);
    int result = sqlite3_step(statement);
    for (; result == SQLITE_ROW; result = sqlite3_step(statement))
        take(statement);
    sqlite3_finalize(statement);
    check(result == SQLITE_DONE ? SQLITE_OK : result);
}

qsizetype BareDatabase::read(const QString& sql, const QStringList& values)
{
    qsizetype rows = 0;
    each(sql, values, [&rows](sqlite3_stmt* row) {
        for (int column = 0; column < sqlite3_column_count(row); ++column)
            sqlite3_column_text(row, column);
        ++rows;
    });
    return rows;
}

QList<Memory> BareDatabase::readMemories(const QString& sql, const QStringList& values)
{
    QList<Memory> memories;
    each(sql, values, [&memories](sqlite3_stmt* row) {
        int column = 0;
        const auto text = [&] {
            const auto* const utf8 =
                reinterpret_cast<const char*>(sqlite3_column_text(row, column));
            return QString::fromUtf8(utf8, sqlite3_column_bytes(row, column++));
        };
        Memory memory;
        memory.id = text();
        memory.timestamp = {sqlite3_column_double(row, column++)};
        memory.appName = text();
        memory.bundleID = text();
        memory.text = text();
        memory.filename = text();
        memory.bytes = sqlite3_column_int64(row, column++);
        memory.title = text();
        memory.link = text();
        memories.append(std::move(memory));
    });
    return memories;
}

void BareDatabase::insert(const Memory& memory)
{
    sqlite3_stmt* const statement = prepare(u"INSERT INTO memories VALUES (?,?,?,?,?,?,?,?,?)"_s);
    int position = 0;
    bindText(statement, ++position, memory.id);
    sqlite3_bind_double(statement, ++position, memory.timestamp.secondsSince1970);
    bindText(statement, ++position, memory.appName);
    bindText(statement, ++position, memory.bundleID);
    bindText(statement, ++position, memory.text);
    bindText(statement, ++position, memory.filename);
    sqlite3_bind_int64(statement, ++position, memory.bytes);
    bindText(statement, ++position, memory.title);
    bindText(statement, ++position, memory.link);
    const int result = sqlite3_step(statement);
    sqlite3_finalize(statement);
    check(result == SQLITE_DONE ? SQLITE_OK : result);
}

void BareDatabase::save(const QString& root, const Memory& memory, const QByteArray& picture)
{
    writeSynced(root + u"/Images/"_s + memory.filename, picture);
    insert(memory);
}

void BareDatabase::check(int result) const
{
    if (result != SQLITE_OK)
        throw Failure(QString::fromUtf8(sqlite3_errmsg(m_connection)));
}

void makeLibrary(const QString& root, int rows, SyntheticScreenshots& screenshots, int onLastDay)
{
    const int before = rows - onLastDay;
    const Date lastDay = SyntheticScreenshots::dayAfter(before - 1);
    const auto next = [&](int number) {
        constexpr double kDay = 86'400;
        Memory memory = screenshots.next(number);
        if (number >= before)
            memory.timestamp = lastDay + (number - before) * kDay / onLastDay;
        return memory;
    };
    {
        // Makes the folders and the tables.
        const HistoryStore made(HistoryStore::Writing{.root = root});
    }
    BareDatabase database(root + u"/history.sqlite"_s);
    database.run(u"PRAGMA synchronous=OFF"_s);
    // A log of all of it at once would be as large as the library.
    constexpr int kAtOnce = 2000;
    for (int number = 0; number < rows; ++number) {
        if (number % kAtOnce == 0)
            database.run(number == 0 ? u"BEGIN"_s : u"COMMIT; BEGIN"_s);
        database.insert(next(number));
    }
    if (rows > 0)
        database.run(u"COMMIT; PRAGMA wal_checkpoint(TRUNCATE)"_s);
}

QString keptLibrary(const QString& folder, int rows, SyntheticScreenshots& screenshots,
                    int onLastDay)
{
    QString library = folder + u"/library-%1"_s.arg(rows);
    if (onLastDay > 0)
        library += u"-with-a-day-of-%1"_s.arg(onLastDay);
    if (!QFile::exists(library + u"/history.sqlite"_s)) {
        // One that was cut short must not be found as a whole one.
        const QString half = library + u".half"_s;
        QDir(half).removeRecursively();
        makeLibrary(half, rows, screenshots, onLastDay);
        QDir().rename(half, library);
    }
    return library;
}

void copyLibrary(const QString& from, const QString& to)
{
    QDir(to).removeRecursively();
    QDir().mkpath(to + u"/Images"_s);
    QDir().mkpath(to + u"/Pending"_s);
    if (!QFile::copy(from + u"/history.sqlite"_s, to + u"/history.sqlite"_s))
        throw FileError(u"could not be copied"_s, from);
}

} // namespace mossbank
