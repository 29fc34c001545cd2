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
        for (const int pixels : {16, 24, 28, 40, 56, 72}) {
            for (const QString& text : {u"Tasks Today BELT"_s, u"Lila FILE"_s, u"Zone CALL"_s})
                QTest::addRow("%s, %s %d", qPrintable(text), qPrintable(family), pixels)
                    << family << pixels << text;
        }
    }
}

void LargeTextTest::everyLetterIsRead()
{
    QFETCH(QString, family);
    QFETCH(int, pixels);
    QFETCH(QString, text);
    QImage picture(1000, 200, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    QFont font(family);
    font.setPixelSize(pixels);
    painter.setFont(font);
    painter.drawText(40, 120, text);
    painter.end();
    QCOMPARE(m_recognizer->recognize(picture, {}), QStringList{text});
}

} // namespace mossbank::test

QTEST_MAIN(mossbank::test::LargeTextTest)
#include "LargeTextTest.moc"
