#include "mail.h"

#include "characters.h"
#include "files.h"
#include "report.h"
#include "texts.h"

#include <zel.hpp>

#include <algorithm>

namespace tool {
namespace {

std::string without_cr(std::string wire) {
    wire.erase(std::remove(wire.begin(), wire.end(), '\r'), wire.end());
    return wire;
}

std::string unfolded(std::string text) {
    for (std::size_t at = 0; (at = text.find("\r\n", at)) != text.npos;)
        text.erase(at, 2);
    return on_one_line(std::move(text));
}

void put_wire(const std::string &wire) {
    write_out(without_cr(wire) + '\n');
}

bool holds(std::string_view text, std::string_view other) {
    return text.find(other) != text.npos;
}

struct encoded_word {
    std::string_view whole, charset;
};

std::vector<encoded_word> words_of(std::string_view value) {
    std::vector<encoded_word> words;
    for (std::size_t at = 0; (at = value.find("=?", at)) != value.npos;) {
        const std::size_t mark = value.find('?', at + 2);
        const std::size_t end = mark == value.npos ? mark : value.find("?=", mark + 3);
        if (end == value.npos)
            break;
        const std::string_view charset = value.substr(at + 2, mark - at - 2);
        if (value[mark + 2] == '?' && !charset.empty() && charset.find_first_of(" \t") == charset.npos) {
            words.push_back({value.substr(at, end + 2 - at), charset.substr(0, charset.find('*'))});
            at = end + 2;
        } else {
            at += 2;
        }
    }
    return words;
}

// The decoders leave what they cannot read as it stands, without a word.
std::string what_is_unread(const std::string &language, std::string_view value, std::string_view text) {
    for (const encoded_word &word : words_of(language.empty() ? text : value)) {
        if (!language.empty() && !zel::admits(language, word.charset))
            return std::string(word.charset) + " is not admitted for " + language;
        if (language.empty() && holds(value, word.whole))
            return "an encoded word in " + std::string(word.charset) + " cannot be read";
    }
    const std::string unknown = utf8(replacement);
    return holds(text, unknown) && !holds(value, unknown) ? "characters that cannot be read" : "";
}

// Of a header value, each once.
std::vector<std::string> parameter_names(std::string_view value) {
    std::vector<std::string> names;
    for (bool quoted = false; !value.empty();) {
        std::size_t end = 0;
        for (; end < value.size() && (quoted || value[end] != ';'); ++end)
            quoted ^= value[end] == '"';
        const std::string_view parameter = value.substr(0, end);
        value.remove_prefix(std::min(end + 1, value.size()));
        const std::size_t first = std::min(parameter.find_first_not_of(" \t\r\n"), parameter.size());
        const std::size_t last = parameter.find_first_of("*= \t", first);
        std::string name(parameter.substr(first, last - first));
        if (holds(parameter, "=") && std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    }
    return names;
}

void report_unread(const given_text &given, const std::string &language, std::string_view text) {
    const std::string reason = what_is_unread(language, given.text, text);
    if (!reason.empty())
        report(given.place, reason);
}

} // namespace

void decode_headers(const std::string &language, const std::string &to_charset, const texts &values) {
    line_output output(to_charset);
    each_header(values, [&](const given_text &given) {
        const std::string text =
            language.empty() ? zel::read_header(given.text) : zel::decode_header(language, given.text);
        report_unread(given, language, text);
        output.put(given.place, without_controls(text));
    });
}

void encode_headers(const std::string &language, const texts &values) {
    charset_check check(language.empty() ? "UTF-8" : zel::mail_charset(language));
    each_header(values, [&](const given_text &given) {
        const std::string text = unfolded(given.text);
        if (language.empty())
            return put_wire(zel::write_header("", text));
        check.passes(given.place, text);
        put_wire(zel::encode_header(language, text));
    });
}

void decode_parameters(const std::string &to_charset, const texts &values) {
    line_output output(to_charset);
    each_header(values, [&](const given_text &given) {
        // A value alone, as it stands behind the name.
        const bool is_named = holds(given.text, "=");
        const std::string value = is_named ? given.text : "value*=" + given.text;
        for (const std::string &name : parameter_names(value)) {
            const std::string text = zel::read_parameter(value, name).value_or("");
            report_unread(given, "", text);
            output.put(given.place, without_controls(text));
        }
    });
}

void encode_parameters(const std::string &language, const std::string &name, const texts &values) {
    each_text(values,
              [&](const given_text &given) { put_wire(zel::write_parameter(language, name, given.text)); });
}

void decode_body(const std::string &language, const std::string &from_charset,
                 const std::string &to_charset) {
    attempt("-", [&] {
        const std::string bytes = read_all("-");
        const std::optional<std::string_view> known =
            language.empty() ? zel::known_charset(from_charset) : std::nullopt;
        const std::string charset(known.value_or(from_charset));
        write_out(language.empty() ? from_utf8(to_charset, zel::read_body(charset, bytes))
                                   : zel::decode_body(language, charset, bytes, to_charset));
        repertoire characters(learn(to_charset));
        loss_report losses("-");
        losses.add(find_losses(learn(charset), {bytes, charset, bytes, 0, 0, false, {}}, characters,
                               losses.wanted()));
        losses.close();
    });
}

void encode_body(const std::string &language) {
    attempt("-", [&] {
        const zel::body body = zel::write_body(language, read_all("-"));
        write_out("Content-Type: text/plain; charset=" + body.charset +
                  "\nContent-Transfer-Encoding: " + body.transfer_encoding + "\n\n" + without_cr(body.bytes));
    });
}

void decode_mailboxes(const std::string &to_charset, const texts &names) {
    line_output output(to_charset);
    each_text(names, [&](const given_text &given) {
        const std::string name = zel::decode_mailbox(given.text);
        if (zel::encode_mailbox(name) != given.text)
            report(given.place, "not the form that a mailbox has on the wire");
        output.put(given.place, without_controls(name));
    });
}

void encode_mailboxes(const texts &names) {
    charset_check check("UTF-8");
    each_text(names, [&](const given_text &given) {
        check.passes(given.place, given.text);
        put_wire(zel::encode_mailbox(given.text));
    });
}

void write_vcards(const std::string &language, const texts &values) {
    charset_check check(zel::web_charset(language));
    each_text(values, [&](const given_text &given) {
        check.passes(given.place, given.text);
        put_wire(zel::encode_vcard(language, given.text));
    });
}

} // namespace tool
