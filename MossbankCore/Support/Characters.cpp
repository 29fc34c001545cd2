// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Characters.h"

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utext.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

namespace mossbank {

namespace {

/// ICU's lengths are 32 bits. A title or a screenful of words never comes near.
constexpr qsizetype kLongest = std::numeric_limits<int32_t>::max();

const char16_t* units(QStringView text)
{
    return text.utf16();
}

/// Walks the boundaries between characters. ICU's iterators are costly to make and not to be
/// shared by threads, so each thread keeps one.
class CharacterWalk {
public:
    explicit CharacterWalk(QStringView text)
    {
        UErrorCode error = U_ZERO_ERROR;
        utext_openUChars(&m_text, units(text), std::min(text.size(), kLongest), &error);
        iterator().setText(&m_text, error);
        iterator().first();
    }
    ~CharacterWalk() { utext_close(&m_text); }
    Q_DISABLE_COPY_MOVE(CharacterWalk)

    /// The end of the next character, or absent at the end of the text.
    std::optional<qsizetype> next()
    {
        const int32_t found = iterator().next();
        if (found == icu::BreakIterator::DONE)
            return std::nullopt;
        return found;
    }

private:
    static icu::BreakIterator& iterator()
    {
        thread_local const std::unique_ptr<icu::BreakIterator> kIterator = [] {
            UErrorCode error = U_ZERO_ERROR;
            std::unique_ptr<icu::BreakIterator> made(
                icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
            if (U_FAILURE(error))
                qFatal("ICU has no rules for characters: %s", u_errorName(error));
            return made;
        }();
        return *kIterator;
    }

    UText m_text = UTEXT_INITIALIZER;
};

const icu::Normalizer2& decomposition()
{
    UErrorCode error = U_ZERO_ERROR;
    const icu::Normalizer2* instance = icu::Normalizer2::getNFDInstance(error);
    if (U_FAILURE(error))
        qFatal("ICU has no decompositions: %s", u_errorName(error));
    return *instance;
}

/// Whether a code point only marks the letter before it. The vowel signs of Indic and Thai
/// scripts are marks to Unicode and letters to their readers, so they count as letters here.
bool isIgnoredMark(UChar32 codePoint)
{
    constexpr std::uint8_t kFirstPlaceAroundLetter = 200; // classes below are scripts' own
    if (U_GET_GC_MASK(codePoint) & U_GC_ME_MASK)
        return true;
    if (!(U_GET_GC_MASK(codePoint) & U_GC_MN_MASK))
        return false;
    return u_getCombiningClass(codePoint) >= kFirstPlaceAroundLetter ||
           u_hasBinaryProperty(codePoint, UCHAR_DIACRITIC) ||
           u_hasBinaryProperty(codePoint, UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
}

/// Appends what is left of a code point without case and marks: nothing, one letter, or several
/// where it stands for several ("ß" is "ss", "ﬁ" is "fi").
void appendFolded(UChar32 codePoint, QString& folded)
{
    const auto append = [&folded](UChar32 part) {
        if (isIgnoredMark(part))
            return;
        const icu::UnicodeString letters = icu::UnicodeString(part).foldCase();
        folded.append(QStringView(letters.getBuffer(), letters.length()));
    };
    if (codePoint < 0x80) {
        folded.append(QChar(static_cast<char16_t>(u_foldCase(codePoint, U_FOLD_CASE_DEFAULT))));
        return;
    }
    // Taken apart first: some marks are letters once folded.
    icu::UnicodeString parts;
    if (!decomposition().getDecomposition(codePoint, parts)) {
        append(codePoint);
        return;
    }
    for (int32_t part = 0; part < parts.length(); part = parts.moveIndex32(part, 1))
        append(parts.char32At(part));
}

} // namespace

namespace {

/// Whether each unit surely is a character: before the first mark nothing joins its neighbour but
/// the two signs of a line's end.
bool isOneUnitEach(QStringView text)
{
    constexpr char16_t kFirstMark = 0x300;
    return std::ranges::all_of(
        text, [](QChar unit) { return unit.unicode() < kFirstMark && unit != u'\r'; });
}

} // namespace

qsizetype Characters::count(QStringView text)
{
    if (isOneUnitEach(text))
        return text.size();
    CharacterWalk walk(text);
    qsizetype characters = 0;
    while (walk.next())
        ++characters;
    return characters;
}

std::vector<QStringView> Characters::split(QStringView text)
{
    CharacterWalk walk(text);
    std::vector<QStringView> characters;
    qsizetype start = 0;
    while (const auto end = walk.next()) {
        characters.push_back(text.sliced(start, *end - start));
        start = *end;
    }
    return characters;
}

QStringView Characters::prefix(QStringView text, qsizetype characters)
{
    // A character has at least one unit.
    if (text.size() <= characters)
        return text;
    // One more, since that could belong to the last of them.
    if (characters >= 0 && isOneUnitEach(text.first(characters + 1)))
        return text.first(characters);
    CharacterWalk walk(text);
    qsizetype end = 0;
    for (qsizetype taken = 0; taken < characters; ++taken) {
        const auto next = walk.next();
        if (!next)
            return text;
        end = *next;
    }
    return text.first(end);
}

QStringView Characters::dropLast(QStringView text, qsizetype characters)
{
    // Not walked backwards: a long row of flags makes each step back look at all of it.
    return prefix(text, count(text) - characters);
}

namespace {

bool isMark(UChar32 codePoint)
{
    return (U_GET_GC_MASK(codePoint) & U_GC_M_MASK) != 0;
}

bool isLetterOrNumber(UChar32 codePoint)
{
    return (U_GET_GC_MASK(codePoint) & (U_GC_L_MASK | U_GC_N_MASK)) != 0;
}

/// Of ASCII, which nearly all of a screen is and which needs no table.
bool isPlain(UChar32 codePoint)
{
    return codePoint >= 0 && codePoint < 0x80;
}

bool isPlainLetterOrDigit(UChar32 codePoint)
{
    return (codePoint >= 'a' && codePoint <= 'z') || (codePoint >= 'A' && codePoint <= 'Z') ||
           (codePoint >= '0' && codePoint <= '9');
}

/// What belongs to the character before it: accents, and what joins two letters or parts them.
bool continuesCharacter(UChar32 codePoint)
{
    constexpr UChar32 kZeroWidthNonJoiner = 0x200c;
    constexpr UChar32 kZeroWidthJoiner = 0x200d;
    return isMark(codePoint) || codePoint == kZeroWidthNonJoiner || codePoint == kZeroWidthJoiner;
}

} // namespace

bool Characters::isAlphanumeric(char32_t codePoint)
{
    return (U_GET_GC_MASK(static_cast<UChar32>(codePoint)) &
            (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0;
}

std::vector<QStringView> Characters::words(QStringView text)
{
    std::vector<QStringView> words;
    qsizetype start = 0;
    qsizetype end = 0;
    bool isWord = false;
    const auto finish = [&] {
        if (std::exchange(isWord, false))
            words.push_back(text.sliced(start, end - start));
    };
    while (end < text.size()) {
        qsizetype next = end;
        UChar32 codePoint = 0;
        U16_NEXT(units(text), next, text.size(), codePoint);
        if (isPlainLetterOrDigit(codePoint)) {
            isWord = true;
        } else if (isPlain(codePoint) || !isAlphanumeric(static_cast<char32_t>(codePoint))) {
            finish();
            start = next;
        } else if (!isMark(codePoint)) {
            isWord = true;
        }
        end = next;
    }
    finish();
    return words;
}

bool Characters::isWithinWord(QStringView text, qsizetype place)
{
    while (place > 0) {
        UChar32 codePoint = 0;
        U16_PREV(units(text), 0, place, codePoint);
        if (!continuesCharacter(codePoint))
            return isLetterOrNumber(codePoint);
    }
    return false;
}

qsizetype Characters::endOfWord(QStringView text, qsizetype place)
{
    qsizetype next = place;
    while (next < text.size()) {
        UChar32 codePoint = 0;
        U16_NEXT(units(text), next, text.size(), codePoint);
        if (!isLetterOrNumber(codePoint) && !continuesCharacter(codePoint))
            break;
        place = next;
    }
    return place;
}

bool Characters::beginsUpperCase(QStringView text)
{
    if (text.isEmpty())
        return false;
    UChar32 codePoint = 0;
    U16_GET(units(text), 0, 0, text.size(), codePoint);
    return u_isupper(codePoint) != 0;
}

QString Characters::lowercased(QStringView text)
{
    const auto length = static_cast<int32_t>(std::min(text.size(), kLongest));
    QString lower(text.size(), Qt::Uninitialized);
    const auto write = [&] {
        UErrorCode error = U_ZERO_ERROR;
        return u_strToLower(reinterpret_cast<char16_t*>(lower.data()),
                            static_cast<int32_t>(lower.size()), units(text), length, "", &error);
    };
    const int32_t needed = write();
    const bool fitted = needed <= lower.size();
    lower.resize(needed);
    if (!fitted)
        write();
    return lower;
}

FoldedText::FoldedText(QStringView text)
{
    m_folded.reserve(text.size());
    m_origin.reserve(static_cast<std::size_t>(text.size()) + 1);
    CharacterWalk walk(text);
    qsizetype at = 0;
    while (const auto end = walk.next()) {
        const qsizetype origin = at;
        while (at < *end) {
            UChar32 codePoint = 0;
            U16_NEXT(units(text), at, *end, codePoint);
            appendFolded(codePoint, m_folded);
        }
        m_origin.resize(static_cast<std::size_t>(m_folded.size()), origin);
    }
    m_origin.push_back(text.size());
}

bool FoldedText::beginsCharacter(qsizetype folded) const
{
    const auto at = static_cast<std::size_t>(folded);
    return at == 0 || m_origin[at] != m_origin[at - 1];
}

std::optional<FoldedText::Range> FoldedText::find(const FoldedText& needle, qsizetype from) const
{
    if (needle.m_folded.isEmpty())
        return std::nullopt;
    const auto firstUnit = std::lower_bound(m_origin.begin(), m_origin.end(), from);
    qsizetype at = firstUnit - m_origin.begin();
    while ((at = m_folded.indexOf(needle.m_folded, at)) >= 0) {
        const qsizetype end = at + needle.m_folded.size();
        // A syllable, a ligature or an emoji has several units; half of one is no match.
        if (beginsCharacter(at) && beginsCharacter(end)) {
            const qsizetype start = m_origin[static_cast<std::size_t>(at)];
            return Range{start, m_origin[static_cast<std::size_t>(end)] - start};
        }
        ++at;
    }
    return std::nullopt;
}

bool FoldedText::startsWith(const FoldedText& prefix) const
{
    return !prefix.m_folded.isEmpty() && m_folded.startsWith(prefix.m_folded) &&
           beginsCharacter(prefix.m_folded.size());
}

} // namespace mossbank
