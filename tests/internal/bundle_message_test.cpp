// Strings of resource bundles and of the host's support library in UTF-8, and the bundle compiler, whose
// bundles are opened here as any program opens them.

#include "scratch.h"
#include "support.h"

#include "zel/policy/bundle_message.h"

#include <bit>

static const char *service_text = nullptr;

// Stands in for the host's support library.
extern "C" const char *service_errstr(int32_t) {
    return service_text;
}

namespace {

std::string message(UResourceBundle *bundle, const char *key) {
    return taken(resourceBundleGetUTF8Message(bundle, key));
}

TEST(BundleMessage, is_the_string_of_the_key_or_null) {
    const custom_bundle files("text = Käse €€€€€€😀\nempty =\nbroken = a\\uD800\n");
    const zel::owned_bundle bundle = zel::open_encbylang(files.root().c_str());
    EXPECT_EQ(message(bundle.get(), "text"), "Käse €€€€€€😀");
    EXPECT_EQ(message(bundle.get(), "empty"), "");
    for (const char *key : {"broken", "missing", "Text", "", static_cast<const char *>(nullptr)})
        EXPECT_EQ(message(bundle.get(), key), "(null)");
    EXPECT_EQ(message(nullptr, "text"), "(null)");
}

TEST(ServiceErrorString, overwrites_one_buffer_and_cuts_at_its_end) {
    start_library();
    service_text = "Zugriff verweigert f\xFCr";
    const char *text = ZEL_ServiceErrorStringInUTF8(13);
    EXPECT_STREQ(text, "Zugriff verweigert für");
    for (const std::size_t length : {1022u, 1023u, 1024u, 5000u}) {
        const std::string long_text(length, 'x');
        service_text = long_text.c_str();
        EXPECT_EQ(ZEL_ServiceErrorStringInUTF8(-1), text);
        EXPECT_EQ(text, long_text.substr(0, 1023));
    }
    service_text = nullptr;
    EXPECT_STREQ(ZEL_ServiceErrorStringInUTF8(0), "");
}

TEST(BundleCompiler, makes_keys_that_icu_finds_whatever_stands_in_them) {
    const custom_bundle files(
        " # nothing\n\n{j,j|a,ja|,ja}{,@euro} mail mail|ja mailA maila mail~ = found\nx=y = z");
    const zel::owned_bundle bundle = zel::open_encbylang(files.root().c_str());
    for (const char *key : {"j", "j|a", "ja|", "ja", "j@euro", "j|a@euro", "ja|@euro", "ja@euro", "mail",
                            "mail|ja", "mailA", "maila", "mail~"})
        EXPECT_EQ(message(bundle.get(), key), "found") << key;
    EXPECT_EQ(message(bundle.get(), "x"), "y = z");
    EXPECT_EQ(message(bundle.get(), "mail|"), "(null)");
}

TEST(BundleCompiler, says_what_is_wrong_and_keeps_the_old_bundle) {
    const custom_bundle files("key = old\n");
    const struct {
        const char *source, *complaint;
    } rows[] = {{"key = new\n\nno equals sign\n", "source.txt:3: no \"=\""},
                {" = new\n", "source.txt:1: no key"},
                {"a b{,,c} = new\n", "source.txt:1: the key b again"},
                {"key = n\"ew\n", "source.txt:1: a quotation mark"},
                {"key = \\u12\n", "genrb failed"}};
    for (const auto &row : rows)
        EXPECT_NE(compile_bundle(row.source, files.root()).find(row.complaint), std::string::npos)
            << row.complaint;
    const zel::owned_bundle bundle = zel::open_encbylang(files.root().c_str());
    EXPECT_EQ(message(bundle.get(), "key"), "old");
}

// ICU can read one of the two here; for the other its head has to do, and that the keys are in it.
TEST(BundleCompiler, writes_the_byte_order_that_is_named) {
    const std::string source = "mail|ja = found\n";
    const custom_bundle usual(source);
    for (const bool is_big : {true, false}) {
        const scratch_directory files;
        ASSERT_EQ(compile_bundle(source, files.path(), is_big ? "--big-endian" : "--little-endian"), "");
        const std::string bytes = read_file(files.path() + "/encbylang/en.res");
        EXPECT_EQ(bytes.at(8), is_big);
        EXPECT_EQ(bytes.substr(2, 2), "\xDA\x27");
        EXPECT_NE(bytes.find(std::string("mail|ja\0", 8)), std::string::npos);
        EXPECT_EQ(bytes == read_file(usual.root() + "/encbylang/en.res"),
                  is_big == (std::endian::native == std::endian::big));
    }
}

} // namespace
