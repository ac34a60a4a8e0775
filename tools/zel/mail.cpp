#include "mail.h"

#include "characters.h"
#include "files.h"
#include "report.h"
#include "texts.h"
#include "wire.h"

#include <zel.hpp>

#include <algorithm>
#include <set>

namespace tool {
namespace {

std::string without_cr(std::string wire) {
    wire.erase(std::remove(wire.begin(), wire.end(), '\r'), wire.end());
    return wire;
}

// The blank behind a fold stays.
std::string unfolded(std::string_view text) {
    std::string line;
    for (std::size_t at = 0; at < text.size(); ++at)
        if (text.substr(at, 2) == "\r\n")
            ++at;
        else
            line += text[at];
    return on_one_line(line);
}

void put_wire(const std::string &wire) {
    write_out(without_cr(wire) + '\n');
}

bool holds(std::string_view text, std::string_view other) {
    return text.find(other) != text.npos;
}

// The decoders leave what they cannot read as it stands, without a word of it.
std::string what_is_unread(std::string_view value, std::string_view text) {
    std::set<std::string_view> given;
    for (const encoded_word &word : words_of(value))
        given.insert(word.whole);
    for (const encoded_word &word : words_of(text))
        if (given.count(word.whole))
            return "an encoded word in " + std::string(word.charset) + " cannot be read";
    const std::string unknown = utf8(replacement);
    return holds(text, unknown) && !holds(value, unknown) ? "characters that cannot be read" : "";
}

// Or they take the frame off it.
std::string what_is_not_admitted(const std::string &language, std::string_view value) {
    for (const encoded_word &word : words_of(value))
        if (!zel::admits(language, word.charset))
            return std::string(word.charset) + " is not admitted for " + language;
    return "";
}

void report_if(const std::string &place, const std::string &reason) {
    if (!reason.empty())
        report(place, reason);
}

} // namespace

void decode_headers(const std::string &language, const std::string &to_charset, const texts &values) {
    line_output output(to_charset);
    each_header(values, [&](const given_text &given) {
        const std::string text =
            language.empty() ? zel::read_header(given.text) : zel::decode_header(language, given.text);
        report_if(given.place, language.empty() ? what_is_unread(given.text, text)
                                                : what_is_not_admitted(language, given.text));
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
        for (const parameter &each : parameters_of(value)) {
            const std::string text = zel::read_parameter(each.parts, each.name).value_or("");
            report_if(given.place, what_is_unread(each.parts, text));
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
