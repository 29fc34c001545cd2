// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ApplicationCatalog.h"

#include "Mossbank/Platform/Linux/DesktopFiles.h"

#include <QFileInfo>
#include <QSet>

#include <gio/gio.h>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// Classes and executables are made up by users and programs without end.
constexpr qsizetype kMaxFound = 1000;

/// Whether many different programs run under this executable, so that it tells nothing of them.
bool isInterpreter(const QString& executable)
{
    static const QSet<QString> kNames = {
        u"bash"_s,
        u"busybox"_s,
        u"bwrap"_s,
        u"dash"_s,
        u"dotnet"_s,
        u"electron"_s,
        u"env"_s,
        u"flatpak"_s,
        u"gjs"_s,
        u"gjs-console"_s,
        u"guile"_s,
        u"java"_s,
        u"lua"_s,
        u"mono"_s,
        u"mono-sgen"_s,
        u"node"_s,
        u"nodejs"_s,
        u"perl"_s,
        u"php"_s,
        u"pypy"_s,
        u"python"_s,
        u"ruby"_s,
        u"sh"_s,
        u"snap"_s,
        u"ssh"_s,
        u"sshd"_s,
        u"tclsh"_s,
        u"wine"_s,
        u"wine-preloader"_s,
        u"wine64-preloader"_s,
        u"wish"_s,
        u"Xephyr"_s,
        u"xpra"_s,
        u"zsh"_s,
    };
    QString name = QFileInfo(executable).fileName();
    while (!name.isEmpty() && (name.back().isDigit() || name.back() == u'.'))
        name.chop(1);
    return kNames.contains(name) || name.startsWith(u"qemu-"_s) || name.startsWith(u"ld-linux"_s);
}

} // namespace

QString executableOf(qint64 process)
{
    QString path = QFile::symLinkTarget(u"/proc/%1/exe"_s.arg(process));
    // An application that was updated while it runs.
    const QString deleted = u" (deleted)"_s;
    if (path.endsWith(deleted))
        path.chop(deleted.size());
    return path;
}

/// Hears of applications being installed and removed. It has a context of its own, which is looked
/// at when something is asked, so that it depends on nobody's event loop.
class ApplicationCatalog::Watch {
public:
    Watch()
        : m_context(g_main_context_new())
    {
        g_main_context_push_thread_default(m_context);
        m_monitor = g_app_info_monitor_get();
        g_signal_connect(m_monitor, "changed", G_CALLBACK(&Watch::onChanged), this);
        g_main_context_pop_thread_default(m_context);
    }
    ~Watch()
    {
        g_signal_handlers_disconnect_by_data(m_monitor, this);
        g_object_unref(m_monitor);
        g_main_context_unref(m_context);
    }
    Q_DISABLE_COPY_MOVE(Watch)

    /// Whether anything changed since the last time this was asked.
    bool takeChange()
    {
        while (g_main_context_iteration(m_context, FALSE)) {
        }
        return std::exchange(m_hasChanged, false);
    }

private:
    static void onChanged(GAppInfoMonitor*, void* self)
    {
        static_cast<Watch*>(self)->m_hasChanged = true;
    }

    GMainContext* m_context;
    GAppInfoMonitor* m_monitor;
    bool m_hasChanged = false;
};

ApplicationCatalog::ApplicationCatalog()
    : m_watch(std::make_unique<Watch>())
{
}

ApplicationCatalog::~ApplicationCatalog() = default;

Application ApplicationCatalog::application(const WindowClass& windowClass,
                                            std::optional<qint64> process)
{
    return application(windowClass, process ? executableOf(*process) : QString());
}

Application ApplicationCatalog::application(const WindowClass& windowClass,
                                            const QString& executable)
{
    const QMutexLocker lock(&m_mutex);
    index();
    const QString key =
        QStringList{windowClass.instance, windowClass.name, windowClass.desktopFile, executable}
            .join(u'\n');
    if (const auto found = m_found.constFind(key); found != m_found.constEnd())
        return *found;
    std::optional<Application> found = find(windowClass, executable);
    if (!found) {
        const QString& name = windowClass.name.isEmpty() ? windowClass.instance : windowClass.name;
        const bool saysItself = !name.isEmpty() && isInterpreter(executable);
        const QString file = saysItself ? QString() : QFileInfo(executable).fileName();
        const QString identity = file.isEmpty() ? name : file;
        found = Application{identity, identity};
    }
    found->aliases = aliases(windowClass, executable, found->bundleID);
    if (m_found.size() >= kMaxFound)
        m_found.clear();
    m_found.insert(key, *found);
    return *found;
}

std::optional<Application> ApplicationCatalog::installed(const QString& bundleID)
{
    const QMutexLocker lock(&m_mutex);
    const auto& byID = index().byID;
    const auto found = byID.constFind(bundleID.toLower());
    return found == byID.constEnd() ? std::nullopt : std::optional(*found);
}

void ApplicationCatalog::readIndex()
{
    Index index;
    QSet<QString> shared;
    for (const DesktopFile& entry : readDesktopFiles()) {
        const QString windowClass = entry.windowClass.toLower();
        if (!windowClass.isEmpty()) {
            if (!index.byClass.contains(windowClass))
                index.byClass.insert(windowClass, entry.application);
            if (!m_idsOfClass.contains(windowClass, entry.application.bundleID))
                m_idsOfClass.insert(windowClass, entry.application.bundleID);
        }
        const QString id = entry.application.bundleID.toLower();
        if (!index.byID.contains(id))
            index.byID.insert(id, entry.application);
        if (entry.executable.isEmpty() || isInterpreter(entry.executable))
            continue;
        if (index.byExecutable.contains(entry.executable))
            shared.insert(entry.executable);
        index.byExecutable.insert(entry.executable, entry.application);
    }
    for (const QString& executable : std::as_const(shared))
        index.byExecutable.remove(executable);
    for (auto one = index.byExecutable.constBegin(); one != index.byExecutable.constEnd(); ++one) {
        if (!m_idsOfExecutable.contains(one.key(), one->bundleID))
            m_idsOfExecutable.insert(one.key(), one->bundleID);
    }
    m_index = index;
}

/// Every other name that these windows support: it is excluded by any of them.
QStringList ApplicationCatalog::aliases(const WindowClass& windowClass, const QString& executable,
                                        const QString& bundleID) const
{
    QStringList names = {windowClass.instance, windowClass.name, windowClass.desktopFile,
                         QFileInfo(executable).fileName()};
    for (const QString& word : {windowClass.instance, windowClass.name})
        names += m_idsOfClass.values(word.toLower());
    names += m_idsOfExecutable.values(executable);
    QStringList others;
    for (const QString& name : std::as_const(names)) {
        const bool isNew = name.compare(bundleID, Qt::CaseInsensitive) != 0 &&
                           !others.contains(name, Qt::CaseInsensitive);
        if (!name.isEmpty() && isNew)
            others.append(name);
    }
    return others;
}

const ApplicationCatalog::Index& ApplicationCatalog::index()
{
    if (m_watch->takeChange() || !m_index) {
        readIndex();
        m_found.clear();
    }
    return *m_index;
}

std::optional<Application> ApplicationCatalog::find(const WindowClass& windowClass,
                                                    const QString& executable)
{
    const auto look = [](const QHash<QString, Application>& where,
                         const QString& key) -> std::optional<Application> {
        const auto found = where.constFind(key);
        return key.isEmpty() || found == where.constEnd() ? std::nullopt : std::optional(*found);
    };
    if (const auto found = look(m_index->byID, windowClass.desktopFile.toLower()))
        return found;
    // The instance is the narrower of the two: a browser gives it to the pages that are installed
    // as applications, and all of them have the browser's class.
    for (const QString& name : {windowClass.instance, windowClass.name}) {
        if (const auto found = look(m_index->byClass, name.toLower()))
            return found;
    }
    if (const auto found = look(m_index->byID, windowClass.name.toLower()))
        return found;
    return look(m_index->byExecutable, executable);
}

} // namespace mossbank
