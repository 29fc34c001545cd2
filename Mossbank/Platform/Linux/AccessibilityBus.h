// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusLink.h"
#include "Mossbank/Platform/Linux/SilentPrograms.h"

#include <QMutex>
#include <QTimer>

namespace mossbank {

/// The bus on which programs tell assistive tools what is in their windows. Looked for by way of
/// the session bus, and looked for again whenever one of the two has gone.
///
/// Threading: the thread it lives on, but for what says otherwise.
/// Errors: a question that cannot be put has an error for an answer; nothing throws.
class AccessibilityBus final : public QObject {
    Q_OBJECT

public:
    AccessibilityBus();
    ~AccessibilityBus() override;

    /// Begins to look for it.
    void start();

    /// Why programs cannot be asked now: a sentence for the user. Empty when they can. Any thread.
    QString whyUnreachable() const;
    /// Whether programs are to tell what is in their windows. Many do not when they are not. Any
    /// thread.
    bool isSwitchedOn() const;
    /// Whether the first search has come to an end, whatever it found. Any thread.
    bool hasLooked() const;

    bool isOpen() const { return m_programs.isOpen(); }
    /// Asks a program. It has a fifth of a second; one that did not use it is left alone for a
    /// while, and its answer is an error at once.
    QCoro::Task<QDBusMessage> ask(BusCall call);
    /// Asks a program, whether it is left alone or not, for what it may be a while about: one that
    /// looks through a long page, or is busy with that. It has a second, and is not left alone for
    /// not using it.
    QCoro::Task<QDBusMessage> askPatiently(BusCall call);
    /// Whether a program is left alone now: what it was just asked it did not answer at all, as
    /// against one that answered that there is no such object.
    bool isLeftAlone(const QString& service) const;

    /// Has every program of the session tell what is in its windows, now and whenever the bus comes
    /// back.
    QCoro::Task<> switchOn();
    /// From now on it is left as it is.
    void letBe() { m_isWantedOn = false; }

Q_SIGNALS:
    void opened();
    void closed();
    /// The first search has come to an end, and there is none. It is looked for again all the same.
    void notFound();
    /// An accessible object got the focus, or lost it.
    void focusChanged(const QString& service, const QString& path, bool isGained);
    /// A program came to the bus, or left it.
    void programsChanged();

private:
    Q_SLOT void hearOwner(const QDBusMessage& message);
    Q_SLOT void hearStatus(const QDBusMessage& message);
    Q_SLOT void hearFocus(const QDBusMessage& message);
    Q_SLOT void hearPrograms(const QDBusMessage& message);

    QCoro::Task<> look();
    QCoro::Task<QString> findSession();
    QCoro::Task<QString> openPrograms();
    QCoro::Task<bool> askForEvents();
    QCoro::Task<> readStatus();
    void lookAgainLater();
    void startOver();
    void say(const QString& reason);

    BusLink m_session;
    BusLink m_programs;
    SilentPrograms m_silent;
    QTimer m_again;
    bool m_isWantedOn = false;
    int m_attempts = 0;
    bool m_isLooking = false;

    mutable QMutex m_mutex;
    bool m_hasLooked = false;
    bool m_isSwitchedOn = true;
    QString m_reason;
};

/// Where the session bus is to be found. Empty when there is none.
QString sessionBusAddress();

} // namespace mossbank
