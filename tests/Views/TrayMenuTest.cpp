// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Tray/TrayMenu.h"

#include "MossbankCore/Support/Characters.h"

#include <QTest>

#include <algorithm>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

/// What the user sees: a divider as "-", in brackets what cannot be chosen, a menu with what is in
/// it behind it.
QStringList shown(const QList<TrayEntry>& entries)
{
    QStringList titles;
    for (const TrayEntry& entry : entries) {
        if (!entry.isVisible)
            continue;
        titles.append(entry.isDivider    ? u"-"_s
                      : !entry.isEnabled ? u'[' + entry.title + u']'
                                         : entry.title);
        if (!entry.entries.isEmpty())
            titles.last() += u" > "_s + shown(entry.entries).join(u", ");
    }
    return titles;
}

const QString kPauses = u"Pause For > 15 minutes, 1 hour, until morning"_s;
const QString kExclude = u"Exclude the App in Front"_s;
const QString kOpen = u"Open Mossbank"_s;
const QString kQuit = u"Quit Mossbank"_s;

} // namespace

Q_DECLARE_METATYPE(mossbank::TrayState)

class TrayMenuTest final : public QObject {
    Q_OBJECT

    static void states()
    {
        QTest::addColumn<TrayState>("state");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("off") << TrayState{.status = u"Recording is off"_s}
                             << QStringList{u"[Recording is off]"_s,
                                            u"Start Recording"_s,
                                            u"[Capture Now]"_s,
                                            kExclude,
                                            kOpen,
                                            u"-"_s,
                                            kQuit};
        QTest::newRow("recording")
            << TrayState{.isRecording = true, .status = u"Waiting for your next screen"_s}
            << QStringList{u"[Waiting for your next screen]"_s,
                           u"Pause Recording"_s,
                           kPauses,
                           u"Capture Now"_s,
                           kExclude,
                           kOpen,
                           u"-"_s,
                           kQuit};
        QTest::newRow("in a timed pause")
            << TrayState{.isPaused = true, .status = u"Paused until 11:30"_s}
            << QStringList{u"[Paused until 11:30]"_s,
                           u"Resume Recording"_s,
                           u"Cancel Timed Pause"_s,
                           u"[Capture Now]"_s,
                           kExclude,
                           kOpen,
                           u"-"_s,
                           kQuit};
        // The end of a pause and a start are told one after the other.
        QTest::newRow("recording, a pause not over yet")
            << TrayState{.isRecording = true, .isPaused = true, .status = u"a"_s}
            << QStringList{u"[a]"_s, u"Pause Recording"_s,
                           kPauses,  u"Capture Now"_s,
                           kExclude, kOpen,
                           u"-"_s,   kQuit};
        QTest::newRow("the sample library")
            << TrayState{.isDemo = true, .status = u"Recording is off"_s}
            << QStringList{u"[Recording is off]"_s,
                           u"[Start Recording]"_s,
                           u"[Capture Now]"_s,
                           kExclude,
                           kOpen,
                           u"-"_s,
                           kQuit};
        QTest::newRow("a failure")
            << TrayState{.status = u"Recording is off"_s,
                         .errorMessage = u"Capture stopped: the disk is full"_s}
            << QStringList{u"[Recording is off]"_s,
                           u"[Capture stopped: the disk is full]"_s,
                           u"Start Recording"_s,
                           u"[Capture Now]"_s,
                           kExclude,
                           kOpen,
                           u"-"_s,
                           kQuit};
        QTest::newRow("a failure beside recording, and signs that menus know")
            << TrayState{.isRecording = true,
                         .status = u"Excluded R&D_app — no new screenshots of it"_s,
                         .errorMessage = u"a && b"_s}
            << QStringList{u"[Excluded R&D_app — no new screenshots of it]"_s,
                           u"[a && b]"_s,
                           u"Pause Recording"_s,
                           kPauses,
                           u"Capture Now"_s,
                           kExclude,
                           kOpen,
                           u"-"_s,
                           kQuit};
    }

private Q_SLOTS:
    void whatStandsThereFollowsTheState_data() { states(); }
    void whatStandsThereFollowsTheState()
    {
        QFETCH(TrayState, state);
        QFETCH(QStringList, expected);
        QCOMPARE(shown(TrayMenu::entries(state)), expected);
    }

    void eachEntryDoesTheSameInEveryState_data() { states(); }
    void eachEntryDoesTheSameInEveryState()
    {
        QFETCH(TrayState, state);
        const auto kinds = [](const QList<TrayEntry>& entries) {
            QList<std::tuple<TrayCommand, bool, qsizetype>> all;
            for (const TrayEntry& entry : entries)
                all.append({entry.choice.command, entry.isDivider, entry.entries.size()});
            return all;
        };
        QVERIFY(kinds(TrayMenu::entries(state)) == kinds(TrayMenu::entries({})));
    }

    void eachTitleHasItsAction()
    {
        using enum TrayCommand;
        const QList<TrayEntry> entries =
            TrayMenu::entries({.isRecording = true, .isPaused = true, .status = u"a"_s});
        const auto commandOf = [&](const QString& title) {
            const auto found = std::ranges::find(entries, title, &TrayEntry::title);
            return found == entries.end() ? None : found->choice.command;
        };
        QVERIFY(commandOf(u"Pause Recording"_s) == ToggleRecording);
        QVERIFY(commandOf(u"Cancel Timed Pause"_s) == CancelPause);
        QVERIFY(commandOf(u"Capture Now"_s) == CaptureNow);
        QVERIFY(commandOf(kExclude) == ExcludeFrontApplication);
        QVERIFY(commandOf(kOpen) == OpenWindow);
        QVERIFY(commandOf(kQuit) == Quit);
        const auto pauses = std::ranges::find(entries, u"Pause For"_s, &TrayEntry::title)->entries;
        QCOMPARE(pauses.size(), 3);
        for (int number = 0; number < 3; ++number) {
            const TrayChoice expected = {PauseFor, PauseLength::kAllCases.at(number)};
            QVERIFY(pauses.at(number).choice == expected);
        }
    }

    void aLongFailureIsReadInSeveralLines()
    {
        const QString message =
            u"The choices in /home/heron/.config/Mossbank/Mossbank.ini cannot be read, so nothing "
            "is recorded unasked. Mend the file and start Mossbank again."_s;
        const QStringList lines =
            shown(TrayMenu::entries({.status = u"a"_s, .errorMessage = message}));
        QStringList read;
        for (const QString& line : lines.mid(1, lines.indexOf(u"Start Recording"_s) - 1)) {
            read.append(line.mid(1, line.size() - 2));
            QVERIFY(Characters::count(read.last()) <= TrayMenu::kLineLength);
        }
        QCOMPARE(read.size(), 2);
        QCOMPARE(read.join(u' '), message);
    }

    void whatIsEndlessIsCutShort_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("one word") << QString(5000, u'a');
        QTest::newRow("many words") << u"word "_s.repeated(5000);
        QTest::newRow("lines") << u"a line\n"_s.repeated(500);
    }
    void whatIsEndlessIsCutShort()
    {
        QFETCH(QString, text);
        const QStringList lines = shown(TrayMenu::entries({.status = text, .errorMessage = text}));
        const qsizetype count = lines.indexOf(u"Start Recording"_s);
        QVERIFY(count >= 2 && count <= 1 + TrayMenu::kErrorLines);
        for (const QString& line : lines.mid(0, count)) {
            QVERIFY(Characters::count(line) <= TrayMenu::kLineLength + 2);
            QVERIFY(!line.contains(u'\n'));
        }
        QVERIFY(lines.at(0).endsWith(u"…]"_s));
        QVERIFY(lines.at(count - 1).endsWith(u"…]"_s));
    }

    void noLineIsShownForNoText()
    {
        QCOMPARE(shown(TrayMenu::entries({.errorMessage = QString()})).first(),
                 u"Start Recording"_s);
    }
};

QTEST_GUILESS_MAIN(TrayMenuTest)
#include "TrayMenuTest.moc"
