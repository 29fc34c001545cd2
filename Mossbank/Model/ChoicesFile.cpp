// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/ChoicesFile.h"

#include "MossbankCore/Support/Failure.h"
#include "MossbankCore/Support/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSettings>

#include <optional>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// Absent also for what is no file, since a pipe would be waited for, and for what is far too large
/// to hold choices: reading 100 MB as such takes many seconds and more than a gigabyte of memory.
std::optional<QByteArray> contentOf(const QString& path)
{
    constexpr qint64 kMostBytes = 1024 * 1024;
    const QFileInfo place(path);
    QFile file(path);
    if (!place.isFile() || place.size() > kMostBytes || !file.open(QIODevice::ReadOnly))
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

/// QSettings takes a line for a choice that others take for a remark.
bool isRemark(const QString& key)
{
    return key.section(u'/', -1).startsWith(u'#');
}

const QString kDraft = u".draft"_s;

} // namespace

ChoicesFile::ChoicesFile(const QString& path)
    : m_path(path)
    , m_isReadable(content() != Content::Unreadable)
{
    clearUp();
    if (m_isReadable)
        read();
}

bool ChoicesFile::setValue(const QString& key, const QVariant& value)
{
    m_values.insert(key, value);
    m_unwritten.insert(key);
    return write();
}

bool ChoicesFile::remove(const QString& key)
{
    // Somebody else may have written it.
    refresh();
    if (m_values.remove(key) > 0)
        m_unwritten.insert(key);
    return m_unwritten.isEmpty() || write();
}

void ChoicesFile::refresh()
{
    if (content() == Content::Whole)
        read();
}

QString ChoicesFile::remarkBehind(const QString& key) const
{
    const QRegularExpression line(
        uR"(^[ \t]*%1[ \t]*=(?:[^;"\\\n]|\\.|"(?:[^"\\]|\\.)*")*;(.*)$)"_s.arg(
            QRegularExpression::escape(key)),
        QRegularExpression::MultilineOption);
    const QString content = QString::fromUtf8(contentOf(m_path).value_or(QByteArray()));
    return line.match(content).captured(1).trimmed();
}

ChoicesFile::Content ChoicesFile::content() const
{
    if (!QFileInfo::exists(m_path))
        return Content::None;
    const auto content = contentOf(m_path);
    if (!content || hasMistake(*content))
        return Content::Unreadable;
    return content->trimmed().isEmpty() ? Content::None : Content::Whole;
}

void ChoicesFile::read()
{
    // For reading alone: what it once could not write, QSettings would write at any time later,
    // over whatever is there by then.
    const QSettings file(m_path, QSettings::IniFormat);
    m_stored.clear();
    for (const QString& key : file.allKeys()) {
        if (!isRemark(key))
            m_stored.insert(key, file.value(key));
    }
    QVariantMap values = m_stored;
    for (const QString& key : std::as_const(m_unwritten)) {
        values.remove(key);
        if (const auto own = m_values.constFind(key); own != m_values.constEnd())
            values.insert(key, *own);
    }
    m_values = std::move(values);
}

bool ChoicesFile::write()
{
    const Content before = content();
    if (before == Content::Whole)
        read();
    if (before == Content::Unreadable && !keepUnderAnotherName())
        return false;
    if (!writeAnew(m_values))
        return false;
    m_unwritten.clear();
    m_stored = m_values;
    return true;
}

bool ChoicesFile::writeAnew(const QVariantMap& values) const
{
    const QFileInfo place(m_path);
    // Whoever has write-protected it means that.
    if (place.exists() && !place.isWritable())
        return false;
    const QString draft = m_path + kDraft;
    const auto draftGoes = qScopeGuard([&draft] { QFile::remove(draft); });
    try {
        Files::createFolder(place.path());
        {
            QSettings file(draft, QSettings::IniFormat);
            file.clear();
            for (auto value = values.constBegin(); value != values.constEnd(); ++value)
                file.setValue(value.key(), *value);
            file.sync();
            if (file.status() != QSettings::NoError)
                return false;
        }
        const auto content = contentOf(draft);
        if (!content && !values.isEmpty())
            return false;
        // A link may lead to another.
        const QString end = place.exists() ? place.canonicalFilePath() : place.symLinkTarget();
        Files::writeAtomically(place.isSymLink() ? end : m_path, content.value_or(QByteArray()));
    } catch (const FileError&) {
        return false;
    }
    return true;
}

void ChoicesFile::clearUp() const
{
    const QFileInfo place(m_path);
    const QString draft = place.fileName() + kDraft;
    for (const QString& name : place.dir().entryList(QDir::Files | QDir::Hidden)) {
        const auto unfinished = Files::beingWritten(name);
        if (name == draft || unfinished == place.fileName() || unfinished == draft)
            QFile::remove(place.dir().filePath(name));
    }
}

bool ChoicesFile::keepUnderAnotherName() const
{
    const auto content = contentOf(m_path);
    if (!content)
        return false;
    // What was kept before is kept.
    QString name = m_path + u".unreadable"_s;
    for (int number = 2; QFileInfo::exists(name) && contentOf(name) != content; ++number)
        name = u"%1.unreadable.%2"_s.arg(m_path).arg(number);
    try {
        Files::writeAtomically(name, *content);
    } catch (const FileError&) {
        return false;
    }
    return true;
}

} // namespace mossbank
