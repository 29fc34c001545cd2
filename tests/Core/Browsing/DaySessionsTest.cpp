// SPDX-License-Identifier: Apache-2.0
//
// Where a day is cut into stretches of work, and what they are made of.
#include "MossbankCore/Browsing/DaySessions.h"

#include <QTest>

#include <algorithm>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr double kGap = 600;
constexpr double kLongest = 3600;
constexpr qsizetype kKeywords = 4;

Memory memory(double seconds)
{
    return {.id = QString::number(seconds),
            .timestamp = {1'780'000'000 + seconds},
            .appName = u"Editor"_s,
            .bundleID = u"org.example.Editor"_s,
            .text = {},
            .filename = {},
            .bytes = 0,
            .title = {},
            .link = {}};
}

QList<Memory> memories(const QList<double>& seconds)
{
    QList<Memory> all;
    for (const double second : seconds)
        all.append(memory(second));
    return all;
}

/// One of so many, each so many seconds after the one before.
QList<Memory> evenly(int count, double apart)
{
    QList<Memory> all;
    for (int number = 0; number < count; ++number)
        all.append(memory(number * apart));
    return all;
}

QList<Session> sessionsOf(const QList<Memory>& all)
{
    return DaySessions::sessions(all, kGap, kLongest, kKeywords);
}

/// "0-600 1200-1200+": from the first to the last, and a sign for those that continue.
QString written(const QList<Session>& sessions)
{
    QStringList parts;
    for (const Session& session : sessions)
        parts.append(session.memories.first().id + u'-' + session.memories.last().id +
                     (session.continues ? u"+"_s : QString()));
    return parts.join(u' ');
}

} // namespace

class DaySessionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPauseAndALengthPartThem_data()
    {
        QTest::addColumn<QList<double>>("seconds");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QList<double>& seconds,
                            const QString& expected) {
            QTest::newRow(name) << seconds << expected;
        };
        row("nothing", {}, {});
        row("one", {5}, u"5-5"_s);
        row("a pause as long as may be", {0, 600}, u"0-600"_s);
        row("longer than that", {0, 600.5}, u"0-0 600.5-600.5"_s);
        row("a pause after the last, not the first", {0, 500, 1000, 1500}, u"0-1500"_s);
        row("as long as may be", {0, 600, 1200, 1800, 2400, 3000, 3600}, u"0-3600"_s);
        row("longer than may be", {0, 600, 1200, 1800, 2400, 3000, 3600, 3601},
            u"0-3600 3601-3601+"_s);
        row("longer, and a pause", {0, 600, 1200, 1800, 2400, 3000, 3600, 4201},
            u"0-3600 4201-4201"_s);
        row("in no order", {1200, 0, 600.5}, u"0-0 600.5-1200"_s);
    }
    void aPauseAndALengthPartThem()
    {
        QFETCH(QList<double>, seconds);
        QFETCH(QString, expected);
        QCOMPARE(written(sessionsOf(memories(seconds))), expected);
    }

    void twoHoursWithoutAPauseAreParts()
    {
        const QList<Session> sessions = sessionsOf(evenly(121, 60));
        QCOMPARE(written(sessions), u"0-3600 3660-7200+"_s);
        QCOMPARE(sessions[0].duration(), 3600.0);
        QCOMPARE(sessions[0].count(), 61);
    }

    void aStretchHasItsOwnScreenshotsOldestFirst()
    {
        QList<Memory> all = memories({100, 0, 50, 0});
        all[1].id = u"first of two"_s;
        all[3].id = u"second of two"_s;
        const QList<Session> sessions = sessionsOf(all);
        QCOMPARE(sessions.size(), 1);
        const Session& session = sessions.first();
        QCOMPARE(session.memories, (QList<Memory>{all[1], all[3], all[2], all[0]}));
        QCOMPARE(session.id, u"first of two"_s);
        QCOMPARE(session.start, all[1].timestamp);
        QCOMPARE(session.end, all[0].timestamp);
        QVERIFY(!session.continues);
        QVERIFY(session == sessionsOf(all).first());
    }

    void theLimitsAreTheCallers()
    {
        const QList<Memory> all = evenly(5, 10);
        QCOMPARE(written(DaySessions::sessions(all, 9, 100, 4)), u"0-0 10-10 20-20 30-30 40-40"_s);
        QCOMPARE(written(DaySessions::sessions(all, 10, 20, 4)), u"0-20 30-40+"_s);
    }

    void applicationsStandByTheirNumber()
    {
        QList<Memory> all = evenly(6, 10);
        const auto set = [&](qsizetype at, const QString& bundleID, const QString& name) {
            all[at].bundleID = bundleID;
            all[at].appName = name;
        };
        set(0, u"b"_s, u"Browser"_s);
        set(1, u"e"_s, u"Editor"_s);
        set(2, u"e"_s, u"Editor"_s);
        set(3, u"t"_s, u"Browser"_s);
        set(4, u"e"_s, u"Editor 2"_s);
        set(5, u"a"_s, u"Archive"_s);
        const QList<SessionApp> expected = {{u"Editor 2"_s, u"e"_s, 3},
                                            {u"Archive"_s, u"a"_s, 1},
                                            {u"Browser"_s, u"b"_s, 1},
                                            {u"Browser"_s, u"t"_s, 1}};
        QCOMPARE(sessionsOf(all).first().apps, expected);
        QCOMPARE(expected.first().id(), u"e"_s);
    }

    void titlesStandByTheirNumber()
    {
        QList<Memory> all = evenly(12, 10);
        const QStringList titles = {u"b"_s, u"a"_s, u"c"_s, u"c"_s, u"e"_s,    QString(),
                                    u"d"_s, u"B"_s, u"c"_s, u"d"_s, QString(), QString()};
        for (qsizetype at = 0; at < all.size(); ++at)
            all[at].title = titles[at];
        QCOMPARE(sessionsOf(all).first().titles, (QStringList{u"c"_s, u"d"_s, u"B"_s, u"a"_s}));
        QCOMPARE(DaySessions::headlines(all, 1), QStringList{u"c"_s});
        QCOMPARE(DaySessions::headlines(all, 0), QStringList());
        QCOMPARE(DaySessions::headlines(all, 99).size(), 6);
        QCOMPARE(sessionsOf(evenly(3, 10)).first().titles, QStringList());
    }

    void aSampleIsSpreadEvenly_data()
    {
        QTest::addColumn<int>("items");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("expected");
        QTest::newRow("none") << 0 << 12 << QString();
        QTest::newRow("fewer") << 3 << 12 << u"0 1 2"_s;
        QTest::newRow("as many") << 3 << 3 << u"0 1 2"_s;
        QTest::newRow("one more") << 13 << 12 << u"0 1 2 3 4 5 7 8 9 10 11 12"_s;
        QTest::newRow("the ends") << 9 << 2 << u"0 8"_s;
        QTest::newRow("halves are rounded up") << 8 << 3 << u"0 4 7"_s;
        QTest::newRow("one is no spread") << 3 << 1 << u"0 1 2"_s;
        QTest::newRow("nor is none") << 3 << 0 << u"0 1 2"_s;
    }
    void aSampleIsSpreadEvenly()
    {
        QFETCH(int, items);
        QFETCH(int, count);
        QFETCH(QString, expected);
        QStringList sampled;
        for (const Memory& item : DaySessions::sample(evenly(items, 1), count))
            sampled.append(item.id);
        QCOMPARE(sampled.join(u' '), expected);
    }
};

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::DaySessionsTest)
#include "DaySessionsTest.moc"
