#include "pages.h"

#include "files.h"
#include "reader.h"

#include <glib.h>

namespace {

// What goes around each page. The choice of a language leads to the same place again.
html framed(const request &asked, const html &title, const html &content) {
    const reader reader = reader_of(asked);
    html query, languages;
    for (const auto &[name, value] : asked.query)
        if (name != "language")
            query += R"(<input type="hidden" name="{name}" value="{value}">)"_html.with(
                {{"name", name}, {"value", value}});
    for (const std::string &language : zel::languages()) {
        const html chosen = language == reader.language ? " selected"_html.with({}) : html();
        languages += R"(<option value="{tag}" lang="{lang}"{chosen}>{name}</option>)"_html.with(
            {{"chosen", chosen}}, words_of(language));
    }
    const std::string path = asked.method == "POST" ? "/write" : asked.path;
    return frame_html.with(
        {{"title", title}, {"path", path}, {"query", query}, {"languages", languages}, {"content", content}},
        words_of(reader.language));
}

std::string kilobytes(std::size_t size) {
    return std::to_string((size + 1023) / 1024);
}

struct row {
    std::string name, sender, subject;
    const letter *mail;
};

// By what is shown. Of equals the newest is first.
void sort_rows(std::vector<row> &rows, const std::string &language, const std::string &key) {
    std::sort(rows.begin(), rows.end(), [&](const row &one, const row &other) {
        const int order = key == "sender"    ? zel::compare(language, one.sender, other.sender)
                          : key == "subject" ? zel::compare(language, one.subject, other.subject)
                                             : 0;
        return std::tuple(order, other.mail->head->time, one.name) <
               std::tuple(0, one.mail->head->time, other.name);
    });
}

} // namespace

html list_page(const request &asked, const letters &all) {
    constexpr std::size_t length = 50; // of a page
    const reader reader = reader_of(asked);
    const std::string said = asked.said("sort"), key = said == "sender" || said == "subject" ? said : "date";
    std::vector<row> rows;
    for (const auto &[name, mail] : all)
        rows.push_back(
            {name, mail.head->sender, mail.head->subject.empty() ? "—" : mail.head->subject, &mail});
    sort_rows(rows, reader.language, key);
    const std::size_t pages = std::max<std::size_t>(1, (rows.size() + length - 1) / length);
    const std::size_t page =
        std::clamp<std::size_t>(std::strtoul(asked.said("page").c_str(), nullptr, 10), 1, pages);
    html lines;
    for (std::size_t at = (page - 1) * length; at < std::min(page * length, rows.size()); ++at)
        lines += line_html.with({{"state", rows[at].mail->is_seen ? "seen" : "new"},
                                 {"sender", rows[at].sender},
                                 {"name", percent_encoded(rows[at].name)},
                                 {"title", rows[at].subject},
                                 {"time", reader.date(rows[at].mail->head->time, "")},
                                 {"kilobytes", kilobytes(rows[at].mail->size)}});
    const html content = list_html.with({{"by-sender", key == "sender" ? "ascending" : "none"},
                                         {"by-subject", key == "subject" ? "ascending" : "none"},
                                         {"by-date", key == "date" ? "descending" : "none"},
                                         {"sort", key},
                                         {"lines", lines},
                                         {"page-before", std::to_string(std::max<std::size_t>(page - 1, 1))},
                                         {"page", std::to_string(page)},
                                         {"pages", std::to_string(pages)},
                                         {"page-behind", std::to_string(std::min(page + 1, pages))}},
                                        words_of(reader.language));
    return framed(asked, words_of(reader.language).at("mailbox"), content);
}

html letter_page(const request &asked, const message &letter) {
    const reader reader = reader_of(asked);
    const std::string name = percent_encoded(asked.said("name"));
    html texts, files;
    for (std::size_t at = 0; at < letter.parts.size(); ++at) {
        const part &part = letter.parts[at];
        const std::string number = std::to_string(at);
        if (part.text)
            texts += "<pre>\n{text}</pre>\n"_html.with({{"text", *part.text}});
        else
            files += file_html.with({{"name", name},
                                     {"number", number},
                                     {"title", part.name.empty() ? number : part.name},
                                     {"kilobytes", kilobytes(part.bytes.size())}});
    }
    const html content = letter_html.with({{"title", letter.head.subject},
                                           {"sender", letter.from},
                                           {"receiver", letter.to},
                                           {"copy", letter.cc},
                                           {"time", reader.date(letter.head.time, letter.date)},
                                           {"texts", texts},
                                           {"files", files},
                                           {"name", name}},
                                          words_of(reader.language));
    return framed(asked, letter.head.subject, content);
}

html compose_page(const request &asked, const draft &typed, const std::string &token,
                  const std::string &complaint) {
    const values &words = words_of(reader_of(asked).language);
    const html content = write_html.with({{"complaint", complaint},
                                          {"token", token},
                                          {"answered", typed.answer},
                                          {"sender", typed.from},
                                          {"receiver", typed.to},
                                          {"title", typed.subject},
                                          {"content", typed.text}},
                                         words);
    return framed(asked, words.at("write"), content);
}

html notice_page(const request &asked, const std::string &notice) {
    return framed(asked, notice, "<h1>{notice}</h1>\n"_html.with({{"notice", notice}}));
}

std::string percent_encoded(const std::string &text) {
    const std::unique_ptr<char, decltype(&g_free)> encoded(g_uri_escape_string(text.c_str(), nullptr, false),
                                                           &g_free);
    return encoded.get();
}
