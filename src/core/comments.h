// Comment text: entries joined by "::". An entry is a code ("CODE" and a number), a code with a text
// ("CODE205 + Clock malfunction"), or free text.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace hyetex {

/// The codes that the program itself sets and reads.
enum CommentCode : int {
  CodeNewSegment = 201,
  CodeAlpha = 202,
  CodeLeveled = 203,
  CodeNewSheet = 204,
  CodeGapEnd = 205,
  CodeRecoveredEnd = 206,
  CodeDigitizedAlert = 210,
  CodeManualAlert = 211,
  CodeTimeAlert = 212,
  CodeDefective = 213,
};

struct FixedComment {
  int Code;
  std::string_view Text;
};
/// All fixed codes with their texts, in the order in which the comments list shows them.
std::span<const FixedComment> FixedComments();

/// "CODE" and the number.
std::string CodeText(int code);
/// Whether "CODE" followed by just this number occurs anywhere in the comment.
bool HasCode(std::string_view comment, int code);
/// Sets an empty comment to `text`, else joins it on with "::".
void AddCode(std::string& comment, std::string_view text);
/// The entries of a comment in their order; none for an empty one.
std::vector<std::string> CommentEntries(std::string_view comment);

/// The entry that a typed code and description make: "CODE205 + text", "CODE205", or the text alone; empty
/// when both are. The code counts as its leading number.
std::string MakeComment(std::string_view code, std::string_view text);

}  // namespace hyetex
