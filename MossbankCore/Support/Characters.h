// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringView>

#include <optional>
#include <vector>

namespace mossbank {

/// Text as its reader sees it. A *character* is a grapheme: a letter with all its marks, an emoji
/// with its joiners, a line end of two signs. Nothing else in the program counts, cuts, folds or
/// compares text character by character.
///
/// Positions and lengths of ranges are in UTF-16 units, as QString has them; counts of characters
/// say so. Broken text (half a surrogate pair) is a character of its own and never a failure.
///
/// Threading: any thread.
class Characters {
public:
    Characters() = delete;

    /// How many characters `text` has.
    static qsizetype count(QStringView text);

    /// The characters of `text` in order, as views into it.
    static std::vector<QStringView> split(QStringView text);

    /// The first `characters` characters, or all of `text` if it has fewer.
    static QStringView prefix(QStringView text, qsizetype characters);

    /// `text` without its last `characters` characters; empty if it has no more than those.
    static QStringView dropLast(QStringView text, qsizetype characters);

    /// Whether a code point is a letter, a mark or a number, of any script.
    static bool isAlphanumeric(char32_t codePoint);

    /// The runs of letters, marks and numbers in `text`, as views into it. A run of marks alone,
    /// such as what makes a sign an emoji, is no word.
    static std::vector<QStringView> words(QStringView text);

    /// Whether a letter or a number ends at `place`, in UTF-16 units.
    static bool isWithinWord(QStringView text, qsizetype place);

    /// Where the letters and numbers that begin at `place` end: there, if there are none.
    static qsizetype endOfWord(QStringView text, qsizetype place);

    /// Whether the first code point is an upper-case letter.
    static bool beginsUpperCase(QStringView text);

    /// Lower case by Unicode's full rules, whatever the language of the machine: "I" is "i" for
    /// a Turkish user too, and "İ" an "i" with its dot as a mark.
    static QString lowercased(QStringView text);
};

/// A text prepared for searching without regard to case and diacritics. Preparing costs one walk;
/// searching it again and again costs little.
///
/// A letter differs from another only by what is left when case and diacritics are taken away:
/// "É" finds "e", "İ" finds "i", "STRASSE" finds "straße". The dotless "ı" is a letter of its own
/// and does not find "i"; so are the vowel signs of Indic and Thai scripts. Only whole characters
/// are found: "s" is not half of "ß".
class FoldedText {
public:
    /// Part of the text given, in UTF-16 units.
    struct Range {
        qsizetype start = 0;
        qsizetype length = 0;
        friend bool operator==(Range, Range) = default;
    };

    explicit FoldedText(QStringView text);

    /// The first place at or after `from` where `needle` stands. The range covers whole
    /// characters' marks, so that "cafe" finds all of "café" however its accent is written. An
    /// empty needle, or one of marks alone, is found nowhere.
    std::optional<Range> find(const FoldedText& needle, qsizetype from = 0) const;

    /// Whether `prefix` stands at the very start. False for an empty `prefix`.
    bool startsWith(const FoldedText& prefix) const;

private:
    bool beginsCharacter(qsizetype folded) const;

    QString m_folded;
    /// For each unit of m_folded where its character begins in the text; last, the text's length.
    std::vector<qsizetype> m_origin;
};

} // namespace mossbank
