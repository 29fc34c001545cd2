// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Scenes/Dice.h"

#include <QString>
#include <QStringList>

namespace mossbank::test {

extern const char16_t* const kEnglishWords;
extern const char16_t* const kTurkishWords;

/// What stands on a made screen: words by chance, and what programs show besides words.
class SceneWords {
public:
    /// `turkish` of a hundred words are Turkish, the others English.
    SceneWords(Dice& dice, int turkish);

    /// One word in lower case.
    QString word();
    /// One word with a capital.
    QString name();
    /// Words between spaces, the first with a capital.
    QString phrase(int least, int most);
    /// A phrase with a comma here and there, ended by a full stop.
    QString sentence(int least, int most);
    /// As many sentences.
    QString sentences(int count);

    /// A number of up to `digits` digits.
    QString number(int digits);
    /// Such as "1,204.50".
    QString amount();
    /// Such as "14:05".
    QString time();
    /// Such as "12 March 2024", "2024-03-12" or "12.03.2024".
    QString date();
    /// Such as "14.2 MB".
    QString fileSize();

    /// Such as "meadow_report.pdf". File names, identifiers and addresses are of English words.
    QString fileName(const QStringList& endings);
    /// Such as "ribbonCount", "ribbon_count" or "RibbonCount".
    QString identifier();
    QString email();
    QString host();
    QString address();

private:
    QString plain();

    Dice& m_dice;
    int m_turkish;
};

/// `word` with its first letter in upper case; "i" becomes "İ" where the word is Turkish.
QString capitalised(const QString& word, bool turkish);

} // namespace mossbank::test
