// What the comment window works for: the points selected in the digitizing window, a chart as a whole, a
// task, the chart in the editor. The window only asks for code and text.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hyetex {

class CommentTarget {
 public:
  virtual ~CommentTarget() = default;

  /// The window's caption; empty for its own.
  virtual std::string Title() const { return {}; }
  /// The code to begin with; nothing for the one used last.
  virtual std::optional<std::string> Code() const { return std::nullopt; }
  /// Texts to pick from.
  virtual std::vector<std::string> Choices() const { return {}; }
  virtual bool CanClear() const { return false; }

  /// Adds what code and text make (MakeComment); one of them is not empty. Says why it cannot be taken.
  virtual std::optional<std::string> Add(std::string_view code, std::string_view text) = 0;
  /// Takes all comments away.
  virtual void Clear() {}
  /// The window has closed; the window that opened it goes on.
  virtual void Closed() = 0;
};

}  // namespace hyetex
