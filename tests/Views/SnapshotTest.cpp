// SPDX-License-Identifier: Apache-2.0
//
// A window drawn to a file: which one, when, and what becomes of failures.
#include "Mossbank/Views/Snapshot/Snapshot.h"

#include "tests/Fakes/FakeClock.h"
#include "tests/Fakes/FakeDesktop.h"

#include <QFile>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace mossbank;
using namespace Qt::StringLiterals;
using Mode = Appearance::Mode;

namespace {

constexpr QSize kSize(200, 120);

std::unique_ptr<QQuickWindow> windowOf(const QColor& colour, const QString& name = {})
{
    auto window = std::make_unique<QQuickWindow>();
    window->setColor(colour);
    window->setObjectName(name);
    window->resize(kSize);
    window->show();
    if (!QTest::qWaitForWindowExposed(window.get()))
        qFatal("the window does not show");
    return window;
}

void focus(QQuickWindow& window)
{
    window.requestActivate();
    QVERIFY(QTest::qWaitFor([&] { return QGuiApplication::focusWindow() == &window; }));
}

} // namespace

class SnapshotTest final : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    FakeClock m_clock;
    FakeAppearance m_appearance;
    QString m_path;

    std::unique_ptr<Snapshot> make(const QStringList& arguments = {}, bool hasPath = true)
    {
        const QStringList path = {u"--snapshot"_s, m_path};
        const QStringList all =
            QStringList(u"mossbank"_s) + (hasPath ? path : QStringList()) + arguments;
        return std::make_unique<Snapshot>(SnapshotOptions(all), m_clock, m_appearance);
    }

    /// The colour that the middle of the file has.
    QColor drawn() const
    {
        const QImage image(m_path);
        return image.isNull() ? QColor() : image.pixelColor(image.rect().center());
    }

    void turn()
    {
        for (int times = 0; times < 3; ++times)
            QCoreApplication::processEvents();
    }

private Q_SLOTS:
    void init()
    {
        m_path =
            m_folder.filePath(u"%1.png"_s.arg(QLatin1StringView(QTest::currentTestFunction())));
        m_appearance.applied.clear();
    }
    void cleanup() { QVERIFY(QGuiApplication::topLevelWindows().isEmpty()); }

    void withoutAWindowThereIsNothingToDraw()
    {
        const auto snapshot = make();
        QCOMPARE(snapshot->write(m_path), u"no window to draw"_s);
        QQuickWindow hidden;
        QCOMPARE(snapshot->write(m_path), u"no window to draw"_s);
        QWindow other; // without content
        other.show();
        QCOMPARE(snapshot->write(m_path), u"no window to draw"_s);
        QVERIFY(!QFile::exists(m_path));
    }

    void theWindowIsDrawn()
    {
        const auto window = windowOf(Qt::red);
        QCOMPARE(make()->write(m_path), std::nullopt);
        const QImage image(m_path);
        QCOMPARE(image.size(), kSize * window->effectiveDevicePixelRatio());
        QCOMPARE(drawn(), QColor(Qt::red));
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().startsWith("\x89PNG"));
    }

    void theOneInFrontIsDrawn()
    {
        const auto red = windowOf(Qt::red);
        const auto green = windowOf(Qt::green, u"workspace"_s);
        focus(*red);
        QCOMPARE(make()->write(m_path), std::nullopt);
        QCOMPARE(drawn(), QColor(Qt::red));
        focus(*green);
        QCOMPARE(make()->write(m_path), std::nullopt);
        QCOMPARE(drawn(), QColor(Qt::green));
    }

    void orElseTheWorkspaceOrElseTheFirst()
    {
        const auto unfocused = [](const QColor& colour, const QString& name) {
            auto window = std::make_unique<QQuickWindow>();
            window->setFlag(Qt::WindowDoesNotAcceptFocus);
            window->setColor(colour);
            window->setObjectName(name);
            window->resize(kSize);
            window->show();
            return window;
        };
        const auto red = unfocused(Qt::red, {});
        auto green = unfocused(Qt::green, u"workspace"_s);
        const auto blue = unfocused(Qt::blue, {});
        QVERIFY(QTest::qWaitForWindowExposed(blue.get()));
        QWindow other; // none of those that can be drawn
        other.show();
        other.requestActivate();
        QTRY_COMPARE(QGuiApplication::focusWindow(), &other);
        QCOMPARE(make()->write(m_path), std::nullopt);
        QCOMPARE(drawn(), QColor(Qt::green));
        other.requestActivate();
        QTRY_COMPARE(QGuiApplication::focusWindow(), &other);
        green->hide();
        QCOMPARE(make()->write(m_path), std::nullopt);
        QCOMPARE(drawn(), QColor(Qt::red));
    }

    void anEnlargedScreenshotIsLookedForInASheet()
    {
        const auto window = windowOf(Qt::red, u"workspace"_s);
        const QStringList enlarged = {u"--snapshot-show"_s, u"text,enlarged"_s};
        QCOMPARE(make(enlarged)->write(m_path), std::nullopt);
        QCOMPARE(drawn(), QColor(Qt::red)); // there is none
        const auto sheet = windowOf(Qt::green);
        sheet->setTransientParent(window.get());
        focus(*window);
        QCOMPARE(make()->write(m_path), std::nullopt);
        QCOMPARE(drawn(), QColor(Qt::red));
        QCOMPARE(make(enlarged)->write(m_path), std::nullopt);
        QCOMPARE(drawn(), QColor(Qt::green));
    }

    void aSheetWithinTheWindowIsDrawnAlone()
    {
        QQmlEngine engine;
        QQmlComponent component(&engine);
        component.setData("import QtQuick\nWindow { width: 200; height: 120; visible: true\n"
                          "color: 'red'; property Item sheet: part\n"
                          "Rectangle { id: part; x: 20; y: 10; width: 50; height: 40\n"
                          "color: 'lime' } }",
                          {});
        const std::unique_ptr<QObject> made(component.create());
        QVERIFY2(made, qPrintable(component.errorString()));
        auto* const window = qobject_cast<QQuickWindow*>(made.get());
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QCOMPARE(make({u"--snapshot-show"_s, u"enlarged"_s})->write(m_path), std::nullopt);
        const QImage image(m_path);
        QCOMPARE(image.size(), QSize(50, 40) * window->effectiveDevicePixelRatio());
        QCOMPARE(image.pixelColor(0, 0), QColor(u"lime"_s));
        QCOMPARE(image.pixelColor(image.width() - 1, image.height() - 1), QColor(u"lime"_s));
        QCOMPARE(make()->write(m_path), std::nullopt);
        QCOMPARE(QImage(m_path).size(), kSize * window->effectiveDevicePixelRatio());
    }

    void whatCannotBeWrittenIsTold()
    {
        const auto window = windowOf(Qt::red);
        const auto problem = make()->write(m_folder.filePath(u"nowhere/a.png"_s));
        QCOMPARE(problem, u"No such file or directory"_s);
    }

    void whatIsNoImageHasNoEncoding()
    {
        QVERIFY(!Snapshot::encoded(QImage()));
        QImage image(4, 4, QImage::Format_RGB32);
        image.fill(Qt::red);
        QCOMPARE(QImage::fromData(Snapshot::encoded(image).value_or(QByteArray())), image);
    }

    // When

    void itIsTakenWhenThingsHaveSettledTwice()
    {
        const auto window = windowOf(Qt::red);
        const auto snapshot =
            make({u"--snapshot-hold"_s, u"2"_s, u"--snapshot-appearance"_s, u"dark"_s});
        QSignalSpy ended(snapshot.get(), &Snapshot::ended);
        QSignalSpy failed(snapshot.get(), &Snapshot::failed);
        int prepared = 0;
        snapshot->takeWhenAsked(true, [&] {
            ++prepared;
            window->setColor(Qt::blue);
        });
        turn();
        QCOMPARE(m_appearance.applied, QList<Mode>{Mode::Dark});
        m_clock.advance(1.9);
        turn();
        QCOMPARE(prepared, 0);
        m_clock.advance(0.2);
        turn();
        QCOMPARE(prepared, 1);
        m_clock.advance(1.8);
        turn();
        QVERIFY(!QFile::exists(m_path));
        QVERIFY(ended.isEmpty());
        m_clock.advance(0.2);
        turn();
        QCOMPARE(drawn(), QColor(Qt::blue));
        QCOMPARE(ended.size(), 1);
        QVERIFY(failed.isEmpty());
        QCOMPARE(prepared, 1);
    }

    void withoutAWaitItIsTakenAtOnce()
    {
        const auto window = windowOf(Qt::red);
        const auto snapshot = make({u"--snapshot-hold"_s, u"-1"_s});
        QSignalSpy ended(snapshot.get(), &Snapshot::ended);
        snapshot->takeWhenAsked(true, [] {});
        const bool isDone = QTest::qWaitFor([&] {
            m_clock.advance(0);
            return !ended.isEmpty();
        });
        QVERIFY(isDone);
        QCOMPARE(drawn(), QColor(Qt::red));
        QVERIFY(m_appearance.applied.isEmpty());
    }

    void aFailureIsToldAndEndsItAsWell()
    {
        const auto snapshot = make({u"--snapshot-hold"_s, u"1"_s});
        QStringList told;
        connect(snapshot.get(), &Snapshot::failed, [&](const QString& text) { told.append(text); });
        connect(snapshot.get(), &Snapshot::ended, [&] { told.append(u"ended"_s); });
        snapshot->takeWhenAsked(true, [] {});
        turn();
        m_clock.advance(1);
        turn();
        m_clock.advance(1);
        turn();
        QCOMPARE(told, (QStringList{u"no window to draw"_s, u"ended"_s}));
    }

    void unaskedNothingIsTaken_data()
    {
        QTest::addColumn<bool>("hasPath");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("no path") << false << true;
        QTest::newRow("another window's turn") << true << false;
    }
    void unaskedNothingIsTaken()
    {
        QFETCH(bool, hasPath);
        QFETCH(bool, enabled);
        const auto window = windowOf(Qt::red);
        const auto snapshot =
            make({u"--snapshot-hold"_s, u"1"_s, u"--snapshot-appearance"_s, u"dark"_s}, hasPath);
        QSignalSpy ended(snapshot.get(), &Snapshot::ended);
        int prepared = 0;
        snapshot->takeWhenAsked(enabled, [&] { ++prepared; });
        for (int second = 0; second < 5; ++second) {
            turn();
            m_clock.advance(1);
        }
        turn();
        QCOMPARE(prepared, 0);
        QVERIFY(ended.isEmpty());
        QVERIFY(m_appearance.applied.isEmpty());
        QVERIFY(!QFile::exists(m_path));
    }

    void whoGoesMeanwhileTakesNothing()
    {
        const auto window = windowOf(Qt::red);
        auto snapshot = make({u"--snapshot-hold"_s, u"1"_s});
        int prepared = 0;
        snapshot->takeWhenAsked(true, [&] { ++prepared; });
        turn();
        snapshot.reset();
        m_clock.advance(5);
        turn();
        QCOMPARE(prepared, 0);
        QVERIFY(!QFile::exists(m_path));
    }

    // Notes

    void notesAreAddedBesideThePicture()
    {
        const auto snapshot = make();
        snapshot->note(u"first"_s);
        make()->note(u"zweite Zeile äöü"_s);
        QFile log(m_path + u".log"_s);
        QVERIFY(log.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(log.readAll()), u"first\nzweite Zeile äöü\n"_s);
    }

    void withoutAPictureThereAreNone()
    {
        make({}, false)->note(u"anything"_s);
        QVERIFY(!QFile::exists(m_path + u".log"_s));
        QVERIFY(!QFile::exists(u".log"_s));
    }

    void oneThatCannotBeWrittenIsNoFailure()
    {
        m_path = m_folder.filePath(u"nowhere/a.png"_s);
        make()->note(u"anything"_s);
        QVERIFY(!QFile::exists(m_folder.filePath(u"nowhere"_s)));
    }
};

QTEST_MAIN(SnapshotTest)
#include "SnapshotTest.moc"
