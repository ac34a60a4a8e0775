/* libzel: charsets and message encoding for mail and messaging servers. */

#ifndef ZEL_H
#define ZEL_H

#include <stdint.h>

#if defined(__GNUC__)
#define ZEL_API __attribute__((visibility("default")))
#else
#define ZEL_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

struct UResourceBundle;
struct PRRWLock;

#define ZEL_STATUS_NOT_INITIALIZED 0
#define ZEL_STATUS_INITIALIZED 1
#define ZEL_STATUS_PASSTHROUGH 2

typedef int32_t LanguageID;

typedef struct ZELConfig {
    int32_t pass_8bit;
    int32_t no_atexit;
    uint32_t reserved;
    const char *bundles_path;
} ZELConfig;

typedef void (*ZELTimeZoneProc)(const char *zone, int32_t time, int32_t *hours, int32_t *minutes, char *sign);

ZEL_API extern int32_t gf_ZELStatus;
ZEL_API extern ZELConfig g_zelconf;
ZEL_API extern ZELTimeZoneProc custom_timezone_cb;
ZEL_API extern struct PRRWLock *encodingconverter_lock;
ZEL_API extern struct PRRWLock *localconfig_lock;
ZEL_API extern const unsigned char KanaTbl[63][3];
ZEL_API extern const unsigned char B2G[14060][2];
ZEL_API extern const unsigned char G2B[8178][2];

ZEL_API int32_t ZEL_Initialize(const char *svrroot, const ZELConfig *config);
ZEL_API void ZEL_Terminate(void);
ZEL_API void ZEL_Free(void *ptr);
ZEL_API const char *check_l10n_dir(const char *name);

ZEL_API int32_t ZEL_EncodingConverterExists(const char *from_charset, const char *to_charset);
ZEL_API int32_t ZEL_GetResultBufferSize(const char *from_buf, int32_t from_len, const char *from_charset,
                                        const char *to_charset);
ZEL_API int32_t ZEL_ConvertBuffer(const char *from_charset, const char *to_charset, const char *from_buf,
                                  int32_t from_len, char *to_buf, int32_t to_size);
ZEL_API void ZEL_ConvertBufferArray(const char *from_charset, const char *to_charset, const char *const *from_bufs,
                                    int32_t count, char **to_bufs);
ZEL_API char *ZEL_LocalToLocal(const char *text, const char *from_charset, const char *to_charset);
ZEL_API char *ZEL_LocalToUTF8(const char *text, const char *charset);
ZEL_API char *ZEL_UTF8ToLocal(const char *text, const char *charset);
ZEL_API char *ZEL_LocalToMUTF7(const char *text, const char *charset);
ZEL_API char *ZEL_MUTF7ToLocal(const char *text, const char *charset);
ZEL_API char *ZEL_UTF8ToEscapedUnicode(const char *text, int32_t mode);

ZEL_API int32_t is_hankakukana(unsigned char byte);
ZEL_API int32_t eucjp2jis(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
ZEL_API int32_t jis2eucjp(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
ZEL_API int32_t sjis2jis(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
ZEL_API int32_t jis2sjis(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
ZEL_API int32_t iso2022kr2euckr(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
ZEL_API int32_t big2gb(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
ZEL_API int32_t gb2big5(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
ZEL_API int32_t hz2gb(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);

ZEL_API LanguageID ZEL_GetIntLanguageID(const char *language);
ZEL_API LanguageID ZEL_GetIntLanguageID_strict(const char *language);
ZEL_API const char *ZEL_GetRFC1766LanguageID(LanguageID id);
ZEL_API const char *ZEL_GetAvailableLanguageList(void);
ZEL_API int32_t ZEL_IsDBCSLanguage(LanguageID id);
ZEL_API int32_t ZEL_GetOffsetToNextChar(LanguageID id, const char *charset, unsigned char byte);
ZEL_API int32_t ZEL_WorstCaseMultiplier(const char *language, int32_t first_flag, int32_t second_flag);
ZEL_API int32_t ZEL_AcceptLangList(const char *list, char (*rows)[18]);
ZEL_API int32_t ZEL_NormalizeLocale(char **locale);

ZEL_API const char *ZEL_HTTPContentCharset(const char *language);
ZEL_API const char *ZEL_InternetMessageCharset(const char *language, const char *text);
ZEL_API int32_t ZEL_IsInternetMessageKnownCharset(const char *language, const char *charset);
ZEL_API const char *ZEL_InternetMessageContentTransferEncoding(const char *language, const char *text,
                                                               int32_t qp_for_8bit);
ZEL_API char *resourceBundleGetUTF8Message(struct UResourceBundle *bundle, const char *key);
ZEL_API const char *ZEL_ServiceErrorStringInUTF8(int32_t code);

ZEL_API int32_t ZEL_ApplyBase64Encoding(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
ZEL_API int32_t ZEL_LocalToInternetMessageHeader(const char *language, const char *from_charset, char *text,
                                                 char *to_buf, int32_t to_size);
ZEL_API int32_t ZEL_UTF8ToInternetMessageHeader(const char *language, char *text, char *to_buf, int32_t to_size);
ZEL_API int32_t ZEL_InternetMessageHeaderToLocalLen(const char *language, char *text, int32_t from_len,
                                                    const char *to_charset, char *to_buf, int32_t to_size);
ZEL_API int32_t ZEL_InternetMessageHeaderToLocal(const char *language, char *text, const char *to_charset,
                                                 char *to_buf, int32_t to_size);
ZEL_API int32_t ZEL_InternetMessageHeaderToUTF8(const char *language, char *text, char *to_buf, int32_t to_size);
ZEL_API int32_t ZEL_LocalToRFC2231(const char *language, const char *param_name, const char *from_charset,
                                   const char *text, char *to_buf, int32_t to_size);
ZEL_API int32_t ZEL_RFC2231ToLocal(const char *language, const char *text, const char *to_charset, char *to_buf,
                                   int32_t to_size);

ZEL_API int32_t ZEL_LocalToInternetMessageBody(const char *language, const char *from_charset, const char *from_buf,
                                               char *to_buf, int32_t to_size, int32_t qp_for_8bit);
ZEL_API int32_t ZEL_UTF8ToInternetMessageBody(const char *language, const char *from_buf, char *to_buf,
                                              int32_t to_size, int32_t qp_for_8bit);
ZEL_API int32_t ZEL_InternetMessageBodyToLocal(const char *language, char ignored, const char *from_buf,
                                               const char *to_charset, char *to_buf, int32_t to_size);
ZEL_API int32_t ZEL_InternetMessageBodyToLocalLen(const char *language, char ignored, const char *from_buf,
                                                  int32_t from_len, const char *to_charset, char *to_buf,
                                                  int32_t to_size);
ZEL_API int32_t ZEL_InternetMessageBodyLocalToLocal(const char *language, const char *from_charset, char ignored,
                                                    const char *from_buf, const char *to_charset, char *to_buf,
                                                    int32_t to_size);
ZEL_API int32_t ZEL_InternetMessageBodyLocalToLocalLen(const char *language, const char *from_charset,
                                                       char ignored, const char *from_buf, int32_t from_len,
                                                       const char *to_charset, char *to_buf, int32_t to_size);
ZEL_API char *ZEL_LocalToVCard21(const char *language, const char *from_charset, const char *text);

ZEL_API int32_t ZEL_TimeZoneToOffset(const char *zone, int32_t unused, int32_t *hours, int32_t *minutes);
ZEL_API void ZEL_SetCustomTimeZoneProc(ZELTimeZoneProc proc);
ZEL_API char *ZEL_GenerateDateString(const char *locale, const char *zone, int32_t time, const char *charset);
ZEL_API int32_t ZEL_CompareStrings(const char *locale, const char *charset, const char *first, const char *second);
ZEL_API int32_t ZEL_CompareMessageHeaderStrings(const char *language, const char *charset, char *first,
                                                char *second);
ZEL_API int32_t ZEL_IsASCIIString(const char *text);
ZEL_API void ZEL_CheckStringValidity(const char *charset, char *text);

/* Called from inside only. */
ZEL_API void _setupLocalCharEncoding(const char *root);
ZEL_API void init_Dirs(const char *svrroot);
ZEL_API void free_Dirs(void);
ZEL_API void terminate_encodingconverter(void);
ZEL_API void terminate_localconfig(void);

#ifdef __cplusplus
}
#endif

#endif
