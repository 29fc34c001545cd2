// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/ChoicesFile.h"

#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace mossbank {

/// The values that the user's choices are stored as, each of its type. A value that is missing, or
/// is not of the type asked for, is the fallback.
///
/// Threading: the main thread.
class StoredChoices {
public:
    /// The file at `path`, which need not exist. Without one nothing is read and nothing stored.
    explicit StoredChoices(const std::optional<QString>& path);

    /// Whether the file could be read, or is not there.
    bool isReadable() const { return !m_file || m_file->isReadable(); }
    /// Empty without a file.
    QString path() const;

    QStringList keys() const;
    bool contains(const QString& key) const;
    double number(const QString& key, double fallback) const;
    int wholeNumber(const QString& key, int fallback) const;
    bool flag(const QString& key, bool fallback) const { return flag(key).value_or(fallback); }
    /// Absent where none is stored.
    std::optional<bool> flag(const QString& key) const;
    QString word(const QString& key, const QString& fallback) const;
    QStringList list(const QString& key, const QStringList& fallback) const;
    /// What stands as a remark behind the value. Empty for none.
    QString remarkBehind(const QString& key) const;

    /// Takes up what others have stored meanwhile, and tells what they have put into a list.
    QStringList takeAddedByOthers(const QString& key);

    /// Whether all that was stored is written.
    bool isStored() const { return m_isStored; }

    /// Written when they return. Why it could not be, in words for the user; not again until it
    /// could be.
    std::optional<QString> store(const QString& key, const QVariant& value);
    std::optional<QString> remove(const QString& key);

private:
    QVariant value(const QString& key) const;
    QStringList storedList(const QString& key) const;
    std::optional<QString> tellWhether(bool isStored);

    std::optional<ChoicesFile> m_file;
    bool m_isStored = true;
};

} // namespace mossbank
