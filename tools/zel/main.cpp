// zel: the library for people and for scripts. The command line is here; what the commands do stands in modules of
// their own.
//
// Exit code: 0; 1 where something could not be read, converted or written; 2 for wrong use.

#include "convert.h"
#include "files.h"
#include "report.h"

#include <zel.hpp>

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <iostream>

namespace {

using namespace tool;

constexpr int wrong_use = 2;

std::string not_a_charset(const std::string &name) {
    return !name.empty() && zel::can_convert(name, "UTF-8") ? "" : "there is no charset \"" + name + "\"";
}

void add_convert(CLI::App &app) {
    struct options {
        std::string from, to;
        std::vector<std::string> files = {"-"};
    };
    const auto given = std::make_shared<options>();
    CLI::App *command = app.add_subcommand("convert", "Convert files between charsets");
    command->add_option("-f", given->from)->required()->check(not_a_charset);
    command->add_option("-t", given->to)->required()->check(not_a_charset);
    command->add_option("FILE", given->files);
    command->callback([given] { convert_files(given->from, given->to, given->files); });
}

int run(int argc, char **argv) {
    const zel::library library("");
    CLI::App app("x", "zel");
    app.set_version_flag("--version", "zel 1");
    app.require_subcommand(1);
    add_convert(app);
    try {
        app.parse(argc, argv);
        close_out();
    } catch (const CLI::ParseError &fault) {
        return app.exit(fault) ? wrong_use : 0;
    } catch (const output_error &fault) {
        if (!fault.nobody_reads)
            report("standard output", fault.what());
        return 1;
    }
    return exit_code();
}

} // namespace

int main(int argc, char **argv) {
    return run(argc, argv);
}
