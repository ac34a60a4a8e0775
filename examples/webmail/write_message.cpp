#include "message.h"

#include <gmime/gmime.h>
#include <zel.hpp>

#include <random>
#include <sstream>

namespace {

bool is_visible(const std::string &token, std::string_view but = "") {
    return std::all_of(token.begin(), token.end(), [&](char byte) {
        return byte > ' ' && byte < 0x7F && but.find(byte) == std::string::npos;
    });
}

// One address, with its name if it has one.
std::string address_of(const std::string &language, InternetAddress *address) {
    const char *name = internet_address_get_name(address), *place = nullptr;
    if (INTERNET_ADDRESS_IS_MAILBOX(address))
        place = internet_address_mailbox_get_idn_addr(INTERNET_ADDRESS_MAILBOX(address));
    const std::string phrase = name && *name ? zel::write_phrase(language, name) : "",
                      spelled = place ? place : "";
    const std::size_t at = spelled.find('@');
    if (at == 0 || at + 1 >= spelled.size() || at + 1 == 0 || at != spelled.rfind('@') ||
        !is_visible(spelled, "()<>,;:\\\"[]"))
        throw std::invalid_argument(spelled);
    return phrase + (phrase.size() + spelled.size() > 60 ? "\r\n <" : " <") + spelled + '>';
}

// The value of a header of addresses, with a line for each.
std::string addresses(const std::string &language, const std::string &typed) {
    const std::unique_ptr<InternetAddressList, decltype(&g_object_unref)> list(
        internet_address_list_parse(nullptr, typed.c_str()), &g_object_unref);
    std::string value;
    for (int at = 0; list && at < internet_address_list_length(list.get()); ++at)
        value +=
            (at ? ",\r\n " : "") + address_of(language, internet_address_list_get_address(list.get(), at));
    return value.empty() ? throw std::invalid_argument(typed) : value;
}

// The ids of messages in a text, with a line for each.
std::string ids(const std::string &text) {
    std::istringstream tokens(text);
    std::string value;
    for (std::string token; tokens >> token;)
        if (token.front() == '<' && token.size() < 250 && is_visible(token))
            value += (value.empty() ? "" : "\r\n ") + token;
    return value;
}

std::string part_of(const std::string &type, const std::string &encoding, const std::string &bytes) {
    return "Content-Type: " + type + "\r\nContent-Transfer-Encoding: " + encoding + "\r\n\r\n" + bytes;
}

} // namespace

std::string write_message(const std::string &language, values typed, const part &file,
                          const std::string &type) {
    const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> now(g_date_time_new_now_local(),
                                                                       &g_date_time_unref);
    const std::unique_ptr<char, decltype(&g_free)> date(g_mime_utils_header_format_date(now.get()), &g_free);
    const std::string id = ids(typed["id"]), before = ids(typed["references"] + ' ' + id),
                      boundary = secret();
    const zel::body body = zel::write_body(language, typed["text"]);
    const std::string text =
        part_of("text/plain; charset=" + body.charset, body.transfer_encoding, body.bytes);
    std::string head =
        "From: " + addresses(language, typed["from"]) + "\r\nTo: " + addresses(language, typed["to"]) +
        "\r\nSubject: " + zel::write_header(language, typed["subject"]) + "\r\nDate: " + date.get() +
        "\r\nMessage-ID: <" + secret() + "@webmail.invalid>\r\nMIME-Version: 1.0\r\n";
    if (!id.empty())
        head += "In-Reply-To: " + id + "\r\nReferences: " + before + "\r\n";
    if (file.name.empty())
        return head + text;
    // A browser may say of a file what it likes, but a part has no parts of its own, and no charset that is
    // not known.
    const bool is_kept = type.rfind("image/", 0) == 0 || type.rfind("application/", 0) == 0;
    const std::string kept =
        is_kept && is_visible(type, "()<>@,;:\\\"[]?=") ? type : "application/octet-stream";
    return head + "Content-Type: multipart/mixed; boundary=" + boundary + "\r\n\r\n--" + boundary + "\r\n" +
           text + "\r\n--" + boundary + "\r\nContent-Disposition: attachment;\r\n " +
           zel::write_parameter(language, "filename", file.name) + "\r\n" +
           part_of(kept, "base64", zel::encode_base64(file.bytes)) + "\r\n--" + boundary + "--\r\n";
}

std::string secret() {
    std::random_device device;
    std::ostringstream digits;
    for (int number = 0; number < 4; ++number)
        digits << std::hex << device();
    return digits.str();
}
