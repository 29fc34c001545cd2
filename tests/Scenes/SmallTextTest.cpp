// SPDX-License-Identifier: Apache-2.0
//
// Small print: letters of a few pixels, which touch.
#include "Mossbank/Platform/PlatformFactory.h"
#include "tests/Scenes/Scene.h"
#include "tests/Scenes/SceneCanvas.h"
#include "tests/Scenes/SceneFonts.h"

#include <QFont>
#include <QPainter>
#include <QTest>

namespace mossbank::test {

using namespace Qt::StringLiterals;

class SmallTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aLineWhoseLettersTouchIsNotDropped_data();
    void aLineWhoseLettersTouchIsNotDropped();
    void lettersDrawnInThirdsOfAPixelAreRead_data();
    void lettersDrawnInThirdsOfAPixelAreRead();
    void aLineAcrossAVeryWidePictureIsRead_data();
    void aLineAcrossAVeryWidePictureIsRead();

private:
    std::unique_ptr<TextRecognizer> m_recognizer;
};

void SmallTextTest::initTestCase()
{
    QVERIFY2(missingFonts().isEmpty(), qPrintable(missingFonts()));
    m_recognizer = makeTextRecognizer();
}

void SmallTextTest::aLineWhoseLettersTouchIsNotDropped_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("text");
    const auto row = [](const QString& family, const QString& text) {
        QTest::addRow("%s, %s", qPrintable(text), qPrintable(family)) << family << text;
    };
    row(u"Liberation Sans"_s, u"soccer midnight action"_s);
    row(u"Liberation Sans"_s, u"cheap domestic kitchen warning"_s);
    row(u"Liberation Sans"_s, u"office kitchen winner ready plain"_s);
    row(u"Roboto"_s, u"ideal ideal kitchen action kitchen"_s);
    row(u"Roboto"_s, u"action ideal carbon action cheap"_s);
    row(u"Roboto"_s, u"ideal carbon domestic midnight"_s);
}

void SmallTextTest::aLineWhoseLettersTouchIsNotDropped()
{
    QFETCH(QString, family);
    QFETCH(QString, text);
    QImage picture(600, 60, QImage::Format_RGB32);
    picture.fill(qRgb(16, 15, 16));
    QPainter painter(&picture);
    QFont font(family);
    font.setPixelSize(9);
    font.setBold(true);
    font.setLetterSpacing(QFont::AbsoluteSpacing, -0.5);
    font.setHintingPreference(QFont::PreferVerticalHinting);
    painter.setFont(font);
    painter.setPen(qRgb(120, 120, 120));
    painter.drawText(20, 40, text);
    painter.end();
    const QString read = m_recognizer->recognize(picture, {}).join(u' ');
    // Not all of such letters can be told, but that they are there.
    QVERIFY2(2 * read.size() > text.size(), qPrintable(read));
}

void SmallTextTest::lettersDrawnInThirdsOfAPixelAreRead_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<int>("pixels");
    QTest::addColumn<QString>("text");
    for (const QString& family : {u"Liberation Sans"_s, u"Open Sans"_s, u"Roboto"_s}) {
        for (const int pixels : {10, 11, 12}) {
            for (const QString& text : {u"enclose.txt image.txt"_s, u"the joint scope of choice"_s,
                                        u"a violin in the history"_s, u"corner modern clerk"_s}) {
                QTest::addRow("%s, %s %d", qPrintable(text), qPrintable(family), pixels)
                    << family << pixels << text;
            }
        }
    }
}

void SmallTextTest::lettersDrawnInThirdsOfAPixelAreRead()
{
    QFETCH(QString, family);
    QFETCH(int, pixels);
    QFETCH(QString, text);
    SceneCanvas canvas({600, 60}, {.thirds = true});
    canvas.fill({0, 0, 600, 60}, Qt::white);
    const TextStyle style = {.family = family, .pixels = pixels, .colour = Qt::black};
    canvas.text({20, 20}, 560, text, style);
    const QImage picture = canvas.finished(u"letters"_s).image;
    QCOMPARE(m_recognizer->recognize(picture, {}), QStringList{text});
}

void SmallTextTest::aLineAcrossAVeryWidePictureIsRead_data()
{
    QTest::addColumn<int>("width");
    QTest::newRow("of the widest displays") << 8'000;
    QTest::newRow("wider than the recogniser takes lines") << 16'000;
}

void SmallTextTest::aLineAcrossAVeryWidePictureIsRead()
{
    QFETCH(int, width);
    QImage picture(width, 60, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(13);
    painter.setFont(font);
    painter.setPen(Qt::black);
    const QStringList some = {u"lantern"_s, u"harbour"_s, u"window"_s, u"quarter"_s, u"meadow"_s};
    QString text = some.first();
    for (qsizetype word = 1; painter.fontMetrics().horizontalAdvance(text) < width - 150; ++word)
        text += u' ' + some.at(word % some.size());
    painter.drawText(20, 40, text);
    painter.end();
    const QStringList read = m_recognizer->recognize(picture, {});
    QCOMPARE(read.size(), 1);
    const QStringList words = text.split(u' ');
    const QStringList readWords = read.first().split(u' ');
    QCOMPARE(readWords.size(), words.size());
    qsizetype right = 0;
    for (qsizetype word = 0; word < words.size(); ++word)
        right += readWords.at(word) == words.at(word);
    QVERIFY2(100 * right >= 97 * words.size(), qPrintable(read.first()));
}

} // namespace mossbank::test

QTEST_MAIN(mossbank::test::SmallTextTest)
#include "SmallTextTest.moc"
