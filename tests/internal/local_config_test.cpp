// The remembered answers, the local charset, and the stop at exit.

#include "scratch.h"
#include "support.h"

#include "zel/base/frame.h"
#include "zel/policy/charset_policy.h"
#include "zel/policy/local_config.h"

#include <sys/utsname.h>

#include <map>
#include <sstream>
#include <thread>
#include <vector>

namespace {

using namespace zel;

std::map<std::string, int> remembered_keys() {
    std::map<std::string, int> keys;
    for (const LocalConfigEntry *entry = LocalConfigHead; entry; entry = entry->next)
        ++keys[entry->key.get()];
    return keys;
}

TEST(LocalConfig, remembers_a_key_as_it_was_spelled_and_answers_with_its_first_entry) {
    start_library();
    for (const char *language : {"de", "DE", "xx", "de", "", static_cast<const char *>(nullptr)})
        http_charset(language);
    http_charset(std::string(121, 'l').c_str());
    EXPECT_EQ(remembered_keys(), (std::map<std::string, int>{{"http|de", 1}, {"http|xx", 1}}));
    EXPECT_STREQ(add_localconfig("HTTP|de", "another"), "another");
    EXPECT_STREQ(load_localconfig("HTTP|de"), "iso-8859-1");
    EXPECT_EQ(load_localconfig("http|fr"), nullptr);
    EXPECT_EQ(remembered_keys().size(), 3u);
}

TEST(LocalConfig, gives_eight_threads_the_same_answers_while_it_grows) {
    start_library();
    const auto ask = [](const std::string &own) {
        for (int i = 0; i < 100; ++i)
            for (const std::string &language : {own + std::to_string(i), std::to_string(i)})
                EXPECT_STREQ(http_charset(language.c_str()), "iso-8859-1");
    };
    {
        std::vector<std::jthread> threads;
        for (const char *own : {"a", "b", "c", "d", "e", "f", "g", "h"})
            threads.emplace_back(ask, own);
    }
    EXPECT_EQ(remembered_keys().size(), 900u);
    for (const auto &[key, entries] : remembered_keys())
        EXPECT_LE(entries, 8) << key;
}

std::string local_charset(const std::string &root, const char *lang) {
    lang ? setenv("LANG", lang, 1) : unsetenv("LANG");
    _setupLocalCharEncoding(root.c_str());
    return encLocal;
}

void expect_local_charsets(const std::string &root, const std::string &names) {
    std::istringstream rows(names);
    for (std::string lang, charset; rows >> lang >> charset;)
        EXPECT_EQ(local_charset(root, lang.c_str()), charset) << lang;
}

TEST(LocalCharset, follows_LANG_on_this_system_then_LANG_then_its_language) {
    utsname os = {};
    uname(&os);
    const std::string a128(128, 'a'), name99(99, 'n');
    const custom_bundle bundle(os.sysname + std::string("|{de_DE,} = of-system\n") +
                               "de_DE C i ja_JP.eucJP@x = of-lang\nde is = of-language\n"
                               "b = of-letter\nbr_FR = \\uD800\nbr = behind-broken\nempty =\n" +
                               a128 + " = of-128\nl99 = " + name99 + "\nl100 = " + name99 + "n\n");
    expect_local_charsets(bundle.root(),
                          "de_DE of-system ja_JP.eucJP@x of-lang C of-lang i of-lang de_AT of-language "
                          "it iso-8859-1 is_IS.UTF-8 of-language br_FR behind-broken ja iso-8859-1 " +
                              a128 + " of-128 " + a128 + "b of-128 l99 " + name99 + " l100 iso-8859-1");
    EXPECT_EQ(local_charset(bundle.root(), ""), "of-system");
    EXPECT_EQ(local_charset(bundle.root(), "empty"), "");
    EXPECT_EQ(local_charset(bundle.root(), nullptr), "of-lang");
    expect_local_charsets(DEFAULT_BUNDLE_ROOT,
                          "en_US.UTF-8 UTF-8 C.UTF-8 UTF-8 de_DE.utf8 UTF-8 de_DE iso-8859-1 C iso-8859-1 "
                          "de_DE@euro iso-8859-15 ja_JP.eucJP euc-jp ja_JP.SJIS Shift_JIS zh_TW big5 "
                          "ru_RU.KOI8-R koi8-r hi_IN UTF-8 ca_ES.UTF-8@valencia UTF-8");
}

TEST(LocalCharset, is_the_built_in_one_where_there_is_no_bundle_or_no_room_for_its_path) {
    const custom_bundle bundle("C = koi8-r\n");
    const std::size_t room = 1023 - std::string("/encbylang").size();
    EXPECT_EQ(local_charset("/nowhere", nullptr), "iso-8859-1");
    EXPECT_EQ(local_charset(lengthened(bundle.root(), room), nullptr), "koi8-r");
    for (const std::size_t length : {room + 1, room + 10, room + 11, 9 * room})
        EXPECT_EQ(local_charset(lengthened(bundle.root(), length), nullptr), "iso-8859-1");
}

// Runs behind the library's own exit handler, and tells whether that one has stopped the library.
[[noreturn]] void start_and_exit(const ZELConfig *config) {
    std::atexit([] { _exit(LocalConfigHead.load() ? 1 : 0); });
    ZEL_Initialize("/nowhere", config);
    http_charset("de");
    std::exit(2);
}

TEST(Stop, comes_at_exit_unless_the_host_keeps_it_to_itself) {
    const ZELConfig no_atexit = {.no_atexit = -1}, plain = {};
    EXPECT_EXIT(start_and_exit(&plain), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(start_and_exit(&no_atexit), testing::ExitedWithCode(1), "");
}

} // namespace
