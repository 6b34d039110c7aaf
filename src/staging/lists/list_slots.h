// The one description of how each list and record stands in `lists.dat`, and the two that follow it: the
// encoder, which also tells whether a record fits, and the decoder.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/records.h"
#include "staging/lists/lists.h"

namespace hyetex {

inline constexpr std::size_t SlotBytes = 128;
inline constexpr int UserTextShift = 20;

/// A text that stands in the file with `UserTextShift` added to each byte.
struct ShiftedText {
  std::string& Plain;
};

// The fields of each record in file order: `take(label, field)` is called for each.
template <typename Take>
void VisitFields(ChartTypeRecord& r, Take&& take) {
  take("name", r.Name);
  take("height", r.ChartHeightMm);
  take("depth scale", r.DepthScale);
  take("time scale", r.TimeScale);
  take("method", r.ChartMethod);
  take("horizontal distance", r.MiddleToBottomMm);
}
template <typename Take>
void VisitFields(std::string& core, Take&& take) {
  take("name", core);
}
template <typename Take>
void VisitFields(AgencyRecord& r, Take&& take) {
  take("name", r.Name);
  take("core", r.Core);
}
template <typename Take>
void VisitFields(StationRecord& r, Take&& take) {
  take("name", r.Name);
  take("instrument code", r.InstrumentCode);
  take("core", r.Core);
  take("agency", r.Agency);
}
template <typename Take>
void VisitFields(UserRecord& r, Take&& take) {
  take("name", ShiftedText{r.Name});
  take("password", ShiftedText{r.Password});
  take("level", r.Level);
}
template <typename Take>
void VisitFields(CommentRecord& r, Take&& take) {
  take("description", r.Description);
  take("code", r.Code);
}
/// A list's header: its highest index.
template <typename Take>
void VisitFields(std::int16_t& highestIndex, Take&& take) {
  take("highest index", highestIndex);
}

struct ListLimits {
  std::string_view Name;  ///< what one entry is called
  int MaxIndex;
};
template <typename Record>
inline constexpr ListLimits LimitsOf{};
template <>
inline constexpr ListLimits LimitsOf<ChartTypeRecord>{"chart type", MaxChartType};
template <>
inline constexpr ListLimits LimitsOf<std::string>{"core", MaxCore};
template <>
inline constexpr ListLimits LimitsOf<AgencyRecord>{"agency", MaxAgency};
template <>
inline constexpr ListLimits LimitsOf<StationRecord>{"station", MaxStation};
template <>
inline constexpr ListLimits LimitsOf<UserRecord>{"user", MaxUser};
template <>
inline constexpr ListLimits LimitsOf<CommentRecord>{"comment", MaxComment};

/// Calls `take(list)` for each list, in file order, until it returns false.
template <typename Lists, typename Take>
bool VisitLists(Lists& lists, Take&& take) {
  return take(lists.ChartTypes) && take(lists.Cores) && take(lists.Agencies) && take(lists.Stations) &&
         take(lists.Users) && take(lists.Comments);
}

/// Makes a record's bytes, and finds why they cannot stand in a slot.
class SlotEncoder {
 public:
  void operator()(std::string_view label, const std::string& text) {
    textBytes_ += text.size();
    texts_ += (texts_.empty() ? "" : " and ") + std::string(label);
    Unsigned16(static_cast<std::uint16_t>(text.size()));
    bytes_ += text;
  }
  void operator()(std::string_view label, ShiftedText text) {
    const auto shifted = ShiftText(text.Plain, UserTextShift);
    if (!shifted) problem_ = "The " + std::string(label) + " holds a character that cannot be stored.";
    (*this)(label, shifted ? *shifted : text.Plain);
  }
  void operator()(std::string_view, std::int16_t number) { Unsigned16(static_cast<std::uint16_t>(number)); }
  void operator()(std::string_view label, float number) {
    if (!std::isfinite(number)) problem_ = "The " + std::string(label) + " is not a finite number.";
    std::uint32_t bits;
    std::memcpy(&bits, &number, sizeof bits);
    Unsigned16(static_cast<std::uint16_t>(bits & 0xFFFF));
    Unsigned16(static_cast<std::uint16_t>(bits >> 16));
  }

  const std::string& Bytes() const { return bytes_; }
  std::optional<std::string> Problem() const {
    if (bytes_.size() <= SlotBytes) return problem_;
    const std::size_t room = SlotBytes - (bytes_.size() - textBytes_);
    return "The " + texts_ + (texts_.find(" and ") == std::string::npos ? "" : " together") +
           " may hold at most " + std::to_string(room) + " bytes, not " + std::to_string(textBytes_) + ".";
  }

 private:
  void Unsigned16(std::uint16_t number) {
    bytes_ += static_cast<char>(number & 0xFF);
    bytes_ += static_cast<char>(number >> 8);
  }

  std::string bytes_, texts_;
  std::size_t textBytes_ = 0;
  std::optional<std::string> problem_;
};

/// The encoding of a record of any list, or of a list's highest index.
template <typename Record>
SlotEncoder Encoded(Record record) {
  SlotEncoder encoder;
  VisitFields(record, encoder);
  return encoder;
}

/// Reads a record from a slot that the end of the file may have cut short, and finds what is damaged in it.
class SlotDecoder {
 public:
  explicit SlotDecoder(std::string_view slot) : slot_(slot.substr(0, SlotBytes)) {}

  void operator()(std::string_view label, std::string& text) { text = Take(label, Unsigned16(label)); }
  void operator()(std::string_view label, ShiftedText text) {
    std::string stored;
    (*this)(label, stored);
    auto plain = ShiftText(stored, -UserTextShift);
    if (!plain) return Fail(label, "holds a byte below " + std::to_string(UserTextShift));
    text.Plain = std::move(*plain);
  }
  void operator()(std::string_view label, std::int16_t& number) {
    number = static_cast<std::int16_t>(Unsigned16(label));
  }
  void operator()(std::string_view label, float& number) {
    number = 0;
    if (const auto bytes = Take(label, 4); bytes.size() == 4) {
      std::uint32_t bits = 0;
      for (std::size_t i = 4; i-- > 0;) bits = bits << 8 | static_cast<unsigned char>(bytes[i]);
      std::memcpy(&number, &bits, sizeof number);
    }
    if (!std::isfinite(number)) Fail(label, "is not a finite number");
  }

  const std::optional<std::string>& Problem() const { return problem_; }
  /// Whether the file ended before the record did.
  bool IsCutShort() const { return at_ > slot_.size(); }

 private:
  // The next `count` bytes; none when the file ends before their last one.
  std::string_view Take(std::string_view label, std::size_t count) {
    if (at_ + count > SlotBytes) {
      Fail(label, "runs past the end of its slot");
      at_ = SlotBytes;
      return {};
    }
    at_ += count;
    return at_ <= slot_.size() ? slot_.substr(at_ - count, count) : std::string_view();
  }
  std::uint16_t Unsigned16(std::string_view label) {
    const std::string_view bytes = Take(label, 2);
    if (bytes.empty()) return 0;
    return static_cast<std::uint16_t>(static_cast<unsigned char>(bytes[0]) |
                                      static_cast<unsigned char>(bytes[1]) << 8);
  }
  void Fail(std::string_view label, const std::string& how) {
    if (!problem_) problem_ = "its " + std::string(label) + " " + how;
  }

  std::string_view slot_;
  std::size_t at_ = 0;
  std::optional<std::string> problem_;
};

}  // namespace hyetex
