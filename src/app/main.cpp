// The desktop program.
#include <QApplication>
#include <QIcon>
#include <filesystem>

#include "app/app_desk.h"
#include "app/start_words.h"
#include "core/definitions.h"
#include "core/files.h"
#include "core/folder_lock.h"
#include "core/settings.h"
#include "core/temporary_file.h"
#include "platform/outlined_style.h"
#include "platform/qt_dialogs.h"
#include "platform/qt_text.h"

namespace {

using namespace hyetex;

constexpr const char* Name = "hyetex";

commandline::Exit Fail(Dialogs& dialogs, const std::string& why) {
  commandline::Say(Name, why);
  dialogs.MessageBox("Hyetex", why, BoxButtons::Ok, BoxIcon::Critical);
  return commandline::Failed;
}

int Run(StartWords words) {
  QtDialogs dialogs;
  std::error_code error;
  std::filesystem::create_directories(words.Folder, error);
  if (error)
    return Fail(dialogs, "The program folder " + words.Folder + " cannot be made: " + error.message());
  const auto lock = FolderLock::Take(words.Folder);
  if (!lock) return Fail(dialogs, lock.error());
  if (const auto settings = CheckSettings(words.Folder); !settings) return Fail(dialogs, settings.error());
  for (const std::string& folder : {JoinPath(words.Folder, "Data"), TargetFolder(Settings(words.Folder))})
    ClearTemporaries(folder);
  AppDesk desk(std::move(words), dialogs);
  desk.Start();
  return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  auto line = ReadStartWords(words);
  if (!line) return commandline::Give(Name, line.error());

  int one = 1;
  QApplication app(one, argv);
  QApplication::setApplicationName("Hyetex");
  QApplication::setApplicationVersion(HYETEX_VERSION);
  QApplication::setWindowIcon(QIcon(":/icons/hyetex.svg"));
  QApplication::setQuitOnLastWindowClosed(false);
  OutlinedStyle::Install();
  return Run(*std::move(line));
}
