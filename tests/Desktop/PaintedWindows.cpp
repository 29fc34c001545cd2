// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/PaintedWindows.h"

#include <QDeadlineTimer>
#include <QSysInfo>
#include <QThread>

#include <unistd.h>

#include <array>
#include <cstdlib>
#include <memory>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

template <typename T>
auto owned(T* reply)
{
    return std::unique_ptr<T, decltype(&std::free)>(reply, &std::free);
}

} // namespace

QJsonObject WindowSpec::toJson() const
{
    return {{u"x"_s, frame.x()},
            {u"y"_s, frame.y()},
            {u"width"_s, frame.width()},
            {u"height"_s, frame.height()},
            {u"colour"_s, static_cast<qint64>(colour)},
            {u"class"_s, windowClass},
            {u"application"_s, applicationID},
            {u"title"_s, title},
            {u"type"_s, type},
            {u"overridesRedirect"_s, overridesRedirect},
            {u"isForInputOnly"_s, isForInputOnly},
            {u"tellsProcess"_s, tellsProcess},
            {u"hasBackground"_s, hasBackground},
            {u"isMapped"_s, isMapped},
            {u"parent"_s, static_cast<qint64>(parent)}};
}

WindowSpec WindowSpec::fromJson(const QJsonObject& json)
{
    return {.frame = QRect(json[u"x"].toInt(), json[u"y"].toInt(), json[u"width"].toInt(),
                           json[u"height"].toInt()),
            .colour = static_cast<QRgb>(json[u"colour"].toInteger()),
            .windowClass = json[u"class"].toString(),
            .applicationID = json[u"application"].toString(),
            .title = json[u"title"].toString(),
            .type = json[u"type"].toString(),
            .overridesRedirect = json[u"overridesRedirect"].toBool(),
            .isForInputOnly = json[u"isForInputOnly"].toBool(),
            .tellsProcess = json[u"tellsProcess"].toBool(),
            .hasBackground = json[u"hasBackground"].toBool(),
            .isMapped = json[u"isMapped"].toBool(),
            .parent = static_cast<quint32>(json[u"parent"].toInteger())};
}

PaintedWindows::PaintedWindows()
    : m_connection(xcb_connect(nullptr, nullptr))
{
    if (!xcb_connection_has_error(m_connection))
        m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    // The server gives a client's numbers to the next one, and a window manager that is still busy
    // with the windows of the last would take those of this one for them.
    static int connections = 0;
    const int skipped = (::getpid() * 7 + ++connections * 1009) % 20'000;
    for (int number = 0; m_screen && number < skipped; ++number)
        xcb_generate_id(m_connection);
}

PaintedWindows::~PaintedWindows()
{
    xcb_disconnect(m_connection);
}

xcb_window_t PaintedWindows::open(const WindowSpec& spec, int patience)
{
    if (!m_screen)
        return 0;
    const xcb_window_t window = xcb_generate_id(m_connection);
    const std::array<quint32, 2> values = {spec.hasBackground ? spec.colour & 0xffffff
                                                              : quint32{XCB_BACK_PIXMAP_NONE},
                                           spec.overridesRedirect};
    const QRect& frame = spec.frame;
    const quint32 background = spec.hasBackground ? XCB_CW_BACK_PIXEL : XCB_CW_BACK_PIXMAP;
    const quint32* const firstValue = values.data() + (spec.isForInputOnly ? 1 : 0);
    xcb_create_window(
        m_connection, XCB_COPY_FROM_PARENT, window, spec.parent ? spec.parent : m_screen->root,
        static_cast<qint16>(frame.x()), static_cast<qint16>(frame.y()),
        static_cast<quint16>(frame.width()), static_cast<quint16>(frame.height()), 0,
        spec.isForInputOnly ? XCB_WINDOW_CLASS_INPUT_ONLY : XCB_WINDOW_CLASS_INPUT_OUTPUT,
        XCB_COPY_FROM_PARENT, (spec.isForInputOnly ? 0 : background) | XCB_CW_OVERRIDE_REDIRECT,
        firstValue);
    // User's position and size, so that a window manager leaves it where it is.
    const std::array<quint32, 18> hints = {3};
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, hints.size(), hints.data());
    if (!spec.windowClass.isEmpty()) {
        const QByteArray name = spec.windowClass.toUtf8();
        setText(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, name + '\0' + name + '\0');
    }
    if (!spec.applicationID.isEmpty())
        setText(window, atom("_GTK_APPLICATION_ID"), atom("UTF8_STRING"),
                spec.applicationID.toUtf8());
    if (!spec.title.isEmpty())
        setText(window, atom("_NET_WM_NAME"), atom("UTF8_STRING"), spec.title.toUtf8());
    if (!spec.type.isEmpty()) {
        const xcb_atom_t type = atom(spec.type.toUtf8());
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window,
                            atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1, &type);
    }
    if (spec.tellsProcess) {
        const auto process = static_cast<quint32>(::getpid());
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_PID"),
                            XCB_ATOM_CARDINAL, 32, 1, &process);
        setText(window, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING,
                QSysInfo::machineHostName().toUtf8());
    }
    if (spec.isMapped)
        xcb_map_window(m_connection, window);
    xcb_flush(m_connection);
    if (!spec.isMapped || waitUntilShown(window, patience))
        return window;
    close(window);
    return 0;
}

void PaintedWindows::close(xcb_window_t window)
{
    xcb_destroy_window(m_connection, window);
    awaitServer();
}

bool PaintedWindows::isFramed(xcb_window_t window) const
{
    const auto tree =
        owned(xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, window), nullptr));
    return tree && tree->parent != tree->root;
}

void PaintedWindows::setNumbers(xcb_window_t window, const QByteArray& property, xcb_atom_t type,
                                const QList<quint32>& numbers)
{
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom(property), type, 32,
                        static_cast<quint32>(numbers.size()), numbers.constData());
    awaitServer();
}

void PaintedWindows::setAtoms(xcb_window_t window, const QByteArray& property,
                              const QByteArrayList& names)
{
    QList<quint32> atoms;
    for (const QByteArray& name : names)
        atoms.append(atom(name));
    setNumbers(window, property, XCB_ATOM_ATOM, atoms);
}

void PaintedWindows::take(const QByteArray& selection, xcb_window_t window)
{
    xcb_set_selection_owner(m_connection, window, atom(selection), XCB_CURRENT_TIME);
    awaitServer();
}

void PaintedWindows::endEveryOtherClient()
{
    const xcb_setup_t* const setup = xcb_get_setup(m_connection);
    const quint32 step = setup->resource_id_mask + 1;
    constexpr quint32 kMaxClients = 256;
    for (quint32 client = 1; client < kMaxClients; ++client) {
        // Any resource of a client stands for it, and identifiers are given from the first on.
        for (quint32 resource = 0; client * step != setup->resource_id_base && resource < 64;
             ++resource)
            xcb_kill_client(m_connection, client * step + resource);
    }
    awaitServer();
}

void PaintedWindows::awaitServer()
{
    // An answer to anything means that all before it has been done.
    owned(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

xcb_atom_t PaintedWindows::atom(const QByteArray& name)
{
    const auto reply = owned(xcb_intern_atom_reply(
        m_connection,
        xcb_intern_atom(m_connection, 0, static_cast<quint16>(name.size()), name.constData()),
        nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void PaintedWindows::setText(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                             const QByteArray& value)
{
    // A request holds 256 KB; what is longer is put together on the server.
    constexpr qsizetype kMaxPiece = 100'000;
    for (qsizetype at = 0; at < value.size(); at += kMaxPiece) {
        const QByteArray piece = value.mid(at, kMaxPiece);
        xcb_change_property(m_connection, XCB_PROP_MODE_APPEND, window, property, type, 8,
                            static_cast<quint32>(piece.size()), piece.constData());
    }
}

bool PaintedWindows::waitUntilShown(xcb_window_t window, int patience)
{
    const QDeadlineTimer deadline(patience);
    while (!deadline.hasExpired()) {
        const auto attributes = owned(xcb_get_window_attributes_reply(
            m_connection, xcb_get_window_attributes(m_connection, window), nullptr));
        if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE)
            return true;
        QThread::msleep(5);
    }
    return false;
}

} // namespace mossbank::test
