// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/NotifierPanel.h"

#include <QColor>
#include <QDBusContext>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QImage>
#include <QObject>

#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

constexpr int kPatience = 20'000;

const QString kService = u"org.kde.StatusNotifierWatcher"_s;
const QString kPath = u"/StatusNotifierWatcher"_s;
const QString kItem = u"org.kde.StatusNotifierItem"_s;
const QString kMenu = u"com.canonical.dbusmenu"_s;

} // namespace

/// Lives on the panel's thread.
class NotifierWatcher final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ icons)

public:
    NotifierWatcher(QDBusConnection bus, bool hasHost)
        : m_bus(std::move(bus))
        , m_hasHost(hasHost)
    {
    }

    bool hasHost() const { return m_hasHost; }
    static int protocolVersion() { return 0; }
    QStringList icons() const { return m_icons; }

    /// On the thread that it lives on.
    bool offer()
    {
        m_watcher = std::make_unique<QDBusServiceWatcher>();
        m_watcher->setConnection(m_bus);
        m_watcher->setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
        connect(m_watcher.get(), &QDBusServiceWatcher::serviceUnregistered, this,
                [this](const QString& service) { m_icons.removeAll(service); });
        return m_bus.registerObject(kPath, this,
                                    QDBusConnection::ExportAllSlots |
                                        QDBusConnection::ExportAllSignals |
                                        QDBusConnection::ExportAllProperties) &&
               m_bus.registerService(kService);
    }

    void setHost(bool isThere)
    {
        if (std::exchange(m_hasHost, isThere) == isThere)
            return;
        if (isThere)
            Q_EMIT StatusNotifierHostRegistered();
        else
            Q_EMIT StatusNotifierHostUnregistered();
    }

public Q_SLOTS:
    // NOLINTBEGIN(readability-identifier-naming)
    void RegisterStatusNotifierItem(const QString& service)
    {
        const QString name = service.startsWith(u'/') ? message().service() : service;
        m_watcher->addWatchedService(name);
        m_icons.removeAll(name);
        m_icons.append(name);
        Q_EMIT StatusNotifierItemRegistered(name);
    }
    void RegisterStatusNotifierHost(const QString&) { setHost(true); }

Q_SIGNALS:
    void StatusNotifierItemRegistered(const QString& service);
    void StatusNotifierHostRegistered();
    void StatusNotifierHostUnregistered();
    // NOLINTEND(readability-identifier-naming)

private:
    QDBusConnection m_bus;
    std::unique_ptr<QDBusServiceWatcher> m_watcher;
    bool m_hasHost;
    QStringList m_icons;
};

namespace {

/// Does it on the thread of the context, and waits for it.
template <typename Work>
auto onThreadOf(const QObject& context, Work work)
{
    decltype(work()) result = {};
    QMetaObject::invokeMethod(
        const_cast<QObject*>(&context), [&] { result = work(); }, Qt::BlockingQueuedConnection);
    return result;
}

} // namespace

NotifierPanel::NotifierPanel(bool hasHost)
    : m_bus(std::make_unique<BusConnection>(QDBusConnection::SessionBus))
    , m_watcher(std::make_unique<NotifierWatcher>(**m_bus, hasHost))
{
    m_context.moveToThread(&m_thread);
    m_watcher->moveToThread(&m_thread);
    m_thread.start();
    if (!onThreadOf(m_context, [this] { return m_watcher->offer(); }))
        m_problem = u"no panel: "_s + (*m_bus)->lastError().message();
}

NotifierPanel::~NotifierPanel()
{
    m_standsStill.release();
    onThreadOf(m_context, [this] {
        m_watcher.reset();
        return true;
    });
    m_thread.quit();
    m_thread.wait();
}

void NotifierPanel::setHost(bool isThere)
{
    onThreadOf(m_context, [&] {
        m_watcher->setHost(isThere);
        return true;
    });
}

void NotifierPanel::standStill()
{
    QMetaObject::invokeMethod(
        &m_context, [this] { m_standsStill.acquire(); }, Qt::QueuedConnection);
}

QStringList NotifierPanel::icons() const
{
    return onThreadOf(m_context, [this] { return m_watcher->icons(); });
}

SentMenu SentMenu::read(const QDBusArgument& argument)
{
    SentMenu menu;
    argument.beginStructure();
    argument >> menu.number >> menu.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant entry;
        argument >> entry;
        menu.entries.append(read(entry.variant().value<QDBusArgument>()));
    }
    argument.endArray();
    argument.endStructure();
    return menu;
}

QString SentMenu::title() const
{
    // One underscore stands for a key, two for one.
    QString title;
    const QString label = properties.value(u"label"_s).toString();
    for (qsizetype place = 0; place < label.size(); ++place) {
        if (label[place] == u'_' && place + 1 < label.size())
            ++place;
        title += label[place];
    }
    return title;
}

bool SentMenu::isDivider() const
{
    return properties.value(u"type"_s) == u"separator"_s;
}

QStringList SentMenu::shown() const
{
    QStringList titles;
    for (const SentMenu& entry : entries) {
        if (entry.isVisible())
            titles.append(entry.isDivider()   ? u"-"_s
                          : entry.isEnabled() ? entry.title()
                                              : u'[' + entry.title() + u']');
    }
    return titles;
}

const SentMenu* SentMenu::find(const QString& title) const
{
    for (const SentMenu& entry : entries) {
        if (entry.title() == title)
            return &entry;
        if (const SentMenu* const within = entry.find(title))
            return within;
    }
    return nullptr;
}

NotifierIcon::NotifierIcon(QString service)
    : m_service(std::move(service))
    , m_bus(QDBusConnection::SessionBus)
{
}

QDBusMessage NotifierIcon::call(const QString& path, const QString& interface,
                                const QString& member, const QVariantList& arguments) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(m_service, path, interface, member);
    call.setArguments(arguments);
    return m_bus->call(call, QDBus::Block, kPatience);
}

QVariant NotifierIcon::property(const QString& name) const
{
    const QDBusMessage answer = call(u"/StatusNotifierItem"_s, u"org.freedesktop.DBus.Properties"_s,
                                     u"Get"_s, {kItem, name});
    return answer.arguments().value(0).value<QDBusVariant>().variant();
}

QList<QImage> NotifierIcon::pictures() const
{
    QList<QImage> pictures;
    const QVariant sent = property(u"IconPixmap"_s);
    if (!sent.isValid())
        return {};
    const auto argument = sent.value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
        int width = 0;
        int height = 0;
        QByteArray bytes;
        argument.beginStructure();
        argument >> width >> height >> bytes;
        argument.endStructure();
        if (bytes.size() != 4 * width * height)
            return {};
        // As they go over the net: alpha first.
        QImage picture(width, height, QImage::Format_ARGB32);
        for (int pixel = 0; pixel < width * height; ++pixel) {
            const auto part = [&](int number) {
                return static_cast<quint8>(bytes.at(4 * pixel + number));
            };
            picture.setPixel(pixel % width, pixel / width,
                             qRgba(part(1), part(2), part(3), part(0)));
        }
        pictures.append(picture);
    }
    argument.endArray();
    return pictures;
}

QList<int> NotifierIcon::widths() const
{
    QList<int> widths;
    for (const QImage& picture : pictures())
        widths.append(picture.width());
    return widths;
}

int NotifierIcon::redness() const
{
    const QImage picture = pictures().value(0);
    int red = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor colour = picture.pixelColor(x, y);
            red += colour.alpha() > 200 && colour.red() > 180 && colour.green() < 100 ? 1 : 0;
        }
    }
    return picture.isNull() ? 0 : red * 100 / (picture.width() * picture.height());
}

QString NotifierIcon::toolTip() const
{
    const QVariant sent = property(u"ToolTip"_s);
    if (!sent.isValid())
        return {};
    const auto argument = sent.value<QDBusArgument>();
    QString icon;
    QString title;
    argument.beginStructure();
    argument >> icon;
    argument.beginArray();
    while (!argument.atEnd()) {
        int number = 0;
        QByteArray bytes;
        argument.beginStructure();
        argument >> number >> number >> bytes;
        argument.endStructure();
    }
    argument.endArray();
    argument >> title;
    argument.endStructure();
    return title;
}

SentMenu NotifierIcon::menu() const
{
    const auto path = property(u"Menu"_s).value<QDBusObjectPath>().path();
    const QDBusMessage answer = call(path, kMenu, u"GetLayout"_s, {0, -1, QStringList()});
    const QVariant layout = answer.arguments().value(1);
    return layout.isValid() ? SentMenu::read(layout.value<QDBusArgument>()) : SentMenu();
}

bool NotifierIcon::choose(const QString& title) const
{
    const SentMenu all = menu();
    const SentMenu* const entry = all.find(title);
    if (!entry)
        return false;
    const auto path = property(u"Menu"_s).value<QDBusObjectPath>().path();
    const QDBusMessage answer =
        call(path, kMenu, u"Event"_s,
             {entry->number, u"clicked"_s, QVariant::fromValue(QDBusVariant(u""_s)), quint32{0}});
    return answer.type() == QDBusMessage::ReplyMessage;
}

bool NotifierIcon::open() const
{
    const auto path = property(u"Menu"_s).value<QDBusObjectPath>().path();
    const QDBusMessage shows = call(path, kMenu, u"AboutToShow"_s, {0});
    const QDBusMessage opened =
        call(path, kMenu, u"Event"_s,
             {0, u"opened"_s, QVariant::fromValue(QDBusVariant(u""_s)), quint32{0}});
    return shows.type() == QDBusMessage::ReplyMessage &&
           opened.type() == QDBusMessage::ReplyMessage;
}

bool NotifierIcon::activate() const
{
    return call(u"/StatusNotifierItem"_s, kItem, u"Activate"_s, {0, 0}).type() ==
           QDBusMessage::ReplyMessage;
}

} // namespace mossbank::test

#include "NotifierPanel.moc"
