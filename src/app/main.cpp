// The desktop program.
#include <QApplication>
#include <QIcon>
#include <QLockFile>
#include <filesystem>

#include "app/app_desk.h"
#include "app/start_words.h"
#include "core/files.h"
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
  // Settings and lists are rewritten whole, so two programs would undo each other's changes.
  QLockFile lock(ToQt(JoinPath(words.Folder, "hyetex.lock")));
  lock.setStaleLockTime(0);
  if (!lock.tryLock()) {
    if (lock.error() == QLockFile::LockFailedError)
      return Fail(dialogs, "Hyetex is already running on the program folder " + words.Folder);
    return Fail(dialogs, "The program folder " + words.Folder + " cannot be written");
  }
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
  return Run(*std::move(line));
}
