#include "texts.h"

#include "files.h"
#include "report.h"

#include <zel.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace tool {
namespace {

// Lines of standard input without their ends, LF or CR LF.
class lines {
public:
    bool next(std::string &line) {
        errno = 0;
        const ssize_t length = getline(&buffer_, &size_, stdin);
        if (length < 0 && ferror(stdin))
            throw file_error(std::strerror(errno));
        if (length < 0)
            return false;
        line.assign(buffer_, static_cast<std::size_t>(length));
        for (const char end : {'\n', '\r'})
            if (!line.empty() && line.back() == end)
                line.pop_back();
        return true;
    }

    // Whether the line to come begins with a blank.
    static bool go_on() {
        const int byte = std::ungetc(std::getc(stdin), stdin);
        return byte == ' ' || byte == '\t';
    }

    lines() = default;
    ~lines() { std::free(buffer_); }
    lines(const lines &) = delete;
    lines &operator=(const lines &) = delete;

private:
    char *buffer_ = nullptr;
    std::size_t size_ = 0;
};

void each_line(bool folded, const text_user &use) {
    lines input;
    given_text given;
    std::string fold;
    for (std::size_t number = 1; input.next(given.text); ++number) {
        given.place = "-: line " + std::to_string(number);
        for (; folded && lines::go_on() && input.next(fold); ++number)
            given.text += "\r\n" + fold;
        attempt(given.place, [&] { use(given); });
    }
}

void each(const std::vector<std::string> &arguments, bool folded, const text_user &use) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const given_text given = {arguments[i], "argument " + std::to_string(i + 1)};
        attempt(given.place, [&] { use(given); });
    }
    if (arguments.empty())
        attempt("-", [&] { each_line(folded, use); });
}

} // namespace

void attempt(const std::string &place, const std::function<void()> &work) {
    try {
        work();
    } catch (const zel::error &fault) {
        report(place, fault.what());
    } catch (const file_error &fault) {
        report(place, fault.what());
    }
}

void each_text(const std::vector<std::string> &arguments, const text_user &use) {
    each(arguments, false, use);
}

void each_header(const std::vector<std::string> &arguments, const text_user &use) {
    each(arguments, true, use);
}

charset_check::charset_check(const std::string &charset)
    : utf8_(learn("UTF-8")), characters_(learn(charset)) {}

bool charset_check::passes(const std::string &place, std::string_view text) {
    const chunk piece = {text, "UTF-8", text, 0, 0, false, {}};
    const losses found = find_losses(utf8_, piece, characters_, 1);
    for (const loss &each : found.first)
        report(place, each.reason);
    return found.count == 0;
}

line_output::line_output(const std::string &charset) : charset_(learn(charset)), check_(charset) {}

void line_output::put(const std::string &place, const std::string &text) {
    check_.passes(place, text);
    write_out(from_utf8(begun_ ? charset_.unmarked : charset_.name, text + '\n'));
    begun_ = true;
}

std::string on_one_line(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char byte) { return byte == '\n' || byte == '\r'; }, ' ');
    return text;
}

std::string without_controls(std::string_view text) {
    std::string shown;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const bool is_wide_control = byte == 0xC2 && at + 1 < text.size() && (text[at + 1] & 0xE0) == 0x80;
        const bool is_control = (byte < 0x20 && byte != '\t') || byte == 0x7F || is_wide_control;
        shown += is_control ? ' ' : text[at];
        at += is_wide_control ? 1 : 0;
    }
    return shown;
}

} // namespace tool
