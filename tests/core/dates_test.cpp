#include "core/dates.h"

#include <cmath>
#include <random>

namespace hyetex {
namespace {

TEST(Dates, CountsDaysThroughLeapYearsAndCenturies) {
  using Case = std::tuple<double, int, int, int>;
  for (const auto& [days, year, month, day] :
       {Case(0, 1899, 12, 30), Case(-1, 1899, 12, 29), Case(2, 1900, 1, 1), Case(60, 1900, 2, 28),
        Case(61, 1900, 3, 1), Case(25569, 1970, 1, 1), Case(35859, 1998, 3, 5), Case(36585, 2000, 2, 29),
        Case(36586, 2000, 3, 1), Case(73109, 2100, 2, 28), Case(73110, 2100, 3, 1)}) {
    EXPECT_EQ(MakeDate(year, month, day), days);
    const CalendarTime t = ToCalendar(days);
    EXPECT_EQ(Case(days, t.Year, t.Month, t.Day), Case(days, year, month, day));
  }
  EXPECT_EQ(IsoText(-1e300), "0100-01-01T00:00:00");
  EXPECT_EQ(IsoText(1e300), "9999-12-31T23:59:59");
  EXPECT_EQ(IsoText(NAN), "1899-12-30T00:00:00");
}

TEST(Dates, HalfPastStaysHalfPast) {
  const Date noon = MakeDate(1998, 3, 5, 12, 30);
  for (const double off : {0.0, 1e-9, -1e-9, 4e-6, -4e-6}) {
    EXPECT_EQ(DateText(noon + off), "05/03/98 12:30");
    EXPECT_EQ(DateCode(noon + off), "19980305-1230");
    EXPECT_EQ(GeneralDateText(noon + off), "05/03/1998 12:30:00");
  }
  Date steps = MakeDate(1998, 3, 5);
  for (int minute = 0; minute < 1440; ++minute, steps += 1.0 / 1440)
    ASSERT_EQ(ToCalendar(steps).Minute, minute % 60);
}

TEST(Dates, WritesTheTimeOnlyWhereThereIsOne) {
  EXPECT_EQ(DateText(MakeDate(1998, 3, 5)), "05/03/98");
  EXPECT_EQ(DateText(MakeDate(2005, 12, 31, 0, 0, 40)), "31/12/05 00:00");
  EXPECT_EQ(DateText(MakeDate(1998, 3, 5) - 1e-9), "05/03/98");
  EXPECT_EQ(DateText(0.5), "12:00:00");
  EXPECT_EQ(DateText(0.75 + 1.0 / 86400), "18:00:01");
  EXPECT_EQ(DateCode(MakeDate(987, 6, 5, 4, 3)), "09870605-0403");
  EXPECT_EQ(GeneralDateText(MakeDate(1998, 3, 5)), "05/03/1998");
}

TEST(Dates, ReadsFixedPlacesAndRefusesTheRest) {
  using Case = std::pair<const char*, const char*>;
  for (const auto& [text, iso] :
       {Case("05/03/98 12:30", "1998-03-05T12:30:00"), Case(" 05/03/98 ", "1998-03-05T00:00:00"),
        Case("05.03/1998 1:02:03", "1998-03-05T01:02:03"), Case("01/01/29", "2029-01-01T00:00:00"),
        Case("01/01/30", "1930-01-01T00:00:00"), Case("31/02/98", "1998-03-03T00:00:00"),
        Case("29/02/00", "2000-02-29T00:00:00"), Case("31/12/1899 23:59:59", "1899-12-31T23:59:59"),
        Case("1998-03-05", "1998-03-05T00:00:00"), Case("1998-03-05 12:30", "1998-03-05T12:30:00"),
        Case("1998-03-05T12:30:15", "1998-03-05T12:30:15"), Case("18:45", "1899-12-30T18:45:00")}) {
    const auto parsed = ParseDateText(text);
    ASSERT_TRUE(parsed) << text;
    EXPECT_EQ(IsoText(parsed->Value), iso) << text;
  }
  EXPECT_TRUE(ParseDateText("05/03/98")->TwoDigitYear);
  EXPECT_FALSE(ParseDateText("05/03/1998")->TwoDigitYear);
  for (const char* refused :
       {"",         "of the chart", "5/3/98",  "05/3/98",   "00/03/98",  "32/03/98",   "05/13/98",
        "05/00/98", "05/03/",       "05/03/9", "05/03/998", "05/03/98x", "05/03/0099", "1998-13-01",
        "1998-03",  "12-03-98",     "35859",   "12:30:",    "ab/cd/ef",  "+5/03/98"})
    EXPECT_FALSE(ParseDateText(refused)) << refused;
  for (const char* time : {"12", "12:", "12:3", "24:00", "12:60", "12:30:60", "12:30pm"})
    EXPECT_FALSE(ParseDateText(std::string("05/03/98 ") + time)) << time;
}

TEST(Dates, TypedAreDaysOfTheCalendarDayFirst) {
  for (const char* typed : {"12/04/1999", "12.4.1999", "12041999", " 12-4-1999 ", "12 4 1999", "1999-04-12"})
    EXPECT_EQ(TypedDate(typed), MakeDate(1999, 4, 12)) << typed;
  EXPECT_EQ(TypedDate("01/01/1850"), MakeDate(1850, 1, 1));
  EXPECT_EQ(TypedDate("31122100"), MakeDate(2100, 12, 31));
  EXPECT_EQ(TypedDate("29/02/2000"), MakeDate(2000, 2, 29));
  for (const char* none : {"", "12/04/99", "120499", "1204199", "12/04/19990", "31/12/1849", "01/01/2101",
                           "30/02/1999", "29/02/1999", "31/04/1999", "0/4/1999", "12/13/1999", "12/04/1999x",
                           "12//04/1999", "12/04", "12/04/1999 08:00", "1999/04/12", "12041999/"})
    EXPECT_EQ(TypedDate(none), std::nullopt) << none;
}

TEST(Dates, EverySecondReadsBackTheSame) {
  std::mt19937_64 random(2);
  std::uniform_int_distribution<long long> second(2LL * 86400, 73050LL * 86400);
  for (int i = 0; i < 20000; ++i) {
    const Date date = static_cast<double>(second(random)) / 86400;
    const CalendarTime t = ToCalendar(date);
    const Date made = MakeDate(t.Year, t.Month, t.Day, t.Hour, t.Minute, t.Second);
    ASSERT_NEAR(made, date, 1e-10);
    ASSERT_EQ(ParseDateText(GeneralDateText(date))->Value, made) << GeneralDateText(date);
    ASSERT_EQ(ParseDateText(IsoText(date))->Value, made);
    if (t.Year >= 1930 && t.Year < 2030) {
      ASSERT_EQ(ParseDateText(DateText(date))->Value, MakeDate(t.Year, t.Month, t.Day, t.Hour, t.Minute));
    }
  }
}

}  // namespace
}  // namespace hyetex
