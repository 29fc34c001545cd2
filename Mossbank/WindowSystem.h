// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QGuiApplication>

#include <memory>

namespace mossbank {

/// The application object of a program with windows. Where Qt can have none, as with a platform
/// that is not installed, it would abort: the program says so and ends with status 1.
std::unique_ptr<QGuiApplication> makeWindowedApplication(int& argc, char** argv);

} // namespace mossbank
