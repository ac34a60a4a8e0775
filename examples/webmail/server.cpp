#include "server.h"

#include <arpa/inet.h>
#include <microhttpd.h>

namespace {

// A request while it arrives.
struct arrival {
    request asked;
    std::size_t body_size = 0;
    MHD_PostProcessor *form = nullptr; // none for a body that is no form
    ~arrival() { MHD_destroy_post_processor(form); }
};

MHD_Result keep(void *map, MHD_ValueKind, const char *name, const char *value) {
    static_cast<values *>(map)->emplace(name, value ? value : "");
    return MHD_YES;
}

// The pieces of one field come in order.
MHD_Result keep_field(void *asked, MHD_ValueKind, const char *name, const char *file_name, const char *type,
                      const char *, const char *bytes, std::uint64_t, std::size_t size) {
    auto &form = static_cast<request *>(asked)->form;
    if (!name || (form.size() == 32 && !form.count(name)))
        return MHD_NO;
    field &kept = form[name];
    kept.file_name = file_name ? file_name : "";
    kept.type = type ? type : "";
    kept.value.append(bytes, size);
    return MHD_YES;
}

arrival *begin(MHD_Connection *connection, const char *path, const char *method) {
    auto arriving = std::make_unique<arrival>();
    request &asked = arriving->asked;
    const auto header = [&](const char *name) {
        const char *value = MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
        return std::string(value ? value : "");
    };
    asked = {method, path, header("Host"), header("Sec-Fetch-Site"), header("Accept-Language")};
    MHD_get_connection_values(connection, MHD_GET_ARGUMENT_KIND, &keep, &asked.query);
    MHD_get_connection_values(connection, MHD_COOKIE_KIND, &keep, &asked.cookies);
    if (asked.method == "POST")
        arriving->form = MHD_create_post_processor(connection, 64 << 10, &keep_field, &asked);
    return arriving.release();
}

// What is refused is read to its end all the same, or the browser would not hear the answer.
void go_on(arrival &arriving, const char *bytes, std::size_t size) {
    bool &is_refused = arriving.asked.is_refused;
    arriving.body_size += size;
    is_refused = is_refused || arriving.body_size > 10 << 20 || !MHD_post_process(arriving.form, bytes, size);
    if (is_refused)
        arriving.asked.form.clear();
}

MHD_Result send(MHD_Connection *connection, response answer) {
    MHD_Response *sent =
        MHD_create_response_from_buffer(answer.body.size(), answer.body.data(), MHD_RESPMEM_MUST_COPY);
    for (const auto &[name, value] : answer.headers)
        MHD_add_response_header(sent, name.c_str(), value.c_str());
    const MHD_Result result = MHD_queue_response(connection, answer.status, sent);
    MHD_destroy_response(sent);
    return result;
}

// Called once the head of a request is there, again for each piece of its body, and at the end.
MHD_Result hear(void *answer, MHD_Connection *connection, const char *path, const char *method, const char *,
                const char *bytes, std::size_t *size, void **state) try {
    if (!*state)
        *state = begin(connection, path, method);
    else if (*size != 0)
        go_on(*static_cast<arrival *>(*state), bytes, std::exchange(*size, 0));
    else
        return send(connection, (*static_cast<handler *>(answer))(static_cast<arrival *>(*state)->asked));
    return MHD_YES;
} catch (const std::exception &) { // no memory, not even for the head or the answer
    return MHD_NO;
}

} // namespace

std::shared_ptr<MHD_Daemon> serve(sockaddr_in &place, handler &answer) {
    const auto forget = [](void *, MHD_Connection *, void **state, MHD_RequestTerminationCode) {
        delete static_cast<arrival *>(std::exchange(*state, nullptr));
    };
    const std::shared_ptr<MHD_Daemon> daemon(
        MHD_start_daemon(MHD_USE_AUTO_INTERNAL_THREAD, 0, nullptr, nullptr, &hear, &answer,
                         MHD_OPTION_SOCK_ADDR, &place, MHD_OPTION_THREAD_POOL_SIZE, 8U,
                         MHD_OPTION_CONNECTION_LIMIT, 128U, MHD_OPTION_CONNECTION_TIMEOUT, 30U,
                         MHD_OPTION_NOTIFY_COMPLETED, +forget, nullptr, MHD_OPTION_END),
        &MHD_stop_daemon);
    if (!daemon)
        throw std::runtime_error("cannot listen there");
    place.sin_port = htons(MHD_get_daemon_info(daemon.get(), MHD_DAEMON_INFO_BIND_PORT)->port);
    return daemon;
}
