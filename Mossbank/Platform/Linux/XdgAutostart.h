// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/LoginService.h"

namespace mossbank {

/// The desktop's autostart: an entry in the user's configuration folder that names this copy of the
/// program. Desktops' own settings switch an entry off rather than remove it; switched off and not
/// there are the same, and so is one that names another copy.
///
/// Threading: that of its port.
class XdgAutostart final : public LoginService {
public:
    /// `executable`: where this copy lies. `identity`: the id of its desktop file.
    XdgAutostart(QString executable, const QString& identity);

    /// What the program is started with at login.
    static constexpr char16_t kAtLogin[] = u"--at-login";

    Availability availability() const override { return {}; }
    Status status() const override;
    void registerItem() override;
    void unregisterItem() override;
    QString path() const override { return m_executable; }
    bool isWithoutHome() const override;

    /// The entry's own place.
    const QString& entry() const { return m_entry; }

private:
    QString m_executable;
    QString m_entry;
};

} // namespace mossbank
