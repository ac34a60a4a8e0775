// A web mailbox over a Maildir.
//
//     webmail --maildir DIR [--listen 127.0.0.1:8025]
//
// It has no login: whoever reaches its address reads the mail.

#include "server.h"
#include "site.h"

#include <csignal>
#include <gmime/gmime.h>
#include <iostream>
#include <zel.hpp>

namespace {

constexpr char usage[] = "usage: webmail --maildir DIR [--listen ADDRESS:PORT]\n";

// Until somebody stops it.
void serve(const std::string &directory, const std::string &listen) {
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGINT);
    sigaddset(&ends, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    const std::size_t colon = listen.rfind(':');
    const std::string address = listen.substr(0, colon);
    const bool is_loopback = address.rfind("127.", 0) == 0;
    site site(directory,
              is_loopback ? std::vector{address, std::string("localhost")} : std::vector<std::string>());
    const server server(address, static_cast<std::uint16_t>(std::stoul(listen.substr(colon + 1))),
                        [&](const request &asked) { return site.answer(asked); });
    std::cout << "http://" << address << ':' << server.port() << "/ shows " << directory
              << "\nThere is no login: whoever reaches this address reads and sends the mail." << std::endl;
    int signal = 0;
    sigwait(&ends, &signal);
}

} // namespace

int main(int argc, char **argv) {
    std::map<std::string, std::string> options = {{"--listen", "127.0.0.1:8025"}};
    for (int at = 1; at + 1 < argc; at += 2)
        options[argv[at]] = argv[at + 1];
    if (argc % 2 == 0 || options.size() != 2 || options.count("--maildir") == 0) {
        std::cerr << usage;
        return 2;
    }
    try {
        const char *bundles = getenv("ZEL_BUNDLES");
        const zel::library library(bundles ? bundles : DEFAULT_BUNDLES);
        g_mime_init();
        serve(options["--maildir"], options["--listen"]);
    } catch (const std::exception &error) {
        std::cerr << "webmail: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
