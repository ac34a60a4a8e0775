// The charset names of the library. One spelling serves every comparison and every label that goes into a
// message. Names are compared without regard to case, and aliases are not resolved.

#pragma once

#include <strings.h>

namespace zel {

inline constexpr const char *encUTF8 = "UTF-8";
inline constexpr const char *encMUTF7 = "IMAP-MODIFIED-UTF-7";
inline constexpr const char *encEUNICODE = "ESCAPED_UNICODE";

inline constexpr const char *ianaUSASCII = "us-ascii";
inline constexpr const char *ianaUTF8 = "utf-8";
inline constexpr const char *ianaUTF7 = "utf-7";
inline constexpr const char *ianaISO8859_1 = "iso-8859-1";
inline constexpr const char *ianaISO8859_2 = "iso-8859-2";
inline constexpr const char *ianaISO8859_4 = "iso-8859-4";
inline constexpr const char *ianaISO8859_5 = "iso-8859-5";
inline constexpr const char *ianaISO8859_6 = "iso-8859-6";
inline constexpr const char *ianaISO8859_7 = "iso-8859-7";
inline constexpr const char *ianaISO8859_8 = "iso-8859-8";
inline constexpr const char *ianaISO8859_9 = "iso-8859-9";
inline constexpr const char *ianaISO8859_15 = "iso-8859-15";
inline constexpr const char *ianaISO2022JP = "iso-2022-jp";
inline constexpr const char *ianaSHIFTJIS = "Shift_JIS";
inline constexpr const char *ianaEUCJP = "euc-jp";
inline constexpr const char *ianaEUCKR = "euc-kr";
inline constexpr const char *ianaTIS = "tis-620";
inline constexpr const char *ianaKSC5601 = "ks_c_5601-1987";
inline constexpr const char *ianaISO2022KR = "iso-2022-kr";
inline constexpr const char *ianaGB2312 = "gb2312";
inline constexpr const char *ianaHZ = "hz-gb-2312";
inline constexpr const char *ianaBIG5 = "big5";
inline constexpr const char *ianaWINDOWS1252 = "windows-1252";

// Names of charsets and languages are compared without regard to case. Most differ in their first letter
// already.
inline bool same_name(const char *first, const char *second) {
    return ((*first ^ *second) & ~0x20) == 0 && strcasecmp(first, second) == 0;
}

} // namespace zel
