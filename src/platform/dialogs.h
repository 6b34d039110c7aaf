// Message, input and file boxes. Tests script the answers and read what was shown.
#pragma once

#include <optional>
#include <string>

namespace hyetex {

enum class BoxIcon { None, Information, Question, Warning, Critical };
/// The button that Return presses is the first one; with NoUnlessYes and CancelUnlessOk it is the second: for
/// questions whose Yes or OK takes something away, so that a key struck in haste does not.
enum class BoxButtons { Ok, OkCancel, YesNo, YesNoCancel, NoUnlessYes, CancelUnlessOk };
enum class BoxAnswer { Ok, Cancel, Yes, No };

/// All texts are UTF-8. Every call waits for the operator.
class Dialogs {
 public:
  virtual ~Dialogs() = default;

  /// Closing the box counts as Cancel, or as No where there is no Cancel, or as Ok where that is all.
  virtual BoxAnswer MessageBox(const std::string& title, const std::string& text,
                               BoxButtons buttons = BoxButtons::Ok, BoxIcon icon = BoxIcon::None) = 0;
  /// The text typed; nothing if the box was cancelled.
  virtual std::optional<std::string> InputBox(const std::string& title, const std::string& prompt,
                                              const std::string& initial = {}) = 0;
  /// The same for what nobody else at the desk should read.
  virtual std::optional<std::string> PasswordBox(const std::string& title, const std::string& prompt,
                                                 const std::string& initial = {}) {
    return InputBox(title, prompt, initial);
  }
  virtual std::optional<std::string> ChooseFolder(const std::string& title, const std::string& start) = 0;
  virtual std::optional<std::string> ChooseFileToSave(const std::string& title, const std::string& start) = 0;
  /// A file that is there. `filter` is as in "xML files (*.xml)", or empty for all files.
  virtual std::optional<std::string> ChooseFile(const std::string& title, const std::string& start,
                                                const std::string& filter) = 0;
};

/// Asks, before a window closes, about what was entered in it and not taken. `take` takes it, and tells the
/// operator where it cannot. Whether the window may close.
template <typename Take>
bool MayCloseAfter(Dialogs& dialogs, const std::string& title, const std::string& question, Take take) {
  const BoxAnswer answer = dialogs.MessageBox(title, question, BoxButtons::YesNoCancel, BoxIcon::Question);
  return answer == BoxAnswer::No || (answer == BoxAnswer::Yes && take());
}

/// With nobody at the desk: messages are passed over, questions all get one answer, nothing is typed or
/// chosen.
class UnattendedDialogs : public Dialogs {
 public:
  bool Agrees = false;  ///< OK and Yes, instead of Cancel and No

  BoxAnswer MessageBox(const std::string&, const std::string&, BoxButtons buttons, BoxIcon) override {
    switch (buttons) {
      case BoxButtons::Ok:
        return BoxAnswer::Ok;
      case BoxButtons::OkCancel:
      case BoxButtons::CancelUnlessOk:
        return Agrees ? BoxAnswer::Ok : BoxAnswer::Cancel;
      case BoxButtons::YesNo:
      case BoxButtons::NoUnlessYes:
        return Agrees ? BoxAnswer::Yes : BoxAnswer::No;
      case BoxButtons::YesNoCancel:
        return Agrees ? BoxAnswer::Yes : BoxAnswer::Cancel;
    }
    return BoxAnswer::Cancel;
  }
  std::optional<std::string> InputBox(const std::string&, const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::optional<std::string> ChooseFolder(const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::optional<std::string> ChooseFileToSave(const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::optional<std::string> ChooseFile(const std::string&, const std::string&, const std::string&) override {
    return std::nullopt;
  }
};

}  // namespace hyetex
