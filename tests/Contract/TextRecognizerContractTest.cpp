// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Null/NullTextRecognizer.h"
#include "Mossbank/Platform/PlatformFactory.h"
#include "MossbankCore/Support/Background.h"
#include "tests/Contract/Contract.h"
#include "tests/Fakes/FakeTextRecognizer.h"

#include <QFuture>
#include <QGuiApplication>
#include <QPainter>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

QImage blank()
{
    QImage image(600, 200, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

QImage written(const QString& text)
{
    QImage image = blank();
    QPainter painter(&image);
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(40);
    painter.setFont(font);
    painter.drawText(image.rect(), Qt::AlignCenter, text);
    return image;
}

} // namespace

/// What every recogniser of text holds to.
class TextRecognizerContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thePiecesOfTextAreReadAndNoneIsEmpty_data() { kinds(); }
    void thePiecesOfTextAreReadAndNoneIsEmpty()
    {
        const auto recognizer = make();
        const QStringList lines = recognizer->recognize(written(u"Marigold"_s), {});
        QCOMPARE(lines, QStringList{u"Marigold"_s});
    }

    void severalMayReadAtOnce_data() { kinds(); }
    void severalMayReadAtOnce()
    {
        const auto recognizer = make();
        const QImage image = written(u"Marigold"_s);
        QList<QFuture<QStringList>> readings;
        for (int reading = 0; reading < 3; ++reading) {
            readings.append(inBackground(
                [&] { return recognizer->recognize(image, {.languages = {{u"en"_s}}}); }));
        }
        for (QFuture<QStringList>& reading : readings)
            QCOMPARE(reading.result(), QStringList{u"Marigold"_s});
    }

    void itReadsAgainAfterARest_data() { kinds(); }
    void itReadsAgainAfterARest()
    {
        const auto recognizer = make();
        recognizer->rest();
        const QImage image = written(u"Marigold"_s);
        QCOMPARE(recognizer->recognize(image, {}), QStringList{u"Marigold"_s});
        recognizer->rest();
        recognizer->rest();
        QCOMPARE(recognizer->recognize(image, {}), QStringList{u"Marigold"_s});
    }

    void noRecogniserIsAFailureAndNotAnEmptyText()
    {
        NullTextRecognizer recognizer(kReason);
        QCOMPARE(failureOf([&] { recognizer.recognize(blank(), {}); }), kReason);
    }

private:
    static void kinds()
    {
        QTest::addColumn<bool>("isReal");
        QTest::newRow("real") << true;
        QTest::newRow("fake") << false;
    }

    static std::unique_ptr<TextRecognizer> make()
    {
        QFETCH(bool, isReal);
        if (isReal)
            return makeTextRecognizer();
        return std::make_unique<FakeTextRecognizer>(QStringList{u"Marigold"_s});
    }
};

QTEST_MAIN(TextRecognizerContractTest)
#include "TextRecognizerContractTest.moc"
