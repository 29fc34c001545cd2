// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/PortalValues.h"

#include <QDBusVariant>
#include <QTest>

using namespace mossbank;
using namespace Qt::StringLiterals;
using ColourScheme = DesktopSettings::ColourScheme;

namespace {

const QString kAppearance = u"org.freedesktop.appearance"_s;
const QString kScheme = u"color-scheme"_s;
const QString kMotion = u"reduced-motion"_s;
const QString kGnome = u"org.gnome.desktop.interface"_s;
const QString kAnimations = u"enable-animations"_s;
const QString kKde = u"org.kde.kdeglobals.KDE"_s;
const QString kFactor = u"AnimationDurationFactor"_s;

QVariant inVariant(const QVariant& value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

} // namespace

/// What desktops tell, and what it means.
class PortalValuesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theColourScheme_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<ColourScheme>("expected");
        QTest::newRow("none told") << QVariant() << ColourScheme::NoPreference;
        QTest::newRow("none wanted") << QVariant(0U) << ColourScheme::NoPreference;
        QTest::newRow("dark") << QVariant(1U) << ColourScheme::Dark;
        QTest::newRow("light") << QVariant(2U) << ColourScheme::Light;
        QTest::newRow("of a later day") << QVariant(3U) << ColourScheme::NoPreference;
        QTest::newRow("within a variant") << inVariant(1U) << ColourScheme::Dark;
        QTest::newRow("within two") << inVariant(inVariant(2U)) << ColourScheme::Light;
        QTest::newRow("signed") << QVariant(1) << ColourScheme::Dark;
        QTest::newRow("words") << QVariant(u"dark"_s) << ColourScheme::NoPreference;
        QTest::newRow("a list") << QVariant(QStringList{u"1"_s}) << ColourScheme::NoPreference;
        QTest::newRow("yes") << QVariant(true) << ColourScheme::NoPreference;
    }
    void theColourScheme()
    {
        QFETCH(QVariant, value);
        PortalValues values;
        values.replace({{kAppearance, {{kScheme, value}}}, {kGnome, {{kScheme, 1U}}}});
        QTEST(values.colourScheme(), "expected");
        QVERIFY(!values.reducesMotion());
    }

    void motion_data()
    {
        QTest::addColumn<QVariant>("appearance");
        QTest::addColumn<QVariant>("gnome");
        QTest::addColumn<QVariant>("kde");
        QTest::addColumn<bool>("isReduced");
        const QVariant none;
        QTest::newRow("nothing told") << none << none << none << false;
        QTest::newRow("reduced") << QVariant(1U) << none << none << true;
        QTest::newRow("within a variant") << inVariant(1U) << none << none << true;
        QTest::newRow("as usual") << QVariant(0U) << none << none << false;
        QTest::newRow("of a later day") << QVariant(2U) << none << none << false;
        QTest::newRow("the common one decides")
            << QVariant(0U) << QVariant(false) << QVariant(u"0"_s) << false;
        QTest::newRow("the common one is nonsense")
            << QVariant(u"?"_s) << QVariant(false) << none << true;
        QTest::newRow("no animations") << none << QVariant(false) << none << true;
        QTest::newRow("animations") << none << QVariant(true) << none << false;
        QTest::newRow("animations are nonsense") << none << QVariant(u"false"_s) << none << false;
        QTest::newRow("of no duration") << none << none << QVariant(u"0"_s) << true;
        QTest::newRow("of no duration, as a number") << none << none << QVariant(0.0) << true;
        QTest::newRow("of short duration") << none << none << QVariant(u"0.25"_s) << false;
        QTest::newRow("of no duration, though there are some")
            << none << QVariant(true) << QVariant(u"0"_s) << true;
        QTest::newRow("a duration of nothing known") << none << none << QVariant(u""_s) << false;
    }
    void motion()
    {
        QFETCH(QVariant, appearance);
        QFETCH(QVariant, gnome);
        QFETCH(QVariant, kde);
        PortalValues values;
        values.replace({{kAppearance, {{kMotion, appearance}}},
                        {kGnome, {{kAnimations, gnome}}},
                        {kKde, {{kFactor, kde}}}});
        QTEST(values.reducesMotion(), "isReduced");
        QCOMPARE(values.colourScheme(), ColourScheme::NoPreference);
    }

    void aChangeLeavesTheRest()
    {
        PortalValues values;
        values.replace({{kAppearance, {{kScheme, 1U}, {kMotion, 1U}}}});
        values.change(kAppearance, kScheme, 2U);
        QCOMPARE(values.colourScheme(), ColourScheme::Light);
        QVERIFY(values.reducesMotion());
        values.change(kAppearance, kMotion, 0U);
        QVERIFY(!values.reducesMotion());
        // What is not told anew is no longer so.
        values.replace({});
        QCOMPARE(values.colourScheme(), ColourScheme::NoPreference);
    }
};

QTEST_GUILESS_MAIN(PortalValuesTest)
#include "PortalValuesTest.moc"
