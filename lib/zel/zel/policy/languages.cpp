// The rows of all languages, and the small services over them: tag to id and back, the text of all tags,
// double-byte stepping, worst-case multipliers, and the splitting of Accept-Language lists. Tables and text
// are derived from the rows at compile time, so nothing here keeps a state.

#include "zel/policy/languages.h"

#include "zel/base/charset_names.h"
#include "zel/base/output.h"

#include <cstring>
#include <string_view>

namespace zel {
namespace {

struct language_row {
    const char *tag;
    language_policy policy;
};

constexpr std::array<const char *, 3> ascii_and(const char *charset, const char *other = nullptr) {
    return {ianaUSASCII, charset, other};
}

constexpr language_policy western{ianaISO8859_15, ianaISO8859_1, ascii_and(ianaISO8859_1, ianaWINDOWS1252),
                                  transfer::by_text};
constexpr language_policy central{ianaISO8859_2, ianaISO8859_2, ascii_and(ianaISO8859_2), transfer::by_text};
constexpr language_policy baltic{ianaISO8859_4, ianaISO8859_1, ascii_and(ianaISO8859_4), transfer::by_text};
constexpr language_policy cyrillic{ianaISO8859_5, ianaISO8859_1, ascii_and(ianaISO8859_5), transfer::by_text};
constexpr language_policy greek{ianaISO8859_7, ianaISO8859_7, ascii_and(ianaISO8859_7), transfer::by_text};
constexpr language_policy turkish{ianaISO8859_9, ianaISO8859_1, ascii_and(ianaISO8859_9),
                                  transfer::seven_bit};
constexpr language_policy arabic{ianaISO8859_6, ianaISO8859_1, ascii_and(ianaISO8859_6), transfer::seven_bit};
constexpr language_policy hebrew{ianaISO8859_8, ianaISO8859_1, ascii_and(ianaISO8859_8), transfer::seven_bit};
constexpr language_policy yiddish{ianaUTF8, ianaISO8859_1, {}, transfer::seven_bit};
constexpr language_policy thai{ianaTIS, ianaISO8859_1, ascii_and(ianaTIS), transfer::seven_bit};
constexpr language_policy in_japan{ianaISO2022JP, ianaSHIFTJIS, ascii_and(ianaISO2022JP),
                                   transfer::seven_bit};
constexpr language_policy in_korea{ianaEUCKR, ianaEUCKR, ascii_and(ianaEUCKR, ianaKSC5601),
                                   transfer::quoted_printable};
constexpr language_policy plain_chinese{ianaGB2312, ianaISO8859_1, ascii_and(ianaGB2312),
                                        transfer::seven_bit};
constexpr language_policy in_china{ianaGB2312, ianaGB2312, ascii_and(ianaGB2312), transfer::quoted_printable};
constexpr language_policy in_taiwan{ianaBIG5, ianaBIG5, ascii_and(ianaBIG5), transfer::quoted_printable};
constexpr language_policy of_no_language{ianaUSASCII, ianaISO8859_1, {}, transfer::seven_bit};

// A language's id is its place here, counted from 1.
constexpr std::array<language_row, 47> langtbl{{
    {"en", western},     {"de", western},      {"fr", western},       {"es", western},
    {"af", western},     {"ca", western},      {"da", western},       {"nl", western},
    {"fi", western},     {"gl", western},      {"ga", western},       {"is", western},
    {"it", western},     {"no", western},      {"pt", western},       {"sv", western},
    {"eu", western},     {"sq", western},      {"cs", central},       {"hu", central},
    {"pl", central},     {"ro", central},      {"hr", central},       {"sk", central},
    {"sl", central},     {"et", baltic},       {"lv", baltic},        {"lt", baltic},
    {"ru", cyrillic},    {"bg", cyrillic},     {"be", cyrillic},      {"sr", cyrillic},
    {"mk", cyrillic},    {"uk", cyrillic},     {"el", greek},         {"tr", turkish},
    {"ar", arabic},      {"he", hebrew},       {"yi", yiddish},       {"th", thai},
    {"ja", in_japan},    {"ko", in_korea},     {"zh", plain_chinese}, {"zh-CN", in_china},
    {"zh_CN", in_china}, {"zh-TW", in_taiwan}, {"zh_TW", in_taiwan},
}};

constexpr LanguageID last_language = static_cast<LanguageID>(langtbl.size());

constexpr bool is_language(LanguageID id) {
    return id >= 1 && id <= last_language;
}

constexpr const char *lang_i_default = "i-default"; // stands for English

constexpr const language_row &row_of(LanguageID id) {
    return langtbl[static_cast<std::size_t>(id - 1)];
}

constexpr std::string_view tag_of(LanguageID id) {
    return row_of(id).tag;
}

static_assert(tag_of(english) == "en" && tag_of(japanese) == "ja" && tag_of(korean) == "ko" &&
              tag_of(chinese) == "zh" && tag_of(chinese_cn) == "zh-CN" &&
              tag_of(chinese_cn_underscored) == "zh_CN" && tag_of(chinese_tw) == "zh-TW" &&
              tag_of(chinese_tw_underscored) == "zh_TW");

// "[en,de,...,zh_TW]" with its terminator.
consteval std::size_t size_of_list() {
    std::size_t size = 2;
    for (const language_row &row : langtbl)
        size += std::string_view(row.tag).size() + 1;
    return size;
}

consteval auto list_of_languages() {
    std::array<char, size_of_list()> list{'['};
    std::size_t at = 1;
    for (const language_row &row : langtbl) {
        for (const char byte : std::string_view(row.tag))
            list[at++] = byte;
        list[at++] = ',';
    }
    list[at - 1] = ']';
    return list;
}

constexpr auto available_languages = list_of_languages();
static_assert(available_languages.size() == 154 + 1);

// A place for the first two letters of a tag, in either case.
constexpr std::size_t places = std::size_t{32} * 32;

constexpr std::size_t place_of(const char *tag) {
    return tag[0] ? (static_cast<std::size_t>(tag[0]) & 31) << 5 | (static_cast<std::size_t>(tag[1]) & 31)
                  : std::size_t{0};
}

// The first row at each place, which spares nearly all comparisons of tags.
constexpr auto first_rows = [] {
    std::array<std::uint8_t, places> rows;
    rows.fill(static_cast<std::uint8_t>(langtbl.size()));
    for (std::size_t row = langtbl.size(); row-- > 0;)
        rows[place_of(langtbl[row].tag)] = static_cast<std::uint8_t>(row);
    return rows;
}();

LanguageID find_tag(const char *language) {
    if (!language)
        return no_language;
    for (std::size_t row = first_rows[place_of(language)]; row < langtbl.size(); ++row)
        if (same_name(language, langtbl[row].tag))
            return static_cast<LanguageID>(row) + 1;
    return no_language;
}

struct multipliers {
    std::int32_t first_flag_alone;
    std::int32_t both_flags;
};

multipliers multipliers_of(LanguageID id) {
    switch (id) {
    case japanese:
        return {16, 5};
    case korean:
    case chinese_cn:
    case chinese_cn_underscored:
        return {10, 4};
    case chinese_tw:
    case chinese_tw_underscored:
        return {9, 4};
    default:
        return {21, 4};
    }
}

constexpr std::int32_t max_accepted = 16;
constexpr std::size_t accepted_capacity = 18;

} // namespace

const language_policy &policy_of(LanguageID id) {
    return is_language(id) ? row_of(id).policy : of_no_language;
}

LanguageID checkLanguage(const char *language) {
    return language && same_name(language, lang_i_default) ? english : find_tag(language);
}

} // namespace zel

using namespace zel;

LanguageID ZEL_GetIntLanguageID(const char *language) {
    const LanguageID id = find_tag(language);
    return id == no_language ? english : id;
}

LanguageID ZEL_GetIntLanguageID_strict(const char *language) {
    return find_tag(language);
}

const char *ZEL_GetRFC1766LanguageID(LanguageID id) {
    return row_of(is_language(id) ? id : english).tag;
}

const char *ZEL_GetAvailableLanguageList(void) {
    return available_languages.data();
}

int32_t ZEL_IsDBCSLanguage(LanguageID id) {
    return id == japanese || id == korean || (id >= chinese_cn && id <= chinese_tw_underscored);
}

int32_t ZEL_GetOffsetToNextChar(LanguageID id, const char *charset, unsigned char byte) {
    if (byte < 0x80 || !ZEL_IsDBCSLanguage(id))
        return 1;
    const bool half_width =
        id == japanese && charset && same_name(charset, ianaSHIFTJIS) && is_hankakukana(byte);
    return half_width ? 1 : 2;
}

int32_t ZEL_WorstCaseMultiplier(const char *language, int32_t first_flag, int32_t second_flag) {
    if (!first_flag)
        return 2;
    const multipliers of = multipliers_of(language ? checkLanguage(language) : japanese);
    return second_flag ? of.both_flags : of.first_flag_alone;
}

int32_t ZEL_AcceptLangList(const char *list, char (*accepted)[accepted_capacity]) {
    std::int32_t filled = 0;
    for (const char *piece = list ? list : "en"; *piece && filled < max_accepted;) {
        const std::size_t len = std::strcspn(piece, ",");
        if (len > 0 && len < accepted_capacity) {
            std::memcpy(accepted[filled], piece, len);
            accepted[filled++][len] = '\0';
        }
        piece += len;
        piece += std::strspn(piece, ",");
    }
    return filled;
}

int32_t ZEL_NormalizeLocale(char **locale) {
    if (!locale || !*locale)
        return 0;
    const std::size_t len = std::strlen(*locale);
    if (len > 2 && (*locale)[2] == '-')
        (*locale)[2] = '_';
    return saturate(len);
}
