// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSet>
#include <QString>

namespace mossbank {

/// Words that say nothing of what a question or a stretch of work is about, English and Turkish
/// in one: the questions and the screens of one user may mix them.
///
/// All are in lower case, and so must be whatever is looked for among them.
///
/// Threading: any thread.
class Stopwords {
public:
    Stopwords() = delete;

    /// Common everywhere.
    static const QSet<QString>& common();
    /// Common in questions.
    static const QSet<QString>& asking();
    /// Both: what the words of a question are held against.
    static const QSet<QString>& inQuestions();
};

} // namespace mossbank
