// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/InstalledApplications.h"

#include <QAbstractListModel>
#include <QHash>
#include <QStringList>
#include <QtQmlIntegration>

#include <optional>

namespace mossbank {

class Listing;

/// The applications that the library has screenshots of, one of which the list may be held to.
///
/// Threading: the main thread.
class ApplicationFilters : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made where the window is opened")
    /// Whether the list is held to none.
    Q_PROPERTY(bool isAll READ isAll NOTIFY chosenChanged)

public:
    /// Where QML finds what a row shows. `Hue`, from 0 to 1, is of the square that stands for an
    /// application without a picture.
    enum Role { NameRole = Qt::UserRole, PictureRole, InitialRole, HueRole, IsChosenRole };

    /// Both outlive it.
    ApplicationFilters(Listing& listing, const InstalledApplications& installed,
                       QObject* parent = nullptr);

    bool isAll() const;
    /// Holds the list to it.
    Q_INVOKABLE void choose(int row);
    Q_INVOKABLE void chooseAll();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void chosenChanged();

private:
    void update();
    QString icon(const QString& app) const;

    Listing& m_listing;
    const InstalledApplications& m_installed;
    QStringList m_apps;
    /// Icons by identity. Looked up when the first row is shown: it takes reading many files.
    mutable std::optional<QHash<QString, QString>> m_icons;
};

} // namespace mossbank
