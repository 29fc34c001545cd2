// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Translations/LinuxWording.h"
#include "tests/House/SourceTree.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// Words that are false on Linux wherever they say what the user has before them.
bool namesAnotherSystem(const QString& text)
{
    static const QRegularExpression kWords(
        u"\\b(?:Mac|macOS|Macs|Finder|Apple|System Settings|System Preferences|menu bar|Dock)\\b|⌘"_s);
    return kWords.match(text).hasMatch();
}

/// The texts in a C++ source, those written in several pieces as one.
QStringList textsIn(QString source)
{
    static const QRegularExpression kComment(u"^\\s*//.*$"_s, QRegularExpression::MultilineOption);
    static const QRegularExpression kText(
        u"\"(?:[^\"\\\\\\n]|\\\\.)*\"(?:\\s*\"(?:[^\"\\\\\\n]|\\\\.)*\")*"_s);
    static const QRegularExpression kSeam(u"\"\\s*\""_s);
    source.remove(kComment);
    QStringList texts;
    for (auto found = kText.globalMatch(source); found.hasNext();) {
        QString text = found.next().captured();
        text.remove(kSeam);
        text.replace(u"\\n"_s, u"\n"_s);
        texts.append(text.mid(1, text.size() - 2));
    }
    return texts;
}

/// Whether a source is of the programs, and not of what translates them, tests or measures.
bool isShownFrom(const QString& path)
{
    return path.startsWith(u"mossbank"_s, Qt::CaseInsensitive) &&
           !path.startsWith(u"Mossbank/Translations/"_s);
}

QString folder()
{
    return QStringLiteral(MOSSBANK_SOURCE_DIR);
}

QString onLinux(const QString& text)
{
    const QString here =
        LinuxWording().translate("Mossbank", text.toUtf8().constData(), nullptr, -1);
    return here.isEmpty() ? text : here;
}

} // namespace

/// Some texts are the same on every system, by which they are looked up; what is shown is not.
class WordingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void noTextThatIsShownNamesAnotherSystem()
    {
        int named = 0;
        for (const QString& path : sourceFiles(folder()) + viewFiles(folder())) {
            if (!isShownFrom(path))
                continue;
            QFile file(folder() + u'/' + path);
            QVERIFY(file.open(QIODevice::ReadOnly));
            for (const QString& text : textsIn(QString::fromUtf8(file.readAll()))) {
                named += namesAnotherSystem(text) ? 1 : 0;
                QVERIFY2(!namesAnotherSystem(onLinux(text)), qPrintable(path + u": "_s + text));
            }
        }
        QVERIFY2(named > 3, "the texts are not found");
    }

    void everyProgramIsLookedAt()
    {
        QStringList shown;
        for (const QString& path : sourceFiles(folder()) + viewFiles(folder())) {
            if (isShownFrom(path))
                shown.append(path);
        }
        QVERIFY(shown.contains(u"mossbank-find/main.cpp"_s));
        QVERIFY(shown.contains(u"Mossbank/Model/QuitGuard.cpp"_s));
        QVERIFY(shown.contains(u"Mossbank/Views/QuitQuestion/QuitQuestionView.qml"_s));
    }

    void aTextInPiecesIsOne()
    {
        QCOMPARE(textsIn(u"f(\"one \"\n  \"two\"); // \"three\"\n// \"four\"\ng(\"a \\\" b\")"_s),
                 (QStringList{u"one two"_s, u"three"_s, u"a \\\" b"_s}));
    }

    void whatNamesAnotherSystemIsFound_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isFound");
        QTest::newRow("a Mac") << u"Paused when your Mac went to sleep"_s << true;
        QTest::newRow("its settings") << u"Enable it in System Settings"_s << true;
        QTest::newRow("its files") << u"Show in Finder"_s << true;
        QTest::newRow("its keys") << u"Next screenshot · ⌘→"_s << true;
        QTest::newRow("an identity") << u"com.apple.Passwords"_s << false;
        QTest::newRow("a machine") << u"Machine"_s << false;
    }
    void whatNamesAnotherSystemIsFound()
    {
        QFETCH(QString, text);
        QFETCH(bool, isFound);
        QCOMPARE(namesAnotherSystem(text), isFound);
    }
};

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::WordingTest)
#include "WordingTest.moc"
