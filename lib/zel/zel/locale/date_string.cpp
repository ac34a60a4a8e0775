// Time zones and dates. A zone becomes a calendar, if need be by way of the host's procedure; calendar and
// locale become a text of ICU's full date and long time; the text goes into the charset that the caller
// wants.
//
// Invariant: each call opens ICU objects of its own and holds them by their owners, so that every path closes
// them.

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/icu_converter.h"
#include "zel/base/utf16_text.h"
#include "zel/locale/icu_locale.h"

#include <unicode/ucal.h>
#include <unicode/udat.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <strings.h>

ZELTimeZoneProc custom_timezone_cb = nullptr;

namespace zel {
namespace {

using calendar = owned<UCalendar, &ucal_close>;
using date_format = owned<UDateFormat, &udat_close>;

heap<UChar> widen(const char *zone) {
    heap<UChar> name = allocate_units(std::strlen(zone) + 1);
    if (name)
        u_uastrcpy(name.get(), zone);
    return name;
}

// ICU opens a calendar for any zone. One that it does not know it calls Etc/Unknown and takes for GMT; older
// releases say it by a warning.
bool knows_zone(const UCalendar *opened, UErrorCode status) {
    constexpr std::u16string_view unknown = u"" UCAL_UNKNOWN_ZONE_ID;
    UChar id[unknown.size() + 1];
    UErrorCode id_status = U_ZERO_ERROR;
    const std::int32_t length = ucal_getTimeZoneID(opened, id, std::size(id), &id_status);
    const bool is_unknown =
        U_SUCCESS(id_status) && unknown == std::u16string_view(id, static_cast<std::size_t>(length));
    return status != U_USING_DEFAULT_WARNING && !is_unknown;
}

struct zone_calendar {
    heap<UChar> name; // as ICU was given it
    calendar opened;  // null where ICU or memory failed
    bool is_known;
};

zone_calendar open_calendar(const char *zone) {
    heap<UChar> name = widen(zone);
    if (!name)
        return {};
    UErrorCode status = U_ZERO_ERROR;
    calendar opened(ucal_open(name.get(), -1, nullptr, UCAL_GREGORIAN, &status));
    if (U_FAILURE(status))
        return {};
    const bool is_known = knows_zone(opened.get(), status);
    return {std::move(name), std::move(opened), is_known};
}

// The calendar of the zone, of the offset that the host gives for it, or of GMT.
zone_calendar calendar_of(const char *zone, std::int32_t time) {
    zone_calendar of_zone = open_calendar(zone);
    const ZELTimeZoneProc ask_host = custom_timezone_cb;
    if (!of_zone.opened || of_zone.is_known || !ask_host)
        return of_zone;
    std::int32_t hours = 0;
    std::int32_t minutes = 0;
    char sign = '+';
    ask_host(zone, time, &hours, &minutes, &sign);
    char offset[16]; // the minutes with two digits: ICU does not know GMT-5:0
    const int length = std::snprintf(offset, sizeof offset, "GMT%c%d:%02d", sign, hours, minutes);
    const bool fits = length > 0 && static_cast<std::size_t>(length) < sizeof offset;
    return fits ? open_calendar(offset) : std::move(of_zone);
}

// The format is told the zone by name too: for some spellings of a locale ICU drops the calendar that it is
// given.
utf16_text write_date(const char *locale, const zone_calendar &zone, UDate date) {
    UErrorCode status = U_ZERO_ERROR;
    const date_format format(
        udat_open(UDAT_LONG, UDAT_FULL, locale, zone.name.get(), -1, nullptr, -1, &status));
    if (U_FAILURE(status))
        return {};
    udat_setCalendar(format.get(), zone.opened.get());
    status = U_ZERO_ERROR;
    const std::int32_t length = udat_format(format.get(), date, nullptr, 0, nullptr, &status);
    if (status != U_BUFFER_OVERFLOW_ERROR)
        return {};
    utf16_text text = {allocate_units(static_cast<std::size_t>(length) + 1), 0};
    status = U_ZERO_ERROR;
    if (text.units)
        text.length = udat_format(format.get(), date, text.units.get(), length + 1, nullptr, &status);
    return text;
}

heap_string narrow(const utf16_text &text, const char *charset) {
    UErrorCode status = U_ZERO_ERROR;
    const icu_converter cnv(ucnv_open(charset, &status));
    if (U_FAILURE(status))
        return nullptr;
    const std::int32_t size = ucnv_getMaxCharSize(cnv.get()) * (text.length + 1);
    heap_string bytes(static_cast<char *>(std::malloc(static_cast<std::size_t>(size) + 1)));
    if (!bytes)
        return nullptr;
    const std::int32_t length =
        ucnv_fromUChars(cnv.get(), bytes.get(), size, text.units.get(), text.length, &status);
    if (U_FAILURE(status))
        return nullptr;
    bytes.get()[length] = '\0';
    return bytes;
}

// Names of RFC 822, refused with whatever stands behind three letters. The NUL behind "UT" is its third byte.
bool is_refused(const char *zone) {
    constexpr const char *refused[] = {"EDT", "PST", "EST", "CDT", "CST", "MDT", "MST", "PDT", "GMT", "UT"};
    return std::any_of(std::begin(refused), std::end(refused),
                       [zone](const char *name) { return strncasecmp(zone, name, 3) == 0; });
}

constexpr std::int32_t milliseconds_per_minute = 60 * 1000;

} // namespace
} // namespace zel

using namespace zel;

void ZEL_SetCustomTimeZoneProc(ZELTimeZoneProc proc) {
    custom_timezone_cb = proc;
}

int32_t ZEL_TimeZoneToOffset(const char *zone, int32_t, int32_t *hours, int32_t *minutes) {
    if (is_refused(zone))
        return 0;
    const zone_calendar of_zone = open_calendar(zone);
    if (!of_zone.is_known)
        return 0;
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t offset = ucal_get(of_zone.opened.get(), UCAL_ZONE_OFFSET, &status);
    if (U_FAILURE(status))
        return 0;
    const std::int32_t total_minutes = std::abs(offset / milliseconds_per_minute);
    *hours = total_minutes / 60 % 12;
    *minutes = total_minutes % 60;
    return 1;
}

char *ZEL_GenerateDateString(const char *locale, const char *zone, int32_t time, const char *charset) {
    const zone_calendar of_zone = calendar_of(zone ? zone : "GMT", time);
    const std::optional<icu_locale> known_locale = find_locale(locale);
    if (!of_zone.opened || !known_locale)
        return nullptr;
    const UDate date = time == 0 ? ucal_getNow() : time * 1000.0;
    const utf16_text text = write_date(known_locale->name, of_zone, date);
    return text.units ? narrow(text, charset ? charset : encUTF8).release() : nullptr;
}
