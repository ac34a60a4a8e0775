// Texts that a command is given, and texts that it gives: in by arguments or by the lines of standard input,
// out by lines in a charset that the user chose.
//
// Invariant: each text is taken and given on its own. One that fails is reported with its place, and the next
// has its turn.

#pragma once

#include "charset.h"
#include "losses.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

struct given_text {
    std::string text;
    std::string place; // for reports: "argument 2", "-: line 7"
};

// Runs, and reports a zel::error or file_error.
void attempt(const std::string &place, const std::function<void()> &work);

using text_user = std::function<void(const given_text &)>;

// Calls for each of the arguments or, if there is none, for each line of standard input. A zel::error is
// reported.
void each_text(const std::vector<std::string> &arguments, const text_user &use);

// The same for headers, where a line that begins with a blank goes on with the header before it.
void each_header(const std::vector<std::string> &arguments, const text_user &use);

// Tells what a charset lacks of texts in UTF-8.
class charset_check {
public:
    explicit charset_check(const std::string &charset);

    // Reports what is lost; true if nothing is.
    bool passes(const std::string &place, std::string_view text);

private:
    charset utf8_;
    repertoire characters_;
};

// Texts in UTF-8, as lines in a charset.
class line_output {
public:
    explicit line_output(const std::string &charset);

    // What the charset lacks is reported, and written as its substitute.
    void put(const std::string &place, const std::string &text);

private:
    charset charset_;
    charset_check check_;
    bool begun_ = false;
};

// The text on one line, with a blank for each line break.
std::string on_one_line(std::string text);

// A text in UTF-8 that a terminal can be shown: a blank for each control but TAB, so that nobody's subject
// gives it commands.
std::string without_controls(std::string_view text);

} // namespace tool
