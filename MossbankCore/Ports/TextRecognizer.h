// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

class QImage;

namespace mossbank {

/// Reads the words in a picture.
///
/// Threading: any thread, several at once.
class TextRecognizer {
public:
    struct Options {
        /// Whether the recogniser may replace what it sees by what a dictionary expects. Off for
        /// screens: identifiers, names and numbers are what is searched for.
        bool correctsLanguage = false;
        /// The languages to expect, as BCP 47 codes ("en", "tr"). Absent: all that the recogniser
        /// has and the user may need, found out by itself.
        std::optional<QStringList> languages = {};
    };

    struct Reading {
        /// The pieces of text found, the best reading of each, in reading order. None is no
        /// failure.
        QStringList lines;
        /// False where the picture was given up before its end: there may be more in it.
        bool isWhole = true;
    };

    TextRecognizer() = default;
    virtual ~TextRecognizer() = default;
    TextRecognizer(const TextRecognizer&) = delete;
    TextRecognizer& operator=(const TextRecognizer&) = delete;

    /// Throws what the recogniser reports as a failure, a `Failure` where it can.
    virtual Reading read(const QImage& image, const Options& options) = 0;

    /// The same for whom what was found is enough.
    QStringList recognize(const QImage& image, const Options& options)
    {
        return read(image, options).lines;
    }

    /// Forgets what it read and gives its memory back, until the next picture. Returns at once; a
    /// reading under way goes on, and is forgotten when it ends.
    virtual void rest() = 0;
};

} // namespace mossbank
