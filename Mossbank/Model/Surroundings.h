// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Calendar.h"

namespace mossbank {

class AddressSource;
class Appearance;
class ApplicationChooser;
class Clock;
class FrontApplication;
class LoginService;
class Preferences;
class QuitQuestion;
class Relauncher;
class Screen;
class ScreenState;
class SecureInput;
class SessionEvents;
class TextRecognizer;
class Updates;

/// What the model runs on: the desktop, the time, the user's choices. All of it outlives the model,
/// and the recogniser also the readings begun, which may still be running on the global pool.
struct Surroundings {
    Clock& clock;
    CalendarSource calendar;
    Screen& screen;
    FrontApplication& frontApplication;
    ScreenState& screenState;
    SecureInput& secureInput;
    SessionEvents& sessionEvents;
    AddressSource& addresses;
    ApplicationChooser& applicationChooser;
    Appearance& appearance;
    LoginService& loginService;
    QuitQuestion& quitQuestion;
    Relauncher& relauncher;
    Updates& updates;
    TextRecognizer& recognizer;
    Preferences& preferences;
};

} // namespace mossbank
