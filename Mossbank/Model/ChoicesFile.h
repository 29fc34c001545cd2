// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace mossbank {

/// The file that the user's choices are kept in, an INI file of keys and values. What was changed
/// in it meanwhile by others stands beside what is stored.
///
/// A value that is missing, or is not of the type asked for, is the fallback.
///
/// Threading: the main thread.
class ChoicesFile {
public:
    /// The file at `path`, which need not exist. Without one nothing is read and nothing stored.
    explicit ChoicesFile(const std::optional<QString>& path);

    /// Whether the file could be read, or is not there.
    bool isReadable() const { return m_isReadable; }
    /// Empty without a file.
    QString path() const;

    bool contains(const QString& key) const;
    double number(const QString& key, double fallback) const;
    int wholeNumber(const QString& key, int fallback) const;
    bool flag(const QString& key, bool fallback) const;
    QString word(const QString& key, const QString& fallback) const;
    QStringList list(const QString& key, const QStringList& fallback) const;

    /// Written soon.
    void store(const QString& key, const QVariant& value);
    void remove(const QString& key);

    /// Has what was stored written at once. Why it could not be, in words for the user; not again
    /// until it could be.
    std::optional<QString> makeSure();

private:
    QVariant value(const QString& key) const;

    std::optional<QSettings> m_settings;
    bool m_isReadable = true;
    bool m_isStored = true;
};

} // namespace mossbank
