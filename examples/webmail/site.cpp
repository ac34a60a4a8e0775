#include "site.h"

#include "files.h"
#include "pages.h"
#include "reader.h"

namespace {

response page(const request &asked, const html &html, unsigned status = 200) {
    const zel::page page = zel::write_page(reader_of(asked).language, html.bytes());
    return {status, {{"Content-Type", "text/html; charset=" + page.charset}}, page.bytes};
}

response notice(const request &asked, unsigned status, const std::string &text) {
    return page(asked, notice_page(asked, text), status);
}

// A browser opens nothing of it; its name is in the form of RFC 8187.
response download(const part &part, const std::string &number) {
    const std::string name = percent_encoded(zel::read_body("utf-8", part.name.empty() ? number : part.name));
    return {200,
            {{"Content-Type", "application/octet-stream"},
             {"Content-Disposition", "attachment; filename*=UTF-8''" + name}},
            part.bytes};
}

// What the form of an answer holds before anybody types.
draft answer_to(const message &letter, const std::string &name) {
    const std::string &subject = letter.head.subject;
    draft answer = {"", letter.to, letter.answer_to, (subject.rfind("Re: ", 0) == 0 ? "" : "Re: ") + subject};
    answer.answer = name;
    for (const part &part : letter.parts) {
        std::istringstream lines(part.text.value_or(""));
        for (std::string line; std::getline(lines, line);)
            answer.text += "> " + line + '\n';
    }
    return answer;
}

draft draft_of(const request &asked) {
    std::map<std::string, field> form = asked.form;
    const auto typed = [&](const char *name) { return zel::read_body("utf-8", form[name].value); };
    draft draft = {reader_of(asked).language, typed("from"), typed("to"), typed("subject"), typed("text")};
    draft.file_name = on_one_line(zel::read_body("utf-8", form["file"].file_name));
    draft.file_type = form["file"].type;
    draft.file = form["file"].value;
    draft.answer = typed("answer");
    return draft;
}

} // namespace

response site::send(const request &asked) {
    if (asked.is_too_large)
        return notice(asked, 413, "More than 10 MB");
    const auto token = asked.form.find("token");
    if (token == asked.form.end() || token->second.value != token_)
        return notice(asked, 403, "This form is not of this mailbox");
    draft draft = draft_of(asked);
    if (const auto answered = letters_.read(draft.answer)) {
        const message letter = read_message(*answered);
        draft.answered = letter.id;
        draft.references = letter.references;
    }
    try {
        return {303, {{"Location", "/letter?name=" + letters_.deliver(written(draft))}}, ""};
    } catch (const std::invalid_argument &address) {
        return page(asked, compose_page(asked, draft, token_, std::string("? ") + address.what()), 422);
    }
}

response site::show(const request &asked) {
    const std::string &path = asked.path, name = asked.said("name");
    const bool is_answer = path == "/write" && !asked.said("answer").empty();
    if (path == "/")
        return page(asked, list_page(asked, *letters_.list()));
    if (path == "/write" && !is_answer)
        return page(asked, compose_page(asked, {}, token_, ""));
    const auto bytes = letters_.read(is_answer ? asked.said("answer") : name);
    if (bytes && path == "/source")
        return {200, {{"Content-Type", "text/plain"}}, *bytes};
    const message letter = read_message(bytes.value_or(""));
    const std::size_t number = std::strtoul(asked.said("number").c_str(), nullptr, 10);
    if (bytes && is_answer)
        return page(asked, compose_page(asked, answer_to(letter, asked.said("answer")), token_, ""));
    if (bytes && path == "/letter")
        return page(asked, letter_page(asked, letter));
    if (bytes && path == "/part" && number < letter.parts.size())
        return download(letter.parts[number], asked.said("number"));
    return notice(asked, 404, "Nothing is here");
}

response site::find(const request &asked) {
    const std::string host = asked.host.substr(0, asked.host.find(':'));
    if (!hosts_.empty() && std::find(hosts_.begin(), hosts_.end(), host) == hosts_.end())
        return notice(asked, 421,
                      "This mailbox has another name"); // which somebody else has given to its address
    if (asked.method == "POST" && asked.path == "/send")
        return send(asked);
    if (asked.method != "GET" && asked.method != "HEAD")
        return notice(asked, 405, "There is nothing to send here");
    if (asked.path == "/style.css")
        return {200, {{"Content-Type", "text/css"}}, style_css};
    if (asked.path == "/zone.js")
        return {200, {{"Content-Type", "text/javascript"}}, zone_js};
    return show(asked);
}

response site::answer(const request &asked) {
    response answer = find(asked);
    answer.headers.merge(
        values{{"Content-Security-Policy", "default-src 'none'; style-src 'self'; script-src 'self'; "
                                           "form-action 'self'; base-uri 'none'; frame-ancestors 'none'"},
               {"X-Content-Type-Options", "nosniff"},
               {"Referrer-Policy", "no-referrer"},
               {"Cache-Control", "no-store"}});
    if (asked.query.count("language"))
        answer.headers["Set-Cookie"] =
            "language=" + reader_of(asked).language + "; Path=/; Max-Age=31536000; SameSite=Lax";
    return answer;
}
