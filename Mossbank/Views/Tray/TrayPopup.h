// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/Tray/TrayMenu.h"

#include <QMenu>
#include <QObject>

#include <memory>
#include <vector>

namespace mossbank {

/// The menu of the icon in the tray as the user opens it, or as the panel does that shows it in its
/// own way. It follows also while it is open.
///
/// Threading: the main thread. While there is an application with widgets.
class TrayPopup : public QObject {
    Q_OBJECT

public:
    explicit TrayPopup(QObject* parent = nullptr);
    ~TrayPopup() override;

    QMenu& menu() { return m_menu; }

    /// What stands in it from now on: as many entries as the last time, each of its kind.
    void show(const QList<TrayEntry>& entries);

Q_SIGNALS:
    void chosen(const mossbank::TrayChoice& choice);

private:
    void build(QMenu& menu, const QList<TrayEntry>& entries);
    void update(const QMenu& menu, const QList<TrayEntry>& entries);
    QString written(const QString& title);

    QMenu m_menu;
    /// They belong to nobody else.
    std::vector<std::unique_ptr<QMenu>> m_submenus;
};

} // namespace mossbank
