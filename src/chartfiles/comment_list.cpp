#include "chartfiles/comment_list.h"

#include "core/comments.h"
#include "core/numbers.h"

namespace hyetex {
namespace {

constexpr std::string_view Break = "\r\n";

void AddEntry(std::string& text, std::string_view code, std::string_view meaning) {
  text.append("CODE").append(code).append(" - ").append(meaning).append(Break);
}

}  // namespace

std::string CommentListText(std::span<const CommentRecord> userComments) {
  std::string text;
  for (const CommentRecord& comment : userComments)
    if (comment.Code != 0 || !comment.Description.empty())
      AddEntry(text, ShortText(comment.Code), comment.Description);
  text.append(Break).append("Programmer's Comments Codes").append(Break);
  for (const FixedComment& comment : FixedComments()) AddEntry(text, ShortText(comment.Code), comment.Text);
  return text;
}

}  // namespace hyetex
