// Tags of any kind, lists of them, and the policies that they choose.

#include "fuzz.h"

#include <cstring>

namespace {

void require_consistent(const char *tag) {
    const LanguageID id = ZEL_GetIntLanguageID(tag), strict = ZEL_GetIntLanguageID_strict(tag);
    require(id >= 1 && id <= 47, "every tag has an id");
    require(strict == id || (strict == -1 && id == 1), "what is in the list is not unknown");
    require(ZEL_GetIntLanguageID_strict(ZEL_GetRFC1766LanguageID(id)) == id, "the tag of an id has that id");
    require(ZEL_IsInternetMessageKnownCharset(tag, "utf-8") == 1, "UTF-8 is admitted everywhere");
    const std::int32_t factor = ZEL_WorstCaseMultiplier(tag, 1, 0);
    require(factor >= 9 && factor <= 21 && ZEL_WorstCaseMultiplier(tag, 0, 1) == 2,
            "a factor is one of the list");
    for (const unsigned char byte : std::initializer_list<unsigned char>{0x61, 0x80, 0xA1, 0xFF})
        require(ZEL_GetOffsetToNextChar(id, "Shift_JIS", byte) <= 1 + ZEL_IsDBCSLanguage(id),
                "a step is 1 or 2");
}

void require_rows(const std::string &list) {
    const auto rows = std::make_unique<char[][18]>(16);
    const std::int32_t count = ZEL_AcceptLangList(terminated(list).data(), rows.get());
    require(count >= 0 && count <= 16, "there are 16 rows");
    std::size_t at = 0;
    for (const char(*row)[18] = rows.get(); row != rows.get() + count; ++row) {
        const std::size_t length = strnlen(*row, 18);
        require(length > 0 && length < 18, "a row is a text of 1 to 17 bytes");
        at = list.find(std::string(*row, length), at);
        require(at != std::string::npos, "the rows are pieces of the list, in its order");
        at += length;
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const char *const known = in.language();
    const std::string text = in.text(), tag = in.line();
    require_consistent(known);
    require_consistent(terminated(tag).data());
    require_rows(text);
    const block locale = terminated(tag);
    char *name = locale.data();
    require(ZEL_NormalizeLocale(&name) == locale.size() - 1, "a locale keeps its length");
    require(name == locale.data() && (tag.size() < 3 || name[2] == (tag[2] == '-' ? '_' : tag[2])),
            "a - becomes a _");
    const block body = terminated(text);
    require(*ZEL_InternetMessageCharset(known, body.data()) && *ZEL_HTTPContentCharset(known) &&
                *ZEL_InternetMessageContentTransferEncoding(known, body.data(), 1),
            "every language has its policy");
    return 0;
}
