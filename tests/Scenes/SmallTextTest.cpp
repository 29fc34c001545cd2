// SPDX-License-Identifier: Apache-2.0
//
// Small print: letters of a few pixels, which touch.
#include "Mossbank/Platform/PlatformFactory.h"
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

} // namespace mossbank::test

QTEST_MAIN(mossbank::test::SmallTextTest)
#include "SmallTextTest.moc"
