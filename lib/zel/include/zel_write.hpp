/**
 * @file zel_write.hpp
 * Writers of what every reader understands; zel.hpp includes this. Text goes out in the mail charset of its
 * language where that holds all of it and the decoders of the world agree on it, and in UTF-8 elsewhere. Nothing
 * is lost and no label lies.
 */

#ifndef ZEL_WRITE_HPP
#define ZEL_WRITE_HPP

#include "zel_read.hpp"

namespace zel {
inline namespace face {

/** @cond */
namespace detail {

struct charset_dispute {
    std::string_view charset;
    std::string_view characters;
};

/* Characters of which the decoders of ICU, Windows, glibc and Python make different ones. */
inline constexpr charset_dispute disputes[] = {
    {"tis-620", "–—‘’“”•…€"},
    {"iso-2022-jp", "№℡ⅠⅡⅢⅣⅤⅥⅦⅧⅨⅩ∑∟∥∮⊿①②③④⑤⑥⑦⑧⑨⑩⑪⑫⑬⑭⑮⑯⑰⑱⑲⑳〝〟㈱㈲㈹㊤㊥㊦㊧㊨㌃㌍㌔㌘㌢㌣㌦㌧㌫㌶㌻㍉㍊㍍㍑㍗㍻㍼㍽㍾㎎㎏㎜㎝㎞㎡㏄㏍－～￠￡￢"},
    {"euc-kr", "ㅤ"},
    {"gb2312", "´‐―‥℡ⅰⅱⅲⅳⅴⅵⅶⅷⅸⅹ▼▽〆〇〒゛゜ゝゞ・ーヽヾ㈱＇￢￤"},
    {"big5", "¯‧€∕⊕⊙═║╒╓╔╕╖╗╘╙╚╛╜╝╞╟╠╡╢╣╤╥╦╧╨╩╪╫╬▓墻嫺恒碁粧裏銹﹑﹨～￠￡￥"},
};

constexpr std::size_t longest_line = 76;
constexpr std::size_t longest_word = 75;

constexpr bool is_continuation(char byte) {
    return (byte & 0xC0) == 0x80;
}

/* The characters of `text` from `at` on: where each of the first `count` ends. */
inline std::vector<std::size_t> character_ends(std::string_view text, std::size_t at, std::size_t count) {
    std::vector<std::size_t> ends;
    while (at < text.size() && ends.size() < count) {
        for (++at; at < text.size() && is_continuation(text[at]);)
            ++at;
        ends.push_back(at);
    }
    return ends;
}
