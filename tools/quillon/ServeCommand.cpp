// serve: the results browser as a local web application, answering until Ctrl-C.
#include "Commands.h"
#include "serve/LoadReports.h"
#include "serve/Router.h"

#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <sys/socket.h>
#include <unistd.h>

namespace quillon::tool {

namespace {

httplib::Server* g_server = nullptr;
const serve::ServedReports* g_reports = nullptr;
bool g_discardOnExit = false;
std::atomic<int> g_interrupts{0};

int UnsavedChanges(const serve::ServedReports& reports) {
    int unsaved = 0;
    for (const auto& report : reports)
        unsaved += report->Review().Unsaved();
    return unsaved;
}

// Ctrl-C with unsaved changes only says so the first time (they stay in the journal either way);
// the second stops the server. Only what is safe in a signal handler happens here.
void OnStop(int signal) {
    if (signal == SIGINT && !g_discardOnExit && g_reports != nullptr && g_interrupts++ == 0) {
        const int unsaved = UnsavedChanges(*g_reports);
        if (unsaved > 0) {
            char digits[16];
            int length = 0;
            for (int rest = unsaved; rest > 0 && length < 15; rest /= 10)
                digits[length++] = static_cast<char>('0' + rest % 10);
            char text[160] = "\nquillon: ";
            size_t at = std::strlen(text);
            while (length > 0)
                text[at++] = digits[--length];
            const char* tail = unsaved == 1 ? " change is unsaved: save it in the page, or press "
                                              "Ctrl-C again to stop without saving\n"
                                            : " changes are unsaved: save them in the page, or "
                                              "press Ctrl-C again to stop without saving\n";
            std::strcpy(text + at, tail);
            [[maybe_unused]] const ssize_t wrote = ::write(STDERR_FILENO, text, std::strlen(text));
            return;
        }
    }
    if (g_server != nullptr)
        g_server->stop();
}

// What becomes of unsaved changes when the server stops: discarded when asked, else kept in the
// journal for the next serve.
void SettleUnsaved(serve::ServedReports& reports, bool discard) {
    for (auto& report : reports) {
        const int unsaved = report->Review().Unsaved();
        if (discard) {
            report->WithSamples([&](CSamples&) { report->Review().DiscardOnExit(); });
        } else if (unsaved > 0) {
            std::cerr << "quillon: " << unsaved << (unsaved == 1 ? " change" : " changes") << " to "
                      << report->Name()
                      << " stay unsaved in its journal: the next quillon serve of it offers "
                      << (unsaved == 1 ? "it" : "them") << " back\n";
        }
    }
}

// Copies an httplib request into the router's plain request.
serve::HttpRequest PlainRequest(const httplib::Request& request) {
    serve::HttpRequest plain;
    plain.method = request.method;
    plain.path = request.path;
    const size_t question = request.target.find('?');
    if (question != std::string::npos)
        plain.query = request.target.substr(question + 1);
    for (const auto& [name, value] : request.headers) {
        std::string lower = name;
        std::transform(lower.begin(), lower.end(), lower.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        plain.headers[lower] = value;
    }
    plain.body = request.body;
    return plain;
}

void Answer(serve::Router& router, const httplib::Request& request, httplib::Response& response) {
    const serve::HttpResponse answer = router.Handle(PlainRequest(request));
    response.status = answer.status;
    for (const auto& [name, value] : answer.headers)
        response.set_header(name, value);
    response.set_content(answer.body, answer.contentType);
}

// Every method goes to the router, which answers 405 where a method does not belong.
void RouteEverything(httplib::Server& server, serve::Router& router) {
    // Answers go out uncompressed: on the loopback, compressing the page's script costs seconds
    // and saves nothing. The library compresses whenever the client accepts it, so the header is
    // taken out of the request before it is answered.
    server.set_pre_routing_handler([](const httplib::Request& request, httplib::Response&) {
        const_cast<httplib::Request&>(request).headers.erase("Accept-Encoding");
        return httplib::Server::HandlerResponse::Unhandled;
    });
    auto handler = [&router](const httplib::Request& request, httplib::Response& response) {
        Answer(router, request, response);
    };
    server.Get(".*", handler);
    server.Post(".*", handler);
    server.Put(".*", handler);
    server.Patch(".*", handler);
    server.Delete(".*", handler);
    // Requests the library refuses before routing (a body over the limit, a malformed request
    // line) are answered in JSON too.
    server.set_error_handler([](const httplib::Request&, httplib::Response& response) {
        if (!response.body.empty())
            return;
        const serve::HttpResponse answer = serve::ErrorResponse(
            response.status, response.status == 413 ? "the request body is too large"
                                                    : "the request could not be read");
        response.set_content(answer.body, answer.contentType);
    });
    server.set_exception_handler(
        [](const httplib::Request&, httplib::Response& response, std::exception_ptr) {
            const serve::HttpResponse answer = serve::ErrorResponse(500, "internal error");
            response.status = answer.status;
            response.set_content(answer.body, answer.contentType);
        });
}

// Starts the desktop's browser on the address, when there is one to start.
void OpenBrowser(const std::string& address, const GlobalOptions& options) {
    if (std::getenv("DISPLAY") == nullptr && std::getenv("WAYLAND_DISPLAY") == nullptr) {
        Note(options, "no desktop to open a browser on: open the address yourself");
        return;
    }
    const std::string command = "xdg-open '" + address + "' >/dev/null 2>&1 &";
    if (std::system(command.c_str()) != 0)
        Note(options, "could not start a browser: open the address yourself");
}

} // namespace

void RegisterServe(CLI::App& app, GlobalOptions& options) {
    struct Settings {
        std::vector<std::string> paths;
        std::string host = "127.0.0.1";
        int port = 8765;
        bool open = false;
        bool discardOnExit = false;
    };
    auto settings = std::make_shared<Settings>();
    CLI::App* command = app.add_subcommand(
        "serve", "Browses reports in a web browser: serves them on this machine until Ctrl-C\n"
                 "  example: quillon serve batch.txt --port 9000 --open");
    command->add_option("REPORT", settings->paths, "The report files")->required();
    command->add_option("--host", settings->host,
                        "The address to listen on (default 127.0.0.1, this machine only)");
    command->add_option("--port", settings->port, "The port (default 8765; 0 takes a free one)")
        ->check(CLI::Range(0, 65535));
    command->add_flag("--open", settings->open, "Open the page in the desktop's browser");
    command->add_flag("--discard-on-exit", settings->discardOnExit,
                      "Stop at the first Ctrl-C even with unsaved changes, and discard them (their "
                      "journal is removed)");
    command->callback([settings, &options] {
        serve::ServedReports reports = serve::LoadReports(settings->paths, options);
        httplib::Server server;
        server.set_payload_max_length(64 * 1024);
        // Browsers keep up to six connections open and a worker stays with a connection while it
        // is kept alive, so there are more workers than that and they let idle connections go.
        server.new_task_queue = [] { return new httplib::ThreadPool(16); };
        server.set_keep_alive_timeout(2);
        // The library listens with a queue of 5 connections, which a burst overflows (the
        // client then waits a second to retry): listen again with the system's longest queue.
        int listening = -1;
        server.set_socket_options([&listening](int socket) {
            const int yes = 1;
            ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
            listening = socket;
        });
        const int port = settings->port == 0 ? server.bind_to_any_port(settings->host)
                         : server.bind_to_port(settings->host, settings->port) ? settings->port
                                                                               : -1;
        if (port >= 0 && listening >= 0)
            ::listen(listening, SOMAXCONN);
        if (port < 0)
            throw ToolError("cannot listen on " + settings->host + ":" +
                            std::to_string(settings->port) + " (in use, or not an address here)");
        if (settings->host != "127.0.0.1" && settings->host != "localhost")
            std::cerr << "quillon: warning: listening on " << settings->host
                      << ": other machines can reach this server (they still need the token)\n";
        const std::string token = serve::NewToken();
        const std::vector<std::string> hosts = serve::ServedHosts(settings->host, port);
        serve::Router router(reports, {token, hosts});
        RouteEverything(server, router);
        const std::string address = "http://" + hosts.front() + "/?token=" + token;
        const std::string shown = settings->paths.size() == 1
                                      ? settings->paths.front()
                                      : std::to_string(settings->paths.size()) + " reports";
        std::cout << "Quillon is serving " << shown << " at " << address << std::endl;
        if (settings->open)
            OpenBrowser(address, options);
        g_server = &server;
        g_reports = &reports;
        g_discardOnExit = settings->discardOnExit;
        std::signal(SIGINT, OnStop);
        std::signal(SIGTERM, OnStop);
        std::signal(SIGPIPE, SIG_IGN);
        const bool listened = server.listen_after_bind();
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
        g_server = nullptr;
        g_reports = nullptr;
        SettleUnsaved(reports, settings->discardOnExit);
        if (!listened && server.is_valid())
            throw ToolError("the server stopped with an error");
        std::cout << "stopped" << std::endl;
    });
}

} // namespace quillon::tool
