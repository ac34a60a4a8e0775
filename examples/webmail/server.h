// HTTP by libmicrohttpd: a request goes to the handler whole and taken apart, and what the handler answers
// goes out. Handlers run on several threads at once.

#pragma once

#include "html.h"

#include <functional>

struct field {
    std::string value, file_name, type; // the last two of an upload, as the browser says them
};

struct request {
    std::string method, path, host, site, languages; // the site of the page that led here
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

// Serves as long as its result is kept, or throws std::runtime_error. Port 0 becomes that of a free one.
std::shared_ptr<struct MHD_Daemon> serve(struct sockaddr_in &place, handler &answer);
