// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Calendar.h"

#include <QAbstractListModel>
#include <QDate>
#include <QList>
#include <QStringList>
#include <QtQmlIntegration>

namespace mossbank {

class Clock;
class Listing;

/// One month of days, each with how many screenshots there are of it, or of what is looked for. It
/// follows the day that is chosen elsewhere.
///
/// Threading: the main thread.
class CalendarMonth : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made where the window is opened")
    /// "November 2026".
    Q_PROPERTY(QString title READ title NOTIFY monthChanged)
    /// The days of the week in one letter, from the first of the week.
    Q_PROPERTY(QStringList weekdays READ weekdays CONSTANT)
    /// What is to come has no screenshots.
    Q_PROPERTY(bool hasNext READ hasNext NOTIFY monthChanged)

public:
    /// Where QML finds what a day shows. `Number`: 0 where the cell belongs to another month.
    /// `Share`: of the busiest day of the month, from 0 to 1.
    enum Role {
        NumberRole = Qt::UserRole,
        SpokenRole,
        ShareRole,
        IsChosenRole,
        IsTodayRole,
        IsFutureRole,
        /// The tab key stops there: at the chosen day, or at the first where none is.
        IsTabStopRole
    };

    /// All outlive it.
    CalendarMonth(Listing& listing, Clock& clock, CalendarSource calendar,
                  QObject* parent = nullptr);

    QString title() const;
    QStringList weekdays() const;
    bool hasNext() const;

    /// Another day is today, or days begin at other moments than before.
    void remake();

    Q_INVOKABLE void showPrevious();
    Q_INVOKABLE void showNext();
    /// Looks at that day. Nothing where the cell is of no day of this month.
    Q_INVOKABLE void choose(int cell);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void monthChanged();

private:
    struct Day {
        QDate date;
        /// Absent where the zone has left that day out.
        std::optional<Date> start;
        qsizetype count = 0;
    };

    void followDay();
    void count();
    void show(QDate month);
    void tell();
    QString spoken(const Day& day) const;
    bool isTabStop(const Day& day) const;
    QDate today() const;
    qsizetype cell(int number) const;

    Listing& m_listing;
    Clock& m_clock;
    CalendarSource m_calendar;
    /// The first of it.
    QDate m_month;
    QList<Day> m_days;
    qsizetype m_most = 0;
};

} // namespace mossbank
