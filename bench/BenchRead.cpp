// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchRead.h"

#include "Mossbank/Platform/PlatformFactory.h"
#include "MossbankCore/Capture/ImageProcessor.h"
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchOutput.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QImage>
#include <QProcess>

#include <cstdio>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

void print(const QByteArray& bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
}

QImage load(const QString& path)
{
    QImage image(path);
    if (image.isNull())
        throw Failure(u"%1 is not a picture that can be read."_s.arg(path));
    return image;
}

/// Milliseconds that the stock reader takes as a process of its own, start to end.
double stockMilliseconds(const QString& path)
{
    QElapsedTimer timer;
    timer.start();
    QProcess stock;
    stock.start(u"tesseract"_s, {path, u"-"_s, u"-l"_s, u"eng+tur"_s});
    if (!stock.waitForFinished(-1) || stock.exitCode() != 0)
        throw Failure(u"tesseract could not be run: install the package tesseract-ocr."_s);
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

void time(const QString& path, TextRecognizer& recognizer)
{
    const QImage image = load(path);
    QElapsedTimer timer;
    timer.start();
    const QString text = ImageProcessor::recognize(image, recognizer);
    const double milliseconds = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    const double baseline = stockMilliseconds(path);
    const QJsonObject figures = {
        {u"bench"_s, u"read"_s},        {u"file"_s, QFileInfo(path).fileName()},
        {u"characters"_s, text.size()}, {u"ms"_s, milliseconds},
        {u"baseline_ms"_s, baseline},   {u"ratio"_s, milliseconds / baseline},
    };
    printFigures(figures);
}

} // namespace

int benchRead(const QStringList& arguments)
{
    QStringList files = arguments;
    const bool isTimed = files.removeAll(u"--time"_s) > 0;
    if (files.isEmpty()) {
        return benchWrongUse("read FILE... [--time]");
    }
    try {
        const auto recognizer = makeTextRecognizer();
        if (isTimed) // the first reading loads the models
            ImageProcessor::recognize(load(files.first()), *recognizer);
        for (qsizetype index = 0; index < files.size(); ++index) {
            if (isTimed) {
                time(files[index], *recognizer);
                continue;
            }
            const QString text = ImageProcessor::recognize(load(files[index]), *recognizer);
            print((index > 0 ? "\f" : "") + text.toUtf8());
        }
    } catch (const Failure& failure) {
        return benchFailed(failure.message());
    }
    return 0;
}

} // namespace mossbank
