// SPDX-License-Identifier: Apache-2.0
//
//   states-gallery DIR
//
// Draws what the windows look like in the states that a sample run never comes into: recording,
// something that went wrong, a question. A PNG file for each, light and dark.
#include "Mossbank/Model/FixtureImage.h"
#include "Mossbank/Model/SampleItems.h"
#include "Mossbank/Translations/LinuxWording.h"
#include "Mossbank/Views/ClosingNotice/ClosingNotice.h"
#include "Mossbank/Views/PaletteAppearance.h"
#include "tests/Fakes/FakeTrayHost.h"
#include "tests/Views/WorkspaceWindowRig.h"

#include <QGuiApplication>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace mossbank;

namespace {

class Gallery : private WorkspaceWindowRig {
public:
    explicit Gallery(QString folder)
        : m_folder(std::move(folder))
    {
    }

    bool draw(bool isDark)
    {
        m_appearance = isDark ? u"dark"_s : u"light"_s;
        m_palette.apply(isDark ? Appearance::Mode::Dark : Appearance::Mode::Light);
        const QList<QPair<QString, void (Gallery::*)()>> states = {
            {u"first-run-ready"_s, &Gallery::ready},
            {u"first-run-waiting"_s, &Gallery::waiting},
            {u"recording"_s, &Gallery::recording},
            {u"paused"_s, &Gallery::paused},
            {u"error"_s, &Gallery::error},
            {u"hint"_s, &Gallery::hint},
            {u"delete-question"_s, &Gallery::deleteQuestion},
            {u"missing-picture"_s, &Gallery::missingPicture},
            {u"missing-enlarged"_s, &Gallery::missingEnlarged},
            {u"removed-enlarged"_s, &Gallery::removedEnlarged},
            {u"earlier"_s, &Gallery::earlier},
            {u"closing-notice"_s, &Gallery::closingNotice},
        };
        bool isAll = true;
        for (const auto& [name, show] : states) {
            begin();
            (this->*show)();
            isAll = save(name) && isAll;
            m_notice.reset();
            end();
        }
        return isAll;
    }

private:
    // The states

    void ready() { openWindow(); }
    void waiting()
    {
        m_rig->front().setCurrent(RecorderRig::kMossbank);
        openWindow();
        m_rig->recorder().toggleRecording();
    }
    void recording()
    {
        addScreens();
        m_rig->preferences().setHasSeenSearchHint(true);
        openWindow();
        m_rig->recorder().toggleRecording();
    }
    void paused()
    {
        recording();
        m_rig->model->pauses().pause(PauseLength::FifteenMinutes);
    }
    void error()
    {
        addScreens();
        openWindow();
        m_rig->recorder().setErrorMessage(
            u"Could not save the screenshot: There is no space left on the disk."_s);
    }
    void hint()
    {
        addScreens();
        m_rig->preferences().setHasSeenSearchHint(false);
        openWindow();
    }
    void deleteQuestion()
    {
        addScreens();
        openWindow();
        press(u"Delete screenshot"_s);
    }
    void missingPicture()
    {
        addScreens();
        m_rig->removePicture(u"3"_s);
        openWindow();
    }
    void missingEnlarged()
    {
        missingPicture();
        press(u"Enlarge screenshot"_s);
    }
    void removedEnlarged()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday + 60);
        openWindow();
        press(u"Enlarge screenshot"_s);
        m_rig->listing().deleteSelected();
    }
    void earlier()
    {
        constexpr int kMore = 2100;
        for (int number = 0; number < kMore; ++number)
            m_rig->add(u"m%1"_s.arg(number), WorkspaceRig::kToday - kMore + number);
        m_rig->listing().setDay(std::nullopt);
        openWindow();
    }
    void closingNotice()
    {
        m_rig->recorder().toggleRecording();
        m_notice = std::make_unique<ClosingNotice>(m_rig->preferences(), m_rig->recorder(), m_host);
        m_notice->windowClosed();
    }

    // What they are made of

    void openWindow()
    {
        m_workspace->open();
        m_rig->settle();
    }

    void addScreens()
    {
        int number = 0;
        for (const SampleItem& item : sampleItems()) {
            const QString id = QString::number(number);
            constexpr double kBetween = 2700;
            m_rig->add(id, WorkspaceRig::kToday + kBetween * (10 + number), item.app,
                       item.lines.join(u'\n'));
            if (const auto picture = fixtureImage(item.app, item.title, item.lines))
                m_rig->setPicture(id, *picture);
            ++number;
        }
    }

    bool save(const QString& name)
    {
        constexpr int kUntilStill = 900;
        QTest::qWait(kUntilStill);
        const QString path = u"%1/%2-%3.png"_s.arg(m_folder, name, m_appearance);
        for (QWindow* const one : QGuiApplication::topLevelWindows()) {
            auto* const window = qobject_cast<QQuickWindow*>(one);
            if (window && window->isVisible() && window->grabWindow().save(path)) {
                std::puts(qPrintable(path));
                return true;
            }
        }
        std::fprintf(stderr, "%s could not be drawn\n", qPrintable(path));
        return false;
    }

    QString m_folder;
    QString m_appearance;
    FakeDesktopSettings m_desktop;
    PaletteAppearance m_palette{m_desktop};
    FakeTrayHost m_host;
    std::unique_ptr<ClosingNotice> m_notice;
};

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("states-gallery DIR\n", stderr);
        return 2;
    }
    LinuxWording wording;
    QCoreApplication::installTranslator(&wording);
    Gallery gallery(QString::fromLocal8Bit(argv[1]));
    const bool isLight = gallery.draw(false);
    const bool isDark = gallery.draw(true);
    return isLight && isDark ? 0 : 1;
}
