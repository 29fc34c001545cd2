// SPDX-License-Identifier: Apache-2.0
//
// The made-up desktop: what is painted where.
#include "Mossbank/Model/FixtureImage.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

const QRgb kBackdrop = qRgb(46, 61, 71);
const QRgb kWindow = qRgb(237, 237, 237);
const QRgb kTitleBar = qRgb(222, 222, 222);
const QRgb kDivider = qRgb(204, 204, 204);
const QString kLetters = u"Hxg"_s;

bool isNearly(QRgb one, QRgb other, int reach = 1)
{
    return std::abs(qRed(one) - qRed(other)) <= reach &&
           std::abs(qGreen(one) - qGreen(other)) <= reach &&
           std::abs(qBlue(one) - qBlue(other)) <= reach;
}

/// What is at a place counted from the lower left corner.
QRgb at(const QImage& image, int x, int y)
{
    return image.pixel(x, image.height() - 1 - y);
}

/// The smallest rectangle, in the picture's own places, that holds all of a part of it that is not
/// of the colour of its background.
QRect inkIn(const QImage& image, const QRect& part, QRgb background)
{
    QRect ink;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            if (!isNearly(image.pixel(x, y), background, 12))
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

/// The darkest and the lightest in a part of a picture.
std::pair<int, int> greysIn(const QImage& image, const QRect& part)
{
    int darkest = 255;
    int lightest = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            darkest = std::min(darkest, qGray(image.pixel(x, y)));
            lightest = std::max(lightest, qGray(image.pixel(x, y)));
        }
    }
    return {darkest, lightest};
}

/// How much of a part is ink: the sum of what each pixel differs from its background by.
int weightOf(const QImage& image, const QRect& part, QRgb background)
{
    int weight = 0;
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x)
            weight += std::abs(qGray(image.pixel(x, y)) - qGray(background));
    return weight;
}

QImage drawn(const QStringList& lines, const QString& app = u"Notes"_s,
             const QString& title = u"Title"_s)
{
    return fixtureImage(app, title, lines).value_or(QImage());
}

} // namespace

class FixtureImageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itIsOfItsSizeAndColours()
    {
        const QImage image = drawn({});
        QCOMPARE(image.size(), QSize(1440, 900));
        QCOMPARE(image.depth(), 32);
        QVERIFY(image.pixelFormat().colorModel() == QPixelFormat::RGB);
        QCOMPARE(int(image.pixelFormat().alphaSize()), 8);
        QCOMPARE(image.pixelFormat().redSize(), uchar(8));
    }

    void areasAreWhereTheyAre_data()
    {
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("y");
        QTest::addColumn<QRgb>("colour");
        const auto place = [](const char* name, int x, int y, QRgb colour) {
            QTest::newRow(name) << x << y << colour;
        };
        place("lower left corner", 0, 0, kBackdrop);
        place("upper right corner", 1439, 899, kBackdrop);
        place("left of the window", 79, 400, kBackdrop);
        place("the window's left edge", 80, 400, kWindow);
        place("the window's right edge", 1359, 400, kWindow);
        place("right of the window", 1360, 400, kBackdrop);
        place("below the window", 700, 64, kBackdrop);
        place("the window's lower edge", 700, 65, kWindow);
        place("the window's upper edge", 700, 819, kWindow);
        place("above the window", 700, 820, kBackdrop);
        place("its corner is round", 81, 66, kBackdrop);
        place("so is the upper one", 1358, 818, kBackdrop);
        place("within the round corner", 84, 69, kWindow);
        place("above the title bar", 1000, 804, kWindow);
        place("the title bar's upper edge", 1000, 803, kTitleBar);
        place("the title bar's lower edge", 1000, 752, kTitleBar);
        place("below the title bar", 1000, 751, kWindow);
        place("the title bar's left end", 80, 780, kTitleBar);
        place("red", 106, 780, qRgb(0xff, 0x3b, 0x30));
        place("yellow", 130, 780, qRgb(0xff, 0xcc, 0x00));
        place("green", 154, 780, qRgb(0x28, 0xcd, 0x41));
        place("a button's left edge", 101, 780, qRgb(0xff, 0x3b, 0x30));
        place("left of it", 98, 780, kTitleBar);
        place("a button's upper edge", 106, 785, qRgb(0xff, 0x3b, 0x30));
        place("above it", 106, 788, kTitleBar);
        place("beside its roundness", 100, 774, kTitleBar);
        place("the divider", 300, 400, kDivider);
        place("left of the divider", 299, 400, kWindow);
        place("right of the divider", 301, 400, kWindow);
        place("the divider's foot", 300, 65, kDivider);
        place("its head", 300, 751, kDivider);
        place("above it", 300, 752, kTitleBar);
    }
    void areasAreWhereTheyAre()
    {
        QFETCH(int, x);
        QFETCH(int, y);
        QFETCH(QRgb, colour);
        const QRgb found = at(drawn({}), x, y);
        QVERIFY2(isNearly(found, colour), qPrintable(QColor(found).name()));
    }

    // A line of text has its ink between the foot of its place and so much above.
    void textsAreWhereTheyAre_data()
    {
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("y");
        QTest::addColumn<int>("size");
        QTest::addColumn<QRgb>("background");
        QTest::addColumn<QString>("text");
        QTest::newRow("menu") << 30 << 866 << 16 << kBackdrop
                              << kLetters + u"     File     Edit     View     Window     Help"_s;
        QTest::newRow("title") << 485 << 770 << 19 << kTitleBar << kLetters;
        QTest::newRow("heading of the side")
            << 115 << 697 << 12 << kWindow << u"SAMPLE WORKSPACE"_s;
        const QStringList rows = {u"All notes"_s, u"Personal"_s, u"Projects"_s, u"Research"_s,
                                  u"Archive"_s};
        for (int row = 0; row < 5; ++row)
            QTest::addRow("row %d", row) << 117 << 645 - 43 * row << 18 << kWindow << rows.at(row);
        for (int line = 0; line < 7; ++line) {
            QTest::addRow("line %d", line)
                << 358 << 659 - 57 * line << (line == 0 ? 33 : 21) << kWindow << kLetters;
        }
        QTest::newRow("footer") << 360 << 99 << 14 << kWindow
                                << u"Fictional sample content • Mossbank development fixture"_s;
    }
    void textsAreWhereTheyAre()
    {
        QFETCH(int, x);
        QFETCH(int, y);
        QFETCH(int, size);
        QFETCH(QRgb, background);
        QFETCH(QString, text);
        QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
        font.setPixelSize(size);
        font.setWeight(text == u"Projects" ? QFont::DemiBold : QFont::Normal);
        const QFontMetricsF metrics(font);
        const QRectF letters =
            metrics.tightBoundingRect(text).translated(x, 900 - y - metrics.descent());

        const QImage image = drawn(QStringList(7, kLetters), kLetters, kLetters);
        constexpr int kAround = 9; // and no further than the next
        const QRect ink = inkIn(
            image,
            letters.toAlignedRect().adjusted(-kAround, -kAround, kAround, kAround) & image.rect(),
            background);
        const QString places = u"%1 to %2, %3 to %4"_s.arg(ink.left())
                                   .arg(ink.right())
                                   .arg(ink.top())
                                   .arg(ink.bottom());
        const auto isAbout = [](double one, double other) {
            return std::abs(one - other) <= 2;
        };
        QVERIFY2(isAbout(ink.left(), letters.left()), qPrintable(places));
        QVERIFY2(isAbout(ink.right() + 1, letters.right()), qPrintable(places));
        QVERIFY2(isAbout(ink.top(), letters.top()), qPrintable(places));
        QVERIFY2(isAbout(ink.bottom() + 1, letters.bottom()), qPrintable(places));
    }

    void textsAreOfTheirColour()
    {
        const QImage image = drawn({u"HHHH"_s, u"HHHH"_s}, u"HHHH"_s, u"HHHH"_s);
        const auto [menuDark, menuLight] = greysIn(image, QRect(30, 10, 60, 24));
        QVERIFY2(menuLight > 240 && menuDark >= qGray(kBackdrop) - 1, "the menu is white");
        const auto darkest = [&image](int x, int y, int size) {
            return greysIn(image, QRect(x, 900 - y - size - 5, 3 * size, size + 5)).first;
        };
        const auto isAbout = [](int grey, int wanted) {
            return std::abs(grey - wanted) <= 8;
        };
        QVERIFY(isAbout(darkest(485, 770, 19), 85));
        QVERIFY(isAbout(darkest(117, 645, 18), 85));
        QVERIFY(isAbout(darkest(358, 659, 33), 85));
        QVERIFY(isAbout(darkest(358, 602, 21), 85));
        // Small letters are not all ink anywhere.
        QVERIFY(darkest(115, 697, 12) >= 125 && darkest(115, 697, 12) < 180);
        QVERIFY(darkest(360, 99, 14) >= 125 && darkest(360, 99, 14) < 180);
    }

    void theThirdRowOfTheSideIsHeavier()
    {
        const QImage image = drawn({});
        const auto boldness = [&image](int row) {
            const QRect part(117, 900 - (645 - 43 * row) - 22, 170, 24);
            const QRect ink = inkIn(image, part, kWindow);
            return double(weightOf(image, part, kWindow)) / ink.width();
        };
        // Projects, against Personal and Research: about as many letters, as tall.
        QVERIFY2(boldness(2) > 1.1 * boldness(1), "not bolder than Personal");
        QVERIFY2(boldness(2) > 1.1 * boldness(3), "not bolder than Research");
    }

    void whatItIsOfIsToBeSeen()
    {
        const QImage image = drawn({u"one"_s, u"two"_s});
        QCOMPARE(drawn({u"one"_s, u"two"_s}), image);
        QVERIFY(drawn({u"one"_s, u"other"_s}) != image);
        QVERIFY(drawn({u"one"_s, u"two"_s}, u"Mail"_s) != image);
        QVERIFY(drawn({u"one"_s, u"two"_s}, u"Notes"_s, u"Other"_s) != image);
    }
};

QTEST_MAIN(FixtureImageTest)
#include "FixtureImageTest.moc"
