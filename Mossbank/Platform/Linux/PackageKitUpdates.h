// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/PackageKitTransaction.h"
#include "Mossbank/Ports/Updates.h"

#include <QDeadlineTimer>

#include <chrono>
#include <memory>
#include <optional>

namespace mossbank {

class PackageKit;

/// By PackageKit on the system bus, for a copy of the program that is from a package of the
/// distribution. Another copy knows of no newer versions, and nobody is asked about it.
///
/// Threading: that of its port.
class PackageKitUpdates final : public Updates {
    Q_OBJECT

public:
    struct Limits {
        /// For PackageKit to say which package a file is from. It reads all lists for that.
        std::chrono::milliseconds package = std::chrono::minutes(1);
        /// For a check.
        std::chrono::milliseconds check = std::chrono::minutes(2);
        /// Before it is asked once more what it did not answer.
        std::chrono::milliseconds again = std::chrono::minutes(1);
    };

    /// `executable`: where this copy of the program lies.
    explicit PackageKitUpdates(QString executable)
        : PackageKitUpdates(std::move(executable), Limits())
    {
    }
    PackageKitUpdates(QString executable, const Limits& limits);
    ~PackageKitUpdates() override;

    Availability availability() const override;
    bool canCheckForUpdates() override;
    void checkForUpdates() override;

private:
    void findPackage();
    void take(const PackageKitResult& result);
    void finish(const UpdateAnswer& answer);

    QString m_executable;
    Limits m_limits;
    std::shared_ptr<PackageKit> m_packageKit;
    /// The package that this copy is from, once it is known.
    std::optional<PackageId> m_package;
    /// Why nothing can be checked. Empty while nothing says so.
    QString m_reason;
    /// Whether that is so for good.
    bool m_isDecided = false;
    QDeadlineTimer m_nextQuestion;
    bool m_isAsking = false;
    bool m_isChecking = false;
};

/// Whether the program that lies there is not the one that runs: a package's files are put in the
/// place of those before them.
bool isAnotherThanRuns(const QString& executable);

/// Whether a program that lies there may be from a package of the distribution.
bool mayBeFromPackage(const QString& executable);

} // namespace mossbank
