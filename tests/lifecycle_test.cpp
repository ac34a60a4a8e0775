// Start, stop, and the table of localisation directories, as a host sees them.

#include "scratch.h"
#include "support.h"

namespace {

// A server's directory with localisation directories beside it.
struct server_tree {
    explicit server_tree(std::initializer_list<std::string> languages) {
        std::filesystem::create_directories(svrroot);
        for (const std::string &language : languages)
            std::filesystem::create_directories(html + language);
    }
    const scratch_directory directory;
    const std::string svrroot = directory.path() + "/server", html = directory.path() + "/lib/html/";
};

TEST(Lifecycle, the_header_tells_the_version_of_the_project) {
    EXPECT_STREQ(ZEL_VERSION, VERSION_OF_PROJECT);
    EXPECT_EQ(ZEL_VERSION, std::to_string(ZEL_VERSION_MAJOR) + "." + std::to_string(ZEL_VERSION_MINOR) + "." +
                               std::to_string(ZEL_VERSION_PATCH));
}

TEST(Lifecycle, calls_that_break_the_contract_stop_the_process) {
    const ZELConfig no_path = {};
    const char *no_root = "init: .*svrroot && \\*svrroot";
    EXPECT_DEATH(ZEL_Initialize(nullptr, nullptr), no_root);
    EXPECT_DEATH(ZEL_Initialize("", &no_path), no_root);
    EXPECT_DEATH(ZEL_HTTPContentCharset("de"), "zel: .*gf_ZELStatus != ZEL_STATUS_NOT_INITIALIZED");
}

TEST(Lifecycle, only_the_first_start_changes_anything) {
    const server_tree first({"de"}), second({"fr"});
    const ZELConfig passing = {.pass_8bit = 7, .no_atexit = 1}, stopping = {};
    EXPECT_EQ(ZEL_Initialize(first.svrroot.c_str(), &passing), 0);
    EXPECT_EQ(ZEL_Initialize(second.svrroot.c_str(), &stopping), 0);
    EXPECT_EQ(ZEL_Initialize(nullptr, nullptr), 0);
    EXPECT_EQ(g_zelconf.pass_8bit, 7);
    EXPECT_STREQ(check_l10n_dir("de"), "de");
    EXPECT_EQ(check_l10n_dir("fr"), nullptr);
    ZEL_Terminate();
    EXPECT_EQ(gf_ZELStatus, ZEL_STATUS_INITIALIZED);
}

TEST(Lifecycle, a_status_that_is_there_before_the_start_keeps_the_library_from_starting) {
    gf_ZELStatus = ZEL_STATUS_PASSTHROUGH;
    EXPECT_EQ(ZEL_Initialize("/nowhere", nullptr), 0);
    EXPECT_EQ(gf_ZELStatus, ZEL_STATUS_PASSTHROUGH);
    EXPECT_EQ(localconfig_lock, nullptr);
}

TEST(L10nDirectories, are_the_directories_beside_the_server_in_their_own_spelling) {
    const server_tree tree({"de", "ja_JP"});
    std::ofstream(tree.html + "fr") << "a file";
    EXPECT_EQ(check_l10n_dir("de"), nullptr);
    init_Dirs(tree.svrroot.c_str());
    EXPECT_STREQ(check_l10n_dir("JA_jp"), "ja_JP");
    EXPECT_STREQ(check_l10n_dir("de"), "de");
    for (const char *name : {"fr", "d", "..", "", static_cast<const char *>(nullptr)})
        EXPECT_EQ(check_l10n_dir(name), nullptr);
}

TEST(L10nDirectories, are_left_out_where_there_is_no_room_for_them_or_a_hundred_are_there) {
    const server_tree tree({"de", "deu"});
    const std::size_t room = 1023 - std::string("/../lib/html/de").size();
    init_Dirs(lengthened(tree.svrroot, room).c_str());
    EXPECT_STREQ(check_l10n_dir("de"), "de");
    EXPECT_EQ(check_l10n_dir("deu"), nullptr);
    for (const std::string &root : {lengthened(tree.svrroot, 3000), std::string()}) {
        free_Dirs();
        init_Dirs(root.empty() ? nullptr : root.c_str());
        EXPECT_EQ(check_l10n_dir("de"), nullptr);
    }
    for (int number = 100; number < 203; ++number)
        std::filesystem::create_directories(tree.html + std::to_string(number));
    init_Dirs(tree.svrroot.c_str());
    int found = !!check_l10n_dir("de") + !!check_l10n_dir("deu");
    for (int number = 100; number < 203; ++number)
        found += check_l10n_dir(std::to_string(number).c_str()) != nullptr;
    EXPECT_EQ(found, 100);
}

} // namespace
