// SPDX-License-Identifier: Apache-2.0
#include "bench/QuietModel.h"

#include "Mossbank/Platform/Null/NullAddressSource.h"
#include "Mossbank/Platform/Null/NullApplicationChooser.h"
#include "Mossbank/Platform/Null/NullFrontApplication.h"
#include "Mossbank/Platform/Null/NullLoginService.h"
#include "Mossbank/Platform/Null/NullRelauncher.h"
#include "Mossbank/Platform/Null/NullScreen.h"
#include "Mossbank/Platform/Null/NullScreenState.h"
#include "Mossbank/Platform/Null/NullSecureInput.h"
#include "Mossbank/Platform/Null/NullSessionEvents.h"
#include "Mossbank/Platform/Null/NullTextRecognizer.h"
#include "Mossbank/Platform/Null/NullUpdates.h"
#include "Mossbank/Ports/Appearance.h"
#include "Mossbank/Ports/QuitQuestion.h"

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

class NoAppearance final : public Appearance {
public:
    void apply(Mode) override {}
};

class NoQuitQuestion final : public QuitQuestion {
public:
    QFuture<bool> isQuitMeant() override { return QtFuture::makeReadyFuture(true); }
};

} // namespace

Calendar QuietModel::calendar()
{
    return {QTimeZone::utc(), QLocale::c()};
}

struct QuietModel::Desktop {
    QString reason = u"Only the library is measured."_s;
    NullScreen screen{reason};
    NullFrontApplication frontApplication{reason};
    NullScreenState screenState{reason};
    NullSecureInput secureInput{reason};
    NullSessionEvents sessionEvents{reason};
    NullAddressSource addresses{reason};
    NullApplicationChooser applicationChooser{reason};
    NoAppearance appearance;
    NullLoginService loginService{reason};
    NoQuitQuestion quitQuestion;
    NullRelauncher relauncher{reason};
    NullUpdates updates{reason};
    NullTextRecognizer recognizer{reason};
};

QuietModel::QuietModel(const QString& library)
    : m_desktop(std::make_unique<Desktop>())
{
    OpenedLibrary opened;
    opened.store = std::make_unique<HistoryStore>(
        HistoryStore::Writing{.root = library, .vault = {}, .calendar = calendar});
    m_model =
        std::make_unique<AppModel>(Surroundings{.clock = m_clock,
                                                .calendar = calendar,
                                                .screen = m_desktop->screen,
                                                .frontApplication = m_desktop->frontApplication,
                                                .screenState = m_desktop->screenState,
                                                .secureInput = m_desktop->secureInput,
                                                .sessionEvents = m_desktop->sessionEvents,
                                                .addresses = m_desktop->addresses,
                                                .applicationChooser = m_desktop->applicationChooser,
                                                .appearance = m_desktop->appearance,
                                                .loginService = m_desktop->loginService,
                                                .quitQuestion = m_desktop->quitQuestion,
                                                .relauncher = m_desktop->relauncher,
                                                .updates = m_desktop->updates,
                                                .recognizer = m_desktop->recognizer,
                                                .preferences = m_preferences},
                                   std::move(opened));
}

QuietModel::~QuietModel() = default;

} // namespace mossbank
