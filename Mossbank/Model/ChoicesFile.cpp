// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/ChoicesFile.h"

#include "MossbankCore/Support/Failure.h"
#include "MossbankCore/Support/Files.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <optional>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

std::optional<QByteArray> contentOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray content = file.readAll();
    return file.error() == QFile::NoError ? std::optional(content) : std::nullopt;
}

/// Goes to the end of the line, beyond those line breaks that are escaped. Whether it says
/// something that a file of choices may say.
bool skipGoodLine(const QByteArray& content, qsizetype& place)
{
    while (place < content.size() && (content.at(place) == ' ' || content.at(place) == '\t'))
        ++place;
    const char first = place < content.size() ? content.at(place) : '\n';
    bool isGood = first == '\n' || first == '\r' || first == ';' || first == '#';
    bool isQuoted = false;
    bool isRemark = false;
    while (place < content.size() && content.at(place) != '\n') {
        const char sign = content.at(place++);
        if (sign == '\\' && !isRemark)
            ++place;
        isQuoted = isQuoted != (sign == '"' && !isRemark);
        isRemark = isRemark || (sign == ';' && !isQuoted);
        isGood = isGood || (sign == (first == '[' ? ']' : '=') && !isRemark);
    }
    ++place;
    return isGood && !isQuoted;
}

/// QSettings says nothing of a quotation without its end, which swallows the lines behind it, and
/// of the rest only as it comes to it. It also minds remarks that begin with #, which do no harm.
bool hasMistake(const QByteArray& content)
{
    const QByteArray mark = "\xef\xbb\xbf";
    for (qsizetype place = content.startsWith(mark) ? mark.size() : 0; place < content.size();) {
        if (!skipGoodLine(content, place))
            return true;
    }
    return false;
}

bool canBeRead(const QSettings& settings)
{
    if (settings.status() != QSettings::NoError)
        return false;
    if (!QFileInfo::exists(settings.fileName()))
        return true;
    const auto content = contentOf(settings.fileName());
    return content && !hasMistake(*content);
}

} // namespace

ChoicesFile::ChoicesFile(const QString& path)
    : m_settings(path, QSettings::IniFormat)
    , m_isReadable(canBeRead(m_settings))
{
}

bool ChoicesFile::contains(const QString& key) const
{
    return isHeld() ? m_held.contains(key) : m_settings.contains(key);
}

QVariant ChoicesFile::value(const QString& key) const
{
    return isHeld() ? m_held.value(key) : m_settings.value(key);
}

void ChoicesFile::setValue(const QString& key, const QVariant& value)
{
    if (!isHeld()) {
        m_settings.setValue(key, value);
        return;
    }
    m_held.insert(key, value);
    m_isBegunAnew = keepUnderAnotherName();
    if (!m_isBegunAnew)
        return;
    m_settings.clear();
    for (auto held = m_held.constBegin(); held != m_held.constEnd(); ++held)
        m_settings.setValue(held.key(), held.value());
}

void ChoicesFile::remove(const QString& key)
{
    if (isHeld())
        m_held.remove(key);
    else
        m_settings.remove(key);
}

QString ChoicesFile::remarkBehind(const QString& key) const
{
    const QRegularExpression line(
        uR"(^[ \t]*%1[ \t]*=(?:[^;"\\\n]|\\.|"(?:[^"\\]|\\.)*")*;(.*)$)"_s.arg(
            QRegularExpression::escape(key)),
        QRegularExpression::MultilineOption);
    const QString content = QString::fromUtf8(contentOf(fileName()).value_or(QByteArray()));
    return line.match(content).captured(1).trimmed();
}

bool ChoicesFile::sync()
{
    if (isHeld())
        return false;
    m_settings.sync();
    // What went wrong with a file once, its object says for ever; a fresh one, what is so now.
    return QSettings(fileName(), QSettings::IniFormat).status() == QSettings::NoError;
}

bool ChoicesFile::keepUnderAnotherName() const
{
    const auto content = contentOf(fileName());
    if (!content)
        return false;
    // What was kept before is kept.
    QString name = fileName() + u".unreadable"_s;
    for (int number = 2; QFileInfo::exists(name) && contentOf(name) != content; ++number)
        name = u"%1.unreadable.%2"_s.arg(fileName()).arg(number);
    try {
        Files::writeAtomically(name, *content);
    } catch (const FileError&) {
        return false;
    }
    return true;
}

} // namespace mossbank
