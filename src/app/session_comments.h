// The comment window at work for a digitizing session: for the points that are selected, or for the whole
// chart.
#pragma once

#include "chartfiles/comment_target.h"
#include "digitizing/action_machine.h"

namespace hyetex {

class SessionComments : public CommentTarget {
 public:
  /// The machine has asked for the window, and must outlive it.
  explicit SessionComments(ActionMachine& machine)
      : machine_(machine), request_(machine.OpenCommentRequest().value_or(CommentRequest{})) {}

  std::string Title() const override { return request_.Title; }
  // The machine names a code where the point's meaning asks for one; an empty one is meant, too.
  std::optional<std::string> Code() const override { return request_.Code; }
  std::vector<std::string> Choices() const override { return request_.Choices; }
  bool CanClear() const override { return true; }
  std::optional<std::string> Add(std::string_view code, std::string_view text) override {
    return machine_.AddComment(code, text);
  }
  void Clear() override { machine_.ClearComments(); }
  void Closed() override { machine_.CommentClosed(); }

 private:
  ActionMachine& machine_;
  const CommentRequest request_;
};

}  // namespace hyetex
