// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/WindowTitle.h"

#include "MossbankCore/Support/Characters.h"

#include <QElapsedTimer>
#include <QTest>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

const QString kNothing = u"(nothing)"_s;

} // namespace

class WindowTitleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theApplicationsNameAtTheEndIsLeftOut_data();
    void theApplicationsNameAtTheEndIsLeftOut();
    void aTitleThatSaysNothingIsNotKept_data();
    void aTitleThatSaysNothingIsNotKept();
    void aLongTitleIsCutBetweenWords_data();
    void aLongTitleIsCutBetweenWords();
    void aTitleOfAMegabyteIsCutInAMoment();

private:
    static QString kept(const QString& title, const QString& app)
    {
        return WindowTitle::worthKeeping(title, app).value_or(kNothing);
    }
};

void WindowTitleTest::theApplicationsNameAtTheEndIsLeftOut_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("app");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const QString& title, const QString& app,
                        const QString& expected) {
        QTest::newRow(name) << title << app << expected;
    };
    row("em dash", u"Report — Writer"_s, u"Writer"_s, u"Report"_s);
    row("en dash", u"Report – Writer"_s, u"Writer"_s, u"Report"_s);
    row("hyphen", u"Report - Writer"_s, u"Writer"_s, u"Report"_s);
    row("bar", u"Report | Writer"_s, u"Writer"_s, u"Report"_s);
    row("another sign", u"Report : Writer"_s, u"Writer"_s, u"Report : Writer"_s);
    row("no blanks", u"Report-Writer"_s, u"Writer"_s, u"Report-Writer"_s);
    row("another application", u"Report - Writer"_s, u"Reader"_s, u"Report - Writer"_s);
    row("in front", u"Writer - Report"_s, u"Writer"_s, u"Writer - Report"_s);
    row("case of letters", u"Report - WRITER"_s, u"writer"_s, u"Report"_s);
    row("case of the title is kept", u"REPORT - Writer"_s, u"Writer"_s, u"REPORT"_s);
    row("white space around", u" \t\r\n Report  -  Writer \n"_s, u"Writer"_s,
        u"Report  -  Writer"_s);
    row("white space before the separator", u"Report   - Writer"_s, u"Writer"_s, u"Report"_s);
    row("twice: only the last", u"Report — Writer – Writer"_s, u"Writer"_s, u"Report — Writer"_s);
    row("twice, the other way", u"Report – Writer — Writer"_s, u"Writer"_s, u"Report – Writer"_s);
    row("separator and name alone", u" - Writer"_s, u"Writer"_s, u"- Writer"_s);
    row("name of many words", u"Inbox — Web Mail 2"_s, u"Web Mail 2"_s, u"Inbox"_s);
    row("name with a separator", u"x - a - b"_s, u"a - b"_s, u"x"_s);
    row("no name", u"Report - "_s, QString(), u"Report -"_s);
    row("accents composed, then apart", u"Doc — Café"_s, u"Cafe\u0301"_s, u"Doc"_s);
    row("accents apart, then composed", u"Doc — Cafe\u0301"_s, u"CAFÉ"_s, u"Doc"_s);
    row("a name that grows in lower case", u"Doc - İİİ"_s, u"İİİ"_s, u"Doc"_s);
    row("a title that grows in lower case", u"İİİ - Writer"_s, u"Writer"_s, u"İİİ"_s);
    row("emoji", u"\U0001F468\u200D\U0001F469 - \U0001F600"_s, u"\U0001F600"_s,
        u"\U0001F468\u200D\U0001F469"_s);
    row("half a pair", u"a"_s + QChar(0xD83D) + u" - Writer"_s, u"Writer"_s,
        u"a"_s + QChar(0xD83D));
    row("the name as a part", u"Writer's block"_s, u"Writer"_s, u"Writer's block"_s);
}

void WindowTitleTest::theApplicationsNameAtTheEndIsLeftOut()
{
    QFETCH(QString, title);
    QFETCH(QString, app);
    QFETCH(QString, expected);
    QCOMPARE(kept(title, app), expected);
}

void WindowTitleTest::aTitleThatSaysNothingIsNotKept_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("app");
    const auto row = [](const char* name, const QString& title, const QString& app = u"Writer"_s) {
        QTest::newRow(name) << title << app;
    };
    row("absent", QString());
    row("empty", u""_s);
    row("white space", u" \t\r\n\u2003\u2028"_s);
    row("no title and no name", u""_s, u""_s);
    row("the name", u"Writer"_s);
    row("the name in capitals", u" WRITER "_s);
    row("the name, its accent apart", u"Cafe\u0301"_s, u"Café"_s);
    row("the name twice", u"Writer - Writer"_s);
    for (const char* title :
         {"untitled", "Untitled", "UNTITLED", "New Tab", "new window", "Start Page", "-", "—", "–"})
        QTest::addRow("\"%s\"", title) << QString::fromUtf8(title) << u"Writer"_s;
    row("untitled of the application", u"Untitled — Writer"_s);
    row("a new tab of the application", u"New Tab - Writer"_s);
    row("a hyphen before the separator", u"- - Writer"_s);
}

void WindowTitleTest::aTitleThatSaysNothingIsNotKept()
{
    QFETCH(QString, title);
    QFETCH(QString, app);
    QCOMPARE(kept(title, app), kNothing);
}

void WindowTitleTest::aLongTitleIsCutBetweenWords_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("expected");
    const QString hundred(100, u'a');
    const QString fiftyNine(59, u'b');
    QTest::newRow("160 characters") << hundred + u' ' + fiftyNine << hundred + u' ' + fiftyNine;
    QTest::newRow("161 characters") << hundred + u' ' + fiftyNine + u'b' << hundred;
    QTest::newRow("161 characters, the last blank of several")
        << u"one two "_s + hundred + u" "_s + QString(52, u'b') << u"one two "_s + hundred;
    QTest::newRow("the blank is the 160th") << hundred + fiftyNine + u" c"_s << hundred + fiftyNine;
    QTest::newRow("the blank is the 161st")
        << hundred + fiftyNine + u"c d"_s << hundred + fiftyNine + u'c';
    QTest::newRow("200 without a blank") << QString(200, u'x') << QString(160, u'x');
    const QString accented = u"e\u0301"_s;
    QTest::newRow("160 of two units") << accented.repeated(160) << accented.repeated(160);
    QTest::newRow("161 of two units") << accented.repeated(161) << accented.repeated(160);
    const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s;
    QTest::newRow("200 families") << family.repeated(200) << family.repeated(160);
    QTest::newRow("a tab is no blank")
        << hundred + u'\t' + fiftyNine + u"bc"_s << hundred + u'\t' + fiftyNine;
    QTest::newRow("a blank with a mark is no blank")
        << hundred + u" \u0301"_s + fiftyNine + u"bc"_s << hundred + u" \u0301"_s + fiftyNine;
    QTest::newRow("160 once the name is gone")
        << hundred + u' ' + fiftyNine + u" - Writer"_s << hundred + u' ' + fiftyNine;
    QTest::newRow("161 once the name is gone")
        << hundred + u' ' + fiftyNine + u"b - Writer"_s << hundred;
}

void WindowTitleTest::aLongTitleIsCutBetweenWords()
{
    QFETCH(QString, title);
    QFETCH(QString, expected);
    QCOMPARE(kept(title, u"Writer"_s), expected);
}

void WindowTitleTest::aTitleOfAMegabyteIsCutInAMoment()
{
    const QString title = u"Kırmızı \U0001F1F9 \u0301"_s.repeated(40'000);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(Characters::count(kept(title, u"Writer"_s)) <= 160);
    QVERIFY(Characters::count(kept(title + u" - Writer"_s, u"Writer"_s)) <= 160);
    QCOMPARE(kept(u"Doc - "_s + title, title), u"Doc"_s);
    qInfo("%lld ms", timer.elapsed());
    QVERIFY(timer.elapsed() < 10'000);
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::WindowTitleTest)
#include "WindowTitleTest.moc"
