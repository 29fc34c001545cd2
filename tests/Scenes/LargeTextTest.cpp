// SPDX-License-Identifier: Apache-2.0
//
// Headings, slides and clocks: of large letters the arms alone are wider than a gap between words.
#include "Mossbank/Platform/PlatformFactory.h"
#include "tests/Scenes/SceneFonts.h"

#include <QFont>
#include <QPainter>
#include <QTest>

namespace mossbank::test {

using namespace Qt::StringLiterals;

class LargeTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyLetterIsRead_data();
    void everyLetterIsRead();
    void whatStandsInLowBoxesIsReadAndTheBoxesAreNot_data();
    void whatStandsInLowBoxesIsReadAndTheBoxesAreNot();

private:
    std::unique_ptr<TextRecognizer> m_recognizer;
};

void LargeTextTest::initTestCase()
{
    QVERIFY2(missingFonts().isEmpty(), qPrintable(missingFonts()));
    m_recognizer = makeTextRecognizer();
}

void LargeTextTest::everyLetterIsRead_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<int>("pixels");
    QTest::addColumn<QString>("text");
    for (const QString& family : {u"DejaVu Sans"_s, u"Liberation Sans"_s, u"Inter"_s}) {
        for (const QString& text :
             {u"Tasks Today BELT"_s, u"Lila FILE"_s, u"Zone CALL"_s, u"10:47"_s, u"11:11"_s}) {
            for (const int pixels : {16, 24, 28, 40, 56, 72, 90, 110, 130, 150}) {
                // With its descender a line of these is higher than any that is looked for.
                if (pixels > 110 && text.contains(u'y'))
                    continue;
                QTest::addRow("%s, %s %d", qPrintable(text), qPrintable(family), pixels)
                    << family << pixels << text;
            }
        }
    }
}

void LargeTextTest::everyLetterIsRead()
{
    QFETCH(QString, family);
    QFETCH(int, pixels);
    QFETCH(QString, text);
    QImage picture(1200, 300, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    QFont font(family);
    font.setPixelSize(pixels);
    painter.setFont(font);
    painter.drawText(40, 180, text);
    painter.end();
    QCOMPARE(m_recognizer->recognize(picture, {}), QStringList{text});
}

void LargeTextTest::whatStandsInLowBoxesIsReadAndTheBoxesAreNot_data()
{
    QTest::addColumn<int>("height");
    for (const int height : {66, 70, 90, 110, 119, 130})
        QTest::addRow("%d", height) << height;
}

void LargeTextTest::whatStandsInLowBoxesIsReadAndTheBoxesAreNot()
{
    QFETCH(int, height);
    QImage picture(1200, 300, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(15);
    painter.setFont(font);
    // Frames, panels, the bar beside a quotation, the handle of a scroll bar.
    painter.fillRect(40, 60, 220, height, QColor(200, 210, 225));
    painter.drawText(52, 90, u"Weather today"_s);
    painter.fillRect(300, 60, 220, height, QColor(60, 90, 160));
    painter.fillRect(302, 62, 216, height - 4, Qt::white);
    painter.drawText(312, 90, u"Copy the file"_s);
    painter.fillRect(560, 60, 4, height, QColor(60, 90, 160));
    painter.drawText(578, 90, u"Nothing is lost"_s);
    painter.fillRect(1180, 60, 8, height, QColor(150, 150, 150));
    painter.end();
    const QStringList expected = {u"Weather today"_s, u"Copy the file"_s, u"Nothing is lost"_s};
    QCOMPARE(m_recognizer->recognize(picture, {}), expected);
}

} // namespace mossbank::test

QTEST_MAIN(mossbank::test::LargeTextTest)
#include "LargeTextTest.moc"
