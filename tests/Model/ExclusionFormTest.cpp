// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/ExclusionForm.h"

#include "Mossbank/Model/Preferences.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace mossbank;
using namespace Qt::StringLiterals;

class ExclusionFormTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anIdentityIsKnownByItsForm_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isIdentity");
        for (const QString& text : {u"org.keepassxc.KeePassXC"_s, u"virt-manager"_s, u"notepad++"_s,
                                    u"7zFM.exe"_s, u"steam_app_4000"_s, u"chrome-abc-Profile_1"_s,
                                    u"hüttenkäse"_s, u"(app)"_s, u"a@b"_s})
            QTest::newRow(qPrintable(text)) << text << true;
        int number = 0;
        for (const QString& text :
             {u""_s, u"/usr/bin/keepassxc"_s, u"~/bin/x"_s, u"C:\\x"_s, u"org.example.*"_s, u"a?"_s,
              u"a.b # bank"_s, u"a.b#bank"_s, u"a.b;c.d"_s, u"Key Pass"_s, u"a\tb"_s, u"a\nb"_s,
              u"a,b"_s, u"a=b"_s, u"\"a\""_s, u"'a'"_s, u"<a>"_s, u"a\u00a0b"_s,
              QString(256, u'a')})
            QTest::addRow("none, %d", ++number) << text << false;
    }
    void anIdentityIsKnownByItsForm()
    {
        QFETCH(QString, text);
        QTEST(ExclusionForm::isIdentity(text), "isIdentity");
    }

    void thoseOfAFreshInstallAreIdentities()
    {
        const QTemporaryDir folder;
        const Preferences preferences(folder.filePath(u"none.ini"_s));
        QCOMPARE(ExclusionForm::others(preferences.excludedBundles()), QStringList());
        QCOMPARE(preferences.remarkBehindExclusions(), QString());
    }

    void aRemarkBehindTheListIsFound_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("remark");
        QTest::addColumn<QStringList>("meant");
        const QStringList none;
        QTest::newRow("none") << QByteArray("excludedBundles=a.b") << QString() << none;
        QTest::newRow("a list gone on with") << QByteArray("excludedBundles=a.b; c.d, e.f")
                                             << u"c.d, e.f"_s << QStringList{u"c.d"_s, u"e.f"_s};
        QTest::newRow("a sentence") << QByteArray("excludedBundles = a.b ; the bank, I think")
                                    << u"the bank, I think"_s << none;
        QTest::newRow("in a quotation")
            << QByteArray("excludedBundles=\"a;\\\"b;\", c") << QString() << none;
        QTest::newRow("behind a quotation")
            << QByteArray("excludedBundles=\"a;b\", c;d") << u"d"_s << QStringList{u"d"_s};
        QTest::newRow("of another choice")
            << QByteArray("changeMode=any;c.d\nexcludedBundles=a.b") << QString() << none;
        QTest::newRow("a line that is all remark")
            << QByteArray(";excludedBundles=a.b;c.d") << QString() << none;
    }
    void aRemarkBehindTheListIsFound()
    {
        QFETCH(QByteArray, line);
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"choices.ini"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("[General]\n" + line + "\n") > 0);
        file.close();
        const QString remark = Preferences(path).remarkBehindExclusions();
        QTEST(remark, "remark");
        QTEST(ExclusionForm::meant(remark), "meant");
    }
};

QTEST_GUILESS_MAIN(ExclusionFormTest)
#include "ExclusionFormTest.moc"
