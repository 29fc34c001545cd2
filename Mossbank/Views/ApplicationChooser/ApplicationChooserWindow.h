// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/ApplicationChooser.h"
#include "Mossbank/Ports/InstalledApplications.h"

#include <QPointer>

namespace mossbank {

/// Has the user choose in a window of this program, which is there for as long as the choice takes.
///
/// Threading: the main thread.
class ApplicationChooserWindow final : public ApplicationChooser {
public:
    /// It outlives this.
    explicit ApplicationChooserWindow(const InstalledApplications& installed);
    ~ApplicationChooserWindow() override;

    Availability availability() const override { return m_installed.availability(); }
    QFuture<std::optional<Application>> choose(const QString& title) override;

private:
    class Opened;

    const InstalledApplications& m_installed;
    QPointer<Opened> m_opened;
};

} // namespace mossbank
