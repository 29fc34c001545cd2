// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/Memory.h"
#include "MossbankCore/Support/Calendar.h"

#include <QAbstractListModel>
#include <QtQmlIntegration>

namespace mossbank {

class Clock;
class Listing;

/// The list on show, for views that make a row or tile only where it is seen. What stays in the
/// list when it is made anew stays where it is on the screen.
///
/// Threading: the main thread.
class MemoryRows : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made where the window is opened")

    /// Where the selected one stands. -1 where none is.
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectedRowChanged)
    Q_PROPERTY(QString query READ query NOTIFY queryChanged)

public:
    /// Where QML finds what a row shows.
    enum Role { AppRole = Qt::UserRole, TimeRole, HelpRole, TextRole, PictureRole };
    enum class Order { NewestFirst, OldestFirst };

    /// All outlive it.
    MemoryRows(Listing& listing, Clock& clock, CalendarSource calendar, QObject* parent = nullptr);

    Order order() const { return m_order; }
    void setOrder(Order order);
    int selectedRow() const;
    QString query() const;
    /// Times are told in another way.
    void redate();
    /// Selects it. Nothing where there is no such row.
    Q_INVOKABLE void choose(int row);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void selectedRowChanged();
    void queryChanged();

private:
    struct Change;

    void update();
    bool adapt();
    void take(qsizetype from, qsizetype count);
    void add(qsizetype at, const QList<Memory>& rows);
    int row(qsizetype place) const;
    qsizetype place(int row) const;
    QString time(const Memory& memory) const;

    Listing& m_listing;
    Clock& m_clock;
    CalendarSource m_calendar;
    Order m_order = Order::OldestFirst;
    /// Newest first, as far as the views have been told.
    QList<Memory> m_rows;
    bool m_showsSeconds = false;
    /// Another day or application has been chosen since.
    bool m_areOfAnother = false;
};

} // namespace mossbank
