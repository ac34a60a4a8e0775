#include "server.h"

#include <arpa/inet.h>
#include <microhttpd.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>

namespace {

// A request while it arrives.
struct arrival {
    request asked;
    std::size_t body_size = 0;
    std::unique_ptr<MHD_PostProcessor, MHD_Result (*)(MHD_PostProcessor *)> form{nullptr,
                                                                                 &MHD_destroy_post_processor};
};

MHD_Result keep(void *map, MHD_ValueKind, const char *name, const char *value) {
    static_cast<values *>(map)->emplace(name, value ? value : "");
    return MHD_YES;
}

// The pieces of one field come in order.
MHD_Result keep_field(void *asked, MHD_ValueKind, const char *name, const char *file_name, const char *type,
                      const char *, const char *bytes, std::uint64_t, std::size_t size) {
    constexpr std::size_t most_fields = 32;
    auto &form = static_cast<request *>(asked)->form;
    if (!name || form.size() == most_fields)
        return MHD_NO;
    field &kept = form[name];
    kept.file_name = file_name ? file_name : "";
    kept.type = type ? type : "";
    kept.value.append(bytes, size);
    return MHD_YES;
}

std::unique_ptr<arrival> begun(MHD_Connection *connection, const char *path, const char *method) {
    auto arriving = std::make_unique<arrival>();
    const auto header = [&](const char *name) {
        const char *value = MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
        return std::string(value ? value : "");
    };
    request &asked = arriving->asked;
    asked.method = method;
    asked.path = path;
    asked.host = header("Host");
    asked.languages = header("Accept-Language");
    MHD_get_connection_values(connection, MHD_GET_ARGUMENT_KIND, &keep, &asked.query);
    MHD_get_connection_values(connection, MHD_COOKIE_KIND, &keep, &asked.cookies);
    if (asked.method == "POST")
        arriving->form.reset(MHD_create_post_processor(connection, 64 << 10, &keep_field, &asked));
    return arriving;
}

// What is too large is read to its end all the same, or the browser would not hear the answer.
void go_on(arrival &arriving, const char *bytes, std::size_t size) {
    arriving.body_size += size;
    if (arriving.body_size > largest_body) {
        arriving.asked.is_too_large = true;
        arriving.asked.form.clear();
    } else if (arriving.form && MHD_post_process(arriving.form.get(), bytes, size) != MHD_YES) {
        arriving.form.reset();
    }
}

MHD_Result send(MHD_Connection *connection, response answer) {
    const std::unique_ptr<MHD_Response, void (*)(MHD_Response *)> sent(
        MHD_create_response_from_buffer(answer.body.size(), answer.body.data(), MHD_RESPMEM_MUST_COPY),
        &MHD_destroy_response);
    for (const auto &[name, value] : answer.headers)
        MHD_add_response_header(sent.get(), name.c_str(), value.c_str());
    return MHD_queue_response(connection, answer.status, sent.get());
}

// Called once the head of a request is there, again for each piece of its body, and at the end.
MHD_Result hear(void *answer, MHD_Connection *connection, const char *path, const char *method, const char *,
                const char *bytes, std::size_t *size, void **state) {
    try {
        if (!*state) {
            *state = begun(connection, path, method).release();
        } else if (*size != 0) {
            go_on(*static_cast<arrival *>(*state), bytes, std::exchange(*size, 0));
        } else {
            return send(connection, (*static_cast<handler *>(answer))(static_cast<arrival *>(*state)->asked));
        }
        return MHD_YES;
    } catch (const std::exception &error) {
        return *size == 0 ? send(connection, {500, {{"Content-Type", "text/plain"}}, error.what()}) : MHD_NO;
    }
}

void forget(void *, MHD_Connection *, void **state, MHD_RequestTerminationCode) {
    delete static_cast<arrival *>(std::exchange(*state, nullptr));
}

} // namespace

server::server(const std::string &address, std::uint16_t port, handler answer) : answer_(std::move(answer)) {
    sockaddr_in place = {};
    place.sin_family = AF_INET;
    place.sin_port = htons(port);
    if (inet_pton(AF_INET, address.c_str(), &place.sin_addr) != 1)
        throw std::runtime_error(address + " is no address of IPv4");
    daemon_ = MHD_start_daemon(MHD_USE_AUTO_INTERNAL_THREAD, port, nullptr, nullptr, &hear, &answer_,
                               MHD_OPTION_SOCK_ADDR, &place, MHD_OPTION_THREAD_POOL_SIZE,
                               std::max(2U, std::thread::hardware_concurrency()), MHD_OPTION_CONNECTION_LIMIT,
                               128U, MHD_OPTION_CONNECTION_TIMEOUT, 30U, MHD_OPTION_NOTIFY_COMPLETED, &forget,
                               nullptr, MHD_OPTION_END);
    if (!daemon_)
        throw std::runtime_error("cannot listen on " + address + ':' + std::to_string(port));
}

server::~server() {
    MHD_stop_daemon(daemon_);
}

std::uint16_t server::port() const {
    return MHD_get_daemon_info(daemon_, MHD_DAEMON_INFO_BIND_PORT)->port;
}
