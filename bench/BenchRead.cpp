// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchRead.h"

#include "Mossbank/Platform/PlatformFactory.h"
#include "MossbankCore/Capture/ImageProcessor.h"
#include "MossbankCore/Capture/TextLineFinder.h"
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchMemory.h"
#include "bench/BenchOutput.h"
#include "bench/BenchTiming.h"

#include <QFileInfo>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <vector>

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
    QProcess stock;
    const double time = milliseconds([&] {
        stock.start(u"tesseract"_s, {path, u"-"_s, u"-l"_s, u"eng+tur"_s});
        stock.waitForFinished(-1);
    });
    if (stock.error() != QProcess::UnknownError || stock.exitCode() != 0)
        throw Failure(u"tesseract could not be run: install the package tesseract-ocr."_s);
    return time;
}

QRect widestLine(const QImage& image)
{
    const QList<QRect> lines = TextLineFinder::find(image);
    const auto widest = std::ranges::max_element(lines, {}, &QRect::width);
    return widest == lines.end() ? QRect() : *widest;
}

/// The picture with the second half of its widest line replaced by the first: one line changed, in
/// letters of its own.
QImage withOneLineChanged(const QImage& image)
{
    const QRect line = widestLine(image);
    QImage changed = image;
    for (int y = line.top(); y <= line.bottom(); ++y) {
        for (int x = 0; x < line.width() / 2; ++x) {
            changed.setPixel(line.left() + line.width() / 2 + x, y,
                             image.pixel(line.left() + x, y));
        }
    }
    return changed;
}

/// The picture with another line in the place of its widest one, in a language that it has none of:
/// a message arrived.
QImage withLineInTurkish(const QImage& image)
{
    const QRect line = widestLine(image);
    QImage changed = image;
    QPainter painter(&changed);
    painter.fillRect(line, Qt::white);
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(std::max(12, line.height() * 3 / 4));
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(line, Qt::AlignCenter, u"Yarın akşam görüşürüz"_s);
    return changed;
}

/// The times of all pictures.
struct ReadTimes {
    std::vector<double> first;
    std::vector<double> again;
    std::vector<double> inTurkish;
    std::vector<double> stock;
};

/// The highest of the ratios picture by picture.
double highestRatio(const std::vector<double>& times, const std::vector<double>& baselines)
{
    double highest = 0;
    for (std::size_t at = 0; at < times.size(); ++at)
        highest = std::max(highest, times[at] / baselines[at]);
    return highest;
}

void time(const QString& path, TextRecognizer& recognizer, ReadTimes& times)
{
    const QImage image = load(path).convertToFormat(QImage::Format_RGB32);
    QImage empty(image.size(), QImage::Format_RGB32);
    empty.fill(Qt::white);
    const QImage changed = withOneLineChanged(image);
    const QImage message = withLineInTurkish(image);
    const auto read = [&](const QImage& picture) {
        return milliseconds([&] { recognizer.recognize(picture, {}); });
    };
    // Nothing of the picture before may be of use.
    read(empty);
    const double first = read(image);
    // To the change, and back from it.
    const double again = median({read(changed), read(image), read(changed)});
    std::vector<double> messages;
    for (int round = 0; round < 3; ++round) {
        read(image);
        messages.push_back(read(message));
    }
    const double inTurkish = median(messages);
    const double stock = stockMilliseconds(path);
    times.first.push_back(first);
    times.again.push_back(again);
    times.inTurkish.push_back(inTurkish);
    times.stock.push_back(stock);
    printFigures({
        {u"bench"_s, u"read"_s},
        {u"file"_s, QFileInfo(path).fileName()},
        {u"ms"_s, rounded(first)},
        {u"baseline_ms"_s, rounded(stock)},
        {u"ratio"_s, rounded(first / stock)},
        {u"one_line_changed_ms"_s, rounded(again)},
        {u"one_line_changed_ratio"_s, rounded(again / first)},
        {u"other_language_line_ratio"_s, rounded(inTurkish / first)},
    });
}

void printAll(const ReadTimes& times, TextRecognizer& recognizer)
{
    constexpr double kNearlyAll = 0.95;
    const auto sum = [](const std::vector<double>& all) {
        return std::accumulate(all.begin(), all.end(), 0.0);
    };
    const double highest = residentMegabytes("VmHWM");
    const double before = residentMegabytes("VmRSS");
    recognizer.rest();
    QThread::sleep(2); // it gives its memory back on a thread of its own
    printFigures({
        {u"bench"_s, u"read"_s},
        {u"what"_s, u"all"_s},
        {u"ms"_s, rounded(sum(times.first))},
        {u"baseline_ms"_s, rounded(sum(times.stock))},
        {u"ratio"_s, rounded(sum(times.first) / sum(times.stock))},
        {u"p95_ms"_s, rounded(quantile(times.first, kNearlyAll))},
        {u"longest_ms"_s, rounded(quantile(times.first, 1))},
        {u"one_line_changed_ratio"_s, rounded(sum(times.again) / sum(times.first))},
        {u"one_line_changed_ratio_worst"_s, rounded(highestRatio(times.again, times.first))},
        {u"other_language_line_ratio"_s, rounded(sum(times.inTurkish) / sum(times.first))},
        {u"other_language_line_ratio_worst"_s, rounded(highestRatio(times.inTurkish, times.first))},
        {u"highest_mb"_s, rounded(highest)},
        {u"resident_mb"_s, rounded(before)},
        {u"resident_after_rest_mb"_s, rounded(residentMegabytes("VmRSS"))},
    });
}

/// The words of each picture, form feeds between.
void printWords(const QStringList& files, TextRecognizer& recognizer)
{
    for (qsizetype index = 0; index < files.size(); ++index) {
        const QString text = ImageProcessor::recognize(load(files[index]), recognizer);
        print((index > 0 ? "\f" : "") + text.toUtf8());
    }
}

void printTimes(const QStringList& files, TextRecognizer& recognizer)
{
    ImageProcessor::recognize(load(files.first()), recognizer); // loads the models
    ReadTimes times;
    for (const QString& file : files)
        time(file, recognizer, times);
    printAll(times, recognizer);
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
        if (isTimed)
            printTimes(files, *recognizer);
        else
            printWords(files, *recognizer);
    } catch (const Failure& failure) {
        return benchFailed(failure.message());
    }
    return 0;
}

} // namespace mossbank
