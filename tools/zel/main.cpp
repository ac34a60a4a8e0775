// zel, the library for people and scripts: the command line. What the commands do stands in convert, mail and
// locales.
//
// Exit code: 0; 1 where something could not be read, converted or written, which is said on stderr; 2 for
// wrong use.

#include "convert.h"
#include "files.h"
#include "locales.h"
#include "mail.h"
#include "report.h"

#include <zel.hpp>

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <filesystem>

namespace {

constexpr int failed = 1, wrong_use = 2;
constexpr const char *version = "zel " ZEL_VERSION;

// What is given on the command line; each command takes what it knows.
struct options {
    std::string from_charset, to_charset = "UTF-8", charset = "UTF-8";
    std::string language, locale, zone, name;
    std::vector<std::string> files = {"-"}, texts;
    std::vector<std::int32_t> times = {0};
    bool headers = false;
};

std::string charset_fault(const std::string &name) {
    const bool known = !name.empty() && zel::can_convert(name, "UTF-8");
    return known ? "" : "there is no charset \"" + name + "\"";
}

// What mailers call charsets is more than what ICU does.
std::string label_fault(const std::string &name) {
    return zel::known_charset(name) ? "" : charset_fault(name);
}

std::string language_fault(const std::string &tag) {
    return zel::language_id(tag) ? "" : "there is no language \"" + tag + "\"; zel languages lists them";
}

CLI::App *add_command(CLI::App &app, const char *name, const char *purpose, std::function<void()> work) {
    CLI::App *command = app.add_subcommand(name, purpose);
    command->set_version_flag("--version", version);
    command->callback(std::move(work));
    return command;
}

CLI::Option *add_charset(CLI::App *command, const char *name, std::string &charset, const char *purpose) {
    return command->add_option(name, charset, purpose)->type_name("CHARSET")->check(charset_fault);
}

CLI::Option *add_target(CLI::App *command, options &given) {
    return add_charset(command, "-t", given.to_charset, "charset of the output (UTF-8)");
}

CLI::Option *add_language(CLI::App *command, options &given, const char *purpose) {
    return command->add_option("-l", given.language, purpose)->type_name("LANGUAGE")->check(language_fault);
}

void add_texts(CLI::App *command, const char *name, options &given) {
    command->add_option(name, given.texts, "the lines of standard input if there is none")->type_name("");
}

void add_conversion(CLI::App &app, options &given) {
    CLI::App *convert = add_command(app, "convert", "Convert files between charsets", [&] {
        tool::convert_files(given.from_charset, given.to_charset, given.files);
    });
    add_charset(convert, "-f", given.from_charset, "charset of the files")->required();
    add_charset(convert, "-t", given.to_charset, "charset of the output")->required();
    convert->add_option("FILE", given.files, "standard input if there is none, and for -")->type_name("");

    CLI::App *repair = add_command(app, "repair", "Put a ? for each byte that breaks double-byte text",
                                   [&] { tool::repair(given.charset); });
    add_charset(repair, "-c", given.charset, "charset of standard input")->required();
}

void add_headers(CLI::App &app, options &given) {
    CLI::App *decode = add_command(app, "decode-header", "Read header values", [&] {
        tool::decode_headers(given.language, given.to_charset, given.texts);
    });
    add_language(decode, given, "read as a host in the language would, not words in any charset");
    add_target(decode, given);
    add_texts(decode, "VALUE", given);

    CLI::App *encode = add_command(app, "encode-header", "Write header values",
                                   [&] { tool::encode_headers(given.language, given.texts); });
    add_language(encode, given, "write as a host in the language would, not for every reader");
    add_texts(encode, "VALUE", given);
}

void add_parameters(CLI::App &app, options &given) {
    CLI::App *decode = add_command(app, "decode-parameter", "Read the parameters of header values",
                                   [&] { tool::decode_parameters(given.to_charset, given.texts); });
    add_target(decode, given);
    add_texts(decode, "VALUE", given);

    CLI::App *encode = add_command(app, "encode-parameter", "Write a parameter",
                                   [&] { tool::encode_parameters(given.language, given.name, given.texts); });
    add_language(encode, given, "language of the value")->required();
    encode->add_option("NAME", given.name, "as in filename")->type_name("")->required();
    add_texts(encode, "VALUE", given);
}

void add_bodies(CLI::App &app, options &given) {
    CLI::App *decode = add_command(app, "decode-body", "Read a body whose transfer encoding is undone", [&] {
        tool::decode_body(given.language, given.charset, given.to_charset);
    });
    decode->add_option("-c", given.charset, "charset of standard input")
        ->type_name("CHARSET")
        ->check(label_fault)
        ->required();
    add_language(decode, given, "read as a host in the language would");
    add_target(decode, given);

    CLI::App *encode = add_command(app, "encode-body", "Write a body with the header fields that tell of it",
                                   [&] { tool::encode_body(given.language); });
    add_language(encode, given, "language of standard input")->required();
}

void add_names(CLI::App &app, options &given) {
    CLI::App *decode = add_command(app, "decode-mailbox", "Read names of IMAP mailboxes",
                                   [&] { tool::decode_mailboxes(given.to_charset, given.texts); });
    add_target(decode, given);
    add_texts(decode, "NAME", given);

    CLI::App *encode = add_command(app, "encode-mailbox", "Write names of IMAP mailboxes",
                                   [&] { tool::encode_mailboxes(given.texts); });
    add_texts(encode, "NAME", given);

    CLI::App *vcard = add_command(app, "vcard", "Write values of vCard 2.1",
                                  [&] { tool::write_vcards(given.language, given.texts); });
    add_language(vcard, given, "language of the values")->required();
    add_texts(vcard, "VALUE", given);
}

void add_locales(CLI::App &app, options &given) {
    const auto add_locale = [&](CLI::App *command) {
        command->add_option("-l", given.locale, "as in de_AT (that of the environment)")->type_name("LOCALE");
    };
    CLI::App *date = add_command(app, "date", "Write dates in the words of a locale", [&] {
        tool::write_dates(given.locale, given.zone, given.to_charset, given.times);
    });
    add_locale(date);
    date->add_option("-z", given.zone, "as in Asia/Tokyo (GMT)")->type_name("ZONE");
    add_target(date, given);
    date->add_option("SECONDS", given.times, "since 1970 began; now if there is none, and for 0")
        ->type_name("");

    CLI::App *sort = add_command(app, "sort", "Sort lines as a reader of the locale does",
                                 [&] { tool::sort_lines(given.locale, given.charset, given.headers); });
    add_locale(sort);
    add_charset(sort, "-c", given.charset, "charset of the lines (UTF-8)");
    sort->add_flag("--headers", given.headers, "sort header values by what they say");

    add_command(app, "languages",
                "List languages: mail charset, web charset, transfer encoding, admitted charsets",
                tool::list_languages);
}

// The bundle that was installed with the program, or the one of the user's choice.
std::string bundles_path() {
    std::error_code none;
    if (const char *chosen = std::getenv("ZEL_BUNDLES"))
        return std::filesystem::absolute(chosen, none);
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", none);
    return program.parent_path() / ZEL_BUNDLES_FROM_PROGRAM;
}

int run(int argc, char **argv) {
    const zel::library library(bundles_path());
    options given;
    CLI::App app("Charsets and mail: conversion, header fields, bodies, names, dates, order.", "zel");
    app.set_version_flag("--version", version);
    app.require_subcommand(1);
    app.failure_message([](const CLI::App *, const CLI::Error &fault) {
        return std::string("zel: ") + fault.what() + "\nzel -h and zel COMMAND -h tell more.\n";
    });
    for (const auto add : {add_conversion, add_headers, add_parameters, add_bodies, add_names, add_locales})
        add(app, given);
    try {
        app.parse(argc, argv);
        tool::close_out();
    } catch (const CLI::ParseError &fault) {
        const bool asked_for_help = app.exit(fault) == 0;
        tool::close_out();
        return asked_for_help ? 0 : wrong_use;
    }
    return tool::exit_code();
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const tool::output_error &fault) {
        if (!fault.nobody_reads)
            tool::report("standard output", fault.what());
    } catch (const std::bad_alloc &) {
        tool::report("memory", "there is too little of it");
    } catch (const std::exception &fault) {
        tool::report("-", fault.what());
    }
    return failed;
}
