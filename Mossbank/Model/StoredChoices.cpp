// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/StoredChoices.h"

#include "Mossbank/Model/Texts.h"

#include <QSaveFile>

#include <cmath>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// The settings keep to themselves what went wrong, so it is tried once more, up to the point where
/// the file would be put in place of the one that is there.
QString whyUnwritable(const QString& path)
{
    constexpr int kSomeBytes = 4096;
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(QByteArray(kSomeBytes, '\n')) == kSomeBytes &&
        file.flush())
        return localized("%1 cannot be written").arg(path);
    return file.errorString();
}

/// Absent for what is of another type.
std::optional<QStringList> listOf(const QVariant& stored)
{
    // An empty list is stored as a value that is none, and a list of one as that one.
    if (!stored.isValid())
        return QStringList();
    if (stored.typeId() != QMetaType::QStringList && stored.typeId() != QMetaType::QString)
        return std::nullopt;
    return stored.toStringList();
}

} // namespace

StoredChoices::StoredChoices(const std::optional<QString>& path)
{
    if (path)
        m_file.emplace(*path);
}

QString StoredChoices::path() const
{
    return m_file ? m_file->fileName() : QString();
}

QStringList StoredChoices::keys() const
{
    return m_file ? m_file->keys() : QStringList();
}

bool StoredChoices::contains(const QString& key) const
{
    return m_file && m_file->contains(key);
}

QVariant StoredChoices::value(const QString& key) const
{
    return m_file ? m_file->value(key) : QVariant();
}

double StoredChoices::number(const QString& key, double fallback) const
{
    bool isNumber = false;
    const double stored = value(key).toDouble(&isNumber);
    return isNumber && std::isfinite(stored) ? stored : fallback;
}

int StoredChoices::wholeNumber(const QString& key, int fallback) const
{
    bool isNumber = false;
    const int stored = value(key).toInt(&isNumber);
    return isNumber ? stored : fallback;
}

std::optional<bool> StoredChoices::flag(const QString& key) const
{
    const QVariant stored = value(key);
    if (stored.typeId() == QMetaType::Bool)
        return stored.toBool();
    // QVariant takes any text for true.
    const QString written = word(key, {}).toLower();
    static const QStringList kYes = {u"true"_s, u"1"_s, u"yes"_s, u"on"_s};
    static const QStringList kNo = {u"false"_s, u"0"_s, u"no"_s, u"off"_s};
    if (kYes.contains(written))
        return true;
    if (kNo.contains(written))
        return false;
    return std::nullopt;
}

QString StoredChoices::word(const QString& key, const QString& fallback) const
{
    const QVariant stored = value(key);
    return stored.typeId() == QMetaType::QString ? stored.toString() : fallback;
}

QStringList StoredChoices::list(const QString& key, const QStringList& fallback) const
{
    return contains(key) ? listOf(value(key)).value_or(fallback) : fallback;
}

QStringList StoredChoices::storedList(const QString& key) const
{
    return listOf(m_file->stored(key)).value_or(QStringList());
}

QString StoredChoices::remarkBehind(const QString& key) const
{
    return m_file ? m_file->remarkBehind(key) : QString();
}

QStringList StoredChoices::takeAddedByOthers(const QString& key)
{
    if (!m_file)
        return {};
    const QStringList before = storedList(key);
    m_file->refresh();
    QStringList added = storedList(key);
    added.removeIf([&](const QString& entry) { return before.contains(entry); });
    return added;
}

std::optional<QString> StoredChoices::store(const QString& key, const QVariant& value)
{
    return tellWhether(!m_file || m_file->setValue(key, value));
}

std::optional<QString> StoredChoices::remove(const QString& key)
{
    return tellWhether(!m_file || m_file->remove(key));
}

std::optional<QString> StoredChoices::tellWhether(bool isStored)
{
    if (std::exchange(m_isStored, isStored) && !isStored)
        return whyUnwritable(path());
    return std::nullopt;
}

} // namespace mossbank
