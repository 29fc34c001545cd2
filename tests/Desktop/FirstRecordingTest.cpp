// SPDX-License-Identifier: Apache-2.0
//
// From the first start of the real program to a word that was on the screen: through its window
// alone, before a window of another program.
#include "tests/Desktop/GrabbedDisplay.h"
#include "tests/Desktop/WindowTest.h"

#include <QTest>

#include <algorithm>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;
using Role = SpokenRole;

namespace {

const QString kHeadline = u"Give your day a memory."_s;
const QString kStart = u"Start recording"_s;
const QString kTitle = u"the kingfisher waits"_s;
const QString kWord = u"kingfisher"_s;
constexpr QRgb kMark = qRgb(0xf6, 0xe3, 0xa1);

} // namespace

class FirstRecordingTest final : public WindowTest {
    Q_OBJECT

private Q_SLOTS:
    void aFirstRunExplainsItselfAndBegins();
    void aWindowOfAnotherProgramIsRecorded();
    void aWordOfItIsFoundAndMarked();

private:
    /// Presses the button under the explanation; there is another at the top of the window.
    bool startThroughExplanation();
    bool openTerminal();
    /// Has the terminal recorded, and stops then. Whether its words have been read.
    bool recordTerminal();
    /// Waits for the list to have as many rows as the library, with this in their texts.
    bool listsAllWith(const QString& words);
};

bool FirstRecordingTest::startThroughExplanation()
{
    return soon(
        [this] {
            QList<SpokenPart> parts = spoken().parts();
            const auto headline = std::ranges::find_if(parts, [](const SpokenPart& part) {
                return part.is(Role::Heading) && part.name == kHeadline;
            });
            const auto button = std::find_if(headline, parts.end(), [](const SpokenPart& part) {
                return part.is(Role::Button) && part.name == kStart;
            });
            return button != parts.end() && spoken().press(*button);
        },
        u"the button under the explanation"_s);
}

bool FirstRecordingTest::openTerminal()
{
    const QString command = u"printf '\\n  %s\\n' '%1'; exec sleep 1000"_s.arg(kTitle);
    return desktop().start(u"xterm"_s,
                           {u"-fa"_s, u"DejaVu Sans Mono"_s, u"-fs"_s, u"18"_s, u"-geometry"_s,
                            u"40x8+60+60"_s, u"-T"_s, kTitle, u"-e"_s, u"sh"_s, u"-c"_s, command},
                           u"xterm"_s) != 0 &&
           desktop().bringToFront(kTitle);
}

bool FirstRecordingTest::recordTerminal()
{
    choose({{u"interval"_s, u"1"_s}, {u"appearanceMode"_s, u"light"_s}});
    // It may be pictured before it has written anything.
    const auto isRead = [this] {
        const QList<Memory> rows = mossbank().rows();
        return std::ranges::any_of(rows,
                                   [](const Memory& row) { return row.text.contains(kWord); });
    };
    return open() && startThroughExplanation() && openTerminal() &&
           soon(isRead, u"a row with the word"_s) && press(u"Pause"_s) &&
           shows(Role::Label, u"Recording off"_s);
}

bool FirstRecordingTest::listsAllWith(const QString& words)
{
    // What was being saved when it stopped may come after that.
    return soon(
        [&] {
            const QList<Memory> rows = mossbank().rows();
            return spoken().parts(Role::ListItem).size() ==
                   std::ranges::count_if(
                       rows, [&](const Memory& row) { return row.text.contains(words); });
        },
        u"a list of all rows"_s);
}

void FirstRecordingTest::aFirstRunExplainsItselfAndBegins()
{
    choose({{u"interval"_s, u"1"_s}});
    QVERIFY(open());
    QVERIFY(shows(Role::Heading, kHeadline));
    QVERIFY(shows(Role::Label, u"Mossbank checks your screen every second, saves a screenshot when "
                               "something has changed and reads the words in it, all on this "
                               "computer. Then you can search what you saw."_s));
    QVERIFY(
        shows(Role::Label, u"Nothing is captured until you do, and you can pause at any time."_s));
    QVERIFY(shows(Role::Label, u"No screenshots yet"_s));
    QVERIFY(shows(Role::Label, u"Recording off"_s));
    QVERIFY(mossbank().rows().isEmpty());

    QVERIFY(startThroughExplanation());
    QVERIFY(shows(Role::Label, u"Recording"_s));
    QVERIFY(shows(Role::Button, u"Pause"_s));
    QVERIFY(hides(Role::Button, kStart));
    // Its own window is in front, of which it takes no picture.
    QVERIFY(shows(Role::Label, u"Switch to another window and the first screenshot follows within "
                               "1 second"_s));
    QVERIFY(shows(Role::Heading, kHeadline));
    QVERIFY(mossbank().rows().isEmpty());
}

void FirstRecordingTest::aWindowOfAnotherProgramIsRecorded()
{
    QVERIFY2(recordTerminal(), qPrintable(desktop().problem()));
    QVERIFY(hides(Role::Heading, kHeadline));
    QVERIFY(shows(Role::Heading, u"XTerm · "_s + kTitle));
    QVERIFY(shows(Role::Button, u"Screenshot of XTerm"_s));
    QVERIFY(listsAllWith({}));
    for (const SpokenPart& row : spoken().parts(Role::ListItem))
        QVERIFY2(row.name.startsWith(u"XTerm · "_s), qPrintable(row.name));
    QCOMPARE(mossbank().pictureFiles().size(), mossbank().rows().size());
}

void FirstRecordingTest::aWordOfItIsFoundAndMarked()
{
    QVERIFY2(recordTerminal(), qPrintable(desktop().problem()));
    QVERIFY(desktop().bringToFront(u"Mossbank"_s));
    QVERIFY(searchesFor({}));
    QVERIFY(desktop().type(kWord));
    QVERIFY(searchesFor(kWord));
    QVERIFY(listsAllWith(kWord));
    const auto matches = spoken().parts(Role::ListItem).size();
    QVERIFY(matches > 0);
    QVERIFY(shows(Role::Label, matches == 1 ? u"1 match"_s : u"%1 matches"_s.arg(matches)));
    const SpokenPart found = spoken().parts(Role::ListItem).constFirst();
    QVERIFY(found.name.startsWith(u"XTerm · "_s));
    QVERIFY2(spoken().description(found).contains(kWord), qPrintable(spoken().description(found)));

    QVERIFY(press(u"Show recognized text"_s));
    QVERIFY(shows(Role::Text, u"Recognized text"_s));
    const SpokenPart text = *spoken().find(Role::Text, u"Recognized text"_s);
    QVERIFY2(spoken().text(text).contains(kWord), qPrintable(spoken().text(text)));
    QVERIFY(soon([&] { return !boundsOf(grabDisplay(), kMark, spoken().frame(text)).isEmpty(); },
                 u"a mark in the text"_s));
}

QTEST_GUILESS_MAIN(FirstRecordingTest)
#include "FirstRecordingTest.moc"
