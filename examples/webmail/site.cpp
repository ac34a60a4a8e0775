#include "site.h"

#include "files.h"

namespace {

const std::string token = secret(); // in our forms alone

response page(const request &asked, const html &content, unsigned status = 200) {
    const zel::page page = zel::write_page(reader_of(asked).language, content.bytes());
    return {status, {{"Content-Type", "text/html; charset=" + page.charset}}, page.bytes};
}

// Its choice of a language leads home, not back to where nothing is.
response notice(request asked, unsigned status, const std::string &text) {
    asked.path = "/";
    return page(asked, framed(asked, text, html()), status);
}

// What the form of an answer holds before anybody types.
values answer_to(const message &letter, const std::string &name) {
    const std::string &subject = letter.head.subject, &reply_to = letter.headers.at("Reply-To");
    std::string quotation;
    for (const part &part : letter.parts)
        if (part.text)
            quotation += "> " + replaced(*part.text, "\n", "\n> ") + '\n';
    return {{"token", token},
            {"answer", name},
            {"from", letter.receiver},
            {"to", reply_to.empty() ? letter.headers.at("From") : reply_to},
            {"subject", (subject.rfind("Re: ", 0) == 0 ? "" : "Re: ") + subject},
            {"text", quotation}};
}

response send(maildir &letters, const request &asked) {
    values typed;
    for (const auto &[name, field] : asked.form)
        typed[name] = zel::read_body("utf-8", name == "file" ? field.file_name : field.value);
    if (asked.is_refused)
        return notice(asked, 413, "More than 10 MB");
    if (typed["token"] != token)
        return notice(asked, 403, "This form is old");
    if (const auto answered = letters.read(typed["answer"])) {
        message letter = read_message(*answered);
        typed["id"] = letter.headers["Message-ID"];
        typed["references"] = letter.headers["References"];
    }
    const field file = asked.form.count("file") ? asked.form.at("file") : field();
    const std::string said = on_one_line(typed["file"]),
                      name = said.empty() && file.value.size() ? "file" : said;
    try {
        const std::string written =
            write_message(reader_of(asked).language, typed, {name, file.value, {}}, file.type);
        return {303, {{"Location", "/letter?name=" + letters.deliver(written)}}, ""};
    } catch (const std::invalid_argument &address) {
        return page(asked, compose_page(asked, typed, "? " + std::string(address.what())), 422);
    }
}

response show(maildir &letters, const request &asked) {
    const std::string &path = asked.path, answered = asked.said("answer");
    if (path == "/style.css")
        return {200, {{"Content-Type", "text/css; charset=utf-8"}}, style_css};
    if (path == "/zone.js")
        return {200, {{"Content-Type", "text/javascript; charset=utf-8"}}, zone_js};
    if (path == "/")
        return page(asked, list_page(asked, *letters.list()));
    const auto bytes = letters.read(path == "/write" ? answered : asked.said("name"));
    const message letter = read_message(bytes.value_or(""));
    const std::size_t number = std::strtoul(asked.said("number").c_str(), nullptr, 10);
    const values typed = bytes ? answer_to(letter, answered) : values{{"token", token}};
    if (path == "/write")
        return page(asked, compose_page(asked, typed, ""));
    if (bytes && path == "/source")
        return {200, {{"Content-Type", "text/plain"}}, *bytes};
    if (bytes && path == "/letter")
        return page(asked, letter_page(asked, letter));
    if (!bytes || path != "/part" || number >= letter.parts.size())
        return notice(asked, 404, "Nothing is here");
    // A browser opens nothing of a file; the name is in the form of RFC 8187.
    const part &file = letter.parts[number];
    const std::string name =
        beginning(zel::read_body("utf-8", file.name.empty() ? asked.said("number") : file.name), 200);
    return {200,
            {{"Content-Type", "application/octet-stream"},
             {"Content-Disposition", "attachment; filename*=UTF-8''" + percent_encoded(name)}},
            file.bytes};
}

response dispatch(maildir &letters, const request &asked) try {
    if (asked.method == "GET" || asked.method == "HEAD")
        return show(letters, asked);
    return asked.path == "/send" ? send(letters, asked) : notice(asked, 405, "Nothing is sent here");
} catch (const std::exception &error) { // which may name what is nobody's business
    std::fprintf(stderr, "webmail: %s\n", error.what());
    return notice(asked, 500, "This did not work");
}

} // namespace

response answer(maildir &letters, const request &asked) {
    const std::string host = asked.host.substr(0, asked.host.find(':'));
    // Under a name that others give to this address their pages could read the mail. A host that is an IP
    // address cannot be pointed here by somebody else's DNS.
    const bool is_ours = host == "localhost" || host.find_first_not_of("0123456789.") == std::string::npos;
    response answer =
        is_ours ? dispatch(letters, asked)
                : notice(asked, 421, "Open this page as http://127.0.0.1" + asked.host.substr(host.size()));
    answer.headers["Content-Security-Policy"] = "default-src 'none'; style-src 'self'; script-src 'self'; "
                                                "form-action 'self'; base-uri 'none'; frame-ancestors 'none'";
    answer.headers["X-Content-Type-Options"] = "nosniff";
    answer.headers["Referrer-Policy"] = "no-referrer";
    answer.headers["Cache-Control"] = "no-store";
    const bool is_own = asked.site.empty() || asked.site == "same-origin" || asked.site == "none";
    if (is_ours && is_own && asked.query.count("language"))
        answer.headers["Set-Cookie"] =
            "language=" + reader_of(asked).language + "; Path=/; Max-Age=31536000; SameSite=Lax";
    return answer;
}
