// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/PaletteAppearance.h"

#include <QGuiApplication>
#include <QPalette>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;
using Mode = Appearance::Mode;

class PaletteAppearanceTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void windowsFollowWhileTheyAreOpen()
    {
        QQmlEngine engine;
        engine.addImportPath(u"qrc:/"_s);
        QQmlComponent component(&engine);
        component.setData("import QtQuick\nimport Mossbank.Views\n"
                          "QtObject { property bool isDark: Theme.isDark\n"
                          "property color ink: Theme.ink }",
                          {});
        const std::unique_ptr<QObject> window(component.create());
        QVERIFY2(window, qPrintable(component.errorString()));
        const bool wasDark = window->property("isDark").toBool();
        PaletteAppearance appearance;

        appearance.apply(Mode::Dark);
        QTRY_COMPARE(window->property("isDark").toBool(), true);
        QCOMPARE(window->property("ink").value<QColor>(), QColor(u"#ecece4"_s));
        appearance.apply(Mode::Light);
        QTRY_COMPARE(window->property("isDark").toBool(), false);
        QCOMPARE(window->property("ink").value<QColor>(), QColor(u"#23261f"_s));
        appearance.apply(Mode::Dark);
        QTRY_COMPARE(window->property("isDark").toBool(), true);
        appearance.apply(Mode::System);
        QTRY_COMPARE(window->property("isDark").toBool(), wasDark);
    }

    void whatQtDrawsItselfCanBeReadAsWell()
    {
        PaletteAppearance appearance;
        for (const Mode mode : {Mode::Light, Mode::Dark}) {
            appearance.apply(mode);
            const QPalette palette = QGuiApplication::palette();
            const auto distance = [&](QPalette::ColorRole one, QPalette::ColorRole other) {
                return std::abs(palette.color(one).lightness() - palette.color(other).lightness());
            };
            constexpr int kLegible = 120;
            QVERIFY(distance(QPalette::WindowText, QPalette::Window) > kLegible);
            QVERIFY(distance(QPalette::Text, QPalette::Base) > kLegible);
            QVERIFY(distance(QPalette::ButtonText, QPalette::Button) > kLegible);
        }
        appearance.apply(Mode::System);
    }
};

QTEST_MAIN(PaletteAppearanceTest)
#include "PaletteAppearanceTest.moc"
