// Zones, offsets and dates. None of this needs the library to be started. What is compared with a text is
// German, whose dates have not changed between releases of ICU.

#include "support.h"

#include <unicode/uvernum.h>

#include <atomic>
#include <thread>
#include <tuple>
#include <vector>

namespace {

constexpr int32_t moment = 1000000000; // 2001-09-09 01:46:40 GMT
constexpr const char *in_gmt = "Sonntag, 9. September 2001 um 01:46:40 GMT";

std::tuple<int32_t, int32_t, char> hosts_answer; // hours, minutes, sign
std::atomic<int> questions = 0;

void answer(const char *zone, int32_t time, int32_t *hours, int32_t *minutes, char *sign) {
    EXPECT_STREQ(zone, "Mars/Base");
    EXPECT_EQ(time, moment);
    ++questions;
    std::tie(*hours, *minutes, *sign) = hosts_answer;
}

std::string date_in(const char *locale, const char *zone, const char *charset = nullptr) {
    std::string date = taken(ZEL_GenerateDateString(locale, zone, moment, charset));
#if U_ICU_VERSION_MAJOR_NUM >= 78 // writes GMT+0 where others write GMT
    if (date.size() > 5 && date.compare(date.size() - 5, 5, "GMT+0") == 0)
        date.resize(date.size() - 2);
#endif
    return date;
}

TEST(TimeZones, offsets_have_no_sign_no_daylight_saving_and_hours_modulo_twelve) {
    const struct {
        const char *zone;
        int32_t hours, minutes;
    } rows[] = {{"America/New_York", 5, 0}, {"Asia/Kolkata", 5, 30},      {"America/St_Johns", 3, 30},
                {"Pacific/Auckland", 0, 0}, {"Pacific/Kiritimati", 2, 0}, {"UTC", 0, 0}};
    int32_t hours = -1, minutes = -2;
    for (const char *zone : {"est", "EST5EDT", "PST8PDT", "gmt+5", "mdt", "UT", "ut", "No/Such", ""})
        EXPECT_EQ(ZEL_TimeZoneToOffset(zone, 0, &hours, &minutes), 0) << zone;
    EXPECT_EQ(std::pair(hours, minutes), std::pair(-1, -2));
    for (const auto &row : rows) {
        EXPECT_EQ(ZEL_TimeZoneToOffset(row.zone, 0, &hours, &minutes), 1) << row.zone;
        EXPECT_EQ(std::pair(hours, minutes), std::pair(row.hours, row.minutes)) << row.zone;
    }
}

TEST(Dates, are_written_in_full_in_any_zone_and_charset) {
    EXPECT_EQ(date_in("de", nullptr), in_gmt);
    EXPECT_EQ(date_in("de-DE", "Europe/Vienna"), "Sonntag, 9. September 2001 um 03:46:40 MESZ");
    EXPECT_EQ(date_in("de_DE@euro", "Europe/Vienna"), date_in("de", "Europe/Vienna"));
    EXPECT_EQ(date_in("ja", "Asia/Tokyo", "euc-jp").substr(0, 14),
              "2001\xC7\xAF\x39\xB7\xEE\x39\xC6\xFC\xC6\xFC");
    EXPECT_EQ(date_in("de", "Mars/Base"), in_gmt); // which neither ICU nor a host knows
}

TEST(Dates, of_locales_and_charsets_that_icu_cannot_take_are_null) {
    EXPECT_EQ(date_in("de", "GMT", "no such charset"), "(null)");
    for (const std::string locale : {"aaaaaaaaaaaa", "de@=x", "abcdefgh.ijklmn_DE"})
        EXPECT_EQ(date_in(locale.c_str(), nullptr), "(null)") << locale;
    for (const std::string &locale : {"de_" + std::string(154, 'A'), std::string(100000, 'x')})
        EXPECT_EQ(date_in(locale.c_str(), nullptr), "(null)") << locale.substr(0, 30);
    EXPECT_NE(date_in(nullptr, nullptr), "(null)");
}

TEST(Dates, come_out_in_the_offset_that_the_host_gives_for_a_zone_unknown_to_icu) {
    const struct {
        decltype(hosts_answer) given;
        const char *same_zone;
    } rows[] = {{{5, 0, '-'}, "GMT-05:00"},
                {{0, 7, '-'}, "GMT-00:07"},
                {{25, 0, '+'}, "GMT"},
                {{INT32_MAX, INT32_MIN, '+'}, "GMT"},
                {{5, 30, '+'}, "GMT+05:30"}};
    ZEL_SetCustomTimeZoneProc(answer);
    for (const auto &row : rows) {
        hosts_answer = row.given;
        std::vector<std::jthread> threads;
        for (const char *locale : {"en", "de", "ja", "ar"})
            threads.emplace_back([locale, &row] {
                for (int round = 0; round < 5; ++round)
                    EXPECT_EQ(date_in(locale, "Mars/Base"), date_in(locale, row.same_zone));
            });
    }
    EXPECT_EQ(questions, 5 * 4 * 5);
    hosts_answer = {5, 0, '-'};
    EXPECT_EQ(date_in("de", "Mars/Base"), "Samstag, 8. September 2001 um 20:46:40 GMT-5");
}

} // namespace
