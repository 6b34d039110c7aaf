#include "scan/find_scans.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>

#include "core/files.h"
#include "core/text.h"

namespace hyetex {
namespace {

constexpr std::array<std::string_view, 9> Endings{".PNG",  ".JPG", ".JPEG", ".JPE", ".TIF",
                                                  ".TIFF", ".BMP", ".DIB",  ".PDF"};
constexpr std::size_t DayDigits = 8, TimeDigits = 4;

// Upper case, with a single blank for whatever stands between words.
std::string Plain(std::string_view text) {
  std::string plain;
  for (const char c : UpperAscii(ShownText(text))) {
    const bool apart = c == '-' || c == '_' || c == ' ';
    if (!apart)
      plain += c;
    else if (!plain.empty() && plain.back() != ' ')
      plain += ' ';
  }
  while (!plain.empty() && plain.back() == ' ') plain.pop_back();
  return plain;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsWordCharacter(char c) {
  return IsDigit(c) || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
}

std::size_t DigitsAt(std::string_view text, std::size_t at) {
  std::size_t end = at;
  while (end < text.size() && IsDigit(text[end])) ++end;
  return end - at;
}

struct Chart {
  std::size_t Index;
  std::string Code, Time;
};
using ChartsByDay = std::map<std::string, std::vector<Chart>, std::less<>>;

// How well a name fits a chart; the larger the better.
struct Fit {
  std::size_t Length = 0;  // of what they have in common
  bool Whole = false;      // there is nothing else in the name

  bool operator==(const Fit&) const = default;
  bool operator<(const Fit& other) const {
    return std::pair(Length, Whole) < std::pair(other.Length, other.Whole);
  }
};

// Calls `take(index, fit)` for each chart that a name fits.
template <typename Take>
void ForEachFit(const std::string& name, const ChartsByDay& charts, Take&& take) {
  for (std::size_t at = 0; at < name.size(); ++at) {
    const std::size_t digits = DigitsAt(name, at);
    if (digits == DayDigits && at > 0 && name[at - 1] == ' ') {
      const auto day = charts.find(std::string_view(name).substr(at, DayDigits));
      std::size_t end = at + DayDigits;
      std::string_view time;
      if (end < name.size() && name[end] == ' ' && DigitsAt(name, end + 1) == TimeDigits) {
        time = std::string_view(name).substr(end + 1, TimeDigits);
        end += 1 + TimeDigits;
      }
      if (day != charts.end())
        for (const Chart& chart : day->second) {
          const std::size_t length = chart.Code.size();
          if (at < length + 1 || name.compare(at - 1 - length, length, chart.Code) != 0) continue;
          const std::size_t begin = at - 1 - length;
          if (begin > 0 && IsWordCharacter(name[begin - 1])) continue;
          if (!time.empty() && time != chart.Time) continue;
          take(chart.Index, Fit{end - begin, begin == 0 && end == name.size()});
        }
    }
    at += digits;
  }
}

// What fits a chart best so far.
struct Best {
  Fit How;
  std::vector<std::size_t> Files;
  void Take(std::size_t file, const Fit& fit) {
    if (fit < How || (!Files.empty() && Files.back() == file)) return;
    if (How < fit) Files.clear();
    How = fit;
    Files.push_back(file);
  }
};

Result<std::vector<std::string>> NamesIn(const std::string& folder) {
  namespace fs = std::filesystem;
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
    if (std::error_code ignored; at->is_regular_file(ignored)) {
      std::string name = at->path().filename().string();
      if (IsScanName(name)) names.push_back(std::move(name));
    }
  if (error) return Failure("Cannot read the folder " + folder + ": " + error.message());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

bool IsScanName(std::string_view name) {
  const std::string upper = UpperAscii(name);
  return std::any_of(Endings.begin(), Endings.end(),
                     [&](std::string_view end) { return upper.ends_with(end); });
}

Result<std::vector<Result<std::string>>> FindScans(const std::string& folder,
                                                   std::span<const WantedScan> charts) {
  const auto names = NamesIn(folder);
  if (!names) return Failure(names.error());
  ChartsByDay byDay;
  for (std::size_t i = 0; i < charts.size(); ++i) {
    const std::string code = DateCode(charts[i].Start);
    byDay[code.substr(0, DayDigits)].push_back(
        {i, Plain(charts[i].InstrumentCode), code.substr(DayDigits + 1, TimeDigits)});
  }
  std::vector<Best> best(charts.size());
  std::vector<std::size_t> chartsOfFile(names->size());
  for (std::size_t file = 0; file < names->size(); ++file) {
    const std::string& name = (*names)[file];
    std::map<std::size_t, Fit> fits;
    Fit most;
    ForEachFit(Plain(name.substr(0, name.rfind('.'))), byDay, [&](std::size_t chart, const Fit& fit) {
      fits[chart] = std::max(fits[chart], fit);
      most = std::max(most, fit);
    });
    // One code may end another: the file is of the longer one.
    for (const auto& [chart, fit] : fits)
      if (fit == most) {
        ++chartsOfFile[file];
        best[chart].Take(file, fit);
      }
  }
  std::vector<Result<std::string>> found;
  for (std::size_t i = 0; i < charts.size(); ++i) {
    const std::vector<std::size_t>& files = best[i].Files;
    if (files.empty())
      found.push_back(Failure("No scan is named as this chart, " + ShownText(charts[i].InstrumentCode) + "-" +
                              DateCode(charts[i].Start) + "."));
    else if (files.size() > 1)
      found.push_back(Failure("Several scans are named as this chart: " + ShownText((*names)[files[0]]) +
                              (files.size() == 2 ? " and " : ", ") + ShownText((*names)[files[1]]) +
                              (files.size() == 2 ? "" : ", " + AndMore(files.size() - 2)) + "."));
    else if (chartsOfFile[files[0]] > 1)
      found.push_back(Failure("The scan " + ShownText((*names)[files[0]]) +
                              " is named as several charts; add the time to its name."));
    else
      found.push_back(JoinPath(folder, (*names)[files[0]]));
  }
  return found;
}

}  // namespace hyetex
