// SPDX-License-Identifier: Apache-2.0
//
// A machine on which Qt has no writer of JPEG. A program of its own: which writers there are is
// looked up once.
#include "MossbankCore/Capture/ImageProcessor.h"
#include "MossbankCore/Library/StoreError.h"
#include "tests/Fakes/FakeTextRecognizer.h"

#include <QImageWriter>
#include <QTest>

namespace mossbank {

using namespace Qt::StringLiterals;

class NoEncoderTest : public QObject {
    Q_OBJECT

    /// What the processing of a picture fails with.
    static QCoro::Task<QString> failureOf(std::optional<QString> text, TextRecognizer* recognizer)
    {
        QImage image(32, 20, QImage::Format_RGB32);
        image.fill(Qt::white);
        try {
            co_await ImageProcessor::process(image, 0.7, text, *recognizer);
        } catch (const StoreError& failure) {
            co_return failure.message();
        }
        co_return QString();
    }

private Q_SLOTS:
    void initTestCase()
    {
        // The writer is a plugin, and is found in none of no folders.
        QCoreApplication::setLibraryPaths({});
        QVERIFY(!QImageWriter::supportedImageFormats().contains("jpeg"));
    }

    void thePictureFailsWhetherOrNotItsWordsAreKnown_data()
    {
        QTest::addColumn<std::optional<QString>>("text");
        QTest::newRow("to be read") << std::optional<QString>();
        QTest::newRow("known") << std::optional(u"known"_s);
    }
    void thePictureFailsWhetherOrNotItsWordsAreKnown()
    {
        QFETCH(std::optional<QString>, text);
        FakeTextRecognizer recognizer({u"a"_s});
        QCOMPARE(QCoro::waitFor(failureOf(text, &recognizer)),
                 u"Could not encode the screenshot."_s);
        QCOMPARE(recognizer.readings(), text ? 0 : 1);
    }
};

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::NoEncoderTest)
#include "NoEncoderTest.moc"
