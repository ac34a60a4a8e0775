/**
 * @file zel.h
 * libzel: charsets and message encoding for mail and messaging servers.
 *
 * **Threads.** ZEL_Initialize() runs before any other thread enters the library, ZEL_Terminate() after the
 * last has left it. In between any thread calls any function at any time, with no lock of its own:
 * conversions of one pair of charsets run side by side. A text that a function writes to ("Writes" below)
 * belongs to that call as long as it lasts. ZEL_ServiceErrorStringInUTF8() alone has one buffer.
 *
 * **After fork()** a child that was forked while another thread was inside the library may only call exec()
 * or _exit(): a lock that this thread held is never released in the child. Where no thread was inside, parent
 * and child both go on, each with a library of its own.
 *
 * **After ZEL_Terminate()** it is undefined to call it again, to call check_l10n_dir(),
 * ZEL_ServiceErrorStringInUTF8() or any function that stops before the start, and to read a string that
 * belongs to the library. No assertion tells, as ::gf_ZELStatus stays what it is. ZEL_Initialize() changes
 * nothing then, and all other functions answer as before.
 *
 * **Text.** A text is a NUL-terminated byte string unless it comes with a length. Lengths, sizes and flags
 * are 32-bit integers; a flag is false for 0 and true for any other value. Lines of
 * wire text end in CR LF.
 *
 * **Charsets** are named as ICU's converters name them, and reach ICU unchanged. Names are compared without
 * regard to case and aliases are not resolved: "latin1" and "iso-8859-1" are two charsets, and converting
 * between them is work. Two names are served beyond those of ICU: "IMAP-MODIFIED-UTF-7" (mailbox names, RFC
 * 3501 section 5.1.3) and "ESCAPED_UNICODE" (US-ASCII, in which any other character is a backslash, "u" and
 * four hexadecimal digits). Where the local charset is said to stand in for a null, it is the one that
 * ZEL_Initialize() settled.
 *
 * **Languages** are tags in the manner of RFC 1766: the 47 of ZEL_GetAvailableLanguageList(), in any case,
 * and "i-default" for English. A tag counts as a whole: "en-US" is none of them. What is no language of the
 * list, a null and an empty tag included, is called unknown below.
 *
 * **Sizes.** Functions that fill a buffer are called twice. A negative `to_size` asks for the size that the
 * result may take and writes nothing; the second call, with that size, does the work:
 *
 *     int32_t size = ZEL_UTF8ToInternetMessageHeader(language, subject, NULL, -1) + 1;
 *     char *line = malloc(size);
 *     ZEL_UTF8ToInternetMessageHeader(language, subject, line, size);
 *
 * A size counts the terminator unless its function says that it does not, so one byte more is right
 * everywhere. The length that the second call returns never counts it. Whatever `to_size` is, nothing is
 * written past it, unless a function says so: an output that meets the end stops behind the last whole unit
 * (an encoded word, a percent triple, a quoted-printable triple) and is terminated. Sizes that no 32-bit
 * integer holds are given as the largest one.
 *
 * **Overlap.** The text and the buffer for the result are two blocks of memory, unless a function says that
 * one may serve as both. Where they overlap all the same, the result is undefined, but nothing outside of the
 * two is read or written.
 *
 * **Failures.** Conversions do not report errors. What ICU cannot convert comes back as a copy of the input;
 * a character that the target charset lacks, and a byte sequence that the source charset does not allow, come
 * out as ICU's substitute. Who must know beforehand asks ZEL_EncodingConverterExists(). Memory that runs out
 * gives the function's failure result too.
 *
 * **Memory.** A string that a function says is the caller's is released with ZEL_Free(). All other strings
 * belong to the library, and stay as they are until ZEL_Terminate().
 *
 * **Status.** Functions marked "Stops: before the start" print an assertion to stderr and abort the process
 * when ::gf_ZELStatus is ::ZEL_STATUS_NOT_INITIALIZED. When the host has stored ::ZEL_STATUS_PASSTHROUGH into
 * that word, conversions hand back their input: buffers and strings as copies, sizes as the length plus one.
 * Message functions then still frame, fold and transfer-encode, but what they hold are the bytes they were
 * given. The direct converters do not read the word.
 */

#ifndef ZEL_H
#define ZEL_H

#include <stdint.h>

/**
 * @defgroup zel_version Version
 * Of this header. A library with a greater minor number does all that it says.
 * @{
 */

#define ZEL_VERSION_MAJOR 1 /**< raised when hosts have to change */
#define ZEL_VERSION_MINOR 0 /**< raised for what is new */
#define ZEL_VERSION_PATCH 0 /**< raised for what is mended */
#define ZEL_VERSION "1.0.0" /**< the three numbers */

/** @} */

/** Marks what the library exports. */
#if defined(__GNUC__)
#define ZEL_API __attribute__((visibility("default")))
#else
#define ZEL_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

struct UResourceBundle; /* of ICU */
struct PRRWLock;        /* of NSPR */

/**
 * @defgroup zel_lifecycle Start and stop
 * A process starts the library once and for all: it cannot be started again after it was stopped.
 * @{
 */

#define ZEL_STATUS_NOT_INITIALIZED 0 /**< before ZEL_Initialize() */
#define ZEL_STATUS_INITIALIZED 1     /**< normal work; stays so after ZEL_Terminate() */
#define ZEL_STATUS_PASSTHROUGH 2     /**< conversions hand back their input; stored by the host alone */

/**
 * The status word. The host may store ::ZEL_STATUS_PASSTHROUGH or ::ZEL_STATUS_INITIALIZED into it once
 * ZEL_Initialize() has returned.
 */
ZEL_API extern int32_t gf_ZELStatus;

/** What a host may settle at the start. It is read by ZEL_Initialize() and not kept. */
typedef struct ZELConfig {
    int32_t pass_8bit; /**< a stray byte of 0x80 or above in 7-bit text is kept; if 0 it becomes "?" */
    int32_t no_atexit; /**< the host calls ZEL_Terminate() itself; if 0 it runs when the process exits */
    uint32_t reserved; /**< not read */
    const char *bundles_path; /**< directory of the bundle "encbylang"; null: the server root, "" is a path */
} ZELConfig;

/** The settings in force. `pass_8bit` alone is kept here, for hosts to read. */
ZEL_API extern ZELConfig g_zelconf;

/**
 * Starts the library: settles the local charset from the environment variable LANG by way of the bundle
 * "encbylang" ("iso-8859-1" if it has no answer), and lists the localisation directories
 * `svrroot`/../lib/html/. A call after the first changes nothing. ICU finds a bundle under a relative path
 * only where that begins with "./" or "../".
 *
 * @param svrroot the server's root directory; may be null or empty where `bundles_path` is given
 * @param config settings; null for all zero
 * @return 0, always: a bundle or a directory that is missing is no error
 *
 * - Stops: without `svrroot` and without `bundles_path`.
 */
ZEL_API int32_t ZEL_Initialize(const char *svrroot, const ZELConfig *config);

/**
 * Stops the library for good and releases all that it holds. Nothing that needs a started library may be
 * called afterwards. To be called once by hosts that set `no_atexit`, and by no others.
 */
ZEL_API void ZEL_Terminate(void);

/** Releases a string that the library handed over. A null is nothing to release. */
ZEL_API void ZEL_Free(void *ptr);

/**
 * Looks for a localisation directory.
 *
 * @param name name of a subdirectory, in any case; null gives null
 * @return its name as it is spelled on disk, or null if there is none; of several the first that was listed
 */
ZEL_API const char *check_l10n_dir(const char *name);

/** @} */

/**
 * @defgroup zel_conversion Conversion between charsets
 * ICU does the work, through UTF-16, with its default treatment of what cannot be converted. Between "big5"
 * and "gb2312" the direct converters big2gb() and gb2big5() do it.
 * @{
 */

/**
 * Tells whether text can be converted between two charsets.
 *
 * @param from_charset,to_charset names; not null
 * @return 1 if ICU has converters for both, else 0
 *
 * - Stops: before the start.
 */
ZEL_API int32_t ZEL_EncodingConverterExists(const char *from_charset, const char *to_charset);

/**
 * Tells how large a buffer ZEL_ConvertBuffer() should have. Note the order of arguments: the buffer first.
 *
 * @param from_buf the text; not null
 * @param from_len its bytes; negative: up to the NUL
 * @param from_charset,to_charset names; not null
 * @return bytes for the result with its terminator, at least 1: as many characters as the text can hold, each
 *   of the target's largest size, plus 1; fixed factors for the pairs of Japanese and Korean charsets that
 *   have a direct converter; the length plus 1 where nothing is converted or no converter exists. An
 *   estimate: what does not fit all the same comes out as a copy of the input
 *
 * - Stops: before the start; on a null `from_buf`.
 */
ZEL_API int32_t ZEL_GetResultBufferSize(const char *from_buf, int32_t from_len, const char *from_charset,
                                        const char *to_charset);

/**
 * Converts a buffer. A `from_len` of 0, equal charsets and ::ZEL_STATUS_PASSTHROUGH give a copy of the input.
 *
 * @param from_charset,to_charset names; not null
 * @param from_buf the text; may hold NUL bytes
 * @param from_len its bytes; negative: up to the NUL
 * @param[out] to_buf the converted text. ICU may fill it to the last byte, and then there is no terminator:
 *   go by the length, or give a byte more than ZEL_GetResultBufferSize() asks for. It may be `from_buf`, but
 *   what does not fit then leaves no text to copy
 * @param to_size size of `to_buf`, from ZEL_GetResultBufferSize(); no size is asked for here
 * @return the length of the result; 0 with `to_buf` untouched if ICU has no converter for the pair
 *
 * - Fails: with a terminated copy of the input, also when the result does not fit; the copy is cut at
 *   `to_size`.
 * - Stops: before the start.
 */
ZEL_API int32_t ZEL_ConvertBuffer(const char *from_charset, const char *to_charset, const char *from_buf,
                                  int32_t from_len, char *to_buf, int32_t to_size);

/**
 * Converts a list of texts, each on its own.
 *
 * @param from_charset,to_charset names; not null
 * @param from_bufs `count` texts, each of which may be null; if the array is null nothing is done
 * @param count number of texts; if below 1 nothing is done
 * @param[out] to_bufs `count` results, null where the text is; if the array is null nothing is done
 *
 * - Fails: a text that cannot be converted comes back as a copy; null where there is no memory.
 * - Owns: each result is the caller's.
 * - Stops: before the start, at the first text.
 */
ZEL_API void ZEL_ConvertBufferArray(const char *from_charset, const char *to_charset,
                                    const char *const *from_bufs, int32_t count, char **to_bufs);

/**
 * Converts a text into a new string.
 *
 * @param text the text; null gives null, an empty one an empty string
 * @param from_charset its charset; null gives null, "" a copy of the text
 * @param to_charset the target; null: the local charset
 * @return the converted text, never `text` itself
 *
 * - Fails: with a copy of the text.
 * - Owns: the result is the caller's.
 * - Stops: before the start, unless the null and empty cases have answered.
 */
ZEL_API char *ZEL_LocalToLocal(const char *text, const char *from_charset, const char *to_charset);

/** ZEL_LocalToLocal() from `charset`, or if null from the local charset, to UTF-8. */
ZEL_API char *ZEL_LocalToUTF8(const char *text, const char *charset);

/**
 * ZEL_LocalToLocal() from UTF-8 to `charset`, or if null to the local charset. Text that is not UTF-8 by the
 * shape of its sequences comes back with every byte of 0x80 or above replaced by "?", in every status; a last
 * character that is cut off passes the test, and so do overlong forms and surrogates, of which ICU makes what
 * it makes.
 */
ZEL_API char *ZEL_UTF8ToLocal(const char *text, const char *charset);

/**
 * ZEL_LocalToLocal() from `charset`, or if null the local one, to the form of IMAP mailbox names (RFC 3501,
 * 5.1.3).
 */
ZEL_API char *ZEL_LocalToMUTF7(const char *text, const char *charset);

/** ZEL_LocalToLocal() from the form of IMAP mailbox names to `charset`, or if null to the local one. */
ZEL_API char *ZEL_MUTF7ToLocal(const char *text, const char *charset);

/**
 * Writes UTF-8 as ASCII with escapes of a backslash, "u" and four upper-case hexadecimal digits for each
 * UTF-16 unit: a character above U+FFFF becomes two. A backslash in the text stays as it is, so there is no
 * certain way back.
 *
 * @param text the text; null gives null
 * @param mode 0: what is not US-ASCII is escaped. Else: so are DEL and the controls but TAB and LF
 * @return the escaped text
 *
 * - Fails: with a copy, also for text that is not UTF-8 if `mode` is not 0.
 * - Owns: the result is the caller's.
 * - Stops: before the start, unless `text` is null or empty.
 */
ZEL_API char *ZEL_UTF8ToEscapedUnicode(const char *text, int32_t mode);

/** @} */

/**
 * @defgroup zel_direct Direct converters
 * East Asian text in one pass, with no ICU, lock, allocation or status. All take the same arguments.
 *
 * @param from_buf the text; a NUL ends it, even before `from_len`
 * @param from_len its bytes; below 1 the result is empty
 * @param[out] to_buf the result, always terminated: it has room for the terminator whatever `to_size` says
 * @param to_size size of `to_buf` with the terminator; no size is asked for here. 5 * `from_len` + 4 is
 *   enough for the encoders of ISO-2022-JP, 2 * `from_len` + 1 for all others
 * @return the length of the result
 *
 * Nothing is rejected, and no state outlives a call. A result that does not fit ends behind the last unit (an
 * escape sequence, a pair, a byte) that does, maybe inside a run of double-byte text. A pair that the end of
 * the text cuts off has a 0 for its second byte. Where 7-bit text holds a byte of 0x80 or above,
 * ZELConfig::pass_8bit decides.
 *
 * `to_buf` may be `from_buf` in jis2sjis(), iso2022kr2euckr(), hz2gb(), big2gb() and gb2big5(), which read a
 * character before they write over it; in eucjp2jis(), sjis2jis() and jis2eucjp() it may not.
 * @{
 */

/** Tells a half-width katakana of Shift_JIS (0xA1 to 0xDF): 1, else 0. */
ZEL_API int32_t is_hankakukana(unsigned char byte);

/** EUC-JP to ISO-2022-JP (RFC 1468). Half-width katakana become full-width ones; voiced marks stay apart. */
ZEL_API int32_t eucjp2jis(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
/** ISO-2022-JP to EUC-JP. Half-width katakana (ESC ( I, SO and SI) stay so; a control ends a kanji run. */
ZEL_API int32_t jis2eucjp(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
/** Shift_JIS to ISO-2022-JP. Half-width katakana become full-width ones; voiced marks stay apart. */
ZEL_API int32_t sjis2jis(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
/** ISO-2022-JP to Shift_JIS. Half-width katakana stay so; a control ends a kanji run. */
ZEL_API int32_t jis2sjis(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
/** ISO-2022-KR (RFC 1557) to EUC-KR. Before the designation text is taken for ASCII, SO and SI included. */
ZEL_API int32_t iso2022kr2euckr(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
/** HZ (RFC 1843) to GB 2312. A run that is left open is no error. */
ZEL_API int32_t hz2gb(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
/** Big5 to GB 2312, traditional characters to simplified ones; "??" for a character without counterpart. */
ZEL_API int32_t big2gb(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
/** GB 2312 to Big5, each simplified character to its usual traditional one; "??" where there is none. */
ZEL_API int32_t gb2big5(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);

/** Half-width katakana: the code, from 0xA1 on, and the 7-bit pair of the full-width one in JIS X 0208. */
ZEL_API extern const unsigned char KanaTbl[63][3];
/** Big5 to GB 2312, 158 cells a lead byte from 0xA1 on: trails 0x40 to 0x7E, 0xA1 to 0xFE. 0, 0: none. */
ZEL_API extern const unsigned char B2G[14060][2];
/** GB 2312 to Big5, 94 cells a lead byte from 0xA1 on. 0, 0: none. */
ZEL_API extern const unsigned char G2B[8178][2];

/** @} */

/**
 * @defgroup zel_languages Languages
 * Tables and rules that never change: they answer before the start and after the stop too.
 * @{
 */

/** Index of a language in ZEL_GetAvailableLanguageList(), from 1 to 47: 1 "en", 41 "ja", 42 "ko", 43 "zh". */
typedef int32_t LanguageID;

/** The id of a tag. What is unknown is 1, English; a null and an empty tag too. */
ZEL_API LanguageID ZEL_GetIntLanguageID(const char *language);

/** The id of a tag of the list, or -1; "i-default" is not in it. */
ZEL_API LanguageID ZEL_GetIntLanguageID_strict(const char *language);

/** The tag of an id, "en" for a number that is none. */
ZEL_API const char *ZEL_GetRFC1766LanguageID(LanguageID id);

/** All tags in the order of their ids, as "[en,de,...,zh_TW]". */
ZEL_API const char *ZEL_GetAvailableLanguageList(void);

/** 1 for the double-byte languages ja, ko, zh-CN, zh_CN, zh-TW and zh_TW; 0 for all others, plain zh too. */
ZEL_API int32_t ZEL_IsDBCSLanguage(LanguageID id);

/**
 * Steps through text of a language, in a charset that it is usually written in.
 *
 * @param id the language
 * @param charset of the text; read for Japanese alone (Shift_JIS has half-width katakana); may be null
 * @param byte the first byte of a character
 * @return the bytes that the character takes: 1 or 2
 */
ZEL_API int32_t ZEL_GetOffsetToNextChar(LanguageID id, const char *charset, unsigned char byte);

/**
 * Gives the factor by which text of a language may grow, for hosts that size their buffers by it. The flags
 * are the host's; the second counts only with the first.
 *
 * @param language a tag; null counts as Japanese, an empty one as unknown
 * @param first_flag,second_flag select the column
 * @return 2 without the first flag; with it, and then with both: 16, 5 for ja; 10, 4 for ko and zh-CN; 9, 4
 *   for zh-TW; 21, 4 for all others
 */
ZEL_API int32_t ZEL_WorstCaseMultiplier(const char *language, int32_t first_flag, int32_t second_flag);

/**
 * Splits a list at its commas, such as the value of Accept-Language (RFC 9110, section 12.5.4). Blanks and
 * quality values are left on the pieces.
 *
 * @param list the list; null gives the one row "en"
 * @param[out] rows 16 rows for the terminated pieces; empty ones and those of 18 bytes or more are left out
 * @return the number of rows filled
 */
ZEL_API int32_t ZEL_AcceptLangList(const char *list, char (*rows)[18]);

/**
 * Spells a locale as ICU does: a "-" in third place becomes "_".
 *
 * @param locale address of the locale
 * @return the locale's length; 0 for a null
 *
 * - Writes: the locale.
 */
ZEL_API int32_t ZEL_NormalizeLocale(char **locale);

/** @} */

/**
 * @defgroup zel_policy Charsets and transfer encodings of languages
 * The answers come from the bundle "encbylang" (keys "mail|" and "http|" with the language as the caller
 * spells it) or, where it has none, from the table below. ICU tells the case of keys apart, the answers that
 * are remembered do not. An answer holds until ZEL_Terminate(): a bundle that is repaired later is not read
 * again. A language of more than 120 characters is unknown.
 *
 * UTF-8 and UTF-7 are admitted in all languages, and US-ASCII in all but yi and unknown ones.
 *
 *     Languages             Mail         Web         Also admitted
 *     en to sq (1 to 18)    iso-8859-15  iso-8859-1  iso-8859-1, windows-1252
 *     cs hu pl ro hr sk sl  iso-8859-2   iso-8859-2  iso-8859-2
 *     et lv lt              iso-8859-4   iso-8859-1  iso-8859-4
 *     ru bg be sr mk uk     iso-8859-5   iso-8859-1  iso-8859-5
 *     el                    iso-8859-7   iso-8859-7  iso-8859-7
 *     tr                    iso-8859-9   iso-8859-1  iso-8859-9
 *     ar                    iso-8859-6   iso-8859-1  iso-8859-6
 *     he                    iso-8859-8   iso-8859-1  iso-8859-8
 *     yi                    utf-8        iso-8859-1
 *     th                    tis-620      iso-8859-1  tis-620
 *     ja                    iso-2022-jp  Shift_JIS   iso-2022-jp
 *     ko                    euc-kr       euc-kr      euc-kr, ks_c_5601-1987
 *     zh                    gb2312       iso-8859-1  gb2312
 *     zh-CN zh_CN           gb2312       gb2312      gb2312
 *     zh-TW zh_TW           big5         big5        big5
 *     unknown               us-ascii     iso-8859-1
 *
 * The transfer encoding of bodies goes by the text in the languages from en to el (1 to 35); it is
 * quoted-printable in ko, zh-CN, zh_CN, zh-TW and zh_TW, and 7bit in all others.
 * @{
 */

/**
 * Gives the charset that web pages of a language are written in.
 *
 * @param language a tag; may be null
 * @return a charset, "iso-8859-1" for an unknown language
 *
 * - Stops: before the start, where there is a language to ask for.
 */
ZEL_API const char *ZEL_HTTPContentCharset(const char *language);

/**
 * Gives the charset that a text goes out in as mail.
 *
 * @param language a tag; may be null
 * @param text the text, in any charset, or null for text to come
 * @return "us-ascii" for a text that is not empty and all 7-bit, else the charset of the language; for an
 *   unknown one "us-ascii"
 *
 * - Stops: before the start, where there is a language to ask for.
 */
ZEL_API const char *ZEL_InternetMessageCharset(const char *language, const char *text);

/**
 * Tells whether a charset is admitted in messages of a language. Header decoding asks this before it decodes
 * a word; the bundle plays no part in it.
 *
 * @param language a tag; may be null
 * @param charset a name; not null
 * @return 1 for UTF-8 and UTF-7 in any language, an unknown one too, and for what the table admits; else 0
 */
ZEL_API int32_t ZEL_IsInternetMessageKnownCharset(const char *language, const char *charset);

/**
 * Gives the word for the Content-Transfer-Encoding field (RFC 2045, section 6) of a body that
 * ZEL_LocalToInternetMessageBody() makes.
 *
 * @param language a tag; may be null
 * @param text the body; may be null
 * @param qp_for_8bit bodies with high bytes go out as quoted-printable, else as they are
 * @return the word of the table, whatever the bytes. By text it is "7bit" for 7-bit text, else
 *   "quoted-printable" or "8bit", as the flag says; without a text (null or empty) "7bit" for English and
 *   "quoted-printable" for the others
 */
ZEL_API const char *ZEL_InternetMessageContentTransferEncoding(const char *language, const char *text,
                                                               int32_t qp_for_8bit);

/**
 * Reads a string of an ICU resource bundle. ICU's fallback between locales counts as an answer.
 *
 * @param bundle an open bundle; may be null
 * @param key its key; may be null
 * @return the string in UTF-8, or null if there is none
 *
 * - Owns: the result is the caller's.
 */
ZEL_API char *resourceBundleGetUTF8Message(struct UResourceBundle *bundle, const char *key);

/**
 * Gives the text of a service error, of libqorm's service_errstr(), in UTF-8.
 *
 * @param code the error
 * @return the text, at most 1023 bytes of it. It stands in one buffer for the whole process, which the next
 *   call overwrites: hosts that call from several threads serialise the calls and copy the text
 *
 * - Fails: with the text in the local charset.
 */
ZEL_API const char *ZEL_ServiceErrorStringInUTF8(int32_t code);

/** @} */

/**
 * @defgroup zel_encoders Transfer encoding
 * The text and the buffer may not overlap.
 * @{
 */

/**
 * Encodes bytes as Base64 (RFC 2045, section 6.8) in lines of 68 characters, CR LF behind each full one.
 *
 * @param from_buf the bytes
 * @param from_len their number
 * @param[out] to_buf the text, terminated; not touched if `to_size` is negative
 * @param to_size its sign alone is read: the buffer must have the size that a negative one asks for
 * @return the length of the text, or the size with the terminator: twice `from_len`, or the need where that
 *   is more
 */
ZEL_API int32_t ZEL_ApplyBase64Encoding(const char *from_buf, int32_t from_len, char *to_buf,
                                        int32_t to_size);

/** @} */

/**
 * @defgroup zel_headers Message headers
 * Header values to and from RFC 2047 encoded words, parameters to and from RFC 2231. Texts and buffers may
 * not overlap.
 * @{
 */

/**
 * Makes the wire form of a header value. 7-bit text goes out as it is, on one line. Other text goes out in
 * the charset of ZEL_InternetMessageCharset(): in Japanese, Korean, zh-CN and zh-TW each run of non-ASCII
 * bytes becomes "B" words amid the plain text, folded with CR LF and a blank; in all other languages the
 * whole value becomes "Q" words, folded with CR LF and a TAB.
 *
 * @param language a tag; may be null. Under an unknown one 8-bit text goes out as it is
 * @param from_charset charset of the text; not null
 * @param text the value; null and empty give an empty result
 * @param[out] to_buf the value, terminated
 * @param to_size size of `to_buf`; negative asks for the size, terminator counted
 * @return the length of the result, or the size
 *
 * - Fails: a piece that cannot be converted is framed as it is.
 * - Stops: before the start.
 * - Writes: `text` may be written to during the call; it is as it was when it returns.
 * - RFC: 2047. A value of "Q" words whose last byte fills its line ends in CR LF, which the caller trims.
 */
ZEL_API int32_t ZEL_LocalToInternetMessageHeader(const char *language, const char *from_charset, char *text,
                                                 char *to_buf, int32_t to_size);

/** ZEL_LocalToInternetMessageHeader() for a text in UTF-8. */
ZEL_API int32_t ZEL_UTF8ToInternetMessageHeader(const char *language, char *text, char *to_buf,
                                                int32_t to_size);

/**
 * Makes a received header value readable. The value is unfolded (CR LF before a blank or TAB; with those
 * where an encoded word follows), and each encoded word is decoded and converted. A language suffix of the
 * charset (RFC 2231, section 5) is passed over. Plain text before a word stays as it is. Plain text behind
 * the last word is read as ISO-2022-JP if `language` begins with "ja", in small letters; else its bytes of
 * 0x80 or above become "?", unless ZELConfig::pass_8bit keeps them. In a double-byte charset broken
 * characters are repaired as by ZEL_CheckStringValidity().
 *
 * @param language a tag; not null. A word in a charset that ZEL_IsInternetMessageKnownCharset() does not
 *   admit is not decoded
 * @param text the value, always read up to its NUL; not null
 * @param from_len its length, or -1. No encoded text of a word may be longer
 * @param to_charset charset of the result; not null
 * @param[out] to_buf the result, terminated
 * @param to_size size of `to_buf`; negative asks for the size, terminator **not** counted: give one byte more
 * @return the length of the result, or the size
 *
 * - Fails: a word that is not decoded (charset not admitted or without converter, encoding neither B nor Q)
 *   comes out as its encoded text without the frame. Behind a "=?" that opens no word all comes out as it
 *   came in. A character outside the Base64 alphabet counts as 0; of a "=" with a bad digit in Q text that
 *   digit counts as 0.
 * - Stops: before the start.
 * - Writes: `text` is unfolded for good, unless `to_size` is negative.
 * - RFC: 2047; 5322, section 2.2.3.
 */
ZEL_API int32_t ZEL_InternetMessageHeaderToLocalLen(const char *language, char *text, int32_t from_len,
                                                    const char *to_charset, char *to_buf, int32_t to_size);

/** ZEL_InternetMessageHeaderToLocalLen() with a `from_len` of -1. */
ZEL_API int32_t ZEL_InternetMessageHeaderToLocal(const char *language, char *text, const char *to_charset,
                                                 char *to_buf, int32_t to_size);

/** ZEL_InternetMessageHeaderToLocal() into UTF-8. */
ZEL_API int32_t ZEL_InternetMessageHeaderToUTF8(const char *language, char *text, char *to_buf,
                                                int32_t to_size);

/**
 * Makes a MIME parameter, such as the name of a file, in the extended form: a TAB, the name with "*0*=",
 * charset, language and the percent-encoded value, cut into numbered lines that end in ";" CR LF. Lines
 * behind the last percent triple are plain and quoted. What stands before the TAB, a ";" among others, is the
 * caller's.
 *
 * @param language a tag, written as it is; null leaves it and the charset empty, and converts nothing
 * @param param_name the parameter; not null
 * @param from_charset charset of the text; null or empty: the text is labelled, but not converted
 * @param text the value; null and empty give an empty result
 * @param[out] to_buf the parameter, terminated. Never null: for an empty `text` it is terminated in any case
 * @param to_size size of `to_buf`; negative asks for the size, terminator counted
 * @return the length of the result, or the size; -1 with `to_buf` untouched if the conversion finds no memory
 *
 * - Stops: before the start, where there is something to convert.
 * - RFC: 2231, sections 3 and 4.
 */
ZEL_API int32_t ZEL_LocalToRFC2231(const char *language, const char *param_name, const char *from_charset,
                                   const char *text, char *to_buf, int32_t to_size);

/**
 * Reads the value of an extended parameter, of which the host has joined the lines: charset, apostrophe,
 * language, apostrophe and percent-encoded text. With fewer than two apostrophes all of it is the text, and
 * nothing is converted.
 *
 * @param language not used; may be null
 * @param text the value; null and empty give an empty result
 * @param to_charset charset of the result; null: the local charset
 * @param[out] to_buf the result, terminated. Never null: for an empty `text` it is terminated in any case
 * @param to_size size of `to_buf`; negative asks for the size, terminator counted
 * @return the length of the result, or the size
 *
 * - Fails: an unknown charset leaves the text unconverted. A "%" with fewer than two characters behind it
 *   stays; one with two that are not hexadecimal digits, of either case, becomes "?" with them.
 * - Stops: before the start, where there is something to convert.
 * - RFC: 2231, section 4.
 */
ZEL_API int32_t ZEL_RFC2231ToLocal(const char *language, const char *text, const char *to_charset,
                                   char *to_buf, int32_t to_size);

/** @} */

/**
 * @defgroup zel_bodies Message bodies and vCard values
 * Bodies on their way out get a charset and, where the language calls for it, quoted-printable; bodies on
 * their way in are brought into a charset, with their transfer encoding already undone by the host. Texts and
 * buffers may not overlap.
 * @{
 */

/**
 * Makes the wire form of a body. Its charset is the mail charset of the language in the table, whatever the
 * bundle says; in the languages from en to el it is "us-ascii" for 7-bit text. Japanese text in EUC-JP or
 * Shift_JIS goes through the direct converters. The body goes out as quoted-printable (RFC 2045, section 6.7)
 * where ZEL_InternetMessageContentTransferEncoding() says so, else as it is.
 *
 * @param language a tag
 * @param from_charset charset of the text; not null
 * @param from_buf the body
 * @param[out] to_buf the wire form, terminated
 * @param to_size size of `to_buf`; negative asks for the size, terminator counted
 * @param qp_for_8bit bodies with high bytes go out as quoted-printable, in the languages from en to el
 * @return the length of the result, or the size; -1 without a text (null or empty), -2 for an unknown
 *   language, -5 if there is no converter between the charsets, all three with `to_buf` untouched
 *
 * - Fails: by those three results; a later failure of ICU sends the text out unconverted.
 * - Stops: before the start, if there is a text.
 */
ZEL_API int32_t ZEL_LocalToInternetMessageBody(const char *language, const char *from_charset,
                                               const char *from_buf, char *to_buf, int32_t to_size,
                                               int32_t qp_for_8bit);

/** ZEL_LocalToInternetMessageBody() for a text in UTF-8. */
ZEL_API int32_t ZEL_UTF8ToInternetMessageBody(const char *language, const char *from_buf, char *to_buf,
                                              int32_t to_size, int32_t qp_for_8bit);

/**
 * Brings a received body into a charset. ISO-2022-JP into EUC-JP or Shift_JIS, ISO-2022-KR into EUC-KR and HZ
 * into GB 2312 go through the direct converters, if `language` begins with "ja", "ko" or "zh" in small
 * letters; their results are repaired as by ZEL_CheckStringValidity(). All else goes the way of
 * ZEL_ConvertBuffer().
 *
 * @param language a tag; may be null
 * @param from_charset charset of the body; null or empty: ZEL_InternetMessageCharset() of the language
 * @param ignored not read
 * @param from_buf the body; not null
 * @param from_len its bytes, or -1: up to the NUL
 * @param to_charset charset of the result; not null
 * @param[out] to_buf the result, terminated if it leaves room for that: see ZEL_ConvertBuffer()
 * @param to_size size of `to_buf`; negative asks for the size, that of ZEL_GetResultBufferSize(), terminator
 *   counted. From ISO-2022-KR to EUC-KR it is 2 * `from_len`, terminator **not** counted
 * @return the length of the result, or the size; -5 if there is no converter between the charsets, which
 *   ISO-2022-KR to EUC-KR and HZ to GB 2312 do without
 *
 * - Fails: with a copy of the body.
 * - Stops: before the start.
 */
ZEL_API int32_t ZEL_InternetMessageBodyLocalToLocalLen(const char *language, const char *from_charset,
                                                       char ignored, const char *from_buf, int32_t from_len,
                                                       const char *to_charset, char *to_buf, int32_t to_size);

/** ZEL_InternetMessageBodyLocalToLocalLen() with a `from_len` of -1. */
ZEL_API int32_t ZEL_InternetMessageBodyLocalToLocal(const char *language, const char *from_charset,
                                                    char ignored, const char *from_buf,
                                                    const char *to_charset, char *to_buf, int32_t to_size);

/** ZEL_InternetMessageBodyLocalToLocalLen() with a null `from_charset`. */
ZEL_API int32_t ZEL_InternetMessageBodyToLocalLen(const char *language, char ignored, const char *from_buf,
                                                  int32_t from_len, const char *to_charset, char *to_buf,
                                                  int32_t to_size);

/** ZEL_InternetMessageBodyLocalToLocalLen() with a null `from_charset` and a `from_len` of -1. */
ZEL_API int32_t ZEL_InternetMessageBodyToLocal(const char *language, char ignored, const char *from_buf,
                                               const char *to_charset, char *to_buf, int32_t to_size);

/**
 * Makes the value of a vCard 2.1 property: quoted-printable text in the charset of ZEL_HTTPContentCharset().
 * Name and parameters of the property are the host's, and no folding is added to the soft line breaks.
 *
 * @param language a tag; may be null
 * @param from_charset charset of the text; null or empty gives a copy of the text
 * @param text the value; null gives null
 * @return the encoded value
 *
 * - Fails: with a copy of the text, neither converted nor encoded.
 * - Owns: the result is the caller's.
 * - Stops: before the start, unless the null and empty cases have answered.
 */
ZEL_API char *ZEL_LocalToVCard21(const char *language, const char *from_charset, const char *text);

/** @} */

/**
 * @defgroup zel_locale Dates, comparison, validity
 * Locales are ICU's names; a "-" in third place is read as "_". None of these functions but
 * ZEL_CompareMessageHeaderStrings() needs the library to be started.
 * @{
 */

/**
 * The host's answer for a zone that ICU does not know. It may be called by several threads at once, and fills
 * all three outputs.
 *
 * @param zone,time as ZEL_GenerateDateString() was given them
 * @param[out] hours,minutes the offset from GMT, without its sign
 * @param[out] sign "+" for east, "-" for west
 */
typedef void (*ZELTimeZoneProc)(const char *zone, int32_t time, int32_t *hours, int32_t *minutes, char *sign);

/** The procedure in force, null at first. */
ZEL_API extern ZELTimeZoneProc custom_timezone_cb;

/** Sets the procedure, before other threads can need it; null for none. */
ZEL_API void ZEL_SetCustomTimeZoneProc(ZELTimeZoneProc proc);

/**
 * Gives the offset of a zone from GMT, without daylight saving and without its sign.
 *
 * @param zone a zone that ICU knows; not null. EDT, EST, CDT, CST, MDT, MST, PDT, PST and GMT are refused, in
 *   any case and with whatever stands behind them ("EST5EDT", "GMT+5"), and so is "UT"
 * @param unused not read
 * @param[out] hours the hours, modulo 12
 * @param[out] minutes the minutes of the hour
 * @return 1, or 0 with both outputs untouched if the zone is refused or unknown
 */
ZEL_API int32_t ZEL_TimeZoneToOffset(const char *zone, int32_t unused, int32_t *hours, int32_t *minutes);

/**
 * Writes a moment as a reader of the locale would: ICU's full date and long time, by the Gregorian calendar.
 *
 * @param locale the locale; null: ICU's default
 * @param zone a zone; null: GMT. One that ICU does not know is put to the host's procedure, or else is GMT
 * @param time seconds since 1 January 1970, GMT; 0: now
 * @param charset charset of the result; null: UTF-8
 * @return the date
 *
 * - Fails: null, for a charset or a locale that ICU does not take.
 * - Owns: the result is the caller's.
 */
ZEL_API char *ZEL_GenerateDateString(const char *locale, const char *zone, int32_t time, const char *charset);

/**
 * Compares two texts as a reader of the locale would sort them: ICU's collation, normalised, down to case.
 *
 * @param locale the locale; null: ICU's default
 * @param charset charset of both texts; null and empty: US-ASCII
 * @param first,second the texts; a null sorts before any text
 * @return below 0, 0 or above 0, as the first text sorts before, with or behind the second
 *
 * - Fails: as strcmp() compares.
 */
ZEL_API int32_t ZEL_CompareStrings(const char *locale, const char *charset, const char *first,
                                   const char *second);

/**
 * Compares two header values by ZEL_CompareStrings(), after decoding both by
 * ZEL_InternetMessageHeaderToLocal().
 *
 * @param language language of the headers and locale of the comparison; not null
 * @param charset charset to decode into and compare in; not null
 * @param first,second the values; not null
 * @return below 0, 0 or above 0
 *
 * - Fails: as strcmp() compares.
 * - Stops: before the start.
 * - Writes: both values are unfolded for good.
 */
ZEL_API int32_t ZEL_CompareMessageHeaderStrings(const char *language, const char *charset, char *first,
                                                char *second);

/** 1 if no byte of the text is 0x80 or above, as in a null or empty text; else 0. */
ZEL_API int32_t ZEL_IsASCIIString(const char *text);

/**
 * Repairs double-byte text: a byte that breaks it becomes "?", and the length stays. In "euc-jp", "euc-kr",
 * "gb2312" and "ks_c_5601-1987" that is a lead byte without a trail; in "Shift_JIS" and "big5" a byte that
 * neither leads a pair nor stands alone, while a lead byte takes any byte for its trail. Text in other
 * charsets is left alone.
 *
 * @param charset charset of the text; not null
 * @param text the text; not null
 *
 * - Writes: the text.
 */
ZEL_API void ZEL_CheckStringValidity(const char *charset, char *text);

/** @} */

/**
 * @defgroup zel_frame For the library's own use
 * Called by ZEL_Initialize() and ZEL_Terminate(); hosts leave them alone.
 * @{
 */

ZEL_API extern struct PRRWLock *encodingconverter_lock; /**< of the cache of converters */
ZEL_API extern struct PRRWLock *localconfig_lock;       /**< of the remembered answers of the bundle */

/** Settles the local charset by the bundle under `root`. */
ZEL_API void _setupLocalCharEncoding(const char *root);
/** Lists the localisation directories. */
ZEL_API void init_Dirs(const char *svrroot);
/** Forgets them. */
ZEL_API void free_Dirs(void);
/** Closes the converters that are not in use. */
ZEL_API void terminate_encodingconverter(void);
/** Forgets the remembered answers. */
ZEL_API void terminate_localconfig(void);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
