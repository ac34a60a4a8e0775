// HTTP by libmicrohttpd: a request goes to the handler whole and taken apart, and what the handler answers
// goes out. Handlers run on several threads at once.

#pragma once

#include "html.h"

#include <functional>

struct field {
    std::string value, file_name, type; // the last two of an upload, as the browser says them
};

struct request {
    std::string method, path, host, languages;
    values query, cookies;
    std::map<std::string, field> form;
    bool is_refused = false; // its body is no form, or has more than 10 MB or 32 fields

    std::string said(const std::string &name) const { return query.count(name) ? query.at(name) : ""; }
};

struct response {
    unsigned status = 200;
    values headers;
    std::string body;
};

using handler = std::function<response(const request &)>;

// Serves on an address of IPv4 until the end of its scope. Throws std::runtime_error if it cannot.
class server {
public:
    server(const std::string &address, std::uint16_t port, handler answer);
    ~server();
    std::uint16_t port() const; // a free one, if it was to be 0

private:
    handler answer_;
    struct MHD_Daemon *daemon_;
};
