// SPDX-License-Identifier: Apache-2.0
//
// Password fields of real programs, and prompts.
#include "Mossbank/Platform/Linux/AtspiSecureInput.h"
#include "tests/Desktop/AccessibleDesktop.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

constexpr int kPatience = 20'000;

/// After a window has come up, until it takes keys.
constexpr int kUntilReady = 500;

/// A name, a password and a note, in this order. It has its title once the name has the focus:
/// before, a browser takes no keys.
const QString kPage = u"<title>Opening</title><input id=name autofocus "
                      u"onfocus=\"document.title = 'Sign in'\"><input id=secret "
                      u"type=password><input id=note>"_s;

QString titleOf(const QString& kind)
{
    if (kind == u"Chromium")
        return u"Sign in - Chromium"_s;
    return kind == u"Firefox" ? u"Sign in — Mozilla Firefox"_s : u"Sign in"_s;
}

} // namespace

class SecureInputTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aPasswordFieldIsSecretWhileItHasTheFocus_data() { programs(); }
    void aPasswordFieldIsSecretWhileItHasTheFocus();
    void aPasswordFieldThatHadTheFocusBeforeIsFound_data() { programs(); }
    void aPasswordFieldThatHadTheFocusBeforeIsFound();
    void aFieldThatBecomesOneForPasswordsIsNoticed_data();
    void aFieldThatBecomesOneForPasswordsIsNoticed();
    void aFieldThatGoesIsNoLongerSecret();
    void anotherWindowOfTheSameProgramIsNotSecret();
    void aPromptIsKnownByItsClass_data();
    void aPromptIsKnownByItsClass();
    void aLockerThatAsksNoWindowManagerIsKnown_data();
    void aLockerThatAsksNoWindowManagerIsKnown();
    void aPasswordFieldOfAProgramThatStoppedStaysSecret();
    void aProgramThatStoppedIsNotWaitedForLong();
    void theBusMayGoAndComeBack();
    void withoutItsBusItSaysWhy_data();
    void withoutItsBusItSaysWhy();

private:
    static void programs();
    void set(const AccessibleDesktop::Options& options);
    void begin();
    bool open(const QString& kind);
    QString page(const QString& content);
    bool becomes(bool isActive, int limit = kPatience);
    qint64 longestAnswer(int milliseconds);

    QTemporaryDir m_folder;
    std::unique_ptr<AccessibleDesktop> m_desktop;
    std::shared_ptr<Accessibility> m_accessibility;
    std::unique_ptr<SecureInput> m_input;
    qint64 m_process = 0;
};

void SecureInputTest::programs()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"Chromium", "Firefox", "Qt", "GTK"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void SecureInputTest::init()
{
    set({});
}

void SecureInputTest::set(const AccessibleDesktop::Options& options)
{
    m_desktop.reset();
    m_desktop = std::make_unique<AccessibleDesktop>(options);
    QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
}

void SecureInputTest::cleanup()
{
    m_input.reset();
    m_accessibility.reset();
    const QStringList left = m_desktop->end();
    m_desktop.reset();
    QVERIFY2(left.isEmpty(), qPrintable(left.join(u'\n')));
}

void SecureInputTest::begin()
{
    m_accessibility = std::make_shared<Accessibility>(std::make_shared<ApplicationCatalog>());
    m_input = std::make_unique<AtspiSecureInput>(m_accessibility);
    QVERIFY(m_accessibility->waitUntilKnown(kPatience));
}

QString SecureInputTest::page(const QString& content)
{
    QFile file(m_folder.filePath(u"page.html"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(content.toUtf8()) <= 0)
        qFatal("cannot write %s", qPrintable(file.fileName()));
    return u"file://"_s + file.fileName();
}

/// A window called "Sign in", in front, with the focus on the name.
bool SecureInputTest::open(const QString& kind)
{
    if (kind == u"Chromium")
        m_process = m_desktop->startChromium({page(kPage)});
    else if (kind == u"Firefox")
        m_process = m_desktop->startFirefox({page(kPage)});
    else if (kind == u"Qt")
        m_process = m_desktop->start(QStringLiteral(MOSSBANK_PASSWORD_PROGRAM), {u"Sign in"_s}, {});
    else
        m_process = m_desktop->start(
            u"yad"_s,
            {u"--form"_s, u"--title=Sign in"_s, u"--field=Name"_s, u"--field=Password:H"_s},
            u"yad"_s);
    if (m_process == 0)
        return false;
    return m_desktop->bringToFront(titleOf(kind));
}

bool SecureInputTest::becomes(bool isActive, int limit)
{
    return QTest::qWaitFor([&] { return m_input->isActive() == isActive; }, limit);
}

/// In microseconds, of many answers in so long a time. One of a hundred does not count: on a busy
/// machine this program itself has to wait for its turn.
qint64 SecureInputTest::longestAnswer(int milliseconds)
{
    QElapsedTimer all;
    all.start();
    std::vector<qint64> times;
    while (!all.hasExpired(milliseconds)) {
        QElapsedTimer one;
        one.start();
        m_input->isActive();
        times.push_back(one.nsecsElapsed() / 1000);
        QTest::qWait(1);
    }
    std::ranges::sort(times);
    const qint64 longest = times.at((times.size() - 1) * 99 / 100);
    qInfo("the longest answer took %lld microseconds", static_cast<long long>(longest));
    return longest;
}

void SecureInputTest::aPasswordFieldIsSecretWhileItHasTheFocus()
{
    QFETCH(QString, kind);
    begin();
    QVERIFY2(open(kind), qPrintable(m_desktop->problem()));
    QVERIFY(becomes(false));
    QTest::qWait(kUntilReady);
    QVERIFY(m_desktop->press({u"Tab"_s}));
    QVERIFY(becomes(true));
    QTest::qWait(2000);
    QVERIFY(m_input->isActive());
    QVERIFY(m_desktop->press({u"shift+Tab"_s}));
    QVERIFY(becomes(false));
    QVERIFY(m_desktop->press({u"Tab"_s}));
    QVERIFY(becomes(true));

    // Another window in front, and this one again.
    WindowProgram other;
    QVERIFY(other.open({.frame = {600, 500, 300, 200},
                        .colour = kGreen,
                        .windowClass = u"Alpha"_s,
                        .title = u"The other"_s}));
    QVERIFY(m_desktop->bringToFront(u"The other"_s));
    QVERIFY(becomes(false));
    QTest::qWait(1000);
    QVERIFY(!m_input->isActive());
    QVERIFY(m_desktop->bringToFront(titleOf(kind)));
    QVERIFY(becomes(true));
    QTest::qWait(2000);
    QVERIFY(m_input->isActive());
}

void SecureInputTest::aPasswordFieldThatHadTheFocusBeforeIsFound()
{
    QFETCH(QString, kind);
    QVERIFY2(open(kind), qPrintable(m_desktop->problem()));
    QTest::qWait(kUntilReady);
    QVERIFY(m_desktop->press({u"Tab"_s}));
    QTest::qWait(500);
    begin();
    QVERIFY(becomes(true));
    // And not only because it was still to be found out.
    QTest::qWait(2500);
    QVERIFY(m_input->isActive());
    QVERIFY(m_desktop->press({u"shift+Tab"_s}));
    QVERIFY(becomes(false));
}

void SecureInputTest::aFieldThatBecomesOneForPasswordsIsNoticed_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("Chromium") << u"Chromium"_s;
    QTest::newRow("Qt, which says nothing of it") << u"Qt"_s;
}

void SecureInputTest::aFieldThatBecomesOneForPasswordsIsNoticed()
{
    QFETCH(QString, kind);
    begin();
    if (kind == u"Qt") {
        QVERIFY(open(kind));
    } else {
        const QString content =
            u"<title>Opening</title><input autofocus onfocus=\"document.title = 'Sign in'\" "
            u"onkeydown=\"if (event.key == 'F8') "
            u"this.type = this.type == 'text' ? 'password' : 'text'\" type=text>"_s;
        QVERIFY(m_desktop->startChromium({page(content)}));
        QVERIFY(m_desktop->bringToFront(u"Sign in - Chromium"_s));
    }
    QTest::qWait(kUntilReady);
    QVERIFY(becomes(false));
    QVERIFY(m_desktop->press({u"F8"_s}));
    QVERIFY(becomes(true));
    QVERIFY(m_desktop->press({u"F8"_s}));
    QVERIFY(becomes(false));
}

void SecureInputTest::aFieldThatGoesIsNoLongerSecret()
{
    begin();
    const QString content = u"<title>Opening</title><input id=i autofocus type=password "
                            u"onfocus=\"document.title = 'Sign in'\" onkeydown=\"if (event.key == "
                            u"'F8') document.body.replaceChildren('welcome')\">"_s;
    QVERIFY(m_desktop->startChromium({page(content)}));
    QVERIFY(m_desktop->bringToFront(u"Sign in - Chromium"_s));
    QVERIFY(becomes(true));
    QTest::qWait(3000);
    QVERIFY(m_input->isActive());
    QVERIFY(m_desktop->press({u"F8"_s}));
    QVERIFY(becomes(false));
}

void SecureInputTest::anotherWindowOfTheSameProgramIsNotSecret()
{
    begin();
    const QString secret = page(u"<title>Opening</title><input autofocus type=password "
                                u"onfocus=\"document.title = 'Sign in'\">"_s);
    QVERIFY(m_desktop->startChromium({secret}));
    QVERIFY(m_desktop->bringToFront(u"Sign in - Chromium"_s));
    QVERIFY(becomes(true));
    QTest::qWait(2500);
    QVERIFY(m_input->isActive());
    const QString plain =
        u"data:text/html,<title>Notes</title><textarea autofocus>Heron</textarea>"_s;
    QVERIFY(m_desktop->startChromium({u"--new-window"_s, plain}));
    QVERIFY(m_desktop->bringToFront(u"Notes - Chromium"_s));
    QVERIFY(becomes(false));
    QTest::qWait(2000);
    QVERIFY(!m_input->isActive());
    QVERIFY(m_desktop->bringToFront(u"Sign in - Chromium"_s));
    QVERIFY(becomes(true));
    QTest::qWait(2000);
    QVERIFY(m_input->isActive());
}

void SecureInputTest::aPromptIsKnownByItsClass_data()
{
    QTest::addColumn<QString>("windowClass");
    QTest::addColumn<bool>("isPrompt");
    QTest::newRow("pin entry") << u"Pinentry-gtk-2"_s << true;
    QTest::newRow("key prompt") << u"gcr-prompter"_s << true;
    QTest::newRow("agent") << u"polkit-gnome-authentication-agent-1"_s << true;
    QTest::newRow("an ordinary program") << u"Alpha"_s << false;
}

void SecureInputTest::aPromptIsKnownByItsClass()
{
    QFETCH(QString, windowClass);
    QFETCH(bool, isPrompt);
    begin();
    WindowProgram program;
    QVERIFY(becomes(false));
    QVERIFY(program.open({.frame = {300, 300, 300, 200},
                          .colour = kGreen,
                          .windowClass = windowClass,
                          .title = u"The window"_s}));
    QVERIFY(m_desktop->bringToFront(u"The window"_s));
    QVERIFY(becomes(isPrompt));
    QTest::qWait(2000);
    QCOMPARE(m_input->isActive(), isPrompt);
    WindowProgram other;
    QVERIFY(other.open({.frame = {700, 500, 300, 200},
                        .colour = kRed,
                        .windowClass = u"Beta"_s,
                        .title = u"The other"_s}));
    QVERIFY(m_desktop->bringToFront(u"The other"_s));
    QVERIFY(becomes(false));
}

void SecureInputTest::aLockerThatAsksNoWindowManagerIsKnown_data()
{
    QTest::addColumn<bool>("isThereBefore");
    QTest::newRow("there before") << true;
    QTest::newRow("comes") << false;
}

void SecureInputTest::aLockerThatAsksNoWindowManagerIsKnown()
{
    QFETCH(bool, isThereBefore);
    WindowProgram program;
    if (!isThereBefore) {
        begin();
        QVERIFY(becomes(false));
    }
    const quint32 window = program.open({.frame = {0, 0, 1920, 1080},
                                         .colour = kGreen,
                                         .windowClass = u"i3lock"_s,
                                         .overridesRedirect = true});
    QVERIFY(window);
    if (isThereBefore)
        begin();
    QVERIFY(becomes(true));
    QTest::qWait(2000);
    QVERIFY(m_input->isActive());
    QVERIFY(program.close(window));
    QVERIFY(becomes(false));
}

void SecureInputTest::aPasswordFieldOfAProgramThatStoppedStaysSecret()
{
    begin();
    QVERIFY2(open(u"GTK"_s), qPrintable(m_desktop->problem()));
    QTest::qWait(500);
    QVERIFY(m_desktop->press({u"Tab"_s}));
    QVERIFY(becomes(true));
    ::kill(static_cast<pid_t>(m_process), SIGSTOP);
    const qint64 longest = longestAnswer(4000);
    QVERIFY(m_input->isActive());
    ::kill(static_cast<pid_t>(m_process), SIGCONT);
    QVERIFY(m_desktop->press({u"shift+Tab"_s}));
    QVERIFY(becomes(false));
    QVERIFY2(longest < 5000, qPrintable(QString::number(longest)));
}

void SecureInputTest::aProgramThatStoppedIsNotWaitedForLong()
{
    QVERIFY2(open(u"Chromium"_s), qPrintable(m_desktop->problem()));
    QTest::qWait(kUntilReady);
    ::kill(static_cast<pid_t>(m_process), SIGSTOP);
    begin();
    QVERIFY(m_input->isActive());
    const qint64 longest = longestAnswer(2000);
    QVERIFY(becomes(false));
    ::kill(static_cast<pid_t>(m_process), SIGCONT);
    QVERIFY(m_desktop->press({u"Tab"_s}));
    QVERIFY(becomes(true));
    QVERIFY2(longest < 5000, qPrintable(QString::number(longest)));
}

void SecureInputTest::theBusMayGoAndComeBack()
{
    begin();
    QVERIFY(m_input->availability().isAvailable);
    QVERIFY(m_desktop->killAccessibilityBus());
    // Programs do not come back to a new bus; those that are started then go to it.
    QVERIFY(QTest::qWaitFor([&] { return !m_input->availability().isAvailable; }, kPatience));
    QVERIFY(QTest::qWaitFor(
        [&] {
            m_desktop->switchTelling(true);
            return m_input->availability().isAvailable;
        },
        kPatience));
    QVERIFY2(open(u"GTK"_s), qPrintable(m_desktop->problem()));
    QTest::qWait(500);
    QVERIFY(m_desktop->press({u"Tab"_s}));
    QVERIFY(becomes(true));
    QTest::qWait(2000);
    QVERIFY(m_input->isActive());
    QVERIFY(m_desktop->press({u"shift+Tab"_s}));
    QVERIFY(becomes(false));
}

void SecureInputTest::withoutItsBusItSaysWhy_data()
{
    QTest::addColumn<bool>("hasSession");
    QTest::addColumn<bool>("hasAccessibility");
    QTest::addColumn<QString>("word");
    QTest::newRow("no session bus") << false << true << u"There is no session bus"_s;
    QTest::newRow("no accessibility bus") << true << false << u"at-spi2-core"_s;
    QTest::newRow("switched off") << true << true << u"switched off"_s;
}

void SecureInputTest::withoutItsBusItSaysWhy()
{
    QFETCH(bool, hasSession);
    QFETCH(bool, hasAccessibility);
    QFETCH(QString, word);
    set({.hasSession = hasSession, .hasAccessibility = hasAccessibility, .isSwitchedOn = false});
    begin();
    QVERIFY(!m_input->availability().isAvailable);
    QVERIFY2(m_input->availability().reason.contains(word),
             qPrintable(m_input->availability().reason));
    // The classes of windows are known all the same.
    WindowProgram program;
    QVERIFY(becomes(false));
    QVERIFY(program.open({.frame = {300, 300, 300, 200},
                          .colour = kGreen,
                          .windowClass = u"Pinentry-gtk-2"_s,
                          .title = u"The window"_s}));
    QVERIFY(m_desktop->bringToFront(u"The window"_s));
    QVERIFY(becomes(true));
}

QTEST_GUILESS_MAIN(SecureInputTest)
#include "SecureInputTest.moc"
