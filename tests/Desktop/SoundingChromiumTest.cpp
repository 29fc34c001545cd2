// SPDX-License-Identifier: Apache-2.0
//
// A real Chromium whose tab plays a sound, which it says in the name of its window to assistive
// tools and nowhere else.
#include "tests/Desktop/BrowserTest.h"

#include <QTest>
#include <qcoro/qcorotask.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

class SoundingChromiumTest final : public BrowserTest {
    Q_OBJECT

private Q_SLOTS:
    void aTabThatPlaysASoundHasAnAddressUnlessItIsPrivate_data();
    void aTabThatPlaysASoundHasAnAddressUnlessItIsPrivate();
};

void SoundingChromiumTest::aTabThatPlaysASoundHasAnAddressUnlessItIsPrivate_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("ending");
    QTest::addColumn<bool>("hasAddress");
    QTest::newRow("ordinary") << QStringList{u"--new-window"_s} << u" - Chromium"_s << true;
    QTest::newRow("private") << QStringList{u"--incognito"_s} << u" - Chromium (Incognito)"_s
                             << false;
}

void SoundingChromiumTest::aTabThatPlaysASoundHasAnAddressUnlessItIsPrivate()
{
    QFETCH(QStringList, options);
    QFETCH(QString, ending);
    QFETCH(bool, hasAddress);
    listen();
    const QString page = server().address(u"Heron/sounding"_s);
    // A private window of one that was not started as private: that its command would tell.
    const QStringList allowed = {u"--autoplay-policy=no-user-gesture-required"_s, u"--lang=en"_s};
    const qint64 process =
        desktop().startChromium(allowed + QStringList{server().address(u"Kingfisher"_s)});
    QVERIFY2(process != 0, qPrintable(desktop().problem()));
    QVERIFY(desktop().bringToFront(u"Kingfisher - Chromium"_s));
    QVERIFY(desktop().startChromium(allowed + options + QStringList{page}) != 0);
    QVERIFY(desktop().bringToFront(u"Heron - Chromium"_s));

    QStringList names;
    const auto isToldOfTheSound = [&] {
        names.clear();
        for (const AccessibleWindow& window : QCoro::waitFor(windowsOf(process)))
            names.append(window.name);
        return std::ranges::any_of(names, [&](const QString& name) {
            return name.startsWith(u"Heron - "_s) && name.endsWith(ending) &&
                   name.size() > u"Heron"_s.size() + ending.size();
        });
    };
    QVERIFY2(QTest::qWaitFor(isToldOfTheSound, kPatience), qPrintable(names.join(u'\n')));
    qInfo("%s", qPrintable(names.join(u'\n')));

    // An ordinary one has an address within this time, so that a private one has had every chance.
    const int patience = hasAddress ? kPatience : 6000;
    QCOMPARE(addressOf(u"chromium"_s, patience), hasAddress ? QStringList{page} : QStringList());
    QVERIFY2(isToldOfTheSound(), "it was told of until the end");
}

QTEST_GUILESS_MAIN(SoundingChromiumTest)
#include "SoundingChromiumTest.moc"
