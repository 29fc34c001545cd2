// SPDX-License-Identifier: Apache-2.0
//
// Searching in the window of the real program: what is marked, and what the keys do.
#include "tests/Desktop/GrabbedDisplay.h"
#include "tests/Desktop/WindowTest.h"

#include <QTest>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;
using Role = SpokenRole;

namespace {

const QString kEnlarged = u"Enlarged screenshot of Editor"_s;
const QString kText = u"Recognized text"_s;
constexpr QRgb kMark = qRgb(0xf6, 0xe3, 0xa1);

} // namespace

class SearchedWindowTest final : public WindowTest {
    Q_OBJECT

private Q_SLOTS:
    void theMatchIsMarkedAndNothingElse();
    void theListIsWalkedFromTheSearchField();
    void escapeGivesBackTheDay();
    void returnWithNothingFoundIsTheFieldsOwn();

private:
    void addFour();
    /// Types it into the search field, in place of what is there.
    bool search(const QString& words);
    /// Where something is marked in the words of the selected screenshot.
    QRect mark();
    /// The same, once something is, elsewhere than `before`.
    QRect markElsewhere(const QRect& before);
};

/// Three of them with a heron, the newest first on the list: c, b, a.
void SearchedWindowTest::addFour()
{
    add({.id = u"a"_s, .text = u"a heron stands"_s, .second = 1, .colour = Qt::darkRed});
    add({.id = u"b"_s, .text = u"the heron waits"_s, .second = 2, .colour = Qt::darkBlue});
    add({.id = u"c"_s, .text = u"the heron flies"_s, .second = 3, .colour = Qt::darkCyan});
    add({.id = u"d"_s, .text = u"moss"_s, .second = 4, .colour = Qt::darkYellow});
}

bool SearchedWindowTest::search(const QString& words)
{
    return desktop().press({u"ctrl+f"_s}) && desktop().type(words) && searchesFor(words);
}

QRect SearchedWindowTest::mark()
{
    const auto text = spoken().find(Role::Text, kText);
    return text ? boundsOf(grabDisplay(), kMark, spoken().frame(*text)) : QRect();
}

QRect SearchedWindowTest::markElsewhere(const QRect& before)
{
    QRect found;
    soon(
        [&] {
            found = mark();
            return !found.isEmpty() && !found.intersects(before);
        },
        u"another mark"_s);
    return found;
}

void SearchedWindowTest::theMatchIsMarkedAndNothingElse()
{
    choose({{u"appearanceMode"_s, u"light"_s}});
    add({.id = u"a"_s, .text = u"alder heron willow"_s});
    QVERIFY(open());
    QVERIFY(press(u"Show recognized text"_s));
    QVERIFY(shows(Role::Text, kText));
    const SpokenPart text = *spoken().find(Role::Text, kText);
    QCOMPARE(spoken().text(text), u"alder heron willow"_s);
    QVERIFY(mark().isEmpty());

    QVERIFY(search(u"heron"_s));
    QVERIFY(lists(1));
    const QRect heron = markElsewhere({});
    QVERIFY(!heron.isEmpty());
    const QRect words = spoken().frame(*spoken().find(Role::Text, kText));
    QVERIFY(soon(
        [this] {
            const QList<SpokenPart> rows = spoken().parts(Role::ListItem);
            return rows.size() == 1 &&
                   !boundsOf(grabDisplay(), kMark, spoken().frame(rows.constFirst())).isEmpty();
        },
        u"a mark in the row"_s));
    QVERIFY(heron.left() > words.left());
    QVERIFY(heron.width() < words.width() / 2);
    // The words before it and after it stand to its left and right.
    QVERIFY(search(u"alder"_s));
    const QRect alder = markElsewhere(heron);
    QVERIFY(!alder.isEmpty());
    QVERIFY(alder.right() < heron.left());
    QVERIFY(search(u"willow"_s));
    const QRect willow = markElsewhere(alder);
    QVERIFY(!willow.isEmpty());
    QVERIFY(willow.left() > heron.right());
    QVERIFY(desktop().press({u"Escape"_s}));
    QVERIFY(searchesFor({}));
    QVERIFY(soon([this] { return mark().isEmpty(); }, u"a text without marks"_s));
    QVERIFY(shows(Role::Text, kText));
}

void SearchedWindowTest::theListIsWalkedFromTheSearchField()
{
    addFour();
    QVERIFY(open());
    QVERIFY(lists(4));
    QVERIFY(search(u"heron"_s));
    QVERIFY(lists(3));
    QVERIFY(shows(Role::Label, u"3 matches"_s));
    QVERIFY(selects(0));
    QVERIFY(showsPictureOf(Qt::darkCyan));
    QVERIFY(desktop().press({u"Down"_s}));
    QVERIFY(selects(1));
    QVERIFY(showsPictureOf(Qt::darkBlue));
    QVERIFY(desktop().press({u"Down"_s, u"Down"_s}));
    QVERIFY(selects(2));
    QVERIFY(showsPictureOf(Qt::darkRed));
    QVERIFY(desktop().press({u"Up"_s}));
    QVERIFY(selects(1));
    // The field has not lost the keys, nor a letter.
    QVERIFY(searchesFor(u"heron"_s));

    QVERIFY(desktop().press({u"Return"_s}));
    QVERIFY(shows(Role::Dialog, kEnlarged));
    QVERIFY(desktop().press({u"Escape"_s}));
    QVERIFY(hides(Role::Dialog, kEnlarged));
    QVERIFY(searchesFor(u"heron"_s));
    QVERIFY(selects(1));
    // All other keys are the field's.
    QVERIFY(desktop().press({u"BackSpace"_s, u"Left"_s, u"BackSpace"_s, u"o"_s, u"End"_s, u"n"_s}));
    QVERIFY(searchesFor(u"heoon"_s));
}

void SearchedWindowTest::escapeGivesBackTheDay()
{
    addFour();
    QVERIFY(open());
    QVERIFY(lists(4));
    QVERIFY(search(u"heron"_s));
    QVERIFY(lists(3));
    QVERIFY(desktop().press({u"Down"_s}));
    QVERIFY(selects(1));
    QVERIFY(desktop().press({u"Escape"_s}));
    QVERIFY(searchesFor({}));
    QVERIFY(lists(4));
    QVERIFY(shows(Role::Label, u"4 moments"_s));
    // In the order of time now, with the same one selected: a, b, c, d.
    QVERIFY(selects(1));
    QVERIFY(showsPictureOf(Qt::darkBlue));
}

void SearchedWindowTest::returnWithNothingFoundIsTheFieldsOwn()
{
    addFour();
    QVERIFY(open());
    QVERIFY(search(u"zebr"_s));
    QVERIFY(shows(Role::Heading, u"No moments found"_s));
    // What comes after it has been heard after it.
    QVERIFY(desktop().press({u"Return"_s, u"a"_s}));
    QVERIFY(searchesFor(u"zebra"_s));
    QVERIFY(!spoken().find(Role::Dialog, kEnlarged));
    QVERIFY(spoken().parts(Role::Dialog).isEmpty());
    QVERIFY(press(u"Show all history"_s));
    QVERIFY(lists(4));
    QVERIFY(shows(Role::Heading, u"All history"_s));
}

QTEST_GUILESS_MAIN(SearchedWindowTest)
#include "SearchedWindowTest.moc"
