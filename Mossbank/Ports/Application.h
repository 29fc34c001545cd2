// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>

#include <algorithm>

namespace mossbank {

/// An application that runs on this desktop.
struct Application {
    /// What identifies it across runs and languages: on Linux the id of its desktop file
    /// ("org.mozilla.firefox"), or the name of its executable where it has none. Empty when
    /// nothing is known.
    QString bundleID;
    /// Its name for the user, in the user's language. Empty when it has none.
    QString name;
    /// Further names by which it may be known, where what it says of itself and what it is differ.
    /// They count for exclusions alone.
    QStringList aliases = {};

    /// What the user knows it by: its name, or else its identity.
    const QString& shownName() const { return name.isEmpty() ? bundleID : name; }

    /// Whether it is one of these by any of its names, in any case of their letters. One written
    /// by hand may also be the name of the desktop file itself.
    bool isAmong(const QStringList& bundleIDs) const
    {
        const auto isOneOfThese = [&](const QString& known) {
            return bundleIDs.contains(known, Qt::CaseInsensitive) ||
                   bundleIDs.contains(known + QStringLiteral(".desktop"), Qt::CaseInsensitive);
        };
        return isOneOfThese(bundleID) || std::ranges::any_of(aliases, isOneOfThese);
    }

    /// By what further names it was met does not make it another.
    friend bool operator==(const Application& one, const Application& other)
    {
        return one.bundleID == other.bundleID && one.name == other.name;
    }
};

/// This application's own identity: the id of its desktop file.
inline constexpr char16_t kOwnBundleID[] = u"local.mossbank.Mossbank";

} // namespace mossbank

Q_DECLARE_METATYPE(mossbank::Application)
