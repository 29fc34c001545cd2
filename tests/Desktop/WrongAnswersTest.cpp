// SPDX-License-Identifier: Apache-2.0
//
// Programs that answer assistive tools with something other than what was asked for.
#include "Mossbank/Platform/Linux/AccessibilityBus.h"
#include "Mossbank/Platform/Linux/AtspiAddressSource.h"
#include "Mossbank/Platform/Linux/FocusWatch.h"
#include "tests/Desktop/MadeAccessibles.h"
#include "tests/Desktop/TestBus.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QDBusVariant>
#include <QElapsedTimer>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

using Part = MadeAccessibles::Part;
using Place = SecretTyping::Place;

constexpr int kPatience = 20'000;
/// For what must not come to have come.
constexpr int kLongEnough = 1200;
constexpr quint32 kPassword = static_cast<quint32>(AccessibleRole::PasswordText);

/// So long that nothing ceases to be secret because it has been asked about for long enough.
constexpr int kEndless = 600'000;

/// Hears what has the focus.
struct Watch {
    Watch() = default;
    /// What is being found out counts as secret for `limit` milliseconds.
    explicit Watch(int limit)
        : typing(limit)
    {
    }

    AccessibilityBus bus;
    AccessiblePrograms programs{bus};
    X11ActiveWindow window;
    SecretTyping typing;
    FocusWatch focus{bus, programs, window, typing};

    bool becomes(Place place)
    {
        const auto isSo = [&] {
            focus.check();
            return typing.place() == place;
        };
        return QTest::qWaitFor(isSo, kPatience);
    }

    /// Whether it stays secret for so many milliseconds, as the recorder asks for it.
    bool staysSecret(int limit)
    {
        QElapsedTimer timer;
        timer.start();
        while (!timer.hasExpired(limit)) {
            focus.check();
            if (!typing.isSecret())
                return false;
            QTest::qWait(5);
        }
        return true;
    }
};

} // namespace

class WrongAnswersTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void init();
    void cleanup();
    void aFieldIsNoOrdinaryOneForAnAnswerOfAnotherType_data();
    void aFieldIsNoOrdinaryOneForAnAnswerOfAnotherType();
    void aPasswordFieldStaysOneForAnAnswerOfAnotherType_data();
    void aPasswordFieldStaysOneForAnAnswerOfAnotherType();
    void aFieldThatGetsTheFocusIsNoOrdinaryOneEither();
    void whatElseIsOfAnotherTypeEndsNothing_data();
    void whatElseIsOfAnotherTypeEndsNothing();
    void anAddressIsNoneForAnAnswerOfAnotherType_data();
    void anAddressIsNoneForAnAnswerOfAnotherType();

private:
    static void columns();
    static void wrongAnswer(Part part, const QString& method);
    static void wrongAnswers(Part part, const QString& method, const QVariantList& values);

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<TestBus> m_bus;
    std::unique_ptr<MadeAccessibles> m_program;
    std::unique_ptr<PaintedWindows> m_windows;
};

void WrongAnswersTest::init()
{
    m_desktop = std::make_unique<VirtualDesktop>();
    QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
    m_bus = std::make_unique<TestBus>(TestBus::Kind::Session);
    QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
    m_program = std::make_unique<MadeAccessibles>(m_bus->address());
    QVERIFY(m_program->isThere());
    m_windows = m_program->show();
    QVERIFY(m_windows);
}

void WrongAnswersTest::cleanup()
{
    m_program.reset();
    m_windows.reset();
    m_bus.reset();
    m_desktop.reset();
}

void WrongAnswersTest::columns()
{
    QTest::addColumn<Part>("part");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("values");
}

void WrongAnswersTest::wrongAnswer(Part part, const QString& method)
{
    QTest::addRow("%d %s, a text", static_cast<int>(part), qPrintable(method))
        << part << method << QVariantList{u"40"_s};
}

/// In place of the values that are right.
void WrongAnswersTest::wrongAnswers(Part part, const QString& method, const QVariantList& values)
{
    const auto add = [&](const char* what, const QVariantList& answer) {
        QTest::addRow("%s, %s", qPrintable(method), what) << part << method << answer;
    };
    add("nothing", {});
    add("a text", {u"40"_s});
    add("a number of another type", {qint64{40}});
    add("a list of texts", {QStringList{u"40"_s}});
    add("a value within another", {QVariant::fromValue(QDBusVariant(kPassword))});
    add("one too many", values + QVariantList{kPassword});
}

void WrongAnswersTest::aFieldIsNoOrdinaryOneForAnAnswerOfAnotherType_data()
{
    columns();
    wrongAnswers(Part::Field, u"GetRole"_s, {kPassword});
}

void WrongAnswersTest::aFieldIsNoOrdinaryOneForAnAnswerOfAnotherType()
{
    QFETCH(Part, part);
    QFETCH(QString, method);
    QFETCH(QVariantList, values);
    m_program->answer(part, method, values);
    Watch watch(kEndless);
    watch.bus.start();
    QVERIFY(QTest::qWaitFor([&] { return watch.bus.isOpen(); }, kPatience));
    QVERIFY(watch.staysSecret(kLongEnough));
    QVERIFY(watch.typing.place() == Place::Asked);
    m_program->answer(part, method, {kPassword});
    QVERIFY(watch.becomes(Place::PasswordField));
    constexpr quint32 kText = 61;
    m_program->answer(part, method, {kText});
    QVERIFY(watch.becomes(Place::Ordinary));
}

void WrongAnswersTest::aPasswordFieldStaysOneForAnAnswerOfAnotherType_data()
{
    columns();
    wrongAnswer(Part::Field, u"GetRole"_s);
    wrongAnswer(Part::Field, u"GetState"_s);
}

void WrongAnswersTest::aPasswordFieldStaysOneForAnAnswerOfAnotherType()
{
    QFETCH(Part, part);
    QFETCH(QString, method);
    QFETCH(QVariantList, values);
    Watch watch;
    watch.bus.start();
    QVERIFY(watch.becomes(Place::PasswordField));
    m_program->answer(part, method, values);
    // Longer than anything is secret only because it is being found out.
    constexpr int kLong = 4000;
    QVERIFY(watch.staysSecret(kLong));
}

void WrongAnswersTest::aFieldThatGetsTheFocusIsNoOrdinaryOneEither()
{
    Watch watch(kEndless);
    watch.bus.start();
    constexpr quint32 kText = 61;
    m_program->answer(Part::Field, u"GetRole"_s, {kText});
    QVERIFY(watch.becomes(Place::Ordinary));
    m_program->answer(Part::Field, u"GetRole"_s, {u"password text"_s});
    m_program->tellOfFocus();
    QVERIFY(QTest::qWaitFor([&] { return watch.typing.isSecret(); }, kPatience));
    QVERIFY(watch.staysSecret(kLongEnough));
}

void WrongAnswersTest::whatElseIsOfAnotherTypeEndsNothing_data()
{
    columns();
    wrongAnswer(Part::Registry, u"GetChildren"_s);
    wrongAnswer(Part::Program, u"GetChildren"_s);
    wrongAnswer(Part::Window, u"Name"_s);
    wrongAnswer(Part::Window, u"GetState"_s);
    wrongAnswer(Part::Window, u"GetMatches"_s);
    wrongAnswer(Part::Window, u"GetAttributes"_s);
}

void WrongAnswersTest::whatElseIsOfAnotherTypeEndsNothing()
{
    QFETCH(Part, part);
    QFETCH(QString, method);
    QFETCH(QVariantList, values);
    const auto right = m_program->answerOf(part, method);
    m_program->answer(part, method, values);
    Watch watch(kEndless);
    watch.bus.start();
    QVERIFY(QTest::qWaitFor([&] { return watch.bus.isOpen(); }, kPatience));
    QVERIFY(watch.staysSecret(kLongEnough));
    m_program->answer(part, method, right);
    QVERIFY(watch.becomes(Place::PasswordField));
}

void WrongAnswersTest::anAddressIsNoneForAnAnswerOfAnotherType_data()
{
    columns();
    const QVariant texts = MadeAccessibles::texts({{u"URI"_s, MadeAccessibles::kAddress}});
    wrongAnswers(Part::Document, u"GetAttributes"_s, {texts});
    QTest::newRow("GetAttributes, values of any type")
        << Part::Document << u"GetAttributes"_s
        << QVariantList{QVariantMap{{u"URI"_s, MadeAccessibles::kAddress}}};
    wrongAnswer(Part::Window, u"GetRelationSet"_s);
    wrongAnswer(Part::Window, u"Name"_s);
    wrongAnswer(Part::Window, u"GetState"_s);
    wrongAnswer(Part::Program, u"GetChildren"_s);
    wrongAnswer(Part::Registry, u"GetChildren"_s);
}

void WrongAnswersTest::anAddressIsNoneForAnAnswerOfAnotherType()
{
    QFETCH(Part, part);
    QFETCH(QString, method);
    QFETCH(QVariantList, values);
    const auto accessibility =
        std::make_shared<Accessibility>(std::make_shared<ApplicationCatalog>());
    QVERIFY(accessibility->waitUntilKnown(kPatience));
    AtspiAddressSource source(accessibility);
    const auto ask = [&] {
        const QFuture<AddressAnswer> answer = source.ask(u"chromium"_s);
        const bool isAnswered = QTest::qWaitFor([&] { return answer.isFinished(); }, kPatience);
        return isAnswered ? answer.result() : AddressAnswer::refused();
    };
    const auto address = AddressAnswer::answered(MadeAccessibles::kAddress);
    QVERIFY(QTest::qWaitFor([&] { return ask() == address; }, kPatience));
    const auto right = m_program->answerOf(part, method);
    m_program->answer(part, method, values);
    QCOMPARE(ask(), AddressAnswer::failed());
    m_program->answer(part, method, right);
    QVERIFY(QTest::qWaitFor([&] { return ask() == address; }, kPatience));
}

QTEST_GUILESS_MAIN(WrongAnswersTest)
#include "WrongAnswersTest.moc"
