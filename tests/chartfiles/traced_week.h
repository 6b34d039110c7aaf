// A week's chart, traced and ready to be saved.
#pragma once

#include "chartfiles/chart_text.h"
#include "chartfiles/plain_session.h"

namespace hyetex::test {

inline const ChartOrigin WeekOrigin{"C", "A", "S", "RG12", "U"};
constexpr const char* WeekFile = "RG12-19980305-1230.dat";

inline ChartRecord WeekChart() {
  ChartRecord chart;
  chart.StartTime = MakeDate(1998, 3, 5, 12, 30);
  chart.EndTime = chart.StartTime + 7;
  chart.EyedDepth = 14;
  chart.ManualDepth = 11;
  chart.Reliability = 2;
  return chart;
}

inline Session TracedWeek() {
  Session session = PlainSession(WeekChart());
  session.Line.Add(0, 0);
  session.Line.Add(7, 12);
  return session;
}

}  // namespace hyetex::test
