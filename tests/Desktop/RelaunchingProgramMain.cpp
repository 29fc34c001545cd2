// SPDX-License-Identifier: Apache-2.0
//
// A program that starts itself anew when it is told to, and ends.
#include "Mossbank/Platform/Linux/ApplicationCatalog.h"
#include "Mossbank/Platform/Linux/ProcessRelauncher.h"
#include "MossbankCore/Support/Failure.h"

#include <QCoreApplication>

#include <iostream>
#include <string>

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    std::cout << "here" << std::endl;
    std::string line;
    std::getline(std::cin, line);
    try {
        mossbank::ProcessRelauncher(mossbank::executableOf(QCoreApplication::applicationPid()))
            .openAnother();
    } catch (const mossbank::Failure& failure) {
        std::cout << failure.what() << std::endl;
        return 1;
    }
    return 0;
}
