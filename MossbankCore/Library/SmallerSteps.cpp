// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/SmallerSteps.h"

#include <QRegularExpression>
#include <QStringList>

#include <optional>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// A letter or digit as the index holds it, or absent where that is not certain.
std::optional<QChar> indexedLetter(const QString& typed)
{
    const QString parts = typed.normalized(QString::NormalizationForm_D);
    const QChar letter = parts.at(0);
    const bool hasOneMark = parts.size() == 1 || (parts.size() == 2 && parts.at(1).isMark());
    const bool isPlain = (letter >= u'a' && letter <= u'z') || (letter >= u'0' && letter <= u'9');
    return hasOneMark && (isPlain || typed == u"ı") ? std::optional(letter) : std::nullopt;
}

/// The words that the index holds, in the order of their UTF-8 bytes.
class IndexedWords {
public:
    /// Absent where SQLite was built without that, or where nothing is indexed.
    static std::optional<IndexedWords> of(Database& database)
    {
        const bool isThere =
            database.tryExecute(u"CREATE VIRTUAL TABLE IF NOT EXISTS temp.indexed_words "
                                "USING fts5vocab(main, memory_search, instance)"_s);
        return isThere ? std::optional(IndexedWords(database)) : std::nullopt;
    }

    /// The first one behind `text`; empty when there is none.
    QString behind(const QString& text)
    {
        m_next.reset();
        m_next.bind({text});
        return m_next.step() ? m_next.text(0) : QString();
    }

private:
    explicit IndexedWords(Database& database)
        : m_next(
              database.statement(u"SELECT term FROM temp.indexed_words WHERE term > ? LIMIT 1"_s))
    {
    }

    Statement m_next;
};

/// All that begins with `letter`, by the letter behind it. Absent when those are too many.
std::optional<QString> byNextLetter(IndexedWords& words, QChar letter)
{
    constexpr qsizetype kMost = 100;
    constexpr char32_t kBehindAllLetters = U'\U0010FFFF';
    QStringList terms = {u"\"%1\""_s.arg(letter)};
    QString last = letter;
    while (terms.size() <= kMost) {
        const QString word = words.behind(last);
        if (!word.startsWith(letter))
            return u'(' + terms.join(u" OR "_s) + u')';
        const qsizetype length = word.at(1).isHighSurrogate() ? 3 : 2;
        const QString beginning = word.first(length);
        terms.append(u"\"%1\"*"_s.arg(beginning));
        last = beginning + QString::fromUcs4(&kBehindAllLetters, 1);
    }
    return std::nullopt;
}

} // namespace

QString inSmallerSteps(Database& database, const QString& expression)
{
    static const QRegularExpression kOneLetter(u"\"(.)\"\\*"_s);
    if (!expression.contains(kOneLetter))
        return expression;
    auto words = IndexedWords::of(database);
    if (!words)
        return expression;

    QString parted;
    qsizetype end = 0;
    for (const auto& found : kOneLetter.globalMatch(expression)) {
        parted += expression.sliced(end, found.capturedStart() - end);
        const auto letter = indexedLetter(found.captured(1));
        parted +=
            (letter ? byNextLetter(*words, *letter) : std::nullopt).value_or(found.captured());
        end = found.capturedEnd();
    }
    return parted + expression.sliced(end);
}

} // namespace mossbank
