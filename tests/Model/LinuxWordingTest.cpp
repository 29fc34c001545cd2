// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Translations/LinuxWording.h"

#include "Mossbank/Model/Texts.h"
#include "MossbankCore/Capture/InactivityMonitor.h"
#include "tests/Model/RecorderRig.h"

#include <QTest>

using namespace mossbank;
using namespace Qt::StringLiterals;

/// Who reads it has a Linux before them.
class LinuxWordingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QCoreApplication::installTranslator(&m_wording); }

    void sleepIsThisComputers()
    {
        QCOMPARE(InactivityEvent(InactivityEvent::Sleep).message(),
                 u"Paused when this computer went to sleep"_s);
    }

    void whatFitsStaysAsItIs()
    {
        QCOMPARE(InactivityEvent(InactivityEvent::ScreenLocked).message(),
                 u"Paused when the screen locked"_s);
        QCOMPARE(InactivityEvent(InactivityEvent::SessionResigned).message(),
                 u"Paused when your session became inactive"_s);
    }

    void filesAreShownInTheFileManager()
    {
        QCOMPARE(localized("Show in Finder"), u"Show in file manager"_s);
    }

    void aPermissionIsGivenInTheDesktopsSettings()
    {
        RecorderRig rig;
        rig.start();
        rig.screen.isAllowedNow = false;
        rig.nextPass();
        QCOMPARE(rig.recorder->errorMessage(),
                 std::optional(u"Mossbank is not allowed to see the screen. Allow it in the "
                               "settings of your desktop, then start Mossbank again."_s));
    }

private:
    LinuxWording m_wording;
};

QTEST_GUILESS_MAIN(LinuxWordingTest)
#include "LinuxWordingTest.moc"
