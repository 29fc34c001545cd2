// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/ImageProcessor.h"

#include "MossbankCore/Library/StoreError.h"
#include "MossbankCore/Support/Awaited.h"
#include "MossbankCore/Support/Background.h"

#include <QBuffer>
#include <QImageWriter>
#include <QThreadPool>

#include <algorithm>
#include <cmath>
#include <exception>
#include <tuple>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// Has the global pool do both jobs of a picture at the same time, also where there is a single
/// processor: the save waits for the longer of them and not for both.
void makeRoomForBoth()
{
    constexpr int kJobs = 2;
    QThreadPool& pool = *QThreadPool::globalInstance();
    if (pool.maxThreadCount() < kJobs)
        pool.setMaxThreadCount(kJobs);
}

/// In this order a number that is none counts as the lowest.
double readable(double quality)
{
    return std::min(std::max(0.1, quality), 1.0);
}

QString joined(const QStringList& lines)
{
    return lines.join(u'\n');
}

QFuture<QByteArray> encoding(const QImage& image, double quality)
{
    return inBackground([image, quality] { return ImageProcessor::encode(image, quality); });
}

/// What a picture says, and whether that is all of it.
using Words = std::pair<QString, bool>;

QFuture<Words> reading(const QImage& image, TextRecognizer& recognizer)
{
    return inBackground([image, &recognizer]() -> Words {
        const TextRecognizer::Reading read =
            recognizer.read(image, {.correctsLanguage = ImageProcessor::kCorrectsLanguage});
        return {joined(read.lines), read.isWhole};
    });
}

} // namespace

QCoro::Task<ProcessedImage> ImageProcessor::process(QImage image, double quality,
                                                    std::optional<QString> text,
                                                    TextRecognizer& recognizer)
{
    makeRoomForBoth();
    const QFuture<QByteArray> encoded = encoding(image, readable(quality));
    const QFuture<Words> read =
        text ? QtFuture::makeReadyFuture(Words(*text, true)) : reading(image, recognizer);

    std::exception_ptr failure;
    ProcessedImage processed;
    try {
        processed.jpeg = co_await awaited(encoded);
    } catch (...) {
        failure = std::current_exception();
    }
    // Waited for even when the picture failed: no work outlives the task that started it.
    try {
        std::tie(processed.text, processed.isWhole) = co_await awaited(read);
    } catch (...) {
        if (!failure)
            failure = std::current_exception();
    }
    if (failure)
        std::rethrow_exception(failure);
    co_return processed;
}

QByteArray ImageProcessor::encode(const QImage& image, double quality)
{
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    QImageWriter writer(&buffer, "jpeg");
    if (!buffer.open(QIODevice::WriteOnly) || !writer.canWrite())
        throw StoreError(u"Could not encode the screenshot."_s);
    writer.setQuality(static_cast<int>(std::lround(quality * 100)));
    if (!writer.write(image))
        throw StoreError(u"Could not finish writing the screenshot."_s);
    return jpeg;
}

QString ImageProcessor::recognize(const QImage& image, TextRecognizer& recognizer, bool correcting,
                                  const std::optional<QStringList>& languages)
{
    return joined(
        recognizer.recognize(image, {.correctsLanguage = correcting, .languages = languages}));
}

} // namespace mossbank
