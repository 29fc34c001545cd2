// SPDX-License-Identifier: Apache-2.0
//
// What programs of several kinds put on a real screen is read, by the reader that this system has.
#include "Mossbank/Platform/PlatformFactory.h"
#include "tests/Desktop/DesktopTest.h"
#include "tests/Desktop/OpenedProgram.h"
#include "tests/Scenes/SceneWords.h"
#include "tests/Scenes/Score.h"

#include <QFile>
#include <QSet>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

constexpr double kLeastFound = 0.97;
constexpr double kMostJunk = 5;

bool write(const QString& path, const QString& text)
{
    QFile file(path);
    const QByteArray bytes = text.toUtf8();
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QStringList wordsOf(const QString& text)
{
    return text.simplified().split(u' ');
}

/// How well it was read. What else stands in the window, any number of times, is no junk.
Score scoreBeside(const QString& shown, const QString& own, const QString& read)
{
    Score result = score(wordsOf(shown), read);
    const QStringList others = score(wordsOf(own), QString()).missed;
    const QSet<QString> known(others.cbegin(), others.cend());
    const qsizetype before = result.junk.size();
    result.junk.removeIf([&](const QString& word) { return known.contains(word); });
    if (before > 0)
        result.junkPerHundred *=
            static_cast<double>(result.junk.size()) / static_cast<double>(before);
    return result;
}

/// A list of texts as the program for translators keeps it. They stand in the file `source`.
QString translations(const QStringList& texts, const QString& source)
{
    QString list = u"<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<!DOCTYPE TS>\n"
                   u"<TS version=\"2.1\" language=\"tr_TR\" sourcelanguage=\"en\">\n"
                   u"<context><name>Notes</name>\n"_s;
    for (const QString& text : texts)
        list += u"<message><location filename=\"%1\" line=\"1\"/><source>%2</source>"
                u"<translation>plum</translation></message>\n"_s.arg(source, text);
    return list + u"</context></TS>\n"_s;
}

} // namespace

class ProgramReadingTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void init();
    void cleanup();
    void aTerminalIsRead_data();
    void aTerminalIsRead();
    void anEditorIsRead();
    void aPageOfTheWebIsRead();
    void aQtProgramIsRead();
    void aGtkProgramIsRead();

private:
    void compare(const QString& shown, const QString& own);

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<Screen> m_screen;
    QTemporaryDir m_folder;
    OpenedProgram m_program;
};

void ProgramReadingTest::init()
{
    m_desktop = std::make_unique<VirtualDesktop>();
    QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
    m_screen = makeScreen();
}

void ProgramReadingTest::cleanup()
{
    m_screen.reset();
    m_desktop.reset();
}

/// What the program shows is read, among what else stands in its window.
void ProgramReadingTest::compare(const QString& shown, const QString& own)
{
    QVERIFY2(m_program.problem.isEmpty(), qPrintable(m_program.problem));
    const QString read = makeTextRecognizer()->recognize(m_program.picture, {}).join(u'\n');
    const Score result = scoreBeside(shown, own, read);
    const QString words = u"found %1, junk %2, missed: %3; junk: %4"_s.arg(result.found)
                              .arg(result.junkPerHundred)
                              .arg(result.missed.join(u' '), result.junk.join(u' '));
    QVERIFY2(result.found >= kLeastFound, qPrintable(words));
    QVERIFY2(result.junkPerHundred <= kMostJunk, qPrintable(words));
}

void ProgramReadingTest::aTerminalIsRead_data()
{
    QTest::addColumn<QStringList>("colours");
    QTest::newRow("dark on light") << QStringList{u"-bg"_s, u"white"_s, u"-fg"_s, u"black"_s};
    QTest::newRow("light on dark") << QStringList{u"-bg"_s, u"#10141c"_s, u"-fg"_s, u"#c8ccd4"_s};
}

void ProgramReadingTest::aTerminalIsRead()
{
    QFETCH(QStringList, colours);
    Dice dice(1);
    SceneWords words(dice, 20);
    QStringList lines;
    for (int line = 0; line < 40; ++line)
        lines += words.fileName({u"txt"_s, u"log"_s}) + u": "_s + words.phrase(3, 7) + u' ' +
                 words.number(4);
    const QString file = m_folder.filePath(u"terminal"_s);
    QVERIFY(write(file, lines.join(u'\n') + u'\n'));
    const QStringList arguments =
        QStringList{u"-u8"_s, u"-fa"_s, u"DejaVu Sans Mono"_s, u"-fs"_s, u"10"_s} + colours +
        QStringList{u"-T"_s, u"Terminal"_s, u"-e"_s,
                    u"sh"_s, u"-c"_s,       u"cat '%1'; exec sleep 1000"_s.arg(file)};
    m_program =
        openProgram(*m_desktop, *m_screen, {u"xterm"_s, arguments, u"xterm"_s, u"Terminal"_s});
    compare(lines.join(u' '), u"Terminal"_s);
}

void ProgramReadingTest::anEditorIsRead()
{
    Dice dice(2);
    SceneWords words(dice, 50);
    QStringList lines;
    for (int line = 0; line < 40; ++line)
        lines += words.sentence(4, 9);
    const QString file = m_folder.filePath(u"notes.txt"_s);
    QVERIFY(write(file, lines.join(u'\n') + u'\n'));
    m_program =
        openProgram(*m_desktop, *m_screen, {u"l3afpad"_s, {file}, u"l3afpad"_s, u"notes.txt"_s});
    compare(lines.join(u' '), u"notes.txt File Edit Search Options Help"_s);
}

void ProgramReadingTest::aPageOfTheWebIsRead()
{
    const QString page = u"/usr/share/doc/debian/FAQ/redistributing.en.html"_s;
    const QString text = textOfPage(page);
    QVERIFY2(!text.isEmpty(), "the page is missing: install the Debian package debian-faq");
    const QString missing = whyMissing(u"dillo"_s, u"dillo"_s);
    QVERIFY2(missing.isEmpty(), qPrintable(missing));
    // It leaves a server of its own behind, and of many of them the next finds no port.
    const QString script =
        u"dillo \"$0\" & trap 'kill $!; /usr/libexec/dillo/dpidc stop; exit' TERM; wait"_s;
    m_program = openProgram(
        *m_desktop, *m_screen,
        {u"sh"_s, {u"-c"_s, script, u"file://"_s + page}, u"dash"_s, u"Redistributing"_s});
    // Some of the words are pictures of words.
    compare(text, page + u" file Prev Next Home Done NetSurf "_s + text);
}

void ProgramReadingTest::aQtProgramIsRead()
{
    Dice dice(3);
    SceneWords words(dice, 40);
    QStringList texts;
    for (int text = 0; text < 24; ++text)
        texts += words.phrase(2, 2);
    QStringList lines;
    for (int line = 0; line < 44; ++line)
        lines += words.sentence(8, 14);
    const QString source = m_folder.filePath(u"source.txt"_s);
    const QString file = m_folder.filePath(u"notes.ts"_s);
    QVERIFY(write(source, lines.join(u'\n') + u'\n'));
    QVERIFY(write(file, translations(texts, source)));
    // From within the folder: its random name in the title would be read one time so, one time so.
    const QString command = u"cd '%1' && exec /usr/lib/qt6/bin/linguist notes.ts"_s;
    m_program = openProgram(
        *m_desktop, *m_screen,
        {u"sh"_s, {u"-c"_s, command.arg(m_folder.path())}, u"linguist-qt6"_s, u"Linguist"_s});
    compare(texts.join(u' ') + u' ' + lines.join(u' '),
            u"File Edit Translation Validation Phrases View Help Context Strings Sources and Forms "
            u"Items Notes Source text Phrases guesses Warnings Definition plum Guess from Ctrl 1 "
            u"phrase Qt Linguist Translation to Türkçe Türkiye 24 "_s +
                file + u' ' + texts.first());
}

void ProgramReadingTest::aGtkProgramIsRead()
{
    Dice dice(4);
    SceneWords words(dice, 40);
    QStringList cells;
    for (int row = 0; row < 30; ++row)
        cells += {words.name(), words.phrase(2, 4), words.amount()};
    const QStringList heads = {words.name(), words.name(), words.name()};
    const QString above = words.sentence(5, 8);
    QStringList arguments = {u"--list"_s, u"--title"_s, u"Stock of the week"_s, u"--text"_s, above};
    for (const QString& head : heads)
        arguments += {u"--column"_s, head};
    arguments += {u"--button"_s, u"Discard:1"_s, u"--button"_s, u"Accept:0"_s};
    m_program = openProgram(*m_desktop, *m_screen,
                            {u"yad"_s, arguments + cells, u"yad"_s, u"Stock of the week"_s});
    compare(QStringList(heads + cells + QStringList{above, u"Discard"_s, u"Accept"_s}).join(u' '),
            u"Stock of the week"_s);
}

QTEST_GUILESS_MAIN(ProgramReadingTest)
#include "ProgramReadingTest.moc"
