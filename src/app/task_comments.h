// The comment window at work for the details of a staged chart.
#pragma once

#include "chartfiles/comment_target.h"
#include "core/desk.h"
#include "staging/windows/frmTaskDef.h"

namespace hyetex {

class TaskComments : public CommentTarget {
 public:
  /// The window must outlive the comment window, behind which it waits.
  TaskComments(Desk& desk, frmTaskDef& details) : desk_(desk), details_(details) {
    details_.EnableDetails(false);
  }

  std::optional<std::string> Add(std::string_view code, std::string_view text) override {
    return details_.AddComment(code, text);
  }
  void Closed() override {
    details_.EnableDetails(true);
    desk_.Open(WindowId::TaskDef);
  }

 private:
  Desk& desk_;
  frmTaskDef& details_;
};

}  // namespace hyetex
