// SPDX-License-Identifier: Apache-2.0
//
// The real program on a real screen, whose user leaves and comes back. Most of its time is waited
// for something that must not come: several programs, each on a desktop of its own, wait at once.
#include "tests/Desktop/AwayDesk.h"

#include <QTest>

#include <algorithm>
#include <csignal>
#include <memory>
#include <vector>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

const QString kBegins = u"Waiting for your next screen"_s;
const QString kPaused = u"Paused when "_s;
const QString kBlank = u"Skipped while the display is asleep"_s;

/// Milliseconds after which the program knows what has taken place, and a pass that was on its way
/// has ended.
constexpr int kHeard = 700;
/// It waits a second and a half before it comes back.
constexpr int kLongEnough = 2200;

/// Two ways of being away, in one of the orders in which they begin and end.
struct Sequence {
    QString first;
    QString second;
    QString firstEnd;
    QString lastEnd;

    QString name() const { return QStringList{first, second, firstEnd, lastEnd}.join(u' '); }
};

/// All orders of these two.
QList<Sequence> sequencesOf(const QString& one, const QString& other)
{
    QList<Sequence> all;
    for (const auto& [first, second] : {std::pair{one, other}, std::pair{other, one}}) {
        all.append({first, second, u'-' + first, u'-' + second});
        all.append({first, second, u'-' + second, u'-' + first});
    }
    return all;
}

} // namespace

class AwayTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        useTestApplications();
        qunsetenv("XDG_SESSION_ID");
    }

    void cleanup()
    {
        while (!m_desks.empty())
            m_desks.pop_back();
    }

    void recordingStopsAndComesBack()
    {
        const QString locked = u"Paused when the screen locked"_s;
        const std::vector<std::pair<QString, QString>> events = {
            {u"lock"_s, locked},
            {u"saver"_s, locked},
            {u"sleep"_s, u"Paused when this computer went to sleep"_s},
            {u"session"_s, u"Paused when your session became inactive"_s}};
        startRecording(events.size());
        for (std::size_t place = 0; place < events.size(); ++place)
            QVERIFY(m_desks.at(place)->takePlace(events[place].first));
        for (std::size_t place = 0; place < events.size(); ++place)
            waitFor(place, events[place].second);
        QTest::qWait(kHeard);
        noteKept();
        QTest::qWait(kLongEnough);
        nothingMoreIsKept();
        for (std::size_t place = 0; place < events.size(); ++place)
            QVERIFY(m_desks.at(place)->takePlace(u'-' + events[place].first));
        for (std::size_t place = 0; place < events.size(); ++place) {
            waitFor(place, kBegins, 2);
            QVERIFY(QTest::qWaitFor(
                [&] { return m_desks.at(place)->kept().rows > m_kept.at(place).rows; }, kPatience));
        }
        stopAll();
    }

    void whoDoesNotWantItBackStaysUnrecorded()
    {
        const QList<QStringList> steps = {{u"lock"_s, u"-lock"_s},
                                          {u"saver"_s, u"-saver"_s},
                                          {u"sleep"_s, u"-sleep"_s},
                                          {u"session"_s, u"-session"_s},
                                          {u"sleep"_s, u"lock"_s, u"-sleep"_s, u"-lock"_s},
                                          {u"lock"_s, u"blank"_s, u"-lock"_s, u"-blank"_s}};
        startRecording(static_cast<std::size_t>(steps.size()),
                       {{u"resumesAfterAway"_s, u"false"_s}});
        for (qsizetype place = 0; place < steps.size(); ++place) {
            for (const QString& step : steps[place].first(steps[place].size() / 2))
                QVERIFY(m_desks.at(static_cast<std::size_t>(place))->takePlace(step));
        }
        for (std::size_t place = 0; place < m_desks.size(); ++place)
            waitFor(place, kPaused);
        QTest::qWait(kHeard);
        noteKept();
        for (qsizetype place = 0; place < steps.size(); ++place) {
            for (const QString& step : steps[place].last(steps[place].size() / 2))
                QVERIFY(m_desks.at(static_cast<std::size_t>(place))->takePlace(step));
        }
        QTest::qWait(3000);
        for (std::size_t place = 0; place < m_desks.size(); ++place)
            QCOMPARE(m_desks.at(place)->mossbank().terminal().count(kBegins), 1);
        nothingMoreIsKept();
        stopAll();
    }

    /// Each two ways of being away in every order, on as many desktops as there are orders, and
    /// one pair after the other.
    void itComesBackOnlyWhenNothingStandsAgainstIt()
    {
        const QStringList ways = {u"lock"_s, u"saver"_s, u"sleep"_s, u"session"_s, u"blank"_s};
        startRecording(4);
        int pairs = 0;
        for (qsizetype one = 0; one < ways.size(); ++one) {
            for (qsizetype other = one + 1; other < ways.size(); ++other) {
                goThrough(sequencesOf(ways[one], ways[other]), ++pairs);
                if (QTest::currentTestFailed())
                    return;
            }
        }
        QCOMPARE(pairs, 10);
        stopAll();
    }

    void aBlankedScreenIsNotRecorded()
    {
        startRecording(1);
        AwayDesk& desk = *m_desks.front();
        QVERIFY(desk.takePlace(u"blank"_s));
        waitFor(0, kBlank);
        noteKept();
        QTest::qWait(3000);
        nothingMoreIsKept();
        QVERIFY(desk.takePlace(u"-blank"_s));
        QVERIFY(QTest::qWaitFor([&] { return desk.kept().rows > m_kept.front().rows; }, kPatience));
        stopAll();
    }

    void aLockedScreenIsNotRecordedFromTheStart()
    {
        AwayDesk& desk = makeDesk();
        QVERIFY2(desk.problem().isEmpty(), qPrintable(desk.problem()));
        QVERIFY(desk.takePlace(u"saver"_s));
        QVERIFY(desk.startMossbank());
        waitFor(0, u"Paused when the screen locked"_s);
        QCOMPARE(desk.kept(), AwayDesk::Kept());
        QVERIFY(desk.takePlace(u"-saver"_s));
        waitFor(0, u"Saved at "_s);
        stopAll();
    }

    void aLogindThatGoesAndComesBackStopsItAtTheNextLock()
    {
        startRecording(1);
        AwayDesk& desk = *m_desks.front();
        desk.endLogind();
        QTest::qWait(2000);
        const QString terminal = desk.mossbank().terminal();
        QVERIFY2(!terminal.contains(u"Paused"_s), qPrintable(terminal));
        QVERIFY(desk.startLogind());
        QVERIFY(desk.takePlace(u"lock"_s));
        waitFor(0, u"Paused when the screen locked"_s);
        QVERIFY(desk.takePlace(u"-lock"_s));
        waitFor(0, kBegins, 2);
        stopAll();
    }

    /// On one desktop there is nobody who could tell, on the other one all of them go.
    void whatCannotBeToldIsSaidOnceAndStopsNothing()
    {
        AwayDesk& without = makeDesk();
        QVERIFY2(without.problem().isEmpty(), qPrintable(without.problem()));
        without.endLogind();
        without.endScreenSaver();
        QVERIFY(without.startMossbank());
        startRecording(1);
        waitFor(0, u"Saved at "_s);
        AwayDesk& left = *m_desks.back();
        left.endBuses();
        noteKept();
        for (std::size_t place = 0; place < m_desks.size(); ++place) {
            for (const QString& sentence : unknown())
                waitFor(place, sentence);
        }
        // It looks again every ten seconds.
        QTest::qWait(12'000);
        for (const auto& desk : m_desks) {
            // With another reason it is told again: a bus that is silent before it has gone.
            QStringList lines = desk->mossbank().terminal().split(u'\n');
            lines.removeIf([](const QString& line) {
                return std::ranges::none_of(
                    unknown(), [&](const QString& sentence) { return line.contains(sentence); });
            });
            QVERIFY2(lines.removeDuplicates() == 0, qPrintable(desk->mossbank().terminal()));
        }
        QVERIFY(without.kept().rows > m_kept.front().rows);
        QVERIFY(left.kept().rows > m_kept.back().rows);
        stopAll();
    }

private:
    static constexpr int kPatience = 20'000;

    static QStringList unknown()
    {
        return {u"Mossbank cannot tell when the screen is locked"_s,
                u"Mossbank cannot tell when this computer goes to sleep"_s,
                u"So Mossbank may not notice that a password is typed"_s};
    }

    AwayDesk& makeDesk()
    {
        m_desks.push_back(std::make_unique<AwayDesk>());
        return *m_desks.back();
    }

    /// So many more, on which the program has begun to record. Fails the case when it cannot.
    void startRecording(std::size_t count, const QMap<QString, QString>& choices = {})
    {
        const std::size_t before = m_desks.size();
        for (std::size_t place = 0; place < count; ++place) {
            AwayDesk& desk = makeDesk();
            QVERIFY2(desk.problem().isEmpty(), qPrintable(desk.problem()));
            QVERIFY(desk.startMossbank(choices));
        }
        for (std::size_t place = before; place < m_desks.size(); ++place)
            waitFor(place, u"Saved at "_s);
    }

    /// The `round`th time that the user leaves: begun, it comes back with the last end alone.
    void goThrough(const QList<Sequence>& sequences, int round)
    {
        const auto each = [&](QString Sequence::*step) {
            for (std::size_t place = 0; place < m_desks.size(); ++place)
                QVERIFY(
                    m_desks.at(place)->takePlace(sequences[static_cast<qsizetype>(place)].*step));
        };
        std::vector<qsizetype> skips;
        for (const auto& desk : m_desks)
            skips.push_back(desk->mossbank().terminal().count(kBlank));
        each(&Sequence::first);
        for (std::size_t place = 0; place < m_desks.size(); ++place) {
            // It does not stop for a dark screen, it only skips it.
            if (sequences[static_cast<qsizetype>(place)].first == u"blank")
                waitFor(place, kBlank, static_cast<int>(skips[place]) + 1);
            else
                waitFor(place, kPaused, round);
        }
        each(&Sequence::second);
        for (std::size_t place = 0; place < m_desks.size(); ++place)
            waitFor(place, kPaused, round);
        QTest::qWait(kHeard);
        noteKept();
        each(&Sequence::firstEnd);
        QTest::qWait(kLongEnough);
        nothingMoreIsKept();
        for (std::size_t place = 0; place < m_desks.size(); ++place) {
            const QString name = sequences[static_cast<qsizetype>(place)].name();
            const QString terminal = m_desks.at(place)->mossbank().terminal();
            QVERIFY2(terminal.count(kBegins) == round, qPrintable(name + u'\n' + terminal));
        }
        each(&Sequence::lastEnd);
        for (std::size_t place = 0; place < m_desks.size(); ++place)
            waitFor(place, kBegins, round + 1);
    }

    void waitFor(std::size_t place, const QString& line, int times = 1)
    {
        RunningMossbank& mossbank = m_desks.at(place)->mossbank();
        QVERIFY2(mossbank.waitFor(line, times), qPrintable(line + u'\n' + mossbank.terminal()));
    }

    void noteKept()
    {
        m_kept.clear();
        for (const auto& desk : m_desks)
            m_kept.push_back(desk->kept());
    }

    void nothingMoreIsKept()
    {
        for (std::size_t place = 0; place < m_desks.size(); ++place) {
            const AwayDesk::Kept now = m_desks.at(place)->kept();
            QCOMPARE(now.pictures, m_kept.at(place).pictures);
            QCOMPARE(now.rows, m_kept.at(place).rows);
        }
    }

    void stopAll()
    {
        for (const auto& desk : m_desks)
            QCOMPARE(desk->mossbank().stop(SIGINT), 0);
    }

    std::vector<std::unique_ptr<AwayDesk>> m_desks;
    std::vector<AwayDesk::Kept> m_kept;
};

QTEST_GUILESS_MAIN(AwayTest)
#include "AwayTest.moc"
