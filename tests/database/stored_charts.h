// Chart files as text, in the form in which CHART_ASCII keeps them.
#pragma once

#include <string>
#include <vector>

#include "chartfiles/chart_text.h"
#include "core/dates.h"

namespace hyetex::test {

struct StoredChart {
  std::string Instrument = "RG12";
  Date Start = MakeDate(1998, 3, 5, 10), End = MakeDate(1998, 3, 5, 12);
  int Method = 0;
  std::string Digitized = "10", Selected = "10", Manual = "12", Alpha = "None", Comment = {};
  /// "along,across,comment"; along is millimetres from the zero point, which counts as the first.
  std::vector<std::string> Points = {"30,5,", "60,5,CODE205", "90,10,", "120,20,"};

  std::string Text() const {
    std::string text =
        ChartFileName(Instrument, Start) + "\r\nHYETEX88 ASCII FILE\r\nInstrument Code: " + Instrument +
        "\r\nChart Method: " + std::to_string(Method) + "\r\nStart: " + GeneralDateText(Start) +
        "\r\nEnd: " + GeneralDateText(End) + "\r\nDigitized Depth: " + Digitized +
        "\r\nSelected Depth: " + Selected + "\r\nManual Depth: " + Manual +
        "\r\nChart Reliability: 1-Acceptable\r\nDigitation Points:\r\n";
    for (const std::string& point : Points) text += point + "\r\n";
    return text + "General Comment: " + Comment + "\r\nAlpha Value Selected: " + Alpha + "\r\n";
  }
};

}  // namespace hyetex::test
