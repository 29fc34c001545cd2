// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QGuiApplication>

#include <memory>

namespace mossbank {

/// The application object of a program with windows. Where Qt can have none, as with a platform
/// that is not installed, it would abort: the program says so and ends with status 1.
///
/// When the X server goes it ends as well, at once and with a sentence. Qt would end it by taking
/// down what the other threads are at work with; so it ends as by a kill, which the library is made
/// for. It does not stay: it would stand in the way of the start in the next session.
std::unique_ptr<QGuiApplication> makeWindowedApplication(int& argc, char** argv);

} // namespace mossbank
