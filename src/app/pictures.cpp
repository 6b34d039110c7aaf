#include "app/pictures.h"

#include <QApplication>
#include <QPixmap>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <filesystem>

#include "app/app_desk.h"
#include "platform/qt_text.h"
#include "staging/windows/frmMessageBox.h"

namespace hyetex {
namespace {

namespace fs = std::filesystem;

constexpr QSize ShellSize(1280, 900);

/// Nobody is there to answer: an unfinished chart is resumed, messages are passed over.
class NobodyThere : public Dialogs {
 public:
  BoxAnswer MessageBox(const std::string&, const std::string&, BoxButtons buttons, BoxIcon) override {
    return buttons == BoxButtons::Ok || buttons == BoxButtons::OkCancel ? BoxAnswer::Ok : BoxAnswer::Yes;
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
};

QPalette DarkPalette() {
  QPalette dark(QColor(45, 48, 52), QColor(45, 48, 52));
  const QColor window(45, 48, 52), base(30, 32, 35), text(230, 232, 235), grey(128, 132, 138);
  for (const auto role : {QPalette::Window, QPalette::Button, QPalette::AlternateBase, QPalette::ToolTipBase})
    dark.setColor(role, window);
  dark.setColor(QPalette::Base, base);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
    dark.setColor(role, text);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    dark.setColor(QPalette::Disabled, role, grey);
  dark.setColor(QPalette::PlaceholderText, grey);
  dark.setColor(QPalette::Highlight, QColor(64, 128, 200));
  dark.setColor(QPalette::HighlightedText, Qt::white);
  return dark;
}

class Camera {
 public:
  explicit Camera(std::string folder) : folder_(std::move(folder)), light_(QApplication::palette()) {}

  void Take(QWidget* window, const std::string& name) {
    if (window == nullptr) return Miss("There is no window " + name);
    for (const bool dark : {false, true}) {
      QApplication::setPalette(dark ? DarkPalette() : light_);
      for (int i = 0; i < 4; ++i) QApplication::processEvents();
      const std::string file = folder_ + "/" + name + (dark ? "-dark.png" : ".png");
      if (!window->grab().save(ToQt(file))) Miss("The picture " + file + " cannot be written");
    }
    QApplication::setPalette(light_);
    QApplication::processEvents();
  }
  Result<void> Outcome() const { return trouble_.empty() ? Result<void>{} : Failure(trouble_); }

 private:
  void Miss(std::string why) {
    if (trouble_.empty()) trouble_ = std::move(why);
  }

  const std::string folder_;
  const QPalette light_;
  std::string trouble_;
};

void TakeSession(AppDesk& desk, Camera& camera) {
  auto* digitizing = qobject_cast<frmHyetex*>(desk.Window(WindowId::Digitizing));
  camera.Take(digitizing, "frmHyetex");
  camera.Take(desk.ShellWindow(), "mdiHyetex-digitizing");
  if (digitizing == nullptr) return;

  desk.Open(WindowId::Save);
  camera.Take(desk.Window(WindowId::Save), "frmSave");
  if (QWidget* save = desk.Window(WindowId::Save)) save->close();

  // The end of a data gap, a little behind the last point, asks for its reason.
  ActionMachine& machine = digitizing->Machine();
  const Trace& line = machine.State().Line;
  if (line.LastPoint() < 0) return;
  const DigitizedPoint& last = line.Points().back();
  machine.RunTool(tool::Gap);
  machine.PressAt(last.TrueX() + 20, last.Y);
  camera.Take(desk.Window(WindowId::Comment), "frmComment");
  if (QWidget* comment = desk.Window(WindowId::Comment)) {
    if (auto* list = comment->findChild<QPushButton*>("cmdList")) list->click();
    camera.Take(desk.Window(WindowId::LargeView), "frmLargeView");
    comment->close();
  }
}

}  // namespace

Result<void> TakePictures(const StartWords& words, const std::string& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  const QTemporaryDir place;
  if (error || !place.isValid()) return Failure("There is no room for pictures in " + folder);
  const std::string copy = FromQt(place.path());
  if (fs::is_directory(words.Folder)) fs::copy(words.Folder, copy, fs::copy_options::recursive, error);
  if (error) return Failure("The program folder " + words.Folder + " cannot be copied: " + error.message());

  QApplication::setStyle(QStyleFactory::create("Fusion"));
  QApplication::setFont(QFont("DejaVu Sans", 10));
  NobodyThere dialogs;
  Camera camera(folder);
  StartWords onCopy = words;
  onCopy.Folder = copy;
  {
    onCopy.Task.reset();
    AppDesk desk(onCopy, dialogs);
    desk.ShellSize = ShellSize;
    desk.Start();
    camera.Take(desk.Login(), "frmLogin");
    desk.LoggedIn();
    camera.Take(desk.Window(WindowId::MainMenu), "frmInit");
    camera.Take(desk.ShellWindow(), "mdiHyetex");
    frmMessageBox question(dialogs, 1, desk.ShellWindow());
    question.show();
    camera.Take(&question, "frmMessageBox");
  }
  if (words.Task) {
    onCopy.Task = words.Task;
    AppDesk desk(onCopy, dialogs);
    desk.ShellSize = ShellSize;
    desk.Start();
    desk.LoggedIn();
    TakeSession(desk, camera);
  }
  return camera.Outcome();
}

}  // namespace hyetex
