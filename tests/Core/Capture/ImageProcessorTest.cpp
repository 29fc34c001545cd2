// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/ImageProcessor.h"

#include "MossbankCore/Library/StoreError.h"
#include "tests/Fakes/FakeTextRecognizer.h"

#include <QSemaphore>
#include <QTest>
#include <QThread>
#include <QThreadPool>

#include <atomic>
#include <limits>
#include <stdexcept>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// A picture in which another quality gives other bytes.
QImage colourful(QSize size = {320, 200})
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x * 7 % 256, y * 5 % 256, x * y % 256));
    }
    return image;
}

/// Larger than a JPEG can be.
QImage tooWide()
{
    QImage image(70'000, 1, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

/// What `process` gave: the picture's words, or the failure with what it was thrown as.
QCoro::Task<QString> outcome(QImage image, std::optional<QString> text, TextRecognizer* recognizer)
{
    try {
        const ProcessedImage processed =
            co_await ImageProcessor::process(image, 0.7, text, *recognizer);
        co_return processed.jpeg.isEmpty() ? u"no picture"_s : u"words: "_s + processed.text;
    } catch (const StoreError& failure) {
        co_return u"StoreError: "_s + failure.message();
    } catch (const std::runtime_error& failure) {
        co_return u"runtime_error: "_s + QString::fromUtf8(failure.what());
    }
}

ProcessedImage processed(const QImage& image, double quality, const std::optional<QString>& text,
                         TextRecognizer& recognizer)
{
    return QCoro::waitFor(ImageProcessor::process(image, quality, text, recognizer));
}

} // namespace

class ImageProcessorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void aJpegOfTheSameSizeComesBack_data();
    void aJpegOfTheSameSizeComesBack();
    void theQualityIsHeldBetweenBounds_data();
    void theQualityIsHeldBetweenBounds();
    void encodingItselfHoldsTheQualityToNothing();
    void betterQualityIsCloserToThePicture();

    void theLinesAreJoinedByLineFeeds_data();
    void theLinesAreJoinedByLineFeeds();
    void theRecogniserIsAskedForNoCorrectionAndAnyLanguage();
    void theOptionsGivenArePassedOn();
    void whetherAllWasReadIsTold();
    void textThatIsKnownIsNotReadAgain_data();
    void textThatIsKnownIsNotReadAgain();

    void bothJobsRunAtTheSameTimeAndOffTheCallersThread();
    void aFailureOfTheRecogniserIsThrownAsItIs();
    void aFailureOfTheEncoderIsThrownWithAndWithoutText();
    void theEncodersFailureComesFirst();
    void aFailureOfTheEncoderWaitsForTheReadingsEnd();
    void aPictureWithoutPixelsFails();
    void manyPicturesMayBeProcessedAtOnce();
};

void ImageProcessorTest::initTestCase()
{
    // As on a machine of one processor, where the two jobs of a picture must not take turns.
    QThreadPool::globalInstance()->setMaxThreadCount(1);
}

void ImageProcessorTest::aJpegOfTheSameSizeComesBack_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("format");
    QTest::newRow("ordinary") << QSize(320, 200) << int(QImage::Format_RGB32);
    QTest::newRow("odd") << QSize(333, 77) << int(QImage::Format_RGB32);
    QTest::newRow("one pixel") << QSize(1, 1) << int(QImage::Format_RGB32);
    QTest::newRow("one line") << QSize(5000, 1) << int(QImage::Format_RGB32);
    QTest::newRow("with alpha") << QSize(64, 64) << int(QImage::Format_ARGB32_Premultiplied);
    QTest::newRow("24 bits") << QSize(63, 65) << int(QImage::Format_RGB888);
    QTest::newRow("gray") << QSize(64, 64) << int(QImage::Format_Grayscale8);
}

void ImageProcessorTest::aJpegOfTheSameSizeComesBack()
{
    QFETCH(QSize, size);
    QFETCH(int, format);
    const QImage image = colourful(size).convertToFormat(static_cast<QImage::Format>(format));
    FakeTextRecognizer recognizer({u"a"_s});
    const QByteArray jpeg = processed(image, 0.7, {}, recognizer).jpeg;
    QVERIFY(jpeg.startsWith("\xFF\xD8\xFF"));
    const QImage decoded = QImage::fromData(jpeg, "jpeg");
    QCOMPARE(decoded.size(), size);
}

void ImageProcessorTest::theQualityIsHeldBetweenBounds_data()
{
    QTest::addColumn<double>("asked");
    QTest::addColumn<double>("used");
    QTest::newRow("none") << 0.0 << 0.1;
    QTest::newRow("too much") << 1.7 << 1.0;
    QTest::newRow("negative") << -3.0 << 0.1;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 0.1;
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity() << 1.0;
    QTest::newRow("minus infinity") << -std::numeric_limits<double>::infinity() << 0.1;
    QTest::newRow("lowest") << 0.1 << 0.1;
    QTest::newRow("between") << 0.55 << 0.55;
    QTest::newRow("highest") << 1.0 << 1.0;
}

void ImageProcessorTest::theQualityIsHeldBetweenBounds()
{
    QFETCH(double, asked);
    QFETCH(double, used);
    FakeTextRecognizer recognizer;
    QCOMPARE(processed(colourful(), asked, u""_s, recognizer).jpeg,
             ImageProcessor::encode(colourful(), used));
}

void ImageProcessorTest::encodingItselfHoldsTheQualityToNothing()
{
    const QByteArray lowest = ImageProcessor::encode(colourful(), 0.1);
    QVERIFY(ImageProcessor::encode(colourful(), 0).size() < lowest.size());
}

void ImageProcessorTest::betterQualityIsCloserToThePicture()
{
    const QImage image = colourful();
    const auto distance = [&image](double quality) {
        const QImage decoded = QImage::fromData(ImageProcessor::encode(image, quality))
                                   .convertToFormat(image.format());
        qint64 sum = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                sum += std::abs(qGray(image.pixel(x, y)) - qGray(decoded.pixel(x, y)));
        }
        return sum;
    };
    QVERIFY(distance(0.95) < distance(0.6));
    QVERIFY(distance(0.6) < distance(0.1));
}

void ImageProcessorTest::theLinesAreJoinedByLineFeeds_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("text");
    QTest::newRow("no words") << QStringList() << QString();
    QTest::newRow("one line") << QStringList{u"Invoice 7"_s} << u"Invoice 7"_s;
    QTest::newRow("in the recogniser's order")
        << QStringList{u"z"_s, u"a"_s, u"z"_s} << u"z\na\nz"_s;
    QTest::newRow("untrimmed") << QStringList{u"  a "_s, u""_s, u"\t"_s} << u"  a \n\n\t"_s;
    QTest::newRow("Turkish") << QStringList{u"İstanbul"_s, u"ılık"_s} << u"İstanbul\nılık"_s;
}

void ImageProcessorTest::theLinesAreJoinedByLineFeeds()
{
    QFETCH(QStringList, lines);
    QFETCH(QString, text);
    FakeTextRecognizer recognizer(lines);
    const ProcessedImage result = processed(colourful(), 0.7, {}, recognizer);
    QCOMPARE(result.text, text);
    QCOMPARE(result.jpeg, ImageProcessor::encode(colourful(), 0.7));
    QCOMPARE(recognizer.readings(), 1);
    QCOMPARE(recognizer.lastImage(), colourful());
}

void ImageProcessorTest::theRecogniserIsAskedForNoCorrectionAndAnyLanguage()
{
    QVERIFY(!ImageProcessor::kCorrectsLanguage);
    FakeTextRecognizer recognizer;
    processed(colourful(), 0.7, {}, recognizer);
    QVERIFY(!recognizer.lastOptions().correctsLanguage);
    QVERIFY(!recognizer.lastOptions().languages);
    ImageProcessor::recognize(colourful(), recognizer);
    QVERIFY(!recognizer.lastOptions().correctsLanguage);
    QVERIFY(!recognizer.lastOptions().languages);
}

void ImageProcessorTest::theOptionsGivenArePassedOn()
{
    FakeTextRecognizer recognizer({u"a"_s, u"b"_s});
    const QStringList languages{u"en"_s, u"tr"_s};
    QCOMPARE(ImageProcessor::recognize(colourful(), recognizer, true, languages), u"a\nb"_s);
    QVERIFY(recognizer.lastOptions().correctsLanguage);
    QCOMPARE(recognizer.lastOptions().languages, std::optional(languages));
    ImageProcessor::recognize(colourful(), recognizer, false, QStringList());
    QCOMPARE(recognizer.lastOptions().languages, std::optional(QStringList()));
}

void ImageProcessorTest::whetherAllWasReadIsTold()
{
    FakeTextRecognizer recognizer({u"other words"_s});
    QVERIFY(processed(colourful(), 0.7, {}, recognizer).isWhole);
    recognizer.setWhole(false);
    const ProcessedImage result = processed(colourful(), 0.7, {}, recognizer);
    QVERIFY(!result.isWhole);
    QCOMPARE(result.text, u"other words"_s);
    QVERIFY(processed(colourful(), 0.7, u"known"_s, recognizer).isWhole);
}

void ImageProcessorTest::textThatIsKnownIsNotReadAgain_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("words") << u"what it said\nbefore"_s;
    QTest::newRow("none") << u""_s;
}

void ImageProcessorTest::textThatIsKnownIsNotReadAgain()
{
    QFETCH(QString, text);
    FakeTextRecognizer recognizer({u"other words"_s});
    const ProcessedImage result = processed(colourful(), 0.7, text, recognizer);
    QCOMPARE(result.text, text);
    QVERIFY(!result.jpeg.isEmpty());
    QCOMPARE(recognizer.readings(), 0);
}

void ImageProcessorTest::bothJobsRunAtTheSameTimeAndOffTheCallersThread()
{
    // The reading waits until it sees two threads at work, its own and the encoder's; encoding a
    // picture of this size takes long enough to be seen. One after the other there is only one.
    QThreadPool* const pool = QThreadPool::globalInstance();
    FakeTextRecognizer recognizer({u"a"_s});
    std::atomic<bool> readOnCaller = false;
    std::atomic<bool> sawBoth = false;
    QThread* const caller = QThread::currentThread();
    recognizer.setHook([&] {
        readOnCaller = QThread::currentThread() == caller;
        for (int wait = 0; wait < 1000 && !sawBoth; ++wait) {
            sawBoth = pool->activeThreadCount() == 2;
            QThread::msleep(1);
        }
    });
    const auto task = ImageProcessor::process(colourful({6000, 4000}), 0.7, {}, recognizer);
    QTRY_VERIFY_WITH_TIMEOUT(task.isReady(), 10'000);
    QVERIFY(sawBoth);
    QVERIFY(!readOnCaller);
}

void ImageProcessorTest::aFailureOfTheRecogniserIsThrownAsItIs()
{
    FakeTextRecognizer recognizer;
    recognizer.setFailure(std::make_exception_ptr(StoreError(u"No language data."_s)));
    QCOMPARE(QCoro::waitFor(outcome(colourful(), {}, &recognizer)),
             u"StoreError: No language data."_s);
    recognizer.setFailure(std::make_exception_ptr(std::runtime_error("out of memory")));
    QCOMPARE(QCoro::waitFor(outcome(colourful(), {}, &recognizer)),
             u"runtime_error: out of memory"_s);
    recognizer.setFailure({});
    recognizer.setLines({u"again"_s});
    QCOMPARE(QCoro::waitFor(outcome(colourful(), {}, &recognizer)), u"words: again"_s);
}

void ImageProcessorTest::aFailureOfTheEncoderIsThrownWithAndWithoutText()
{
    const QString sentence = u"StoreError: Could not finish writing the screenshot."_s;
    FakeTextRecognizer recognizer({u"a"_s});
    QCOMPARE(QCoro::waitFor(outcome(tooWide(), {}, &recognizer)), sentence);
    QCOMPARE(QCoro::waitFor(outcome(tooWide(), u"known"_s, &recognizer)), sentence);
}

void ImageProcessorTest::theEncodersFailureComesFirst()
{
    FakeTextRecognizer recognizer;
    recognizer.setFailure(std::make_exception_ptr(StoreError(u"No language data."_s)));
    QCOMPARE(QCoro::waitFor(outcome(tooWide(), {}, &recognizer)),
             u"StoreError: Could not finish writing the screenshot."_s);
}

void ImageProcessorTest::aFailureOfTheEncoderWaitsForTheReadingsEnd()
{
    FakeTextRecognizer recognizer({u"a"_s});
    QSemaphore mayEnd;
    recognizer.setHook([&mayEnd] { mayEnd.acquire(); });
    const auto task = outcome(tooWide(), {}, &recognizer);
    QTRY_COMPARE(recognizer.readings(), 1);
    QTest::qWait(100); // the encoder has long failed
    QVERIFY(!task.isReady());
    mayEnd.release();
    QTRY_VERIFY(task.isReady());
}

void ImageProcessorTest::aPictureWithoutPixelsFails()
{
    FakeTextRecognizer recognizer({u"a"_s});
    const QString sentence = u"StoreError: Could not finish writing the screenshot."_s;
    QCOMPARE(QCoro::waitFor(outcome(QImage(), {}, &recognizer)), sentence);
    QCOMPARE(QCoro::waitFor(outcome(QImage(0, 50, QImage::Format_RGB32), {}, &recognizer)),
             sentence);
    QVERIFY_THROWS_EXCEPTION(StoreError, ImageProcessor::encode(QImage(), 0.7));
}

void ImageProcessorTest::manyPicturesMayBeProcessedAtOnce()
{
    FakeTextRecognizer recognizer({u"a"_s});
    std::vector<QCoro::Task<QString>> tasks;
    for (int picture = 0; picture < 40; ++picture)
        tasks.push_back(outcome(colourful({64, 64}), {}, &recognizer));
    for (const auto& task : tasks)
        QTRY_VERIFY(task.isReady());
    QCOMPARE(recognizer.readings(), 40);
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::ImageProcessorTest)
#include "ImageProcessorTest.moc"
