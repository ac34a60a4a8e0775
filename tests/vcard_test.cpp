// vCard values: quoted-printable in the web charset of the language.

#include "support.h"

namespace {

std::string value(const char *language, const char *from_charset, const std::string &text) {
    const exact_buffer from = exact_string(text);
    return taken(ZEL_LocalToVCard21(language, from_charset, from.data()));
}

TEST(VCard, values_are_quoted_printable_in_the_web_charset_of_the_language) {
    start_library();
    const struct {
        const char *language, *from_charset;
        std::string text, value;
    } rows[] = {{"JA", "UTF-8", "日x", "=93=FAx"},
                {nullptr, "UTF-8", "é", "=E9"},
                {"", "iso-8859-1", "\xE9 \nb", "=E9 =\r\n\r\nb"},
                {"zh-TW", "gb2312", "\xD6\xD0", "=A4=A4"},
                {"en", "us-ascii", "=", "=3D"}};
    for (const auto &row : rows)
        EXPECT_EQ(value(row.language, row.from_charset, row.text), row.value);
    EXPECT_EQ(value(std::string(121, 'l').c_str(), "UTF-8", "é"), "=E9");
}

TEST(VCard, what_cannot_be_converted_is_copied_as_it_is) {
    EXPECT_EQ(ZEL_LocalToVCard21("en", "UTF-8", nullptr), nullptr);
    EXPECT_EQ(value("en", "UTF-8", ""), "");
    for (const char *charset : {"", static_cast<const char *>(nullptr)})
        EXPECT_EQ(value("en", charset, "a="), "a=");
    EXPECT_DEATH(value("en", "UTF-8", "x"), "gf_ZELStatus != ZEL_STATUS_NOT_INITIALIZED");
    start_library();
    EXPECT_EQ(value("en", "nonsense", "a=\xE9"), "a=\xE9");
    gf_ZELStatus = ZEL_STATUS_PASSTHROUGH;
    EXPECT_EQ(value("ja", "UTF-8", "é"), "=C3=A9");
}

} // namespace
