// SPDX-License-Identifier: Apache-2.0
//
// A made desktop of which one line has changed says what it says to who has seen no other picture:
// also where what is known of one line is used for another, as with letters that are equally wide.
#include "Mossbank/Platform/PlatformFactory.h"
#include "MossbankCore/Capture/TextLineFinder.h"
#include "tests/Scenes/Scene.h"
#include "tests/Scenes/SceneFonts.h"

#include <QFont>
#include <QPainter>
#include <QTest>

#include <algorithm>

namespace mossbank::test {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize kSize = {1280, 800};

QRect widestLine(const QImage& picture)
{
    const QList<QRect> lines = TextLineFinder::find(picture);
    const auto widest = std::ranges::max_element(lines, {}, &QRect::width);
    return widest == lines.end() ? QRect() : *widest;
}

/// The second half of its widest line is the first once more.
QImage withHalfALineTwice(const QImage& picture)
{
    const QRect line = widestLine(picture);
    QImage changed = picture;
    QPainter painter(&changed);
    const QRect half(line.left(), line.top(), line.width() / 2, line.height());
    painter.drawImage(half.topRight(), picture, half);
    return changed;
}

QImage withoutALine(const QImage& picture)
{
    const QRect line = widestLine(picture);
    QImage changed = picture;
    QPainter painter(&changed);
    painter.fillRect(line, picture.pixelColor(line.topLeft()));
    return changed;
}

/// Another language appears, which is a reason to read other lines in it too.
QImage withALineInTurkish(const QImage& picture)
{
    const QRect line = widestLine(picture);
    QImage changed = picture;
    QPainter painter(&changed);
    painter.fillRect(line.adjusted(0, -1, 0, 1), Qt::white);
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(std::max(12, line.height() * 3 / 4));
    painter.setFont(font);
    painter.drawText(line, Qt::AlignCenter, u"Yarın akşam görüşürüz"_s);
    return changed;
}

} // namespace

class SceneAgainTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void whatChangedReadsAsInAFreshReading_data();
    void whatChangedReadsAsInAFreshReading();

private:
    std::unique_ptr<TextRecognizer> m_warm;
    std::unique_ptr<TextRecognizer> m_fresh;
};

void SceneAgainTest::initTestCase()
{
    QVERIFY2(missingFonts().isEmpty(), qPrintable(missingFonts()));
    m_warm = makeTextRecognizer();
    m_fresh = makeTextRecognizer();
}

void SceneAgainTest::whatChangedReadsAsInAFreshReading_data()
{
    QTest::addColumn<Layout>("layout");
    for (const Layout layout : {Layout::Article, Layout::Terminals, Layout::Code, Layout::Dashboard,
                                Layout::Sheet, Layout::Chat, Layout::TurkishAndEnglish})
        QTest::addRow("%s", qPrintable(layoutName(layout))) << layout;
}

void SceneAgainTest::whatChangedReadsAsInAFreshReading()
{
    QFETCH(Layout, layout);
    const QImage picture = makeScene(layout, 2, kSize).image;
    QImage empty(picture.size(), QImage::Format_RGB32);
    empty.fill(Qt::white);
    const QList<QImage> changes = {withHalfALineTwice(picture), withoutALine(picture),
                                   withALineInTurkish(picture)};
    QStringList last;
    for (const QImage& changed : changes) {
        m_warm->recognize(picture, {});
        const QStringList again = m_warm->recognize(changed, {});
        // What it remembers is only what the picture before has.
        m_fresh->recognize(empty, {});
        QCOMPARE(again, m_fresh->recognize(changed, {}));
        QVERIFY(again != last);
        last = again;
    }
    QVERIFY2(last.contains(u"Yarın akşam görüşürüz"_s), qPrintable(last.join(u'|')));
}

} // namespace mossbank::test

QTEST_MAIN(mossbank::test::SceneAgainTest)
#include "SceneAgainTest.moc"
