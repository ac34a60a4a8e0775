#include "message.h"

#include <zel.hpp>

#include <random>
#include <sstream>

namespace {

bool is_visible(const std::string &token, std::string_view but = "") {
    return std::all_of(token.begin(), token.end(), [&](char byte) {
        return byte > ' ' && byte < 0x7F && but.find(byte) == std::string::npos;
    });
}

bool takes_mail(const std::string &place) {
    const std::size_t at = place.find('@');
    return at != 0 && at < place.size() - 1 && at == place.rfind('@') && place.size() <= 320 &&
           is_visible(place, "()<>,;:\\\"[]");
}

// The value of a header of so many addresses at most, with a line for each.
std::string addresses(const std::string &language, const std::string &typed, std::size_t limit) {
    const std::vector<mailbox> found = mailboxes(typed);
    std::string value;
    for (const auto &[name, place] : found) {
        if (!takes_mail(place) || found.size() > limit)
            throw std::invalid_argument(typed);
        const std::string phrase = name.empty() ? "" : zel::write_phrase(language, name);
        value += (value.empty() ? "" : ",\r\n ") + phrase;
        value += phrase.empty() ? "<" : phrase.size() + place.size() > 60 ? "\r\n <" : " <";
        value += place + '>';
    }
    return value;
}

// The ids of messages in a text, with a line for each.
std::string ids(const std::string &text) {
    std::istringstream tokens(text);
    std::string value;
    for (std::string token; tokens >> token;)
        if (token.front() == '<' && token.find_first_of("<>", 1) == token.size() - 1 && token.size() < 250 &&
            is_visible(token))
            value += (value.empty() ? "" : "\r\n ") + token;
    return value;
}

std::string body_of_part(const std::string &type, const std::string &encoding, const std::string &bytes) {
    return "Content-Type: " + type + "\r\nContent-Transfer-Encoding: " + encoding + "\r\n\r\n" + bytes;
}

} // namespace

std::string write_message(const std::string &language, values typed, const part &file,
                          const std::string &type) {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    char date[64];
    std::strftime(date, sizeof date, "%a, %d %b %Y %T %z", localtime_r(&now, &local));
    const std::string id = ids(typed["id"]), boundary = secret();
    const zel::body body = zel::write_body(language, typed["text"]);
    const std::string text =
        body_of_part("text/plain; charset=" + body.charset, body.transfer_encoding, body.bytes);
    std::string head = "From: " + addresses(language, typed["from"], 1) +
                       "\r\nTo: " + addresses(language, typed["to"], 100) +
                       "\r\nSubject: " + zel::write_header(language, on_one_line(typed["subject"])) +
                       "\r\nDate: " + date + "\r\nMessage-ID: <" + secret() +
                       "@webmail.invalid>\r\nMIME-Version: 1.0\r\n";
    if (!id.empty())
        head += "In-Reply-To: " + id + "\r\nReferences: " + ids(typed["references"] + ' ' + id) + "\r\n";
    if (file.name.empty())
        return head + text;
    // Whatever a browser says, a file has no parts of its own, and no charset that is not known.
    const std::string kind = type.substr(0, type.find('/') + 1), rest = type.substr(kind.size());
    const bool is_kept = (kind == "image/" || kind == "application/") && !rest.empty() && rest.size() < 100 &&
                         is_visible(rest, "()<>@,;:\\\"/[]?=");
    const std::string kept = is_kept ? type : "application/octet-stream";
    return head + "Content-Type: multipart/mixed; boundary=" + boundary + "\r\n\r\n--" + boundary + "\r\n" +
           text + "\r\n--" + boundary + "\r\nContent-Disposition: attachment;\r\n " +
           zel::write_parameter(language, "filename", file.name) + "\r\n" +
           body_of_part(kept, "base64", zel::encode_base64(file.bytes)) + "\r\n--" + boundary + "--\r\n";
}

std::string secret() {
    std::random_device device;
    return std::to_string(device()) + std::to_string(device()) + std::to_string(device()) +
           std::to_string(device());
}
