// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/DisplayNames.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;

class DisplayNamesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aDisplayIsCalledByItsModelOrWhereItIsPluggedIn_data()
    {
        QTest::addColumn<QList<DisplayLabel>>("displays");
        QTest::addColumn<QStringList>("names");
        const DisplayLabel own{{}, u"eDP-1"_s};
        const DisplayLabel left{u"DELL U2720Q"_s, u"DP-1"_s};
        const DisplayLabel right{u"DELL U2720Q"_s, u"DP-2"_s};
        const DisplayLabel other{u"LG HDR 4K"_s, u"HDMI-1"_s};
        QTest::newRow("none") << QList<DisplayLabel>() << QStringList();
        QTest::newRow("one that says nothing") << QList{own} << QStringList{u"eDP-1"_s};
        QTest::newRow("in their order")
            << QList{other, own, left} << QStringList{u"LG HDR 4K"_s, u"eDP-1"_s, u"DELL U2720Q"_s};
        QTest::newRow("two of one model")
            << QList{left, other, right}
            << QStringList{u"DELL U2720Q (DP-1)"_s, u"LG HDR 4K"_s, u"DELL U2720Q (DP-2)"_s};
    }
    void aDisplayIsCalledByItsModelOrWhereItIsPluggedIn()
    {
        QFETCH(QList<DisplayLabel>, displays);
        QFETCH(QStringList, names);
        QCOMPARE(displayNamesOf(displays), names);
    }
};

QTEST_GUILESS_MAIN(DisplayNamesTest)
#include "DisplayNamesTest.moc"
