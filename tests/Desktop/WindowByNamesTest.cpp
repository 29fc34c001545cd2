// SPDX-License-Identifier: Apache-2.0
//
// The window of the real program, whose buttons are pressed by their names: deleting, days without
// anything, and pictures that have gone.
#include "tests/Desktop/WindowTest.h"

#include <QDirIterator>
#include <QFile>
#include <QLocale>
#include <QTest>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;
using Role = SpokenRole;

namespace {

const QString kQuestion = u"Delete this screenshot?"_s;
const QString kDelete = u"Delete screenshot"_s;
const QString kUnavailable = u"Screenshot unavailable"_s;

QString shortly(QDate day)
{
    return QLocale::c().toString(day, u"MMM d"_s);
}

QString inWords(QDate day)
{
    return QLocale::c().toString(day, u"MMMM d"_s);
}

} // namespace

class WindowByNamesTest final : public WindowTest {
    Q_OBJECT

private Q_SLOTS:
    void aScreenshotIsDeletedAfterAQuestion();
    void aDayWithoutAnythingLeadsBack();
    void aPictureRemovedFromTheDiskIsSaidToHaveGone();

private:
    QStringList alerts();
    /// Whether any file of the library has these letters in it.
    bool isOnDisk(const QByteArray& letters);
};

QStringList WindowByNamesTest::alerts()
{
    QStringList alerts;
    for (const SpokenPart& alert : spoken().parts(Role::Alert))
        alerts.append(alert.name);
    return alerts;
}

bool WindowByNamesTest::isOnDisk(const QByteArray& letters)
{
    QDirIterator files(mossbank().library(), QDir::Files | QDir::Hidden,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (file.open(QIODevice::ReadOnly) && file.readAll().contains(letters))
            return true;
    }
    return false;
}

void WindowByNamesTest::aScreenshotIsDeletedAfterAQuestion()
{
    add({.id = u"a"_s, .text = u"a heron stands"_s, .second = 1, .colour = Qt::darkRed});
    add({.id = u"b"_s, .text = u"the kingfisher waits"_s, .second = 2, .colour = Qt::darkBlue});
    QVERIFY(open());
    QVERIFY(lists(2));
    QVERIFY(selects(1));
    QVERIFY(showsPictureOf(Qt::darkBlue));

    QVERIFY(press(kDelete));
    QVERIFY(shows(Role::Dialog, kQuestion));
    QVERIFY(shows(Role::Label, u"The image and its recognized text will be permanently removed "
                               "from Mossbank."_s));
    // The way back is what the return key takes.
    QVERIFY(soon(
        [this] {
            const auto button = spoken().find(Role::Button, u"Cancel"_s);
            return button && button->has(SpokenState::Focused);
        },
        u"the focus on the way back"_s));
    QVERIFY(press(u"Cancel"_s));
    QVERIFY(hides(Role::Dialog, kQuestion));
    QVERIFY(lists(2));
    QCOMPARE(mossbank().rows().size(), 2);
    QCOMPARE(mossbank().pictureFiles().size(), 2);
    QVERIFY(isOnDisk("kingfisher"));
    QVERIFY(showsPictureOf(Qt::darkBlue));

    QVERIFY(press(kDelete));
    QVERIFY(shows(Role::Dialog, kQuestion));
    QVERIFY(press(u"Delete Screenshot"_s));
    QVERIFY(hides(Role::Dialog, kQuestion));
    QVERIFY(lists(1));
    QVERIFY(shows(Role::Label, u"1 moment"_s));
    QVERIFY(selects(0));
    QVERIFY(showsPictureOf(Qt::darkRed));
    // Nobody else reads the library until then, or more of it could be left for a while.
    QVERIFY(soon([this] { return !QFile::exists(pictureOf(u"b"_s)) && !isOnDisk("kingfisher"); },
                 u"the end of it on the disk"_s));
    QVERIFY(QFile::exists(pictureOf(u"a"_s)));
    QCOMPARE(mossbank().rows().size(), 1);
    QCOMPARE(mossbank().rows().constFirst().id, u"a"_s);
    QVERIFY(!mossbank().find({u"kingfisher"_s}).text.contains(u"kingfisher waits"_s));
    QVERIFY(mossbank().find({u"heron"_s}).text.contains(u"heron stands"_s));
}

void WindowByNamesTest::aDayWithoutAnythingLeadsBack()
{
    add({.id = u"a"_s, .text = u"a heron"_s, .daysAgo = 2, .second = 1, .colour = Qt::darkRed});
    add({.id = u"b"_s, .text = u"a heron"_s, .daysAgo = 2, .second = 2, .colour = Qt::darkBlue});
    QVERIFY(open());
    const QDate day = today().addDays(-2);
    const QString back = u"Go to "_s + shortly(day);
    QVERIFY(shows(Role::Heading, u"Today"_s));
    QVERIFY(shows(Role::Heading, u"Nothing was saved today"_s));
    QVERIFY(shows(Role::Label, u"Recording is off, so nothing new is being saved."_s));
    QVERIFY(press(back));
    QVERIFY(shows(Role::Heading, inWords(day)));
    QVERIFY(hides(Role::Heading, u"Nothing was saved today"_s));
    QVERIFY(lists(2));
    QVERIFY(showsPictureOf(Qt::darkBlue));

    QVERIFY(press(u"Next day"_s));
    QVERIFY(shows(Role::Heading, u"Nothing was saved yesterday"_s));
    QVERIFY(press(back));
    QVERIFY(lists(2));
    QVERIFY(press(u"Previous day"_s));
    QVERIFY(shows(Role::Heading, u"Nothing was saved on "_s + inWords(day.addDays(-1))));
    QVERIFY(lists(0));
    QVERIFY(press(back));
    QVERIFY(shows(Role::Heading, inWords(day)));
    QVERIFY(lists(2));
}

void WindowByNamesTest::aPictureRemovedFromTheDiskIsSaidToHaveGone()
{
    add({.id = u"a"_s, .text = u"a heron stands"_s, .second = 1, .colour = Qt::darkRed});
    add({.id = u"b"_s, .text = u"the kingfisher waits"_s, .second = 2, .colour = Qt::darkBlue});
    QVERIFY(open());
    QVERIFY(lists(2));
    QVERIFY(showsPictureOf(Qt::darkBlue));
    QVERIFY(!spoken().find(Role::Label, kUnavailable));
    const QStringList before = alerts();
    QVERIFY(QFile::remove(pictureOf(u"a"_s)));

    QVERIFY(press(u"Previous screenshot"_s));
    QVERIFY(selects(0));
    QVERIFY(shows(Role::Label, kUnavailable));
    QVERIFY(
        shows(Role::Label, u"The image may have been moved or removed from the library folder."_s));
    // What was read in it is still there.
    QVERIFY(lists(2));
    QVERIFY(press(u"Show recognized text"_s));
    QVERIFY(shows(Role::Text, u"Recognized text"_s));
    QCOMPARE(spoken().text(*spoken().find(Role::Text, u"Recognized text"_s)), u"a heron stands"_s);
    // And nothing is made of it that the user would have to send away.
    QCOMPARE(alerts(), before);

    QVERIFY(press(u"Next screenshot"_s));
    QVERIFY(selects(1));
    QVERIFY(hides(Role::Label, kUnavailable));
    QVERIFY(showsPictureOf(Qt::darkBlue));
}

QTEST_GUILESS_MAIN(WindowByNamesTest)
#include "WindowByNamesTest.moc"
