// A web mailbox over a Maildir. It has no login: whoever reaches its address reads and sends the mail.
//
//     webmail --maildir DIR [--listen 127.0.0.1:8025]

#include "site.h"

#include <arpa/inet.h>
#include <gmime/gmime.h>

#include <charconv>
#include <csignal>
#include <iostream>

// Reads "127.0.0.1:8025".
static std::optional<sockaddr_in> place_of(const std::string &listen) {
    const std::size_t colon = std::min(listen.find(':'), listen.size() - 1);
    const char *end = listen.data() + listen.size();
    sockaddr_in place = {AF_INET, 0, {}, {}};
    const auto [last, error] = std::from_chars(listen.data() + colon + 1, end, place.sin_port);
    place.sin_port = htons(place.sin_port);
    const bool is_address = inet_pton(AF_INET, listen.substr(0, colon).c_str(), &place.sin_addr) == 1;
    return is_address && error == std::errc() && last == end ? std::optional(place) : std::nullopt;
}

int main(int argc, char **argv) try {
    values options = {{"--listen", "127.0.0.1:8025"}};
    for (int at = 1; at + 1 < argc; at += 2)
        options[argv[at]] = argv[at + 1];
    std::optional<sockaddr_in> place = place_of(options["--listen"]);
    if (argc % 2 == 0 || options.size() != 2 || !options.count("--maildir") || !place) {
        std::cerr << "usage: webmail --maildir DIR [--listen ADDRESS:PORT]\n";
        return 2;
    }
    const char *bundles = getenv("ZEL_BUNDLES");
    const zel::library library(bundles ? bundles : DEFAULT_BUNDLES);
    g_mime_init();
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGINT);
    sigaddset(&ends, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr); // in every thread
    maildir letters(options["--maildir"]);
    handler answering = [&](const request &asked) { return answer(letters, asked); };
    const auto server = serve(*place, answering);
    std::cout << "http://" << inet_ntoa(place->sin_addr) << ':' << ntohs(place->sin_port) << "/ shows "
              << options["--maildir"] << std::endl
              << "There is no login: whoever reaches this address reads and sends the mail." << std::endl;
    sigwaitinfo(&ends, nullptr);
} catch (const std::exception &error) {
    std::cerr << "webmail: " << error.what() << '\n';
    return 1;
}
