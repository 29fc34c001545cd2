// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/ApplicationChooser/ApplicationChoices.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;

namespace {

const InstalledApplication kMail{{u"org.example.Mail"_s, u"Mail"_s}, u"mail"_s};
const InstalledApplication kEditor{{u"org.example.Editor"_s, u"Éditeur"_s}, u"editor"_s};
const InstalledApplication kBrowser{{u"browser"_s, u"browser"_s}};
const InstalledApplication kNameless{{u"zz"_s, {}}};

QStringList shown(const ApplicationChoices& choices)
{
    QStringList names;
    for (int row = 0; row < choices.rowCount(); ++row)
        names.append(choices.data(choices.index(row), ApplicationChoices::NameRole).toString());
    return names;
}

} // namespace

class ApplicationChoicesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theyStandByNameInAnyCase()
    {
        const ApplicationChoices choices({}, {kNameless, kMail, kEditor, kBrowser});
        QCOMPARE(shown(choices), (QStringList{u"browser"_s, u"Éditeur"_s, u"Mail"_s, u"zz"_s}));
    }

    void ofTwoWithOneNameTheIdentityTellsAndOrders()
    {
        const InstalledApplication other{{u"net.example.Mail"_s, u"Mail"_s}};
        const ApplicationChoices choices({}, {kMail, other});
        QCOMPARE(choices.data(choices.index(0), ApplicationChoices::IdentityRole).toString(),
                 u"net.example.Mail"_s);
        QCOMPARE(choices.data(choices.index(1), ApplicationChoices::IdentityRole).toString(),
                 u"org.example.Mail"_s);
    }

    void thisProgramIsNotAmongThem()
    {
        const InstalledApplication own{{QString::fromUtf16(kOwnBundleID), u"Mossbank"_s}};
        const ApplicationChoices choices({}, {own, kMail});
        QCOMPARE(shown(choices), QStringList{u"Mail"_s});
    }

    void whatIsTypedIsLookedForInNameAndIdentity_data()
    {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QStringList>("left");
        QTest::newRow("part of a name") << u"ai"_s << QStringList{u"Mail"_s};
        QTest::newRow("another case") << u"MAIL"_s << QStringList{u"Mail"_s};
        QTest::newRow("without its accent") << u"edit"_s << QStringList{u"Éditeur"_s};
        QTest::newRow("part of an identity")
            << u"org.example"_s << QStringList{u"Éditeur"_s, u"Mail"_s};
        QTest::newRow("blanks around") << u"  mail "_s << QStringList{u"Mail"_s};
        QTest::newRow("blanks alone")
            << u"  "_s << QStringList{u"browser"_s, u"Éditeur"_s, u"Mail"_s};
        QTest::newRow("nothing has it") << u"kingfisher"_s << QStringList();
    }
    void whatIsTypedIsLookedForInNameAndIdentity()
    {
        QFETCH(QString, filter);
        QFETCH(QStringList, left);
        ApplicationChoices choices({}, {kMail, kEditor, kBrowser});
        const QAbstractItemModelTester tester(&choices);
        choices.setFilter(filter);
        QCOMPARE(shown(choices), left);
        QCOMPARE(choices.currentRow(), left.isEmpty() ? -1 : 0);
        QCOMPARE(choices.emptyText(),
                 left.isEmpty() ? u"No application has this name"_s : QString());
        choices.setFilter({});
        QCOMPARE(choices.rowCount(), 3);
        QCOMPARE(choices.currentRow(), 0);
    }

    void theCurrentOneMovesToTheEndsAndNoFurther()
    {
        ApplicationChoices choices({}, {kMail, kEditor, kBrowser});
        const QSignalSpy moved(&choices, &ApplicationChoices::currentRowChanged);
        QCOMPARE(choices.currentRow(), 0);
        choices.step(-1);
        QCOMPARE(choices.currentRow(), 0);
        QCOMPARE(moved.size(), 0);
        choices.step(1);
        QCOMPARE(choices.currentRow(), 1);
        choices.step(10);
        QCOMPARE(choices.currentRow(), 2);
        QCOMPARE(moved.size(), 2);
        choices.setCurrentRow(3);
        choices.setCurrentRow(-1);
        QCOMPARE(choices.currentRow(), 2);
    }

    void theCurrentOneIsChosen()
    {
        ApplicationChoices choices({}, {kMail, kEditor, kBrowser});
        QSignalSpy chosen(&choices, &ApplicationChoices::chosen);
        choices.setFilter(u"e"_s);
        choices.step(1);
        choices.choose();
        QCOMPARE(chosen.size(), 1);
        QCOMPARE(chosen.at(0).at(0).value<Application>(), kEditor.application);
    }

    void whereNoneIsLeftNoneIsChosen()
    {
        ApplicationChoices choices({}, {kMail});
        const QSignalSpy chosen(&choices, &ApplicationChoices::chosen);
        choices.setFilter(u"kingfisher"_s);
        choices.step(1);
        choices.choose();
        QCOMPARE(choices.currentRow(), -1);
        QCOMPARE(chosen.size(), 0);
    }

    void whereNothingIsInstalledThatIsSaid()
    {
        const ApplicationChoices choices(u"Exclude an application"_s, {});
        QCOMPARE(choices.emptyText(), u"No installed applications were found"_s);
        QCOMPARE(choices.currentRow(), -1);
        QCOMPARE(choices.title(), u"Exclude an application"_s);
    }

    void oneWithoutAnIconHasItsFirstLetter()
    {
        const ApplicationChoices choices({}, {kBrowser});
        QCOMPARE(choices.data(choices.index(0), ApplicationChoices::InitialRole).toString(),
                 u"B"_s);
        QCOMPARE(choices.data(choices.index(0), ApplicationChoices::PictureRole).toUrl(), QUrl());
    }
};

QTEST_MAIN(ApplicationChoicesTest)
#include "ApplicationChoicesTest.moc"
