// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/InstalledApplications.h"
#include "MossbankCore/Support/Characters.h"

#include <QAbstractListModel>
#include <QQmlEngine>
#include <QString>

#include <vector>

namespace mossbank {

/// What is on show while the user chooses an application: those whose name or identity has the
/// words that were typed, by name.
///
/// Threading: the main thread.
class ApplicationChoices : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made where the window is opened")

    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString searchLabel READ searchLabel CONSTANT)
    Q_PROPERTY(QString chooseLabel READ chooseLabel CONSTANT)
    Q_PROPERTY(QString cancelLabel READ cancelLabel CONSTANT)
    Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY filterChanged)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY filterChanged)
    Q_PROPERTY(int currentRow READ currentRow WRITE setCurrentRow NOTIFY currentRowChanged)

public:
    /// Where QML finds what a row shows.
    enum Role { NameRole = Qt::UserRole, IdentityRole, PictureRole, InitialRole };

    /// This program itself is not among them: it is never recorded anyway.
    ApplicationChoices(QString title, const QList<InstalledApplication>& installed,
                       QObject* parent = nullptr);

    const QString& title() const { return m_title; }
    QString searchLabel() const;
    QString chooseLabel() const;
    QString cancelLabel() const;

    const QString& filter() const { return m_filter; }
    /// The first of those that are left is the current one then.
    void setFilter(const QString& filter);

    /// Why the list is empty. Empty when it is not.
    QString emptyText() const;

    /// -1 where there is none to choose.
    int currentRow() const { return m_currentRow; }
    /// Nothing happens where there is no such row.
    void setCurrentRow(int row);
    /// Moves the current row by so many, to the first or last at most.
    Q_INVOKABLE void step(int rows);

    /// Tells `chosen` the current one. Nothing happens where there is none.
    Q_INVOKABLE void choose();
    Q_INVOKABLE void cancel();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void filterChanged();
    void currentRowChanged();
    void chosen(const mossbank::Application& application);
    void cancelled();

private:
    struct Choice {
        InstalledApplication installed;
        FoldedText name;
        FoldedText identity;
    };

    void moveTo(int row);

    QString m_title;
    QString m_filter;
    std::vector<Choice> m_all;
    /// Those on show, by their places among all.
    std::vector<qsizetype> m_shown;
    int m_currentRow = -1;
};

} // namespace mossbank
