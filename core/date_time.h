// Calendar time, file time and variant time.
//
// Variant time is a spreadsheet's date number: days since 30 December 1899, the fraction of the day as time. Before
// that day the fraction still counts forward: -1.25 is 29 December 1899, 06:00. Range: the years 100 to 9999.
#pragma once

#include <cstdint>
#include <string_view>

namespace norvane {

// The system's calendar time, in UTC or local time as the caller means it.
struct Core_CCalendarTime {
  std::uint16_t year = 1899;
  std::uint16_t month = 12;       // 1 to 12
  std::uint16_t day_of_week = 6;  // 0 Sunday to 6 Saturday; ignored on input
  std::uint16_t day = 30;         // 1 to 31
  std::uint16_t hour = 0;
  std::uint16_t minute = 0;
  std::uint16_t second = 0;
  std::uint16_t milliseconds = 0;
};

// 100 ns since 1 January 1601.
using Core_CFileTime = std::uint64_t;

// Each returns the empty text, or the message of its failure (a time out of range, a day that no calendar has, a
// number that is not finite); the result is left alone then.
std::u16string_view calendar_to_variant_time(const Core_CCalendarTime& calendar, double& variant_time) noexcept;
std::u16string_view variant_time_to_calendar(double variant_time, Core_CCalendarTime& calendar) noexcept;
std::u16string_view variant_time_to_file_time(double variant_time, Core_CFileTime& file_time) noexcept;
std::u16string_view file_time_to_calendar(Core_CFileTime file_time, Core_CCalendarTime& calendar) noexcept;

}  // namespace norvane
