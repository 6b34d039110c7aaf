// The comment window's work for the running session: the points selected, or the whole chart.
#pragma once

#include "chartfiles/comment_target.h"
#include "digitizing/action_machine.h"

namespace hyetex {

/// For the request that the machine has just made of its view.
class MachineComments : public CommentTarget {
 public:
  MachineComments(ActionMachine& machine, CommentRequest request)
      : machine_(machine), request_(std::move(request)) {}

  std::string Title() const override { return request_.Title; }
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
  CommentRequest request_;
};

}  // namespace hyetex
