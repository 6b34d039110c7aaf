#include "core/comments.h"

#include <array>

#include "core/numbers.h"

namespace hyetex {
namespace {

constexpr std::array<FixedComment, 10> Fixed{{
    {CodeNewSegment, "Beginning of new segment"},
    {CodeAlpha, "Alpha Location"},
    {CodeLeveled, "Leveled point"},
    {CodeNewSheet, "Beginning of another sheet"},
    {CodeRecoveredEnd, "End of recovered data"},
    {CodeGapEnd, "End of data gap"},
    {CodeDigitizedAlert, "Digitized depth factor alert"},
    {CodeManualAlert, "Manual depth factor alert"},
    {CodeTimeAlert, "Time factor alert"},
    {CodeDefective, "Extremely defective chart"},
}};

constexpr std::string_view Separator = "::";

}  // namespace

std::span<const FixedComment> FixedComments() { return Fixed; }

std::string CodeText(int code) { return "CODE" + std::to_string(code); }

bool HasCode(std::string_view comment, int code) {
  if (comment.empty()) return false;
  const auto isDigit = [&](std::size_t at) {
    return at < comment.size() && comment[at] >= '0' && comment[at] <= '9';
  };
  const std::string text = CodeText(code);
  for (std::size_t at = 0; (at = comment.find(text, at)) != std::string_view::npos;) {
    at += text.size();
    // CODE2050 and CODE205.5 are codes of their own.
    if (!isDigit(at) && !(comment.substr(at, 1) == "." && isDigit(at + 1))) return true;
  }
  return false;
}

void AddCode(std::string& comment, std::string_view text) {
  if (!comment.empty()) comment += Separator;
  comment += text;
}

std::vector<std::string> CommentEntries(std::string_view comment) {
  std::vector<std::string> entries;
  while (!comment.empty()) {
    const std::size_t end = comment.find(Separator);
    entries.emplace_back(comment.substr(0, end));
    if (end == std::string_view::npos) break;
    comment.remove_prefix(end + Separator.size());
  }
  return entries;
}

std::string MakeComment(std::string_view code, std::string_view text) {
  if (code.empty()) return std::string(text);
  const std::string entry = "CODE" + ShortText(static_cast<float>(TypedOrLeading(code)));
  return text.empty() ? entry : entry + " + " + std::string(text);
}

}  // namespace hyetex
