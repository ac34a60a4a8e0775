#include "site.h"

#include "files.h"

#include <glib.h>

html framed(const request &asked, const html &title, const html &content) {
    const reader reader = reader_of(asked);
    html query, languages, choice;
    for (const auto &[name, value] : asked.query)
        if (name != "language")
            query += R"(<input type="hidden" name="{name}" value="{value}">)"_html.with(
                {"name", name, "value", value});
    for (const std::string &language : zel::languages()) {
        languages += R"(<option value="{tag}" lang="{lang}"{chosen}>{name}</option>)"_html.with(
            {"chosen", language == reader.language ? " selected"_html : html()}, words.at(language));
    }
    const values &said = words.at(reader.language);
    if (asked.path != "/write" && asked.path != "/send")
        choice = choice_html.with({"path", asked.path, "query", query, "languages", languages}, said);
    return frame_html.with({"title", title, "choice", choice, "content", content}, said);
}

html list_page(const request &asked, const letter_list &all) {
    constexpr std::size_t length = 50; // of a page
    const reader reader = reader_of(asked);
    const std::string said = asked.said("sort"), key = said == "sender" || said == "subject" ? said : "date";
    std::vector<const letter_list::value_type *> rows;
    for (const auto &letter : all)
        rows.push_back(&letter);
    std::string summary::*column = key == "sender" ? &summary::sender : &summary::subject;
    // By what is shown. Of equals the newest is first.
    std::sort(rows.begin(), rows.end(), [&](auto one, auto other) {
        const summary &mine = *one->second.head, &others = *other->second.head;
        const int order = key == "date" ? 0 : zel::compare(reader.language, mine.*column, others.*column);
        return std::tuple(order, others.time, one->first) < std::tuple(0, mine.time, other->first);
    });
    const std::size_t pages = std::max<std::size_t>(1, (rows.size() + length - 1) / length);
    const std::size_t page =
        std::clamp<std::size_t>(std::strtoul(asked.said("page").c_str(), nullptr, 10), 1, pages);
    html lines;
    for (std::size_t at = (page - 1) * length; at < std::min(page * length, rows.size()); ++at) {
        const auto &[name, letter] = *rows[at];
        lines += line_html.with({"flags", letter.flags, "sender", letter.head->sender, "name",
                                 percent_encoded(name), "title", letter.head->subject, "time",
                                 reader.date(letter.head->time, ""), "kilobytes",
                                 std::to_string(letter.size / 1024 + 1)});
    }
    const html content = list_html.with(
        {"by-sender", key == "sender" ? "ascending" : "none", "by-subject",
         key == "subject" ? "ascending" : "none", "by-date", key == "date" ? "descending" : "none", "sort",
         key, "lines", lines, "page-before", std::to_string(page - 1), "page", std::to_string(page), "pages",
         std::to_string(pages), "page-behind", std::to_string(page + 1)},
        words.at(reader.language));
    return framed(asked, words.at(reader.language).at("mailbox"), content);
}

html letter_page(const request &asked, const message &letter) {
    const reader reader = reader_of(asked);
    const std::string name = percent_encoded(asked.said("name"));
    html texts, files;
    for (std::size_t at = 0; at < letter.parts.size(); ++at) {
        const part &part = letter.parts[at];
        const std::string number = std::to_string(at);
        if (part.text)
            texts += "<pre>\n{text}</pre>\n"_html.with({"text", *part.text});
        if (part.is_file)
            files += file_html.with({"name", name, "number", number, "title",
                                     part.name.empty() ? number : part.name, "kilobytes",
                                     std::to_string(part.bytes.size() / 1024 + 1)});
    }
    const html content = letter_html.with({"sender", letter.headers.at("From"), "receiver",
                                           letter.headers.at("To"), "copy", letter.headers.at("Cc"), "time",
                                           reader.date(letter.head.time, letter.headers.at("Date")), "texts",
                                           texts, "files", files, "name", name},
                                          words.at(reader.language));
    return framed(asked, letter.head.subject, content);
}

html compose_page(const request &asked, values typed, const std::string &complaint) {
    const values &said = words.at(reader_of(asked).language);
    const html content = write_html.with({"complaint", complaint, "token", typed["token"], "answered",
                                          typed["answer"], "sender", typed["from"], "receiver", typed["to"],
                                          "title", typed["subject"], "content", typed["text"]},
                                         said);
    return framed(asked, said.at("write"), content);
}

std::string percent_encoded(const std::string &text) {
    const std::shared_ptr<char> encoded(g_uri_escape_string(text.c_str(), nullptr, false), &g_free);
    return encoded.get();
}
