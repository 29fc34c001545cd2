// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringView>

#include <cstddef>
#include <vector>

namespace mossbank {

/// The different words of many texts, letter by letter, each under a number: 0 for the first that
/// came, and so on.
///
/// It is for a million words of which tens of thousands are different. Then much of the time goes
/// by waiting for memory that is in none of the processor's caches, so a word takes little of it,
/// in few places, and those of a whole text are asked for ahead.
///
/// Threading: one thread at a time.
class Vocabulary {
public:
    Vocabulary();

    /// The number of each, in their order; a new one has the next. Valid until the next call.
    const std::vector<quint32>& numbersOf(const std::vector<QStringView>& words);
    /// The same of one.
    quint32 numberOf(QStringView word);

    /// Valid until another word comes.
    QStringView word(std::size_t number) const;
    /// How many there are.
    std::size_t size() const { return m_ends.size() - 1; }

private:
    struct Slot {
        quint32 hash = 0;
        /// The word's number plus one; 0 while it is free.
        quint32 place = 0;
    };

    Slot& slotOf(std::size_t hash) { return m_slots[hash & (m_slots.size() - 1)]; }
    quint32 numberOf(QStringView word, quint32 hash);
    void grow();

    /// A word stands in the slot that its hash names, or in the first behind it that was free. A
    /// power of two, at most half of them taken.
    std::vector<Slot> m_slots;
    /// All words, one behind the other.
    QString m_letters;
    /// Where each begins, and last, where the next one will.
    std::vector<qsizetype> m_ends;
    std::vector<quint32> m_hashes;
    std::vector<quint32> m_numbers;
};

} // namespace mossbank
