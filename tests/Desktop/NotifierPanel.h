// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusConnection.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QImage>
#include <QList>
#include <QObject>
#include <QSemaphore>
#include <QString>
#include <QStringList>
#include <QThread>
#include <QVariantMap>

#include <memory>

namespace mossbank::test {

class NotifierWatcher;

/// What keeps the icons of programs by the protocol of status notifiers: their watcher and, when
/// told, a host, in one. On the session bus, with a thread of its own: programs wait for it also
/// while the test does other things.
class NotifierPanel {
public:
    /// `hasHost`: whether icons are shown from the start.
    explicit NotifierPanel(bool hasHost = true);
    ~NotifierPanel();
    Q_DISABLE_COPY_MOVE(NotifierPanel)

    /// Why it could not be set up. Empty when all went well.
    const QString& problem() const { return m_problem; }

    /// Whether icons are shown. Tells of each change.
    void setHost(bool isThere);
    /// From now on it answers nothing.
    void standStill();

    /// The names on the bus of the icons that are there, the last one last.
    QStringList icons() const;

private:
    QThread m_thread;
    /// On that thread, for as long as it runs.
    QObject m_context;
    QSemaphore m_standsStill;
    std::unique_ptr<BusConnection> m_bus;
    std::unique_ptr<NotifierWatcher> m_watcher;
    QString m_problem;
};

/// A menu as it comes over the bus.
struct SentMenu {
    int number = 0;
    QVariantMap properties;
    QList<SentMenu> entries;

    static SentMenu read(const QDBusArgument& argument);

    /// As the user reads it.
    QString title() const;
    bool isVisible() const { return properties.value(QStringLiteral("visible"), true).toBool(); }
    bool isEnabled() const { return properties.value(QStringLiteral("enabled"), true).toBool(); }
    bool isDivider() const;

    /// The titles of what is visible, a divider as "-"; in brackets what cannot be chosen.
    QStringList shown() const;
    /// The one of this title, in any menu within this one.
    const SentMenu* find(const QString& title) const;
};

/// An icon in such a panel, as the panel deals with it.
class NotifierIcon {
public:
    explicit NotifierIcon(QString service);

    /// A property of the icon. Invalid when it does not answer.
    QVariant property(const QString& name) const;
    /// The widths of its pictures.
    QList<int> widths() const;
    /// What of the first picture is drawn and red, of a hundred.
    int redness() const;
    QString toolTip() const;

    SentMenu menu() const;
    /// What the user sees of it now.
    QStringList shown() const { return menu().shown(); }
    /// Chooses the entry of this title. False when there is none, or it does not answer.
    bool choose(const QString& title) const;
    /// The panel has opened the menu.
    bool open() const;
    /// The left button on the icon.
    bool activate() const;

private:
    QDBusMessage call(const QString& path, const QString& interface, const QString& member,
                      const QVariantList& arguments) const;
    QList<QImage> pictures() const;

    QString m_service;
    BusConnection m_bus;
};

} // namespace mossbank::test
