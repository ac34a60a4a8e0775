// A web mailbox over a Maildir. It has no login: whoever reaches its address reads and sends the mail.
//
//     webmail --maildir DIR [--listen 127.0.0.1:8025]

#include "site.h"

#include <gmime/gmime.h>

#include <csignal>
#include <iostream>

namespace {

// Until somebody stops it.
void serve(const std::string &directory, const std::string &address, const std::string &port) {
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGINT);
    sigaddset(&ends, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    maildir letters(directory);
    const server server(address, static_cast<std::uint16_t>(std::stoul(port)),
                        [&](const request &asked) { return answer(letters, asked); });
    std::cout << "http://" << address << ':' << server.port() << "/ shows " << directory
              << "\nThere is no login: whoever reaches this address reads and sends the mail." << std::endl;
    sigwaitinfo(&ends, nullptr);
}

} // namespace

int main(int argc, char **argv) {
    values options = {{"--listen", "127.0.0.1:8025"}};
    for (int at = 1; at + 1 < argc; at += 2)
        options[argv[at]] = argv[at + 1];
    const std::string listen = options["--listen"], port = listen.substr(listen.find(':') + 1);
    if (argc % 2 == 0 || options.size() != 2 || !options.count("--maildir")) {
        std::cerr << "usage: webmail --maildir DIR [--listen ADDRESS:PORT]\n";
        return 2;
    }
    try {
        const char *bundles = getenv("ZEL_BUNDLES");
        const zel::library library(bundles ? bundles : DEFAULT_BUNDLES);
        g_mime_init();
        serve(options["--maildir"], listen.substr(0, listen.find(':')), port);
    } catch (const std::exception &error) {
        std::cerr << "webmail: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
