#include "chartfiles/chart_scan.h"

#include <algorithm>
#include <charconv>

#include "core/numbers.h"

namespace hyetex {
namespace {

constexpr std::string_view Digits = "0123456789abcdef";
constexpr std::size_t ChecksumLength = 64;

bool IsHex(std::string_view text) { return text.find_first_not_of(Digits) == std::string_view::npos; }

}  // namespace

std::string ScanLineText(const ScanReference& scan) {
  std::string text = ShortText(scan.Page) + " " + scan.Sha256 + " ";
  for (char c : scan.Path) {
    const auto byte = static_cast<unsigned char>(c);
    text += Digits[byte >> 4];
    text += Digits[byte & 15];
  }
  return text;
}

std::optional<ScanReference> ParseScanLine(std::string_view text) {
  ScanReference scan;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), scan.Page);
  if (error != std::errc{} || scan.Page < 0) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  if (text.size() < ChecksumLength + 2 || text[0] != ' ' || text[ChecksumLength + 1] != ' ')
    return std::nullopt;
  scan.Sha256 = text.substr(1, ChecksumLength);
  const std::string_view path = text.substr(ChecksumLength + 2);
  if (!IsHex(scan.Sha256) || !IsHex(path) || path.empty() || path.size() % 2 != 0) return std::nullopt;
  for (std::size_t i = 0; i < path.size(); i += 2)
    scan.Path += static_cast<char>(Digits.find(path[i]) * 16 + Digits.find(path[i + 1]));
  return scan;
}

}  // namespace hyetex
