// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/PlatformFactory.h"
#include "tests/ResidentMemory.h"

#include <QElapsedTimer>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace mossbank;

namespace {

constexpr int kLineHeight = 24;

const QStringList kArticle = {
    u"The harbour lights went out at seven"_s,     u"Nobody had paid the invoice of 1,284.50"_s,
    u"Fourteen boats waited beyond the wall"_s,    u"A letter arrived from the insurance office"_s,
    u"Please answer before Thursday evening"_s,    u"The keeper walked home along the quay"_s,
    u"Windows were lit one after another"_s,       u"Somebody was playing the accordion"_s,
    u"Bread costs more than it did last winter"_s, u"The council meets again in September"_s,
    u"Chapter nine begins with a storm"_s,         u"Two of the pumps have been repaired"_s,
    u"Her brother sells nets and lanterns"_s,      u"Every morning the ferry leaves at six"_s,
    u"The map shows a path through the marsh"_s,   u"It was drawn by an engineer in 1931"_s,
};
const QStringList kTalk = {
    u"Yarın akşam görüşürüz"_s,  u"Çayı ocağa koydum"_s,        u"Işıkları söndürdün mü?"_s,
    u"Otobüs geç kaldı yine"_s,  u"Kardeşim İzmir'e taşındı"_s, u"Gözlüğümü bulamıyorum"_s,
    u"Şemsiyeni unutma sakın"_s, u"Ödevini bitirdi çocuk"_s,
};

/// A screen with an article on paper and a talk in a dark panel.
QImage screen(const QStringList& article, const QStringList& talk)
{
    constexpr QRect kPanel(700, 0, 500, 700);
    QImage picture(kPanel.right() + 1, kPanel.height(), QImage::Format_RGB32);
    picture.fill(QColor(250, 249, 245));
    QPainter painter(&picture);
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(15);
    painter.setFont(font);
    const auto draw = [&](const QStringList& lines, int left, const QColor& ink) {
        painter.setPen(ink);
        for (qsizetype line = 0; line < lines.size(); ++line)
            painter.drawText(left, 40 + static_cast<int>(line) * kLineHeight, lines.at(line));
    };
    draw(article, 40, QColor(40, 40, 45));
    painter.fillRect(kPanel, QColor(32, 34, 44));
    draw(talk, 740, QColor(200, 205, 215));
    return picture;
}

QStringList with(QStringList lines, qsizetype place, const QString& text)
{
    lines[place] = text;
    return lines;
}

qint64 residentMegabytes()
{
    constexpr qint64 kMegabyte = 1024 * 1024;
    return test::residentBytes(::getpid()) / kMegabyte;
}

} // namespace

/// What a picture costs, and says, after one that was much the same.
class ReadingAgainTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aRestGivesBackWhatReadingTook()
    {
        constexpr qint64 kMost = 500;
        const auto recognizer = makeTextRecognizer();
        const QImage picture = screen(kArticle, kTalk);
        const qint64 before = residentMegabytes();
        QVERIFY(!recognizer->recognize(picture, {}).isEmpty());
        const qint64 warm = residentMegabytes();
        QVERIFY2(warm < kMost, qPrintable(QString::number(warm)));
        // Models for two languages take tens of megabytes; were it less, this would test nothing.
        QVERIFY2(warm > before + 30, qPrintable(u"%1, %2"_s.arg(before).arg(warm)));
        recognizer->rest();
        QTRY_VERIFY2(residentMegabytes() < before + (warm - before) / 2,
                     qPrintable(u"%1, %2, %3"_s.arg(before).arg(warm).arg(residentMegabytes())));
    }

    void whatIsNotNeededForAWhileIsGivenBack()
    {
        const auto recognizer = makeTextRecognizer();
        const QImage picture = screen(kArticle, kTalk);
        const qint64 before = residentMegabytes();
        const QStringList read = recognizer->recognize(picture, {});
        const qint64 warm = residentMegabytes();
        QVERIFY2(warm > before + 30, qPrintable(u"%1, %2"_s.arg(before).arg(warm)));
        const auto isGivenBack = [&] {
            return residentMegabytes() < before + (warm - before) / 2;
        };
        QVERIFY2(QTest::qWaitFor(isGivenBack, 20'000),
                 qPrintable(u"%1, %2, %3"_s.arg(before).arg(warm).arg(residentMegabytes())));
        // One engine is kept, and what the last picture said.
        QVERIFY(residentMegabytes() > before + 10);
        QCOMPARE(recognizer->recognize(picture, {}), read);
        const QImage another = screen(kTalk, kArticle);
        QCOMPARE(recognizer->recognize(another, {}), makeTextRecognizer()->recognize(another, {}));
    }

    void whatChangedReadsAsInAFreshReading_data()
    {
        QTest::addColumn<QImage>("picture");
        QTest::addColumn<QString>("word");
        QTest::newRow("a line typed")
            << screen(kArticle + QStringList{u"Tomorrow we sail"_s}, kTalk)
            << u"Tomorrow we sail"_s;
        QTest::newRow("a line changed")
            << screen(with(kArticle, 4, u"Please ignore the Wednesday evening"_s), kTalk)
            << u"Please ignore the Wednesday evening"_s;
        QTest::newRow("a message arrived")
            << screen(kArticle, kTalk + QStringList{u"Kapıyı çaldım, açmadın"_s})
            << u"Kapıyı çaldım, açmadın"_s;
        QTest::newRow("scrolled by a line")
            << screen(kArticle.mid(1), kTalk) << u"Fourteen boats"_s;
        QTest::newRow("a line in the middle gone")
            << screen(with(kArticle, 7, QString()), kTalk) << u"Bread costs more"_s;
        QTest::newRow("the panel emptied") << screen(kArticle, {}) << u"Bread costs more"_s;
        QTest::newRow("nothing changed") << screen(kArticle, kTalk) << u"Bread costs more"_s;
    }
    void whatChangedReadsAsInAFreshReading()
    {
        QFETCH(QImage, picture);
        QFETCH(QString, word);
        const auto warm = makeTextRecognizer();
        warm->recognize(screen(kArticle, kTalk), {});
        const QStringList again = warm->recognize(picture, {});
        const QStringList fresh = makeTextRecognizer()->recognize(picture, {});
        QCOMPARE(again, fresh);
        QVERIFY2(again.join(u'\n').contains(word), qPrintable(again.join(u'|')));
    }

    void oneLineChangedCostsAFifthAtMost()
    {
        constexpr double kMost = 0.2;
        constexpr int kRounds = 3;
        const auto recognizer = makeTextRecognizer();
        const auto timeOf = [&](const QImage& picture) {
            QElapsedTimer timer;
            timer.start();
            recognizer->recognize(picture, {});
            return static_cast<double>(timer.nsecsElapsed());
        };
        timeOf(screen(kArticle, kTalk)); // loads the models
        double whole = 0;
        double again = 0;
        for (int round = 0; round < kRounds; ++round) {
            timeOf(screen({}, {}));
            whole += timeOf(screen(kArticle, kTalk));
            again += timeOf(screen(with(kArticle, 4 + round, u"Another evening"_s), kTalk));
        }
        QVERIFY2(again <= kMost * whole, qPrintable(QString::number(again / whole)));
    }

    void theTextOfBothPanelsIsReadInBothLanguages()
    {
        // Not a word of theirs is missing, in the order in which they stand there.
        const QStringList lines = makeTextRecognizer()->recognize(screen(kArticle, kTalk), {});
        QCOMPARE(lines, kArticle + kTalk);
    }
};

QTEST_MAIN(ReadingAgainTest)
#include "ReadingAgainTest.moc"
