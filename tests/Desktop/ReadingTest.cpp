// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/TesseractLanguages.h"
#include "Mossbank/Platform/PlatformFactory.h"
#include "MossbankCore/Support/Background.h"
#include "tests/Desktop/DesktopTest.h"
#include "tests/Desktop/LanguageModels.h"

#include <QFuture>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <clocale>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

/// Text as a real program puts it on a real screen.
class ReadingTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void initTestCase()
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        const QStringList arguments = {
            u"-fa"_s,       u"DejaVu Sans Mono"_s,
            u"-fs"_s,       u"24"_s,
            u"-bg"_s,       u"white"_s,
            u"-fg"_s,       u"black"_s,
            u"-geometry"_s, u"40x8+100+100"_s,
            u"-e"_s,        u"sh"_s,
            u"-c"_s,        u"printf 'Marigold Lantern\\n\\nQuarterly 1234.5\\n'; sleep 60"_s};
        QVERIFY2(m_desktop->start(u"xterm"_s, arguments, u"xterm"_s),
                 qPrintable(m_desktop->problem()));
        const auto screen = makeScreen();
        const auto dark = [&] {
            m_picture = pictureOf(*screen, {u"debian-xterm"_s, u"xterm"_s});
            return pixelsOf(m_picture, qRgb(0, 0, 0), {100, 100, 500, 150});
        };
        QTRY_VERIFY_WITH_TIMEOUT(
            dark() > 1000 && pixelsOf(m_picture, qRgb(255, 255, 255)) > 100'000, 10'000);
        QTest::qWait(300);
        m_picture = pictureOf(*screen, {u"debian-xterm"_s, u"xterm"_s});
    }

    void whatATerminalShowsIsRead()
    {
        const auto recognizer = makeTextRecognizer();
        const QStringList lines = recognizer->recognize(m_picture, {});
        QVERIFY2(lines.join(u'\n').contains(u"Marigold Lantern"_s), qPrintable(lines.join(u'|')));
        QVERIFY(lines.join(u'\n').contains(u"1234.5"_s));
        QVERIFY(!lines.contains(QString()));
    }

    void theLocaleIsLeftAloneAndDoesNotMatter()
    {
        // One with a comma for the point, which few machines have at hand.
        const QTemporaryDir locales;
        QProcess maker;
        maker.start(u"localedef"_s,
                    {u"-f"_s, u"UTF-8"_s, u"-i"_s, u"de_DE"_s, locales.filePath(u"de_DE.UTF-8"_s)});
        QVERIFY2(maker.waitForFinished() && maker.exitCode() == 0, "package locales is missing");
        qputenv("LOCPATH", QFile::encodeName(locales.path()));
        const QByteArray before = std::setlocale(LC_ALL, nullptr);
        const auto restored = qScopeGuard([&] {
            std::setlocale(LC_ALL, before.constData());
            qunsetenv("LOCPATH");
        });
        const QByteArray numeric = std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
        QCOMPARE(QByteArray(std::localeconv()->decimal_point), QByteArray(","));
        const auto recognizer = makeTextRecognizer();
        const QStringList lines = recognizer->recognize(m_picture, {.languages = {{u"en"_s}}});
        QCOMPARE(QByteArray(std::setlocale(LC_NUMERIC, nullptr)), numeric);
        QCOMPARE(QByteArray(std::localeconv()->decimal_point), QByteArray(","));
        QVERIFY2(lines.join(u'\n').contains(u"Marigold"_s), qPrintable(lines.join(u'|')));
    }

    void severalReadSideBySide()
    {
        const auto recognizer = makeTextRecognizer();
        QList<QFuture<QStringList>> readings;
        for (int reading = 0; reading < 4; ++reading)
            readings.append(inBackground([&] { return recognizer->recognize(m_picture, {}); }));
        for (QFuture<QStringList>& reading : readings)
            QVERIFY(reading.result().join(u'\n').contains(u"Marigold"_s));
    }

    void aPictureWithoutTextHasNoLines()
    {
        const auto recognizer = makeTextRecognizer();
        QImage empty(400, 300, QImage::Format_RGB32);
        empty.fill(Qt::white);
        QCOMPARE(recognizer->recognize(empty, {}), QStringList());
        QCOMPARE(recognizer->recognize(QImage(), {}), QStringList());
        QImage tiny(1, 1, QImage::Format_RGB32);
        tiny.fill(Qt::black);
        QCOMPARE(recognizer->recognize(tiny, {}), QStringList());
    }

    void aLanguageThatIsNotInstalledIsNamedWithItsPackage()
    {
        const auto recognizer = makeTextRecognizer();
        const QString failure = failureOf([&] {
            recognizer->recognize(m_picture, {.languages = {{u"en"_s, u"tlh"_s}}});
        });
        QCOMPARE(failure,
                 u"Reading text needs the package tesseract-ocr-tlh, which is not installed."_s);
    }

    void withoutEnglishTheOthersAreRead()
    {
        LanguageModels models;
        QVERIFY2(models.add(u"tur"_s), "package tesseract-ocr-tur is missing");
        for (const auto& codes : {QStringList(), QStringList{u"tr"_s}}) {
            const auto recognizer = makeTextRecognizer();
            const QStringList lines = recognizer->recognize(m_picture, {.languages = codes});
            QVERIFY2(lines.join(u'\n').contains(u"Marigold"_s), qPrintable(lines.join(u'|')));
        }
    }

    void withoutAnyLanguageThePackageOfEnglishIsNamed()
    {
        const LanguageModels models;
        const auto recognizer = makeTextRecognizer();
        QCOMPARE(failureOf([&] { recognizer->recognize(m_picture, {}); }),
                 u"Reading text needs the package tesseract-ocr-eng, which is not installed."_s);
    }

    void languagesAreNamedAsTesseractNamesThem_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("expected");
        QTest::newRow("en") << u"en"_s << u"eng"_s;
        QTest::newRow("en-GB") << u"en-GB"_s << u"eng"_s;
        QTest::newRow("tr") << u"tr"_s << u"tur"_s;
        QTest::newRow("tr_TR") << u"tr_TR"_s << u"tur"_s;
        QTest::newRow("de") << u"de"_s << u"deu"_s;
        QTest::newRow("zh-Hans") << u"zh-Hans"_s << u"chi_sim"_s;
        QTest::newRow("zh-TW") << u"zh-TW"_s << u"chi_tra"_s;
        QTest::newRow("sr-Latn") << u"sr-Latn"_s << u"srp_latn"_s;
        QTest::newRow("nb") << u"nb"_s << u"nor"_s;
        QTest::newRow("nothing") << QString() << QString();
    }

    void languagesAreNamedAsTesseractNamesThem()
    {
        QFETCH(QString, code);
        QFETCH(QString, expected);
        QCOMPARE(tesseractLanguage(code), expected);
    }

private:
    std::unique_ptr<VirtualDesktop> m_desktop;
    QImage m_picture;
};

QTEST_GUILESS_MAIN(ReadingTest)
#include "ReadingTest.moc"
