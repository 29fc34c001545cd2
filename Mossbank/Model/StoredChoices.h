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

    /// Written soon.
    void store(const QString& key, const QVariant& value);
    void remove(const QString& key);

    /// Has what was stored written at once. Why it could not be, in words for the user; not again
    /// until it could be.
    std::optional<QString> makeSure();

private:
    QVariant value(const QString& key) const;

    std::optional<ChoicesFile> m_file;
    bool m_isStored = true;
};

} // namespace mossbank
