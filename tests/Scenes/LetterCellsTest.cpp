// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/LetterCells.h"

#include "MossbankCore/Capture/TextReader.h"
#include "tests/Fakes/FakeLineRecognizer.h"
#include "tests/Scenes/DrawnLine.h"
#include "tests/Scenes/SceneFonts.h"

#include <QTest>

namespace mossbank::test {

using namespace Qt::StringLiterals;

namespace {

QList<RecognizedWord> words(const QString& line)
{
    QList<RecognizedWord> all;
    for (const QString& word : line.split(u' ', Qt::SkipEmptyParts))
        all.append({word, FakeLineRecognizer::kSure});
    return all;
}

QString joined(const QList<RecognizedWord>& all)
{
    QStringList texts;
    for (const RecognizedWord& word : all)
        texts.append(word.text);
    return texts.join(u' ');
}

/// What a recogniser reads right, on the same screen.
const QStringList kOthers = {
    u"-rw-r--r-- 1 root wheel 2817 hurry.log"_s, u"error: the lamp on quay six was jolly dim"_s,
    u"$ grep -n \"fix\" /var/log/mail.txt"_s, u"error: nobody has seen the key of the room nine"_s,
    u"two quick foxes jump over dogs"_s};

} // namespace

class LetterCellsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(missingFonts().isEmpty(), qPrintable(missingFonts())); }

    void lettersWithoutASpaceBetweenAreARun()
    {
        const auto cells = cellsOf(u"$ cp lamp_1.txt  out"_s);
        QVERIFY(cells.has_value());
        QList<qsizetype> lengths;
        for (const LetterCells::Run& run : cells->runs)
            lengths.append(run.length);
        QCOMPARE(lengths, (QList<qsizetype>{1, 2, 10, 3}));
        QCOMPARE(cells->letters.size(), std::size_t(16));
        const QImage line = drawnLine(sceneFont(u"DejaVu Sans"_s, 15), kOthers.at(1));
        QVERIFY(!letterCellsOf(line, fixedPitchOf(line)));
    }

    void whatCannotBeIsSeen_data()
    {
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("read");
        QTest::addColumn<bool>("isRight");
        const auto row = [](const char* name, const QString& shown, const QString& read,
                            bool isRight) {
            QTest::newRow(name) << shown << read << isRight;
        };
        const QString log = u"quay.log: lamp six is on"_s;
        row("as it is", log, log, true);
        row("a letter of the same height", log, u"quay.log: lamp sic is on"_s, true);
        row("a letter more", log, u"quay.1log: lamp six is on"_s, false);
        row("a letter less", log, u"quay.lg: lamp six is on"_s, false);
        row("a space more is none", log, u"quay. log: lamp six is on"_s, true);
        row("too high for it", log, u"quay.log: lamp six is or"_s, true);
        row("a small letter read as a high one", log, u"quay.log: lamp six is oh"_s, false);
        row("a small letter read as a low one", log, u"quay.log: lamp six is op"_s, false);
        row("a high letter read as a small one", log, u"quay.rog: lamp six is on"_s, false);
        row("a low letter read as a small one", log, u"quay.loa: lamp six is on"_s, false);
        row("an accent where none is", log, u"quay.log: lämp six is on"_s, false);
        row("a dash that stands on the line", log, u"quay.log: lamp-six is on"_s, false);
    }
    void whatCannotBeIsSeen()
    {
        QFETCH(QString, shown);
        QFETCH(QString, read);
        QFETCH(bool, isRight);
        const auto cells = cellsOf(shown);
        QVERIFY(cells.has_value());
        QCOMPARE(PlacedLetters(*cells, words(read)).isRight(), isRight);
    }

    void whatCannotBeIsMended_data()
    {
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("read");
        QTest::addColumn<QString>("mended");
        const auto row = [](const char* name, const QString& shown, const QString& read,
                            const QString& mended) {
            QTest::newRow(name) << shown << read << mended;
        };
        const QString log = u"-rw-r--r-- 1 mail wheel fix.log"_s;
        row("nothing", log, log, log);
        row("a letter too high", log, u"-hw-r--r-- 1 mail wheel fix.log"_s, log);
        row("a letter too low", log, u"-pw-r--r-- 1 mail wheel fix.log"_s, log);
        row("several", log, u"-Pw-P--p-- 1 mail wheel fix.log"_s, log);
        row("a letter more", log, u"-rw-r--r-- 1 mail wheel fix.1log"_s, log);
        row("a letter less", log, u"-rw-r--r-- 1 mail whel fix.log"_s, log);
        row("a dash for two", log, u"-rw-r—r— 1 mail wheel fix.log"_s, log);
        row("a space more", log, u"-rw-r--r-- 1 mail wheel fix. log"_s, log);
        row("what may be, though it is not", log, u"-rw-r--r-- 1 mail wheel fis.log"_s,
            u"-rw-r--r-- 1 mail wheel fis.log"_s);
        row("a line of which little fits", log, u"-tw-rr-r 1 marls whel tyx1log"_s,
            u"-tw-rr-r 1 marls whel tyx1log"_s);
        row("an at sign that is nowhere else", u"root@quay six lamps on"_s,
            u"rootaquay six lamps on"_s, u"root@quay six lamps on"_s);
        row("an at sign read as two", u"root@quay six lamps on"_s, u"rootG@quay six lamps on"_s,
            u"root@quay six lamps on"_s);
        row("a dollar that is nowhere else", u"quay$ six lamps on"_s, u"quays six lamps on"_s,
            u"quay$ six lamps on"_s);
        row("an underscore read as a space", u"quay_lamp six on board"_s,
            u"quay lamp six on board"_s, u"quay_lamp six on board"_s);
        row("an underscore read as a letter", u"quay_lamp six on board"_s,
            u"quayclamp six on board"_s, u"quay_lamp six on board"_s);
    }
    void whatCannotBeIsMended()
    {
        QFETCH(QString, shown);
        QFETCH(QString, read);
        QFETCH(QString, mended);
        for (const int pixels : {13, 16}) {
            LetterShapes shapes;
            for (const QString& other : kOthers) {
                const auto cells = cellsOf(other, pixels);
                QVERIFY(cells.has_value());
                shapes.learn(*cells, PlacedLetters(*cells, words(other)));
            }
            const auto cells = cellsOf(shown, pixels);
            QVERIFY(cells.has_value());
            QCOMPARE(joined(shapes.corrected(*cells, {words(read)})), mended);
        }
    }

    void anUnderscoreThinnerThanAPixelIsOne()
    {
        const QFont font = sceneFont(u"DejaVu Sans Mono"_s, 14);
        const QString text = u"bell_oak six on board"_s;
        const QImage without = drawnLine(font, QString(text).replace(u'_', u' '));
        QImage line = drawnLine(font, text);
        for (int y = 0; y < line.height(); ++y) {
            for (int x = 0; x < line.width(); ++x) {
                uchar& pixel = line.scanLine(y)[x];
                if (pixel != without.constScanLine(y)[x])
                    pixel = std::max<uchar>(pixel, 255 - 85);
            }
        }
        const auto cells = letterCellsOf(line, fixedPitchOf(line));
        QVERIFY(cells.has_value());
        QCOMPARE(cells->runs.size(), std::size_t(4));
        const PlacedLetters placed(*cells, words(text));
        QVERIFY(placed.isUnderscore(4));
        QVERIFY(!placed.isUnderscore(3));
        QVERIFY(!placed.isPossible(u'k', 4));
        QVERIFY(placed.isPossible(u'_', 4));
    }

    void whatAnotherReadingSaysIsTakenWhereItFits()
    {
        const auto cells = cellsOf(u"quay.log: lamp six is on"_s);
        QVERIFY(cells.has_value());
        const QList<RecognizedWord> mixed = LetterShapes().corrected(
            *cells, {words(u"quay.1log: lamp six is on"_s), words(u"quay.log: lanp sic is op"_s)});
        QCOMPARE(joined(mixed), u"quay.log: lamp six is on"_s);
    }

    void whatWasReadUnsurelyTeachesNothing()
    {
        const QString shown = u"quay.log: lamp six is on"_s;
        const auto cells = cellsOf(shown);
        QVERIFY(cells.has_value());
        QList<RecognizedWord> unsure = words(shown);
        for (RecognizedWord& word : unsure)
            word.confidence = 60;
        LetterShapes shapes;
        shapes.learn(*cells, PlacedLetters(*cells, unsure));
        const QString read = u"quay.log: lamp six is op"_s;
        QCOMPARE(joined(shapes.corrected(*cells, {words(read)})), read);
    }

    void letterCellsOfALineAreBelievedOnlyWhereOthersHaveThem()
    {
        std::vector<LetterCells> lines;
        for (const QString& other : kOthers)
            lines.push_back(*cellsOf(other));
        lines.push_back(*cellsOf(u"six lamps"_s));
        lines.push_back(*cellsOf(kOthers.at(1), 17));
        std::vector<const LetterCells*> all = {nullptr};
        for (const LetterCells& line : lines)
            all.push_back(&line);
        // None; five long lines alike; a short one; one of another width.
        QCOMPARE(areOfFixedPitch(all),
                 (std::vector<bool>{false, true, true, true, true, true, false, false}));
        QCOMPARE(areOfFixedPitch({&lines.front()}), std::vector<bool>{false});
    }

    void aReaderMendsALineByTheOthersOfItsPicture()
    {
        constexpr int kApart = 40;
        // All of them as high as brackets.
        const QString shown = u"-rw-r--r-- 1 mail fix.log (py)"_s;
        QStringList lines = kOthers;
        for (QString& line : lines)
            line += u" (py)"_s;
        lines.append(shown);
        QImage picture(600, kApart * 7, QImage::Format_RGB32);
        picture.fill(Qt::white);
        QPainter painter(&picture);
        painter.setFont(font());
        for (qsizetype line = 0; line < lines.size(); ++line)
            painter.drawText(20, kApart * static_cast<int>(line + 1), lines.at(line));
        painter.end();
        const double cell = cellOf(lines.first());
        auto fake = std::make_unique<FakeLineRecognizer>();
        fake->setReader([&](const QImage& line, const QString&) {
            constexpr double kAround = 20;
            const double length = (line.width() - kAround) / (line.height() - kAround);
            // They differ in how long they are.
            const auto off = [&](const QString& text) {
                return std::abs(length - cell * static_cast<double>(text.size()));
            };
            const QString text = *std::ranges::min_element(lines, {}, off);
            return words(text == shown ? u"-pw-r--r-- 1 mail fix.1log (py)"_s : text);
        });
        TextReader reader(std::move(fake), std::chrono::minutes(1));
        QCOMPARE(reader.recognize(picture, {}), lines);
    }

private:
    /// How wide a cell is, of the height that the image of a line has.
    static double cellOf(const QString& text)
    {
        constexpr int kFaint = 28;
        constexpr int kMargins = 4;
        const QImage line = drawnLine(font(), text);
        int rows = 0;
        for (int y = 0; y < line.height(); ++y) {
            const uchar* const row = line.constScanLine(y);
            rows += 255 - *std::min_element(row, row + line.width()) > kFaint;
        }
        return QFontMetricsF(font()).horizontalAdvance(u'0') / (rows + kMargins);
    }
    static QFont font(int pixels = 14) { return sceneFont(u"DejaVu Sans Mono"_s, pixels); }
    static std::optional<LetterCells> cellsOf(const QString& text, int pixels = 14)
    {
        const QImage line = drawnLine(font(pixels), text);
        return letterCellsOf(line, fixedPitchOf(line));
    }
};

} // namespace mossbank::test

QTEST_MAIN(mossbank::test::LetterCellsTest)
#include "LetterCellsTest.moc"
