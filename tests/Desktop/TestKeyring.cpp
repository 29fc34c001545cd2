// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/TestKeyring.h"

#include "Mossbank/Platform/Linux/KeyringItems.h"
#include "MossbankCore/Library/VaultKey.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QThread>

#include <csignal>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

constexpr int kPatience = 10'000;

/// A service that knows nothing from before.
GObjectOwned<SecretService> freshService()
{
    return GObjectOwned<SecretService>(secret_service_open_sync(
        SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_OPEN_SESSION, nullptr, nullptr));
}

ObjectList search(SecretService* service, const QString& account)
{
    return ObjectList(secret_service_search_sync(
        service, &kKeyringSchema, keyringAttributes(VaultKey::kService, account).get(),
        static_cast<SecretSearchFlags>(SECRET_SEARCH_ALL | SECRET_SEARCH_LOAD_SECRETS), nullptr,
        nullptr));
}

void signalTo(const QProcess& process, int signal)
{
    ::kill(static_cast<pid_t>(process.processId()), signal);
}

} // namespace

/// GLib keeps one connection a process for as long as anybody has it. Held here, so that it does
/// not end the test with the bus; and seen off, or the next bus would not be asked.
struct TestKeyring::Connection {
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);

    Connection()
    {
        if (!bus)
            return;
        g_dbus_connection_set_exit_on_close(bus, FALSE);
        g_object_add_weak_pointer(G_OBJECT(bus), reinterpret_cast<gpointer*>(&bus));
    }
    ~Connection()
    {
        if (bus)
            g_object_unref(bus);
        // What was subscribed to is let go of by the main loop, and with it the connection.
        const QDeadlineTimer deadline(kPatience);
        while (bus && !deadline.hasExpired()) {
            if (!g_main_context_iteration(nullptr, FALSE))
                QThread::msleep(1);
        }
        if (bus)
            qFatal("somebody keeps the connection to the bus");
    }
    Q_DISABLE_COPY_MOVE(Connection)
};

TestKeyring::TestKeyring(const Options& options)
    : m_problem(m_bus.problem())
{
    if (!m_problem.isEmpty())
        return;
    m_connection = std::make_unique<Connection>();
    if (options.hasService)
        startService(options);
}

TestKeyring::~TestKeyring()
{
    m_connection.reset();
    TestBus::end(m_service);
}

bool TestKeyring::startService(const Options& options)
{
    m_problem = whyMissing(u"gnome-keyring-daemon"_s, u"gnome-keyring"_s);
    if (!m_problem.isEmpty())
        return false;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, m_home.path());
    environment.insert(u"XDG_DATA_HOME"_s, m_home.filePath(u"data"_s));
    environment.insert(u"XDG_RUNTIME_DIR"_s, m_home.path());
    environment.remove(u"DISPLAY"_s);
    m_service.setProcessEnvironment(environment);
    QStringList arguments = {u"--foreground"_s, u"--components=secrets"_s};
    if (options.hasDefault)
        arguments.append(u"--unlock"_s);
    endWithTest(m_service);
    m_service.start(u"gnome-keyring-daemon"_s, arguments);
    m_service.waitForStarted(kPatience);
    m_service.write(password().toUtf8());
    m_service.waitForBytesWritten(kPatience);
    m_service.closeWriteChannel();

    const QDeadlineTimer deadline(kPatience);
    while (!deadline.hasExpired()) {
        // Not before its session opens: a service that is not there seems to be, otherwise.
        if (const auto service = freshService()) {
            if (!options.hasDefault)
                return true;
            const GObjectOwned<SecretCollection> collection(
                secret_collection_for_alias_sync(service.get(), SECRET_COLLECTION_DEFAULT,
                                                 SECRET_COLLECTION_NONE, nullptr, nullptr));
            if (collection && !secret_collection_get_locked(collection.get()))
                return true;
        }
        QThread::msleep(10);
    }
    m_problem = u"gnome-keyring-daemon did not start"_s;
    return false;
}

QList<QByteArray> TestKeyring::secrets(const QString& account) const
{
    QList<QByteArray> secrets;
    const auto service = freshService();
    const ObjectList items = search(service.get(), account);
    for (const GList* element = items.get(); element; element = element->next) {
        SecretValue* const value = secret_item_get_secret(static_cast<SecretItem*>(element->data));
        if (!value) {
            secrets.append(QByteArray());
            continue;
        }
        gsize size = 0;
        const gchar* const bytes = secret_value_get(value, &size);
        secrets.append(QByteArray(bytes, static_cast<qsizetype>(size)));
        secret_value_unref(value);
    }
    return secrets;
}

bool TestKeyring::put(const QByteArray& secret) const
{
    const auto service = freshService();
    const GObjectOwned<SecretCollection> into(secret_collection_for_alias_sync(
        service.get(), SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, nullptr, nullptr));
    if (!into)
        return false;
    SecretValue* const value = secret_value_new(secret.constData(), secret.size(), "text/plain");
    const GObjectOwned<SecretItem> item(secret_item_create_sync(
        into.get(), &kKeyringSchema,
        keyringAttributes(VaultKey::kService, VaultKey::kAccount).get(), "made by a test", value,
        SECRET_ITEM_CREATE_NONE, nullptr, nullptr));
    secret_value_unref(value);
    return item != nullptr;
}

QString TestKeyring::label() const
{
    const auto service = freshService();
    const ObjectList items = search(service.get(), VaultKey::kAccount);
    gchar* const label =
        items ? secret_item_get_label(static_cast<SecretItem*>(items->data)) : nullptr;
    const QString text = QString::fromUtf8(label);
    g_free(label);
    return text;
}

QMap<QString, QString> TestKeyring::attributes() const
{
    QMap<QString, QString> attributes;
    const auto service = freshService();
    const ObjectList items = search(service.get(), VaultKey::kAccount);
    if (!items)
        return attributes;
    const KeyringAttributes table(
        secret_item_get_attributes(static_cast<SecretItem*>(items->data)));
    GHashTableIter iterator;
    g_hash_table_iter_init(&iterator, table.get());
    gpointer name = nullptr;
    gpointer value = nullptr;
    while (g_hash_table_iter_next(&iterator, &name, &value))
        attributes.insert(QString::fromUtf8(static_cast<const char*>(name)),
                          QString::fromUtf8(static_cast<const char*>(value)));
    return attributes;
}

bool TestKeyring::hasOwner(const char* name) const
{
    const GVariantOwned reply(g_dbus_connection_call_sync(
        m_connection->bus, "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "NameHasOwner",
        g_variant_new("(s)", name), nullptr, G_DBUS_CALL_FLAGS_NONE, kPatience, nullptr, nullptr));
    gboolean hasOwner = FALSE;
    if (reply)
        g_variant_get(reply.get(), "(b)", &hasOwner);
    return hasOwner;
}

bool TestKeyring::lock() const
{
    const auto service = freshService();
    const GObjectOwned<SecretCollection> collection(secret_collection_for_alias_sync(
        service.get(), SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, nullptr, nullptr));
    GList only = {collection.get(), nullptr, nullptr};
    return secret_service_lock_sync(service.get(), &only, nullptr, nullptr, nullptr) == 1;
}

bool TestKeyring::makeSessionTheDefault() const
{
    const auto service = freshService();
    const GObjectOwned<SecretCollection> collection(secret_collection_for_alias_sync(
        service.get(), SECRET_COLLECTION_SESSION, SECRET_COLLECTION_NONE, nullptr, nullptr));
    return secret_service_set_alias_sync(service.get(), SECRET_COLLECTION_DEFAULT, collection.get(),
                                         nullptr, nullptr);
}

void TestKeyring::standStill()
{
    signalTo(m_service, SIGSTOP);
}

void TestKeyring::goOn()
{
    signalTo(m_service, SIGCONT);
}

void TestKeyring::busStandsStill()
{
    signalTo(m_bus.process(), SIGSTOP);
}

void TestKeyring::busGoesOn()
{
    signalTo(m_bus.process(), SIGCONT);
}

void TestKeyring::killService()
{
    TestBus::end(m_service);
}

} // namespace mossbank::test
