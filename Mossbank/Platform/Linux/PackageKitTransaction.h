// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusLink.h"

#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <qcoro/qcorotask.h>

#include <optional>

namespace mossbank {

/// A package of one version, as PackageKit names it: "name;version;architecture;where from".
struct PackageId {
    QString name;
    QString version;

    /// Absent when it is none.
    static std::optional<PackageId> in(const QString& text);

    friend bool operator==(const PackageId&, const PackageId&) = default;
};

/// What PackageKit is to do.
struct PackageKitOrder {
    QString method;
    QVariantList arguments;
    /// When not empty, of the packages that are told of only those of this name count.
    QString name = {};
};

/// What it came to.
struct PackageKitResult {
    enum class End {
        Done,
        /// The rules of this machine do not let this user have it done.
        NotAllowed,
        /// There is no PackageKit.
        NotThere,
        Failed,
    };

    End end = End::Failed;
    QList<PackageId> packages = {};
    /// Why it is not done: a sentence for the user.
    QString problem = {};
};

/// One thing that PackageKit is asked to do. It is done once.
///
/// Threading: the thread it is made on.
/// Errors: in its result; nothing throws.
class PackageKitTransaction final : public QObject {
    Q_OBJECT

public:
    /// On a connection to the system bus that is open.
    explicit PackageKitTransaction(BusLink& bus);

    /// Ends by the deadline, whatever PackageKit does. This has to live until then.
    QCoro::Task<PackageKitResult> run(PackageKitOrder order, QDeadlineTimer deadline);
    /// Has it end now.
    void abandon();

Q_SIGNALS:
    void ended();

private:
    Q_SLOT void hearPackage(const QDBusMessage& message);
    Q_SLOT void hearError(const QDBusMessage& message);
    Q_SLOT void hearFinished(const QDBusMessage& message);
    Q_SLOT void hearOwner(const QDBusMessage& message);

    QCoro::Task<> create();
    QCoro::Task<> subscribe();
    QCoro::Task<> begin(PackageKitOrder order);
    bool isOurs(const QDBusMessage& message) const;
    int timeLeft() const;
    void take(const QDBusMessage& refusal);
    void fail(PackageKitResult::End end, const QString& problem);
    void finish();

    BusLink& m_bus;
    QDeadlineTimer m_deadline;
    QTimer m_limit;
    /// The connection of PackageKit, and where it has this.
    QString m_owner;
    QString m_path;
    QString m_name;
    PackageKitResult m_result;
    bool m_hasEnded = false;
};

} // namespace mossbank
