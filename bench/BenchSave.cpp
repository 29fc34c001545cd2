// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchSave.h"

#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchOutput.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <vector>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr int kSaves = 200;
constexpr qsizetype kPictureBytes = 300 * 1024;
constexpr qsizetype kTextBytes = 2 * 1024;
constexpr double kSecondsBetween = 30;
constexpr double kStart = 1'700'000'000;

/// Text as it is read from screens: few words again and again, many words seldom.
class Words {
public:
    Words()
    {
        constexpr int kVocabulary = 20'000;
        for (int number = 0; number < kVocabulary; ++number) {
            QString word;
            const int letters = m_random.bounded(2, 12);
            for (int letter = 0; letter < letters; ++letter)
                word += QChar(static_cast<char16_t>(u'a' + m_random.bounded(26)));
            m_vocabulary.append(word);
        }
    }

    QString text(qsizetype length)
    {
        constexpr double kSkew = 3;
        QString text;
        while (text.size() < length) {
            const double place = std::pow(m_random.generateDouble(), kSkew);
            text += m_vocabulary.at(static_cast<qsizetype>(
                        place * static_cast<double>(m_vocabulary.size() - 1))) +
                    u' ';
        }
        return text.left(length);
    }

    QByteArray noise(qsizetype size)
    {
        QByteArray bytes(size, Qt::Uninitialized);
        for (char& byte : bytes)
            byte = static_cast<char>(m_random.bounded(256));
        return bytes;
    }

private:
    QRandomGenerator m_random{20'260'301};
    QStringList m_vocabulary;
};

Memory screenshot(int number, Words& words)
{
    static const std::array kApps = {u"Editor"_s, u"Browser"_s, u"Terminal"_s, u"Mail"_s};
    Memory memory;
    memory.id = u"%1"_s.arg(number, 12, 10, QChar(u'0'));
    memory.timestamp = {kStart + number * kSecondsBetween};
    memory.appName = kApps.at(static_cast<std::size_t>(number) / 20 % kApps.size());
    memory.bundleID = u"org.example."_s + memory.appName.toLower();
    memory.text = words.text(kTextBytes);
    memory.filename = memory.id + u".jpg"_s;
    memory.bytes = kPictureBytes;
    memory.title = words.text(40);
    memory.link = u"https://example.org/"_s + memory.id;
    return memory;
}

/// A database with nothing between it and SQLite but what an INSERT needs.
class BareDatabase {
public:
    explicit BareDatabase(const QString& path)
    {
        check(sqlite3_open(QFile::encodeName(path).constData(), &m_connection));
    }
    ~BareDatabase() { sqlite3_close(m_connection); }
    Q_DISABLE_COPY_MOVE(BareDatabase)

    void run(const char* sql) { check(sqlite3_exec(m_connection, sql, nullptr, nullptr, nullptr)); }

    void insert(const Memory& memory)
    {
        sqlite3_stmt* statement = nullptr;
        check(sqlite3_prepare_v2(m_connection, "INSERT INTO memories VALUES (?,?,?,?,?,?,?,?,?)",
                                 -1, &statement, nullptr));
        bindText(statement, 1, memory.id);
        sqlite3_bind_double(statement, 2, memory.timestamp.secondsSince1970);
        bindText(statement, 3, memory.appName);
        bindText(statement, 4, memory.bundleID);
        bindText(statement, 5, memory.text);
        bindText(statement, 6, memory.filename);
        sqlite3_bind_int64(statement, 7, memory.bytes);
        bindText(statement, 8, memory.title);
        bindText(statement, 9, memory.link);
        const int result = sqlite3_step(statement);
        sqlite3_finalize(statement);
        check(result == SQLITE_DONE ? SQLITE_OK : result);
    }

private:
    static void bindText(sqlite3_stmt* statement, int position, const QString& text)
    {
        const QByteArray utf8 = text.toUtf8();
        sqlite3_bind_text(statement, position, utf8.constData(), static_cast<int>(utf8.size()),
                          SQLITE_TRANSIENT);
    }

    void check(int result) const
    {
        if (result != SQLITE_OK)
            throw Failure(QString::fromUtf8(sqlite3_errmsg(m_connection)));
    }

    sqlite3* m_connection = nullptr;
};

void fill(const QString& root, int rows)
{
    {
        // Makes the folders and the tables.
        const HistoryStore made(HistoryStore::Writing{.root = root});
    }
    Words words;
    BareDatabase database(root + u"/history.sqlite"_s);
    database.run("BEGIN");
    for (int number = 0; number < rows; ++number)
        database.insert(screenshot(number, words));
    database.run("COMMIT");
    database.run("PRAGMA wal_checkpoint(TRUNCATE)");
}

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

template <typename Work>
double milliseconds(Work&& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

double quantile(std::vector<double> times, double part)
{
    std::sort(times.begin(), times.end());
    return times.at(static_cast<std::size_t>(part * static_cast<double>(times.size() - 1)));
}

double rounded(double value)
{
    return std::round(value * 1000) / 1000;
}

void measure(const QString& folder, int rows)
{
    const QString root = folder + u"/library"_s;
    const QString baseline = folder + u"/baseline"_s;
    fill(root, rows);
    fill(baseline, rows);

    HistoryStore store(HistoryStore::Writing{.root = root});
    BareDatabase bare(baseline + u"/history.sqlite"_s);
    std::vector<double> saves;
    std::vector<double> bares;
    Words words;
    const QByteArray picture = words.noise(kPictureBytes);
    for (int round = 0; round < kSaves; ++round) {
        const Memory memory = screenshot(rows + round, words);
        const auto saving = [&] {
            store.save(memory, picture).waitForFinished();
        };
        const auto barely = [&] {
            writeSynced(baseline + u"/Images/"_s + memory.filename, picture);
            bare.insert(memory);
        };
        // Each goes first in half of the rounds: what one leaves to the disk, the other waits for.
        if (round % 2 == 0) {
            saves.push_back(milliseconds(saving));
            bares.push_back(milliseconds(barely));
        } else {
            bares.push_back(milliseconds(barely));
            saves.push_back(milliseconds(saving));
        }
    }
    constexpr double kMedian = 0.5;
    constexpr double kHigh = 0.99;
    printFigures({
        {u"bench"_s, u"save"_s},
        {u"rows"_s, rows},
        {u"saves"_s, kSaves},
        {u"median_ms"_s, rounded(quantile(saves, kMedian))},
        {u"p99_ms"_s, rounded(quantile(saves, kHigh))},
        {u"baseline_median_ms"_s, rounded(quantile(bares, kMedian))},
        {u"baseline_p99_ms"_s, rounded(quantile(bares, kHigh))},
        {u"ratio"_s, rounded(quantile(saves, kMedian) / quantile(bares, kMedian))},
    });
}

} // namespace

int benchSave(const QStringList& arguments)
{
    bool isNumber = false;
    const int rows = arguments.value(1).toInt(&isNumber);
    if (arguments.size() != 2 || arguments.first() != u"--rows"_s || !isNumber || rows < 0) {
        return benchWrongUse("save --rows N");
    }
    try {
        const QTemporaryDir folder;
        measure(folder.path(), rows);
    } catch (const Failure& failure) {
        return benchFailed(failure.message());
    }
    return 0;
}

} // namespace mossbank
