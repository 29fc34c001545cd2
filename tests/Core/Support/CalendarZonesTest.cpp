// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Calendar.h"

#include <QTest>

#include <array>
#include <cmath>

namespace mossbank {

namespace {

using Component = Calendar::Component;

constexpr qint64 kSecondsADay = 86'400;

qint64 floored(qint64 seconds, qint64 unit)
{
    return seconds / unit - (seconds % unit < 0 ? 1 : 0);
}

/// The number of the day that the zone's clocks show.
qint64 shownDay(const QTimeZone& zone, qint64 second)
{
    const int offset = zone.offsetFromUtc(QDateTime::fromSecsSinceEpoch(second, Qt::UTC));
    return floored(second + offset, kSecondsADay);
}

qint64 wholeSeconds(Date date)
{
    return static_cast<qint64>(date.secondsSince1970);
}

} // namespace

/// What holds of every day and hour, looked at around the clock changes of every zone.
class CalendarZonesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void daysAndHoursLieEndToEndInEveryZone_data();
    void daysAndHoursLieEndToEndInEveryZone();

private:
    QString wrongAt(const QTimeZone& zone, Date date) const;
    QString wrongDay(const QTimeZone& zone, const Calendar& calendar, Date date) const;
    QString wrongHour(const Calendar& calendar, Date date) const;
};

void CalendarZonesTest::initTestCase()
{
    QVERIFY2(QTimeZone::availableTimeZoneIds().size() > 300,
             "The rules of time zones are missing: install the package tzdata.");
}

QString CalendarZonesTest::wrongDay(const QTimeZone& zone, const Calendar& calendar,
                                    Date date) const
{
    const auto day = calendar.dateInterval(Component::Day, date);
    if (!day || !day->contains(date))
        return QStringLiteral("the day does not hold its moment");
    if (calendar.dateInterval(Component::Day, day->start) != day)
        return QStringLiteral("the day's start is not of the day");
    const auto next = calendar.dateInterval(Component::Day, day->end);
    if (!next || next->start != day->end)
        return QStringLiteral("the next day does not begin where this one ends");
    const auto previous = calendar.dateInterval(Component::Day, day->start - 1);
    if (!previous || previous->end != day->start)
        return QStringLiteral("the day before does not end where this one begins");

    const qint64 start = wholeSeconds(day->start);
    const qint64 number = shownDay(zone, start);
    // Not only just before: a midnight told twice is the day's start the first time.
    for (const qint64 before : {1, 60, 1800, 3600, 5400, 7200}) {
        if (shownDay(zone, start - before) >= number)
            return QStringLiteral("the clocks showed the day before its start");
    }
    const QDate name = QDate(1970, 1, 1).addDays(number);
    if (calendar.startOfDay(name.year(), name.month(), name.day()) != day->start)
        return QStringLiteral("the day's start is another by its numbers");
    return {};
}

QString CalendarZonesTest::wrongHour(const Calendar& calendar, Date date) const
{
    const auto hour = calendar.dateInterval(Component::Hour, date);
    if (!hour || !hour->contains(date))
        return QStringLiteral("the hour does not hold its moment");
    if (hour->duration() > 3600)
        return QStringLiteral("the hour is too long");
    const auto next = calendar.dateInterval(Component::Hour, hour->end);
    if (!next || next->start != hour->end)
        return QStringLiteral("the next hour does not begin where this one ends");
    const auto previous = calendar.dateInterval(Component::Hour, hour->start - 1);
    if (!previous || previous->end != hour->start)
        return QStringLiteral("the hour before does not end where this one begins");
    const auto day = calendar.dateInterval(Component::Day, date);
    if (!day || hour->start < day->start || hour->end > day->end)
        return QStringLiteral("the hour crosses the day's edge");
    return {};
}

QString CalendarZonesTest::wrongAt(const QTimeZone& zone, Date date) const
{
    const Calendar calendar(zone, QLocale::c());
    QString wrong = wrongDay(zone, calendar, date);
    if (wrong.isEmpty())
        wrong = wrongHour(calendar, date);
    if (wrong.isEmpty())
        return {};
    return QStringLiteral("%1 at %2: %3")
        .arg(QString::fromLatin1(zone.id()), QString::number(date.secondsSince1970, 'f', 6), wrong);
}

void CalendarZonesTest::daysAndHoursLieEndToEndInEveryZone_data()
{
    // A row a letter: a row a zone would be six hundred lines of report.
    QTest::addColumn<QByteArrayList>("zones");
    QMap<char, QByteArrayList> byLetter;
    for (const QByteArray& zone : QTimeZone::availableTimeZoneIds())
        byLetter[zone.front()] += zone;
    for (auto letter = byLetter.cbegin(); letter != byLetter.cend(); ++letter)
        QTest::addRow("%c", letter.key()) << letter.value();
}

void CalendarZonesTest::daysAndHoursLieEndToEndInEveryZone()
{
    QFETCH(QByteArrayList, zones);
    constexpr std::array kAround = {-86'400.0, -3600.0, -1800.0, -1.0,   -0.001,  0.0,
                                    0.5,       60.0,    1800.0,  3600.0, 86'400.0};
    const QDateTime first = QDateTime::fromSecsSinceEpoch(0, Qt::UTC);
    const QDateTime last(QDate(2037, 12, 31), QTime(0, 0), Qt::UTC);
    for (const QByteArray& id : zones) {
        const QTimeZone zone(id);
        QString wrong = wrongAt(zone, {1'700'000'000.25});
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
        const auto transitions = zone.transitions(first, last);
        for (qsizetype index = 0; index < transitions.size(); ++index) {
            const qint64 change = transitions[index].atUtc.toSecsSinceEpoch();
            // The usual change by an hour in the small hours is looked at in one year of five.
            const qint64 shown = change + transitions[index].offsetFromUtc;
            const qint64 hour = floored(shown, 3600) % 24;
            if (hour >= 2 && hour <= 21 && index % 10 > 1)
                continue;
            for (const double around : kAround) {
                wrong = wrongAt(zone, {static_cast<double>(change) + around});
                QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
            }
        }
    }
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::CalendarZonesTest)
#include "CalendarZonesTest.moc"
