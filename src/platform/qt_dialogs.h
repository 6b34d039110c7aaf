// The boxes on the screen.
#pragma once

#include <QWidget>

#include "platform/dialogs.h"

namespace hyetex {

class QtDialogs : public Dialogs {
 public:
  BoxAnswer MessageBox(const std::string& title, const std::string& text, BoxButtons buttons,
                       BoxIcon icon) override;
  std::optional<std::string> InputBox(const std::string& title, const std::string& prompt,
                                      const std::string& initial) override;
  std::optional<std::string> PasswordBox(const std::string& title, const std::string& prompt,
                                         const std::string& initial) override;
  std::optional<std::string> ChooseFolder(const std::string& title, const std::string& start) override;
  std::optional<std::string> ChooseFileToSave(const std::string& title, const std::string& start) override;
  std::optional<std::string> ChooseFile(const std::string& title, const std::string& start,
                                        const std::string& filter) override;
};

}  // namespace hyetex
