// SPDX-License-Identifier: Apache-2.0
//
// A session manager of X11's old kind for one program, ordered about by its standard input, a word
// a line, and telling on its standard output what the program does, a line each.
#include <X11/ICE/ICElib.h>
#include <X11/SM/SMlib.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

SmsConn g_program = nullptr;
std::vector<IceConn> g_connections;

void tell(const std::string& line)
{
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

Status registerClient(SmsConn program, SmPointer, char* previous)
{
    char* const id = SmsGenerateClientID(program);
    SmsRegisterClientReply(program, id);
    std::free(id);
    g_program = program;
    // As managers begin with every new program.
    if (!previous)
        SmsSaveYourself(program, SmSaveLocal, False, SmInteractStyleNone, False);
    std::free(previous);
    tell("registered");
    return 1;
}

void saveYourselfDone(SmsConn, SmPointer, Bool isSuccess)
{
    tell(isSuccess ? "saved" : "not saved");
}

void setProperties(SmsConn, SmPointer, int count, SmProp** properties)
{
    for (int i = 0; i < count; ++i) {
        if (std::string_view(properties[i]->name) == SmRestartStyleHint)
            tell("restart " +
                 std::to_string(static_cast<const char*>(properties[i]->vals[0].value)[0]));
        SmFreeProperty(properties[i]);
    }
    std::free(properties);
}

void closeConnection(SmsConn program, SmPointer, int count, char** reasons)
{
    SmFreeReasons(count, reasons);
    const IceConn connection = SmsGetIceConnection(program);
    SmsCleanUp(program);
    std::erase(g_connections, connection);
    IceSetShutdownNegotiation(connection, False);
    IceCloseConnection(connection);
    g_program = nullptr;
    tell("left");
}

Status meet(SmsConn program, SmPointer, unsigned long* mask, SmsCallbacks* callbacks, char**)
{
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask |
            SmsSaveYourselfDoneProcMask | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask |
            SmsDeletePropertiesProcMask | SmsGetPropertiesProcMask;
    *callbacks = {};
    callbacks->register_client.callback = registerClient;
    callbacks->interact_request.callback = [](SmsConn, SmPointer, int) {
        tell("asks");
    };
    callbacks->interact_done.callback = [](SmsConn, SmPointer, Bool) {
    };
    callbacks->save_yourself_request.callback = [](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {
    };
    callbacks->save_yourself_phase2_request.callback = [](SmsConn one, SmPointer) {
        SmsSaveYourselfPhase2(one);
    };
    callbacks->save_yourself_done.callback = saveYourselfDone;
    callbacks->close_connection.callback = closeConnection;
    callbacks->set_properties.callback = setProperties;
    callbacks->delete_properties.callback = [](SmsConn, SmPointer, int, char**) {
    };
    callbacks->get_properties.callback = [](SmsConn one, SmPointer) {
        SmsReturnProperties(one, 0, nullptr);
    };
    static_cast<void>(program);
    return 1;
}

/// Whoever is on this machine, and nobody else.
Bool isWelcome(char* host)
{
    return std::string_view(host).starts_with("local/") ? True : False;
}

void obey(std::string_view order)
{
    if (!g_program)
        tell("nobody there");
    else if (order == "end")
        SmsSaveYourself(g_program, SmSaveBoth, True, SmInteractStyleAny, False);
    else if (order == "end what all see")
        SmsSaveYourself(g_program, SmSaveGlobal, True, SmInteractStyleAny, False);
    else if (order == "checkpoint")
        SmsSaveYourself(g_program, SmSaveBoth, False, SmInteractStyleAny, False);
    else if (order == "call off")
        SmsShutdownCancelled(g_program);
    else if (order == "go on")
        SmsSaveComplete(g_program);
    else if (order == "die")
        SmsDie(g_program);
    else
        tell("what?");
    if (g_program)
        IceFlush(SmsGetIceConnection(g_program));
}

/// False once nobody gives orders any more.
bool readOrders()
{
    static std::string read;
    std::array<char, 256> bytes = {};
    const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count <= 0)
        return false;
    read.append(bytes.data(), static_cast<std::size_t>(count));
    for (std::size_t end = read.find('\n'); end != std::string::npos; end = read.find('\n')) {
        obey(std::string_view(read).substr(0, end));
        read.erase(0, end + 1);
    }
    return true;
}

void accept(IceListenObj listener)
{
    IceAcceptStatus status = IceAcceptSuccess;
    const IceConn connection = IceAcceptConnection(listener, &status);
    if (!connection)
        return;
    IceConnectStatus state = IceConnectPending;
    while ((state = IceConnectionStatus(connection)) == IceConnectPending)
        IceProcessMessages(connection, nullptr, nullptr);
    if (state == IceConnectAccepted)
        g_connections.push_back(connection);
}

void process(IceConn connection)
{
    if (IceProcessMessages(connection, nullptr, nullptr) != IceProcessMessagesIOError)
        return;
    if (std::erase(g_connections, connection) == 0)
        return;
    IceSetShutdownNegotiation(connection, False);
    IceCloseConnection(connection);
    g_program = nullptr;
    tell("lost");
}

void serve(int count, IceListenObj* listeners)
{
    for (;;) {
        std::vector<pollfd> files = {{STDIN_FILENO, POLLIN, 0}};
        for (int i = 0; i < count; ++i)
            files.push_back({IceGetListenConnectionNumber(listeners[i]), POLLIN, 0});
        const std::vector<IceConn> connections = g_connections;
        for (const IceConn connection : connections)
            files.push_back({IceConnectionNumber(connection), POLLIN, 0});
        ::poll(files.data(), files.size(), -1);
        std::size_t place = 0;
        if (files[place++].revents != 0 && !readOrders())
            return;
        for (int i = 0; i < count; ++i) {
            if (files[place++].revents != 0)
                accept(listeners[i]);
        }
        for (const IceConn connection : connections) {
            if (files[place++].revents != 0)
                process(connection);
        }
    }
}

} // namespace

int main()
{
    std::array<char, 256> error = {};
    const int size = static_cast<int>(error.size());
    IceSetIOErrorHandler([](IceConn) {});
    int count = 0;
    IceListenObj* listeners = nullptr;
    if (!SmsInitialize("test", "1", meet, nullptr, isWelcome, size, error.data()) ||
        !IceListenForConnections(&count, &listeners, size, error.data())) {
        tell(error.data());
        return 1;
    }
    for (int i = 0; i < count; ++i)
        IceSetHostBasedAuthProc(listeners[i], isWelcome);
    char* const addresses = IceComposeNetworkIdList(count, listeners);
    const std::string all(addresses);
    std::free(addresses);
    const std::size_t begin = all.find("local/");
    if (begin == std::string::npos) {
        tell("no address on this machine");
        return 1;
    }
    tell("address " + all.substr(begin, all.find(',', begin) - begin));
    serve(count, listeners);
    IceFreeListenObjs(count, listeners);
    return 0;
}
