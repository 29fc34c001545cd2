// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace mossbank {

/// What the program answers on the bus: `org.freedesktop.Application`, as the desktop entry
/// specification has it. Any program of the user's may call it, as often as it likes and with
/// whatever it likes; what does not fit is refused by Qt and never gets here.
///
/// What it tells it tells after the caller has been answered, once for what came meanwhile.
///
/// Threading: the thread it lives on.
class ApplicationObject final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    ApplicationObject() = default;

    /// Tells again after a flood.
    void recover();

Q_SIGNALS:
    void activated();
    void actionRequested(const QString& action);
    /// Nobody means so many calls. Those that follow tell nothing until it recovers.
    void flooded();

    // Exported, under the names of the interface.
public Q_SLOTS:
    void Activate(const QVariantMap& platformData);
    /// There is nothing that this program opens.
    void Open(const QStringList& addresses, const QVariantMap& platformData);
    void ActivateAction(const QString& action, const QVariantList& parameters,
                        const QVariantMap& platformData);

private:
    /// Whether this call is one too many.
    bool isFlood();
    void tellLater();
    void tell();

    QElapsedTimer m_second;
    int m_callsInSecond = 0;
    bool m_isFlooded = false;
    bool m_isTelling = false;
    bool m_isToShow = false;
    QStringList m_actions;
};

} // namespace mossbank
