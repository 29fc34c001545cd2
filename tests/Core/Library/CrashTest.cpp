// SPDX-License-Identifier: Apache-2.0
//
// A process at work on a library is killed over and over: at random moments, and at each call in
// turn with which it changes a file.
#include "tests/Core/Library/Promises.h"
#include "tests/Core/RandomRounds.h"

#include <QProcess>

#include <unistd.h>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr int kRounds = 300;
constexpr int kRoundsOfALibrary = 25;
constexpr int kPatience = 30'000;

/// What the process said before it was killed.
struct Said {
    bool wasReady = false;
    QSet<int> saved;
    /// The save under way; 0 for none.
    int saving = 0;
    QSet<int> removed;
    /// The removal under way.
    QSet<int> removing;
    QString failure;
    int last = 0;
};

Said parse(const QByteArray& output)
{
    Said said;
    for (const QByteArray& line : output.split('\n')) {
        const QString text = QString::fromUtf8(line);
        const QStringList words = text.split(u' ');
        const QString& first = words.first();
        if (first == u"ready") {
            said.wasReady = true;
        } else if (first == u"saving") {
            said.saving = said.last = words.at(1).toInt();
        } else if (first == u"saved") {
            said.saved.insert(std::exchange(said.saving, 0));
        } else if (first == u"removing") {
            for (const QString& number : words.mid(1))
                said.removing.insert(number.toInt());
        } else if (first == u"removed") {
            said.removed += std::exchange(said.removing, {});
        } else if (first == u"failed:") {
            said.failure = text;
        }
    }
    return said;
}

} // namespace

class CrashTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatWasPromisedHoldsAfterEveryKill();

private:
    /// Starts the process, kills it, and hands back what it said.
    Said workAndDie(int round);
    QString afterTheKill(const Said& said);
    QString whileUnsettled(HistoryStore& store);
    QString rowsAreAsSaid(const Said& said, const QSet<int>& rows) const;
    QString finishRemoval(HistoryStore& store, const QSet<int>& lacking);

    std::unique_ptr<LibraryFolder> m_folder;
    const SymmetricKey m_key = SymmetricKey::random();
    QRandomGenerator m_random;
    QSet<int> m_rows;
    int m_next = 1;
    /// How often a kill left each of these, which tells whether the kills were worth it.
    struct {
        int markersAlone = 0;
        int partsOfPictures = 0;
        int picturesWithoutRow = 0;
        int markersTooMany = 0;
        int rowsWithoutPicture = 0;
    } m_left;
};

Said CrashTest::workAndDie(int round)
{
    enum Moment { Opening, Working, AnyTime, WhileWorking };
    const auto moment = static_cast<Moment>(round % 4);
    // Each call in its turn: opening takes some thirty of them, a save and a removal sixty.
    const int turn = round / 4;
    const int opening = moment == Opening ? 1 + turn % 40 : 0;
    const int working = moment == Working ? 1 + turn % 75 : 0;
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(
        QStringLiteral(MOSSBANK_LIBRARY_PEER),
        {m_folder->root(),
         QString::fromLatin1(QByteArray(reinterpret_cast<const char*>(m_key.bytes().data()),
                                        static_cast<qsizetype>(m_key.bytes().size()))
                                 .toHex()),
         QString::number(m_random.generate()), QString::number(m_next),
         QString::number(m_random.bounded(2)), QString::number(opening), QString::number(working)});
    process.waitForStarted(kPatience);
    QByteArray output;
    const int lines = moment == Opening ? 1 : moment == WhileWorking ? m_random.bounded(1, 9) : 0;
    for (int line = 0; line < lines; ++line) {
        while (!process.canReadLine() && process.waitForReadyRead(kPatience)) {
        }
        output += process.readLine();
    }
    constexpr int kMicroseconds = 20'000;
    if (moment != Working)
        ::usleep(static_cast<useconds_t>(m_random.bounded(kMicroseconds)));
    else
        process.waitForFinished(kPatience);
    process.kill();
    process.waitForFinished(kPatience);
    Said said = parse(output + process.readAllStandardOutput());
    m_next = std::max(m_next, said.last + 1);
    return said;
}

QString CrashTest::rowsAreAsSaid(const Said& said, const QSet<int>& rows) const
{
    const QSet<int> known = m_rows + said.saved;
    if (const QSet<int> lost = known - said.removed - said.removing - rows; !lost.isEmpty())
        return u"saved, and not there: "_s + listed(lost);
    if (const QSet<int> back = rows & said.removed; !back.isEmpty())
        return u"removed, and there: "_s + listed(back);
    QSet<int> possible = known;
    if (said.saving != 0)
        possible.insert(said.saving);
    if (const QSet<int> strange = rows - possible; !strange.isEmpty())
        return u"never saved, and there: "_s + listed(strange);
    const QSet<int> halves = said.removing & rows;
    if (!halves.isEmpty() && halves != said.removing)
        return u"half removed: "_s + listed(halves);
    return {};
}

/// Before the library is settled: whatever has no row has a marker.
QString CrashTest::whileUnsettled(HistoryStore& store)
{
    const QSet<int> rows = rowsOf(store);
    const QStringList markers = names(m_folder->pending());
    const QStringList pictures = names(m_folder->images());
    for (const QString& name : pictures) {
        const QString picture = name.section(u'.', 0, 1);
        const bool isPart = picture != name;
        const bool hasRow = !isPart && rows.contains(picture.section(u'.', 0, 0).toInt());
        if (!hasRow && !markers.contains(picture))
            return u"neither row nor marker: "_s + name;
        m_left.partsOfPictures += isPart ? 1 : 0;
        m_left.picturesWithoutRow += !isPart && !hasRow ? 1 : 0;
    }
    for (const QString& marker : markers) {
        const bool hasRow = rows.contains(marker.section(u'.', 0, 0).toInt());
        m_left.markersTooMany += hasRow ? 1 : 0;
        m_left.markersAlone += !hasRow && !pictures.contains(marker) ? 1 : 0;
    }
    return {};
}

/// Somebody who finds screenshots without their pictures removes them once more.
QString CrashTest::finishRemoval(HistoryStore& store, const QSet<int>& lacking)
{
    for (const int number : lacking) {
        m_left.rowsWithoutPicture +=
            QFile::exists(m_folder->images() + u'/' + pictureOf(number)) ? 0 : 1;
        store.deleteMemory(QString::number(number)).waitForFinished();
        m_rows.remove(number);
    }
    return lacking.isEmpty() ? QString() : brokenPromise(*m_folder, store);
}

QString CrashTest::afterTheKill(const Said& said)
{
    if (!said.failure.isEmpty())
        return said.failure;
    const auto files = filesOnDisk(*m_folder);
    if (const QStringList plain = plainPictures(files); !plain.isEmpty())
        return u"plain pictures in "_s + plain.join(u' ');
    if (const QSet<int> words = numbersOnDisk(files) & said.removed; !words.isEmpty())
        return u"removed, and words are on the disk: "_s + listed(words);

    HistoryStore store(HistoryStore::Writing{.root = m_folder->root(), .vault = ImageVault(m_key)});
    if (const QString broken = whileUnsettled(store); !broken.isEmpty())
        return broken;
    // The markers are a moment old, so the clock is put forward.
    constexpr double kMinute = 60;
    const Date now = {static_cast<double>(QDateTime::currentSecsSinceEpoch())};
    store.reconcile(0, now + kMinute).waitForFinished();
    const QSet<int> rows = rowsOf(store);
    if (const QString lie = rowsAreAsSaid(said, rows); !lie.isEmpty())
        return lie;
    if (const QString broken = brokenPromise(*m_folder, store, {.mayLackPictures = said.removing});
        !broken.isEmpty())
        return broken;
    m_rows = rows;
    return finishRemoval(store, said.removing & rows);
}

void CrashTest::whatWasPromisedHoldsAfterEveryKill()
{
    const int rounds = randomRounds(kRounds);
    m_random.seed(randomSeed());
    qsizetype saved = 0;
    qsizetype removed = 0;
    for (int round = 0; round < rounds; ++round) {
        if (round % kRoundsOfALibrary == 0) {
            m_folder = std::make_unique<LibraryFolder>();
            m_rows.clear();
        }
        const Said said = workAndDie(round);
        const QString wrong = afterTheKill(said);
        QVERIFY2(wrong.isEmpty(), qPrintable(u"round %1: %2"_s.arg(round).arg(wrong)));
        saved += said.saved.size();
        removed += said.removed.size();
    }
    qInfo("saved %lld, removed %lld; kills that left a marker alone %d, a part of a picture %d, a "
          "picture without its row %d, a marker too many %d, rows without their pictures %d",
          static_cast<long long>(saved), static_cast<long long>(removed), m_left.markersAlone,
          m_left.partsOfPictures, m_left.picturesWithoutRow, m_left.markersTooMany,
          m_left.rowsWithoutPicture);
    if (rounds < kRounds)
        return;
    // Kills that always hit between two pieces of work would prove nothing.
    QVERIFY(saved > rounds / 3);
    QVERIFY(removed > 0);
    QVERIFY(m_left.markersAlone > 0);
    QVERIFY(m_left.partsOfPictures > 0);
    QVERIFY(m_left.picturesWithoutRow > 0);
    QVERIFY(m_left.markersTooMany > 0);
    QVERIFY(m_left.rowsWithoutPicture > 0);
}

QTEST_GUILESS_MAIN(CrashTest)
#include "CrashTest.moc"
