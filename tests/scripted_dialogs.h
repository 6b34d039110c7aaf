// Boxes that answer by themselves and tell what they were asked.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "platform/dialogs.h"

namespace hyetex::test {

/// A message box as it was shown.
struct ShownBox {
  std::string Title, Text;
  BoxButtons Buttons = BoxButtons::Ok;
  BoxIcon Icon = BoxIcon::None;

  bool operator==(const ShownBox&) const = default;
  friend void PrintTo(const ShownBox& box, std::ostream* out) {
    *out << "[" << box.Title << "] " << box.Text << " (buttons " << static_cast<int>(box.Buttons) << ", icon "
         << static_cast<int>(box.Icon) << ")";
  }
};

inline ShownBox Warning(std::string title, std::string text) {
  return {std::move(title), std::move(text), BoxButtons::Ok, BoxIcon::Warning};
}

/// An input box as it was shown.
struct ShownInput {
  std::string Title, Prompt, Initial;
  bool operator==(const ShownInput&) const = default;
  friend void PrintTo(const ShownInput& box, std::ostream* out) {
    *out << "[" << box.Title << "] " << box.Prompt << " (" << box.Initial << ")";
  }
};

/// Gives the answers that the test has laid down, in their order. A box with one button needs none; any other
/// that finds none fails the test.
class ScriptedDialogs : public Dialogs {
 public:
  std::deque<BoxAnswer> Answers;
  std::vector<ShownBox> Boxes;
  std::deque<std::optional<std::string>> Typed;  ///< into input boxes; nothing: cancelled
  std::vector<ShownInput> Inputs;
  std::deque<std::optional<std::string>> Folders;  ///< that are chosen
  std::deque<std::optional<std::string>> Files;    ///< to save in
  std::deque<std::optional<std::string>> Opened;   ///< files that are chosen to be read
  std::function<void()> Meanwhile;                 ///< what others do while the next question stands

  BoxAnswer MessageBox(const std::string& title, const std::string& text, BoxButtons buttons,
                       BoxIcon icon) override {
    Boxes.push_back({title, text, buttons, icon});
    if (buttons == BoxButtons::Ok) return BoxAnswer::Ok;
    if (const auto meanwhile = std::exchange(Meanwhile, nullptr)) meanwhile();
    if (Answers.empty()) {
      Unexpected(text);
      return buttons == BoxButtons::YesNo || buttons == BoxButtons::NoUnlessYes ? BoxAnswer::No
                                                                                : BoxAnswer::Cancel;
    }
    const BoxAnswer answer = Answers.front();
    Answers.pop_front();
    return answer;
  }
  std::optional<std::string> InputBox(const std::string& title, const std::string& prompt,
                                      const std::string& initial) override {
    Inputs.push_back({title, prompt, initial});
    if (Typed.empty()) return Unexpected(prompt);
    const auto typed = Typed.front();
    Typed.pop_front();
    return typed;
  }
  std::optional<std::string> ChooseFolder(const std::string& title, const std::string&) override {
    if (Folders.empty()) return Unexpected(title);
    const auto chosen = Folders.front();
    Folders.pop_front();
    return chosen;
  }
  std::optional<std::string> ChooseFileToSave(const std::string& title, const std::string&) override {
    if (Files.empty()) return Unexpected(title);
    const auto chosen = Files.front();
    Files.pop_front();
    return chosen;
  }
  std::optional<std::string> ChooseFile(const std::string& title, const std::string&,
                                        const std::string&) override {
    if (Opened.empty()) return Unexpected(title);
    const auto chosen = Opened.front();
    Opened.pop_front();
    return chosen;
  }

 private:
  static std::nullopt_t Unexpected(const std::string& question) {
    ADD_FAILURE() << "nobody expected the question: " << question;
    return std::nullopt;
  }
};

}  // namespace hyetex::test
