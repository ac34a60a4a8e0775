// HTTP by libmicrohttpd: a request goes to the handler whole and taken apart, and what the handler answers
// goes out. Handlers run on several threads at once.

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

inline constexpr std::size_t largest_body = 10 << 20;

using values = std::map<std::string, std::string>;

struct field {
    std::string value, file_name, type; // the last two of an upload, as the browser says them
};

struct request {
    std::string method, path, host, languages;
    values query, cookies;
    std::map<std::string, field> form;
    bool is_too_large = false; // its body was not kept

    std::string said(const std::string &name) const { return query.count(name) ? query.at(name) : ""; }
};

struct response {
    unsigned status = 200;
    values headers;
    std::string body;
};

using handler = std::function<response(const request &)>;

class server {
public:
    // Throws std::runtime_error if it cannot listen on the address, which is one of IPv4; port 0 takes a free
    // one.
    server(const std::string &address, std::uint16_t port, handler answer);
    ~server();
    server(const server &) = delete;
    server &operator=(const server &) = delete;

    std::uint16_t port() const;

private:
    handler answer_;
    struct MHD_Daemon *daemon_;
};
