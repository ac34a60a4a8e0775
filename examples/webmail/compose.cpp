#include "compose.h"

#include <gmime/gmime.h>
#include <zel.hpp>

#include <iomanip>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>

namespace {

bool is_visible(const std::string &token, std::string_view but = "") {
    return std::all_of(token.begin(), token.end(), [&](char byte) {
        return byte > ' ' && byte < 0x7F && but.find(byte) == std::string::npos;
    });
}

std::string address_of(InternetAddress *address) {
    if (!INTERNET_ADDRESS_IS_MAILBOX(address))
        return {};
    const char *found = internet_address_mailbox_get_idn_addr(INTERNET_ADDRESS_MAILBOX(address));
    const std::string spelled = found ? found : "";
    const std::size_t at = spelled.find('@');
    const bool is_sound =
        at != std::string::npos && at != 0 && at + 1 != spelled.size() && at == spelled.rfind('@');
    return is_sound && is_visible(spelled, "()<>,;:\\\"[]") ? spelled : "";
}

// The value of a header of addresses. A long list has a line for each.
std::string addresses(const std::string &language, const std::string &typed) {
    const std::unique_ptr<InternetAddressList, decltype(&g_object_unref)> list(
        internet_address_list_parse(nullptr, typed.c_str()), &g_object_unref);
    std::string value;
    for (int at = 0; list && at < internet_address_list_length(list.get()); ++at) {
        InternetAddress *address = internet_address_list_get_address(list.get(), at);
        const char *name = internet_address_get_name(address);
        const std::string phrase = name && *name ? zel::write_phrase(language, name) : "";
        const std::string spelled = address_of(address);
        if (spelled.empty())
            throw std::invalid_argument(typed);
        value += (at ? ",\r\n " : "") + phrase + (phrase.size() + spelled.size() > 60 ? "\r\n <" : " <") +
                 spelled + '>';
    }
    if (value.empty())
        throw std::invalid_argument(typed);
    return value;
}

// The ids of messages in a header, a line for each.
std::string ids(const std::string &said) {
    std::istringstream tokens(said);
    std::string value;
    for (std::string token; tokens >> token;)
        if (token.size() > 2 && token.size() < 250 && token.front() == '<' && token.back() == '>' &&
            is_visible(token))
            value += (value.empty() ? "" : "\r\n ") + token;
    return value;
}

std::string part(const std::string &type, const std::string &encoding, const std::string &bytes) {
    return "Content-Type: " + type + "\r\nContent-Transfer-Encoding: " + encoding + "\r\n\r\n" + bytes +
           "\r\n";
}

// A browser may say what it likes of a file, but a part has no parts of its own, and its charset is not
// known.
std::string type_of(const std::string &said) {
    const bool is_kept = said.find('/') != std::string::npos && is_visible(said, "()<>@,;:\\\"[]?=") &&
                         (said.rfind("image/", 0) == 0 || said.rfind("application/", 0) == 0);
    return is_kept ? said : "application/octet-stream";
}

std::string body(const draft &draft) {
    const zel::body body = zel::write_body(draft.language, draft.text);
    const std::string text = part("text/plain; charset=" + body.charset, body.transfer_encoding, body.bytes);
    if (draft.file_name.empty())
        return text;
    const std::string name = zel::write_parameter(draft.language, "filename", draft.file_name),
                      boundary = secret();
    return "Content-Type: multipart/mixed; boundary=" + boundary + "\r\n\r\n--" + boundary + "\r\n" + text +
           "--" + boundary + "\r\nContent-Disposition: attachment;\r\n " + name + "\r\n" +
           part(type_of(draft.file_type), "base64", zel::encode_base64(draft.file)) + "--" + boundary +
           "--\r\n";
}

} // namespace

std::string written(const draft &draft) {
    const std::string from = addresses(draft.language, draft.from), to = addresses(draft.language, draft.to);
    const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> now(g_date_time_new_now_local(),
                                                                       &g_date_time_unref);
    const std::unique_ptr<char, decltype(&g_free)> date(g_mime_utils_header_format_date(now.get()), &g_free);
    const std::string answered = ids(draft.answered),
                      references = ids(draft.references + ' ' + draft.answered);
    return "From: " + from + "\r\nTo: " + to +
           "\r\nSubject: " + zel::write_header(draft.language, draft.subject) + "\r\nDate: " + date.get() +
           "\r\nMessage-ID: <" + secret() + "@webmail.invalid>\r\n" +
           (answered.empty() ? "" : "In-Reply-To: " + answered + "\r\nReferences: " + references + "\r\n") +
           "MIME-Version: 1.0\r\n" + body(draft);
}

std::string secret() {
    std::random_device device;
    std::ostringstream digits;
    for (int number = 0; number < 4; ++number)
        digits << std::hex << std::setw(8) << std::setfill('0') << device();
    return digits.str();
}
