// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/PackageKitTransaction.h"
#include "Mossbank/Ports/Updates.h"

#include <chrono>
#include <memory>

namespace mossbank {

/// PackageKit, as far as this program asks it. It is connected to while it is asked, and no longer.
///
/// Threading: the main thread. Nothing waits. One question at a time.
/// Owns: itself while it waits for an answer, so that it may be let go at any time.
/// Errors: in the answers; nothing throws.
class PackageKit final : public QObject, public std::enable_shared_from_this<PackageKit> {
    Q_OBJECT

public:
    PackageKit() = default;

    /// Asks which installed package a file is from. Nothing leaves the machine for it.
    QCoro::Task<> findPackage(QString file, std::chrono::milliseconds limit);
    /// Asks whether there is a newer version of a package that is installed.
    QCoro::Task<> check(PackageId package, std::chrono::milliseconds limit);
    /// Tells nothing any more.
    void stop();

Q_SIGNALS:
    /// `result` has one package at most.
    void found(const mossbank::PackageKitResult& result);
    void checked(const mossbank::UpdateAnswer& answer);

private:
    QCoro::Task<PackageKitResult> run(PackageKitOrder order, QDeadlineTimer deadline);
    QCoro::Task<UpdateAnswer> answerFor(PackageId package, QDeadlineTimer deadline);

    BusLink m_bus;
    std::unique_ptr<PackageKitTransaction> m_transaction;
    bool m_isStopped = false;
};

/// Where the system bus is to be found.
QString systemBusAddress();

} // namespace mossbank
