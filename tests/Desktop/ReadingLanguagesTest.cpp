// SPDX-License-Identifier: Apache-2.0
//
// Which of the languages whose models are installed are read.
#include "Mossbank/Platform/PlatformFactory.h"
#include "MossbankCore/Support/Failure.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/LanguageModels.h"

#include <QFont>
#include <QImage>
#include <QPainter>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

const QStringList kEnglish = {u"The harbour lights went out at seven"_s,
                              u"A letter arrived from the insurance office"_s,
                              u"Please answer before Thursday evening"_s};
const QStringList kTurkish = {u"Yarın akşam görüşürüz"_s, u"Çayı ocağa koydum"_s,
                              u"Kardeşim İzmir'e taşındı"_s};

QImage pictureOf(const QStringList& lines)
{
    constexpr int kEach = 26;
    QImage picture(600, kEach * (static_cast<int>(lines.size()) + 2), QImage::Format_RGB32);
    picture.fill(QColor(250, 249, 245));
    QPainter painter(&picture);
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(15);
    painter.setFont(font);
    painter.setPen(QColor(40, 40, 45));
    for (int line = 0; line < lines.size(); ++line)
        painter.drawText(40, kEach * (line + 1), lines.at(line));
    return picture;
}

QStringList read(const QImage& picture)
{
    return makeTextRecognizer()->recognize(picture, {});
}

} // namespace

class ReadingLanguagesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        LanguageModels models;
        QVERIFY2(models.add(u"eng"_s), "package tesseract-ocr-eng is missing");
        QVERIFY2(models.add(u"tur"_s), "package tesseract-ocr-tur is missing");
    }

    void aDamagedModelThatNobodyAskedForDoesNotEndReading()
    {
        LanguageModels models;
        QVERIFY(models.add(u"eng"_s) && models.addDamaged(u"xyz"_s));
        const QImage picture = pictureOf(kEnglish + kTurkish);
        const auto recognizer = makeTextRecognizer();
        for (int round = 0; round < 2; ++round)
            QCOMPARE(recognizer->recognize(picture, {}).mid(0, 3), kEnglish);
        // It would have been tried: of what was asked for, the failure is told.
        QCOMPARE(failureOf([&] {
                     recognizer->recognize(picture, {.languages = {{u"en"_s, u"xyz"_s}}});
                 }),
                 u"The text recogniser could not be started."_s);
    }

    void aDamagedModelOfTurkishDoesNotEndReading()
    {
        LanguageModels models;
        QVERIFY(models.add(u"eng"_s) && models.addDamaged(u"tur"_s));
        QCOMPARE(read(pictureOf(kEnglish + kTurkish)).mid(0, 3), kEnglish);
    }

    void aDamagedModelOfEnglishIsTold()
    {
        LanguageModels models;
        QVERIFY(models.add(u"tur"_s) && models.addDamaged(u"eng"_s));
        QCOMPARE(failureOf([] { read(pictureOf(kEnglish)); }),
                 u"The text recogniser could not be started."_s);
    }

    void aLanguageThatIsOnlyInstalledIsFound()
    {
        LanguageModels models;
        QVERIFY(models.add(u"eng"_s) && models.add(u"tur"_s, u"xyz"_s));
        QCOMPARE(read(pictureOf(kEnglish + kTurkish)), kEnglish + kTurkish);
    }

    void turkishIsExpectedAmongAHundred()
    {
        LanguageModels models;
        QVERIFY(models.add(u"eng"_s) && models.add(u"tur"_s));
        for (int number = 0; number < 100; ++number) {
            const QChar first(u'a' + number / 10);
            const QChar second(u'a' + number % 10);
            // Were one of them tried, that would be a failure, or take long.
            QVERIFY(models.addDamaged(u"x"_s + first + second));
        }
        QCOMPARE(read(pictureOf(kEnglish + kTurkish)), kEnglish + kTurkish);
    }
};

QTEST_MAIN(ReadingLanguagesTest)
#include "ReadingLanguagesTest.moc"
