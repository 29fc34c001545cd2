// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ProcessRelauncher.h"

#include "MossbankCore/Support/Failure.h"

#include <QFileInfo>
#include <QProcess>

#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// What an AppImage is run from goes when its run ends; the image itself stays.
QString lasting(const QString& executable)
{
    const QString image = qEnvironmentVariable("APPIMAGE");
    return executable.contains(u"/.mount_"_s) && !image.isEmpty() ? image : executable;
}

} // namespace

ProcessRelauncher::ProcessRelauncher(QString executable, QStringList arguments)
    : m_program(lasting(executable))
    , m_arguments(std::move(arguments))
{
}

Availability ProcessRelauncher::availability() const
{
    if (!m_program.isEmpty())
        return {};
    return Availability::missing(
        u"Mossbank cannot tell where its program lies, so it cannot start it anew."_s);
}

void ProcessRelauncher::openAnother()
{
    if (const Availability here = availability(); !here.isAvailable)
        throw Failure(here.reason);
    if (!QFileInfo(m_program).isExecutable())
        throw Failure(
            u"Mossbank cannot be started anew: %1 is no program that can be run."_s.arg(m_program));
    QProcess another;
    another.setProgram(m_program);
    another.setArguments(m_arguments);
    another.setStandardInputFile(QProcess::nullDevice());
    another.setStandardOutputFile(QProcess::nullDevice());
    another.setStandardErrorFile(QProcess::nullDevice());
    // In a session of its own, and nobody's child: Qt sees to both.
    if (!another.startDetached())
        throw Failure(u"Mossbank cannot be started anew: %1."_s.arg(another.errorString()));
}

} // namespace mossbank
