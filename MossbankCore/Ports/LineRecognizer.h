// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class QImage;

namespace mossbank {

/// A word that was read, and how sure the recogniser is of it.
struct RecognizedWord {
    QString text;
    /// 0 to 100.
    double confidence = 0;

    friend bool operator==(const RecognizedWord&, const RecognizedWord&) = default;
};

/// Languages to read in, by the recogniser's names, in the order to try them.
struct LineLanguages {
    /// Those asked for, or, with none, those that any screen of this user may be in. Never empty.
    QStringList expected;
    /// With none asked for, what is installed besides: a whole world's, perhaps.
    QStringList others;
};

/// Reads a single line of text.
///
/// Threading: any thread, several at once.
/// Errors: a Failure that names what is missing.
class LineRecognizer {
public:
    LineRecognizer() = default;
    virtual ~LineRecognizer() = default;
    LineRecognizer(const LineRecognizer&) = delete;
    LineRecognizer& operator=(const LineRecognizer&) = delete;

    /// The languages to read in: those of `codes` (BCP 47) that are languages, or, with none,
    /// those that are installed.
    virtual LineLanguages languages(const QStringList& codes) = 0;

    /// The words of a grey image of one line, dark on white, from left to right.
    ///
    /// `correctsLanguage`: whether what is seen may be replaced by what a dictionary expects.
    virtual QList<RecognizedWord> read(const QImage& line, const QString& language,
                                       bool correctsLanguage) = 0;

    /// Gives its memory back. Reading afterwards takes as long as the first time.
    virtual void rest() = 0;
};

} // namespace mossbank
