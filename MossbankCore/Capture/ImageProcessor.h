// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/TextRecognizer.h"

#include <QByteArray>
#include <QCoroTask>
#include <QImage>
#include <QString>
#include <QStringList>

#include <optional>

namespace mossbank {

/// What a picture of the screen is kept as.
struct ProcessedImage {
    /// The encoded picture.
    QByteArray jpeg;
    /// The words in it, lines joined by line feeds. May be empty.
    QString text;
    /// False where the reading was given up before the picture's end.
    bool isWhole = true;

    friend bool operator==(const ProcessedImage&, const ProcessedImage&) = default;
};

/// Turns a picture of the screen into what is kept of it. The dearest step of a capture, taken
/// only when the picture is going to be saved.
///
/// Threading: `encode` and `recognize` run where they are called; `process` needs a thread with
/// an event loop and does both on the global pool, a thread each, for which it has that pool keep
/// two threads at least. The recogniser may have threads of its own besides.
class ImageProcessor {
public:
    ImageProcessor() = delete;

    /// Language correction stays off: see TextRecognizer::Options.
    static constexpr bool kCorrectsLanguage = false;

    /// Encodes `image` and reads it, both at once. `quality` is held to 0.1 to 1.0. Where `text`
    /// is given it is taken for the words as it stands and nothing is read.
    ///
    /// Throws what encoding or reading throw, encoding's failure first; both have ended by then.
    /// `recognizer` must outlive the task.
    static QCoro::Task<ProcessedImage>
    process(QImage image, double quality, std::optional<QString> text, TextRecognizer& recognizer);

    /// `image` as a JPEG of `quality` from 0 to 1. Throws StoreError.
    static QByteArray encode(const QImage& image, double quality);

    /// The words in `image`, pieces joined by line feeds. Throws what the recogniser throws.
    static QString recognize(const QImage& image, TextRecognizer& recognizer,
                             bool correcting = kCorrectsLanguage,
                             const std::optional<QStringList>& languages = {});
};

} // namespace mossbank
