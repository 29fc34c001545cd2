// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/PauseLength.h"

#include "MossbankCore/Support/Calendar.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;
using namespace mossbank;

namespace {

Date moment(const QString& local, const QTimeZone& zone)
{
    QDateTime time = QDateTime::fromString(local, Qt::ISODateWithMs);
    time.setTimeZone(zone);
    return {static_cast<double>(time.toMSecsSinceEpoch()) / 1000};
}

} // namespace

class PauseLengthTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lengthsHaveTheirWords()
    {
        QStringList labels;
        for (const PauseLength length : PauseLength::kAllCases)
            labels.append(QString::fromLatin1(length.label()));
        QCOMPARE(labels, (QStringList{u"15 minutes"_s, u"1 hour"_s, u"until morning"_s}));
    }

    void aQuarterAndAnHourAreMeasured()
    {
        const Date from = {1'700'000'000.25};
        const Calendar calendar(QTimeZone::utc(), QLocale::c());
        QCOMPARE(PauseLength(PauseLength::FifteenMinutes).deadline(from, calendar), from + 900);
        QCOMPARE(PauseLength(PauseLength::OneHour).deadline(from, calendar), from + 3600);
    }

    void aChangeOfTheClocksMakesThemNoLonger_data()
    {
        QTest::addColumn<QString>("from");
        QTest::newRow("to summer") << u"2024-03-31T00:50:00"_s;
        QTest::newRow("to winter") << u"2024-10-27T00:50:00"_s;
    }
    void aChangeOfTheClocksMakesThemNoLonger()
    {
        QFETCH(QString, from);
        const QTimeZone berlin("Europe/Berlin");
        QVERIFY(berlin.isValid());
        const Calendar calendar(berlin, QLocale::c());
        const Date start = moment(from, QTimeZone::utc());
        QVERIFY(berlin.offsetFromUtc(calendar.local(start)) !=
                berlin.offsetFromUtc(calendar.local(start + 900)));
        QCOMPARE(PauseLength(PauseLength::FifteenMinutes).deadline(start, calendar), start + 900);
        QCOMPARE(PauseLength(PauseLength::OneHour).deadline(start, calendar), start + 3600);
    }

    void theMorningIsTheNextEightOClock_data()
    {
        QTest::addColumn<QString>("zone");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("until");
        const auto row = [](const char* what, const char* zone, const char* from,
                            const char* until) {
            QTest::newRow(what) << QString::fromLatin1(zone) << QString::fromLatin1(from)
                                << QString::fromLatin1(until);
        };
        const char* berlin = "Europe/Berlin";
        row("early", berlin, "2024-05-17T07:00:00", "2024-05-17T08:00:00");
        row("late", berlin, "2024-05-17T23:30:00", "2024-05-18T08:00:00");
        row("at eight exactly", berlin, "2024-05-17T08:00:00", "2024-05-18T08:00:00");
        row("a moment before eight", berlin, "2024-05-17T07:59:30", "2024-05-17T08:00:30");
        row("a minute before eight", berlin, "2024-05-17T07:59:00", "2024-05-17T08:00:00");
        row("over the change to summer", berlin, "2024-03-30T22:00:00", "2024-03-31T08:00:00");
        row("over the change to winter", berlin, "2024-10-26T22:00:00", "2024-10-27T08:00:00");
        // The clocks of Samoa went from the end of the 29th to the beginning of the 31st.
        row("over a day that is missing", "Pacific/Apia", "2011-12-29T09:00:00",
            "2011-12-31T08:00:00");
    }
    void theMorningIsTheNextEightOClock()
    {
        QFETCH(QString, zone);
        QFETCH(QString, from);
        QFETCH(QString, until);
        const QTimeZone timeZone(zone.toLatin1());
        QVERIFY(timeZone.isValid());
        const Calendar calendar(timeZone, QLocale::c());
        const Date deadline =
            PauseLength(PauseLength::UntilMorning).deadline(moment(from, timeZone), calendar);
        QCOMPARE(calendar.local(deadline).toString(Qt::ISODate).first(19), until);
        QCOMPARE(deadline, moment(until, timeZone));
    }

    void aMorningThatIsLeftOutOrShownTwiceIsMet_data()
    {
        QTest::addColumn<QString>("zone");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("until");
        const auto row = [](const char* what, const char* zone, const char* from,
                            const char* until) {
            QTest::newRow(what) << QString::fromLatin1(zone) << QString::fromLatin1(from)
                                << QString::fromLatin1(until);
        };
        // On UTC in winter and an hour ahead in summer. Clocks change at eight and at nine, for no
        // place on Earth does so at that time of day.
        const char* eight = "STD0DST-1,M3.5.0/8,M10.5.0/9";
        row("left out", eight, "2024-03-30T20:00:00Z", "2024-03-31T08:00:00Z");
        row("a moment before it is left out", eight, "2024-03-31T07:58:00Z",
            "2024-03-31T08:00:00Z");
        row("as it has been left out", eight, "2024-03-31T08:00:00Z", "2024-04-01T07:00:00Z");
        row("shown twice", eight, "2024-10-26T20:00:00Z", "2024-10-27T07:00:00Z");
        row("between the two", eight, "2024-10-27T07:30:00Z", "2024-10-28T08:00:00Z");
        row("at the second of the two", eight, "2024-10-27T08:00:00Z", "2024-10-28T08:00:00Z");
        // From midnight to ten, when the station got clocks.
        row("left out with the night", "Antarctica/Macquarie", "1948-03-24T20:00:00Z",
            "1948-03-25T00:00:00Z");
    }
    void aMorningThatIsLeftOutOrShownTwiceIsMet()
    {
        QFETCH(QString, zone);
        QFETCH(QString, from);
        QFETCH(QString, until);
        const QTimeZone timeZone(zone.toLatin1());
        QVERIFY(timeZone.isValid());
        const Calendar calendar(timeZone, QLocale::c());
        const Date deadline = PauseLength(PauseLength::UntilMorning)
                                  .deadline(moment(from, QTimeZone::utc()), calendar);
        QCOMPARE(deadline, moment(until, QTimeZone::utc()));
    }

    void beyondTheCalendarTheNightIsEightHours()
    {
        const Date from = {1e14};
        const Calendar calendar(QTimeZone::utc(), QLocale::c());
        QCOMPARE(PauseLength(PauseLength::UntilMorning).deadline(from, calendar), from + 28800);
    }

    void theClockIsLookedAtEveryMinute_data()
    {
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("next");
        QTest::newRow("longer than a minute") << 90.0 << 60.0;
        QTest::newRow("a minute") << 60.0 << 60.0;
        QTest::newRow("less") << 30.0 << 30.0;
        QTest::newRow("hardly any") << 0.125 << 0.125;
        QTest::newRow("none") << 0.0 << -1.0;
        QTest::newRow("past") << -5.0 << -1.0;
    }
    void theClockIsLookedAtEveryMinute()
    {
        QFETCH(double, left);
        QFETCH(double, next);
        const Date from = {1'700'000'000};
        QCOMPARE(PauseTick::next(from + left, from).value_or(-1), next);
    }
};

QTEST_GUILESS_MAIN(PauseLengthTest)
#include "PauseLengthTest.moc"
