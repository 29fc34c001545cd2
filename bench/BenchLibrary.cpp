// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchLibrary.h"

#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchMemory.h"
#include "bench/BenchOutput.h"
#include "bench/BenchTiming.h"
#include "bench/SyntheticLibrary.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <openssl/evp.h>
#include <openssl/rand.h>

#include <array>
#include <cmath>
#include <functional>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr int kRounds = 21;
constexpr int kListing = 1501;
constexpr int kDay = 2880;
constexpr double kOnMost = 0.9;
constexpr double kOnFew = 0.001;
constexpr qsizetype kKilobyte = 1024;

const QString kColumns =
    u"id, timestamp, app_name, bundle_id, text, filename, bytes, title, link"_s;

template <typename Times>
void print(const char* what, const Times& times)
{
    printTimes({{u"bench"_s, u"library"_s}, {u"what"_s, QString::fromUtf8(what)}}, times);
}

/// The times of one that has no plain form to set beside it.
std::vector<double> timesOf(const std::function<void(int)>& work)
{
    std::vector<double> times;
    for (int round = 0; round < kRounds; ++round)
        times.push_back(milliseconds([&] { work(round); }));
    return times;
}

Calendar utc()
{
    return {QTimeZone::utc(), QLocale::c()};
}

void printMemory(const char* what)
{
    printFigures({
        {u"bench"_s, u"library"_s},
        {u"what"_s, QString::fromUtf8(what)},
        {u"resident_mb"_s, rounded(residentMegabytes("VmRSS"))},
        {u"highest_mb"_s, rounded(residentMegabytes("VmHWM"))},
    });
}

void measureSearches(HistoryStore& store, const QString& database,
                     const SyntheticScreenshots& screenshots, int rows)
{
    BareDatabase bare(database);
    const QString common = screenshots.wordOn(kOnMost);
    const QString rare = screenshots.wordOn(kOnFew);
    const auto fetch = [&](const QString& word) {
        return [&store, word](int) {
            (void)store.fetch({.query = word, .limit = kListing, .withText = true}).result();
        };
    };
    const auto fetchPlainly = [&](const QString& word) {
        return [&bare, word](int) {
            bare.read(
                u"SELECT %1 FROM memories WHERE rowid IN (SELECT rowid FROM memory_search "
                "WHERE memory_search MATCH ?) ORDER BY timestamp DESC, rowid DESC LIMIT %2"_s.arg(
                    kColumns, QString::number(kListing)),
                {u"\"%1\"*"_s.arg(word)});
        };
    };
    constexpr int kFew = 5;
    print("fetch of a word on most, against the query without the hint",
          sideBySide(kFew, fetch(common), fetchPlainly(common)));
    print("fetch of a word on 0.1 %, against the query without the hint",
          sideBySide(kRounds, fetch(rare), fetchPlainly(rare)));

    const auto newest = [&](int) {
        (void)store.fetch({.limit = kListing, .withText = true}).result();
    };
    const auto newestPlainly = [&](int) {
        bare.read(u"SELECT %1 FROM memories ORDER BY timestamp DESC, rowid DESC LIMIT %2"_s.arg(
                      kColumns, QString::number(kListing)),
                  {});
    };
    print("the newest 1,501, against the bare query", sideBySide(kRounds, newest, newestPlainly));

    constexpr double kSecondsOfADay = 86'400;
    const double last =
        SyntheticScreenshots::kFirstTime + rows * SyntheticScreenshots::kSecondsBetween;
    const Date middle = {(SyntheticScreenshots::kFirstTime + last) / 2};
    const auto day = [&](int) {
        (void)store.fetch({.day = middle, .limit = kDay, .withText = true}).result();
    };
    const double start = std::floor(middle.secondsSince1970 / kSecondsOfADay) * kSecondsOfADay;
    const auto dayPlainly = [&](int) {
        bare.read(u"SELECT %1 FROM memories WHERE timestamp >= %2 AND timestamp < %3 ORDER BY "
                  "timestamp DESC, rowid DESC LIMIT %4"_s.arg(
                      kColumns, QString::number(start, 'f', 0),
                      QString::number(start + kSecondsOfADay, 'f', 0), QString::number(kDay)),
                  {});
    };
    print("a day of 2,880, against the bare query", sideBySide(kRounds, day, dayPlainly));

    const auto counts = [&](const QString& typed) {
        return [&store, typed](int) {
            (void)store.dayCounts({.query = typed}).result();
        };
    };
    const auto countsPlainly = [&](const QString& typed) {
        return [&bare, typed](int) {
            bare.read(u"SELECT timestamp FROM memories WHERE rowid IN (SELECT rowid FROM "
                      "memory_search WHERE memory_search MATCH ?) ORDER BY timestamp"_s,
                      {u"\"%1\"*"_s.arg(typed)});
        };
    };
    print("dayCounts of a word on most, against the query without the hint",
          sideBySide(kFew, counts(common), countsPlainly(common)));
    // What has been typed of a longer word, in the pause after its third letter.
    constexpr qsizetype kLetters = 8;
    constexpr qsizetype kTyped = 3;
    const QString most = screenshots.wordOn(kOnMost, kLetters).first(kTyped);
    const QString few = screenshots.wordOn(kOnFew, kLetters).first(kTyped);
    print(
        "dayCounts of three letters that begin a word on most, against the query without the hint",
        sideBySide(kFew, counts(most), countsPlainly(most)));
    print(
        "dayCounts of three letters that begin a word on 0.1 %, against the query without the hint",
        sideBySide(kFew, counts(few), countsPlainly(few)));

    constexpr std::array kParts = {0.001, 0.01, 0.1, 0.5};
    QStringList question;
    for (const double part : kParts)
        question.append(screenshots.wordOn(part));
    const auto candidates = [&](int) {
        (void)store.candidates({.question = question.join(u' '), .limit = 200}).result();
    };
    const QString expression =
        HistoryStore::questionExpression(question.join(u' ')).value_or(QString());
    const auto candidatesPlainly = [&](int) {
        bare.read(u"SELECT %1 FROM memories m, (SELECT rowid, bm25(memory_search, 0.0, 1.0, 8.0, "
                  "4.0, 1.0) AS rank FROM memory_search WHERE memory_search MATCH ?) s WHERE "
                  "s.rowid = m.rowid ORDER BY s.rank LIMIT 200"_s.arg(kColumns),
                  {expression});
    };
    print("candidates of a question of four words, against the bare query",
          sideBySide(kFew, candidates, candidatesPlainly));
    print("stats", timesOf([&](int) { (void)store.stats().result(); }));
}

/// How soon the queue is free again when a search on it is given up.
void measureOvertaking(HistoryStore& store, const SyntheticScreenshots& screenshots)
{
    const QString question = screenshots.wordOn(kOnMost) + u' ' + screenshots.wordOn(kOnMost / 2);
    const auto untilFree = [&](auto&& start) {
        // At many moments of it: from when it has just begun to when a quick one would be over.
        constexpr int kMoments = 60;
        constexpr unsigned long kBetween = 6000;
        std::vector<double> times;
        for (int round = 0; round < kMoments; ++round) {
            auto search = start(round);
            QThread::usleep(1000 + static_cast<unsigned long>(round) * kBetween);
            times.push_back(milliseconds([&] {
                search.cancel();
                (void)store.memories({u"none"_s}).result();
            }));
        }
        constexpr double kLongest = 1;
        return quantile(times, kLongest);
    };
    const auto printLongest = [](const char* what, double longest) {
        printFigures({{u"bench"_s, u"library"_s},
                      {u"what"_s, QString::fromUtf8(what)},
                      {u"longest_ms"_s, rounded(longest)}});
    };
    printLongest("free after candidates are given up", untilFree([&](int) {
                     return store.candidates({.question = question, .limit = 200});
                 }));
    printLongest("free after counting by day is given up", untilFree([&](int) {
                     return store.dayCounts({.query = screenshots.wordOn(kOnMost)});
                 }));
    // All that begins with one letter is brought together before the first match is known.
    constexpr int kLetters = 26;
    printLongest("free after a list for one letter is given up", untilFree([&](int round) {
                     return store.fetch({.query = QChar(u'a' + round % kLetters),
                                         .limit = 86'400,
                                         .withText = true});
                 }));
}

void measureChanges(const QString& library, const QString& folder,
                    SyntheticScreenshots& screenshots, int rows)
{
    const QString root = folder + u"/changed"_s;
    const QString baseline = folder + u"/baseline"_s;
    copyLibrary(library, root);
    copyLibrary(library, baseline);
    const ImageVault vault(SymmetricKey::random());
    HistoryStore store(HistoryStore::Writing{.root = root, .vault = vault, .calendar = utc});
    constexpr int kSaves = 100;
    {
        BareDatabase bare(baseline + u"/history.sqlite"_s);
        const QByteArray picture = screenshots.noise(SyntheticScreenshots::kPictureBytes);
        QList<Memory> memories;
        for (int round = 0; round < kSaves; ++round)
            memories.append(screenshots.next(rows + round));
        const auto save = [&](int round) {
            store.save(memories.at(round), picture).waitForFinished();
        };
        const auto saveBarely = [&](int round) {
            bare.save(baseline, memories.at(round), picture);
        };
        print("save, sealed, against the bytes written and the bare INSERT",
              sideBySide(kSaves, save, saveBarely));
    }
    if (rows > kRounds) {
        const int step = rows / kRounds;
        print(store.purgesDeletedTerms() ? "delete(id:), words purged in place"
                                         : "delete(id:), index rebuilt",
              timesOf([&](int round) {
                  store.deleteMemory(u"%1"_s.arg(round * step, 36, 10, QChar(u'0')))
                      .waitForFinished();
              }));
    }
    QDir(root).removeRecursively();
    QDir(baseline).removeRecursively();
}

/// AES-256-GCM over bytes as OpenSSL does it, into memory that is there.
class BareCipher {
public:
    explicit BareCipher(const SymmetricKey& key)
        : m_key(key)
    {
    }
    ~BareCipher() { EVP_CIPHER_CTX_free(m_context); }
    Q_DISABLE_COPY_MOVE(BareCipher)

    void seal(const QByteArray& plain, QByteArray& sealed)
    {
        int length = 0;
        const auto* in = reinterpret_cast<const unsigned char*>(plain.constData());
        auto* out = reinterpret_cast<unsigned char*>(sealed.data());
        RAND_bytes(m_nonce.data(), static_cast<int>(m_nonce.size()));
        EVP_EncryptInit_ex(m_context, EVP_aes_256_gcm(), nullptr, m_key.bytes().data(),
                           m_nonce.data());
        EVP_EncryptUpdate(m_context, out, &length, in, static_cast<int>(plain.size()));
        EVP_EncryptFinal_ex(m_context, out + length, &length);
        EVP_CIPHER_CTX_ctrl(m_context, EVP_CTRL_GCM_GET_TAG, static_cast<int>(m_tag.size()),
                            m_tag.data());
    }

    bool open(const QByteArray& sealed, QByteArray& plain)
    {
        int length = 0;
        const auto* in = reinterpret_cast<const unsigned char*>(sealed.constData());
        auto* out = reinterpret_cast<unsigned char*>(plain.data());
        EVP_DecryptInit_ex(m_context, EVP_aes_256_gcm(), nullptr, m_key.bytes().data(),
                           m_nonce.data());
        EVP_DecryptUpdate(m_context, out, &length, in, static_cast<int>(sealed.size()));
        EVP_CIPHER_CTX_ctrl(m_context, EVP_CTRL_GCM_SET_TAG, static_cast<int>(m_tag.size()),
                            m_tag.data());
        return EVP_DecryptFinal_ex(m_context, out + length, &length) == 1;
    }

private:
    SymmetricKey m_key;
    EVP_CIPHER_CTX* m_context = EVP_CIPHER_CTX_new();
    std::array<unsigned char, 12> m_nonce = {};
    std::array<unsigned char, 16> m_tag = {};
};

void measureSealing(SyntheticScreenshots& screenshots)
{
    constexpr int kManyRounds = 400;
    const SymmetricKey key = SymmetricKey::random();
    const ImageVault vault(key);
    BareCipher bare(key);
    const QByteArray picture = screenshots.noise(SyntheticScreenshots::kPictureBytes);
    QByteArray out(picture.size(), '\0');
    QByteArray back(picture.size(), '\0');
    print("sealing 300 KB, against OpenSSL itself",
          sideBySide(
              kManyRounds, [&](int) { (void)vault.sealed(picture); },
              [&](int) { bare.seal(picture, out); }));
    const QByteArray sealed = vault.sealed(picture);
    bool isWhole = true;
    const PairedTimes opening = sideBySide(
        kManyRounds, [&](int) { isWhole &= vault.opened(sealed) == picture; },
        [&](int) { isWhole &= bare.open(out, back) && back == picture; });
    if (!isWhole)
        throw Failure(u"What was sealed did not open."_s);
    print("opening 300 KB, against OpenSSL itself", opening);
}

void measure(const QString& folder, int rows)
{
    SyntheticScreenshots screenshots;
    const QString library = keptLibrary(folder, rows, screenshots);
    printMemory("memory at the start");
    {
        HistoryStore store(HistoryStore::Writing{.root = library, .calendar = utc});
        measureSearches(store, library + u"/history.sqlite"_s, screenshots, rows);
        measureOvertaking(store, screenshots);
    }
    measureChanges(library, folder, screenshots, rows);
    measureSealing(screenshots);
    printMemory("memory after all of it");
}

} // namespace

int benchLibrary(const QStringList& arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption rowsOption(u"rows"_s, {}, u"N"_s);
    const QCommandLineOption keepOption(u"keep"_s, {}, u"DIR"_s);
    parser.addOptions({rowsOption, keepOption});
    bool isNumber = false;
    const bool isParsed = parser.parse(QStringList{u"library"_s} + arguments);
    const int rows = parser.value(rowsOption).toInt(&isNumber);
    if (!isParsed || !parser.positionalArguments().isEmpty() || !isNumber || rows < 0)
        return benchWrongUse("library --rows N [--keep DIR]");
    try {
        if (parser.isSet(keepOption)) {
            QDir().mkpath(parser.value(keepOption));
            measure(parser.value(keepOption), rows);
        } else {
            const QTemporaryDir folder;
            measure(folder.path(), rows);
        }
    } catch (const Failure& failure) {
        return benchFailed(failure.message());
    }
    return 0;
}

} // namespace mossbank
