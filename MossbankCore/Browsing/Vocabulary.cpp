// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Browsing/Vocabulary.h"

#include <QHashFunctions>

#include <utility>

namespace mossbank {

namespace {

constexpr std::size_t kSlotsAtFirst = 4096;

quint32 hashOf(QStringView word)
{
    return static_cast<quint32>(qHash(word, QHashSeed::globalSeed()));
}

} // namespace

Vocabulary::Vocabulary()
    : m_slots(kSlotsAtFirst)
    , m_ends{0}
{
}

const std::vector<quint32>& Vocabulary::numbersOf(const std::vector<QStringView>& words)
{
    m_hashes.clear();
    for (const QStringView word : words) {
        m_hashes.push_back(hashOf(word));
        __builtin_prefetch(&slotOf(m_hashes.back()));
    }
    // What stands in the slot is mostly the word itself.
    for (const quint32 hash : m_hashes)
        __builtin_prefetch(&m_ends[slotOf(hash).place]);
    m_numbers.clear();
    for (std::size_t at = 0; at < words.size(); ++at)
        m_numbers.push_back(numberOf(words[at], m_hashes[at]));
    return m_numbers;
}

quint32 Vocabulary::numberOf(QStringView word)
{
    return numberOf(word, hashOf(word));
}

quint32 Vocabulary::numberOf(QStringView word, quint32 hash)
{
    std::size_t at = hash;
    for (; slotOf(at).place != 0; ++at) {
        const Slot slot = slotOf(at);
        if (slot.hash == hash && this->word(slot.place - 1) == word)
            return slot.place - 1;
    }
    m_letters.append(word);
    m_ends.push_back(m_letters.size());
    const auto place = static_cast<quint32>(size());
    slotOf(at) = {hash, place};
    if (size() * 2 > m_slots.size())
        grow();
    return place - 1;
}

QStringView Vocabulary::word(std::size_t number) const
{
    const qsizetype start = m_ends[number];
    return {m_letters.constData() + start, m_ends[number + 1] - start};
}

void Vocabulary::grow()
{
    const std::vector<Slot> before = std::exchange(m_slots, std::vector<Slot>(m_slots.size() * 2));
    for (const Slot slot : before) {
        if (slot.place == 0)
            continue;
        std::size_t at = slot.hash;
        while (slotOf(at).place != 0)
            ++at;
        slotOf(at) = slot;
    }
}

} // namespace mossbank
