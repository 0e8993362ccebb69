#include "core/date_time.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace norvane {
namespace {

TEST(DateTime, VariantTimeBothWays) {
  double number = 0.0;
  EXPECT_TRUE(calendar_to_variant_time({2026, 11, 0, 21, 18, 0, 0, 0}, number).empty());
  EXPECT_EQ(number, 46347.75);
  EXPECT_TRUE(calendar_to_variant_time({1899, 12, 0, 29, 6, 0, 0, 0}, number).empty());
  EXPECT_EQ(number, -1.25);  // before the first day the time still counts forward
  Core_CCalendarTime calendar;
  for (const double value : {-657434.0, -1.25, 0.0, 0.5, 60.0, 36526.123456, 2958465.999}) {
    ASSERT_TRUE(variant_time_to_calendar(value, calendar).empty());
    ASSERT_TRUE(calendar_to_variant_time(calendar, number).empty());
    EXPECT_NEAR(number, value, 1e-8);
  }
  EXPECT_TRUE(variant_time_to_calendar(36525.99999999999, calendar).empty());
  EXPECT_EQ(calendar.year, 2000);  // rounds into the next day
  EXPECT_EQ(calendar.day_of_week, 6);
}

TEST(DateTime, FileTime) {
  Core_CFileTime file_time = 0;
  EXPECT_TRUE(variant_time_to_file_time(25569.0, file_time).empty());  // 1 January 1970
  EXPECT_EQ(file_time, 116444736000000000u);
  Core_CCalendarTime calendar;
  EXPECT_TRUE(file_time_to_calendar(file_time + 36005000000u, calendar).empty());
  EXPECT_EQ(calendar.year, 1970);
  EXPECT_EQ(calendar.hour, 1);
  EXPECT_EQ(calendar.milliseconds, 500);
}

TEST(DateTime, RefusesWhatNoCalendarHas) {
  double number = 7.0;
  Core_CCalendarTime calendar;
  Core_CFileTime file_time = 7;
  const std::u16string_view message = u"failed to convert SYSTEMTIME to variant_time";
  EXPECT_EQ(calendar_to_variant_time({2025, 2, 0, 29, 0, 0, 0, 0}, number), message);
  EXPECT_EQ(calendar_to_variant_time({2024, 13, 0, 1, 0, 0, 0, 0}, number), message);
  EXPECT_EQ(calendar_to_variant_time({2024, 1, 0, 1, 24, 0, 0, 0}, number), message);
  EXPECT_EQ(calendar_to_variant_time({99, 1, 0, 1, 0, 0, 0, 0}, number), message);
  EXPECT_EQ(number, 7.0);
  for (const double bad : {-657435.0, 2958466.0, 1e300, std::nan(""), std::numeric_limits<double>::infinity()})
    EXPECT_EQ(variant_time_to_calendar(bad, calendar), u"failed to convert variant_time to SYSTEMTIME");
  EXPECT_EQ(variant_time_to_file_time(-200000.0, file_time), u"failed to convert variant_time to FILETIME");
  EXPECT_EQ(file_time_to_calendar(~Core_CFileTime{0}, calendar), u"failed to convert FILETIME to SYSTEMTIME");
  EXPECT_EQ(file_time, 7u);
}

}  // namespace
}  // namespace norvane
