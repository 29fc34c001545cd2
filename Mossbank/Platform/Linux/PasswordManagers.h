// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

namespace mossbank {

/// The identities that password managers and what shows keys have here: the desktop files of each
/// in packages, bundles and stores, and what its windows are called where these do not lead to one.
inline QStringList passwordManagersOfLinux()
{
    using namespace Qt::StringLiterals;
    return {u"org.keepassxc.KeePassXC"_s,
            u"keepassxc"_s,
            u"keepassxc_keepassxc"_s,
            u"1password"_s,
            u"1password_1password"_s,
            u"com.onepassword.OnePassword"_s,
            u"bitwarden"_s,
            u"bitwarden_bitwarden"_s,
            u"org.gnome.World.Secrets"_s,
            u"secrets"_s,
            u"org.gnome.seahorse.Application"_s,
            u"seahorse"_s,
            u"org.kde.kwalletmanager5"_s,
            u"kwalletmanager5"_s,
            u"org.kde.kwalletmanager"_s,
            u"kwalletmanager"_s};
}

} // namespace mossbank
