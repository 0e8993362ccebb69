#include "core/date_time.h"

#include <chrono>
#include <cmath>

namespace norvane {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::int64_t ms_per_day = 86400000;
constexpr sys_days variant_epoch = std::chrono::year{1899} / 12 / 30;
constexpr sys_days file_epoch = std::chrono::year{1601} / 1 / 1;
constexpr sys_days first_day = std::chrono::year{100} / 1 / 1;
constexpr sys_days last_day = std::chrono::year{9999} / 12 / 31;

// A day and the milliseconds of that day.
struct Instant {
  sys_days day;
  std::int64_t ms;
};

bool of_calendar(const Core_CCalendarTime& calendar, Instant& instant) noexcept {
  const year_month_day date{std::chrono::year{calendar.year}, std::chrono::month{calendar.month},
                            std::chrono::day{calendar.day}};
  if (!date.ok() || calendar.hour > 23 || calendar.minute > 59 || calendar.second > 59 || calendar.milliseconds > 999)
    return false;
  instant.day = date;
  instant.ms =
      ((calendar.hour * 60 + calendar.minute) * 60 + calendar.second) * std::int64_t{1000} + calendar.milliseconds;
  return instant.day >= first_day && instant.day <= last_day;
}

bool of_variant_time(double variant_time, Instant& instant) noexcept {
  if (!(std::fabs(variant_time) < 3e6)) return false;
  const double whole = std::trunc(variant_time);
  instant.day = variant_epoch + days{static_cast<int>(whole)};
  instant.ms = std::llround(std::fabs(variant_time - whole) * static_cast<double>(ms_per_day));
  if (instant.ms == ms_per_day) {  // the last half millisecond of a day rounds into the next
    instant.ms = 0;
    instant.day += days{1};
  }
  return instant.day >= first_day && instant.day <= last_day;
}

Core_CCalendarTime calendar_of(const Instant& instant) noexcept {
  const year_month_day date{instant.day};
  const std::chrono::weekday weekday{instant.day};
  Core_CCalendarTime calendar;
  calendar.year = static_cast<std::uint16_t>(static_cast<int>(date.year()));
  calendar.month = static_cast<std::uint16_t>(static_cast<unsigned>(date.month()));
  calendar.day = static_cast<std::uint16_t>(static_cast<unsigned>(date.day()));
  calendar.day_of_week = static_cast<std::uint16_t>(weekday.c_encoding());
  calendar.hour = static_cast<std::uint16_t>(instant.ms / 3600000);
  calendar.minute = static_cast<std::uint16_t>(instant.ms / 60000 % 60);
  calendar.second = static_cast<std::uint16_t>(instant.ms / 1000 % 60);
  calendar.milliseconds = static_cast<std::uint16_t>(instant.ms % 1000);
  return calendar;
}

}  // namespace

std::u16string_view calendar_to_variant_time(const Core_CCalendarTime& calendar, double& variant_time) noexcept {
  Instant instant{};
  if (!of_calendar(calendar, instant)) return u"failed to convert SYSTEMTIME to variant_time";
  const double day = static_cast<double>((instant.day - variant_epoch).count());
  const double fraction = static_cast<double>(instant.ms) / static_cast<double>(ms_per_day);
  variant_time = day < 0.0 ? day - fraction : day + fraction;
  return {};
}

std::u16string_view variant_time_to_calendar(double variant_time, Core_CCalendarTime& calendar) noexcept {
  Instant instant{};
  if (!of_variant_time(variant_time, instant)) return u"failed to convert variant_time to SYSTEMTIME";
  calendar = calendar_of(instant);
  return {};
}

std::u16string_view variant_time_to_file_time(double variant_time, Core_CFileTime& file_time) noexcept {
  Instant instant{};
  if (!of_variant_time(variant_time, instant) || instant.day < file_epoch)
    return u"failed to convert variant_time to FILETIME";
  const std::int64_t ms = std::int64_t{(instant.day - file_epoch).count()} * ms_per_day + instant.ms;
  file_time = static_cast<Core_CFileTime>(ms) * 10000;
  return {};
}

std::u16string_view file_time_to_calendar(Core_CFileTime file_time, Core_CCalendarTime& calendar) noexcept {
  const std::int64_t ms = static_cast<std::int64_t>(file_time / 10000);
  const Instant instant{file_epoch + days{static_cast<int>(ms / ms_per_day)}, ms % ms_per_day};
  if (instant.day > last_day) return u"failed to convert FILETIME to SYSTEMTIME";
  calendar = calendar_of(instant);
  return {};
}

}  // namespace norvane
