#include "soak/desk_program.h"

#include <unistd.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QSocketNotifier>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <csignal>
#include <cstdio>
#include <sstream>

#include "app/app_desk.h"
#include "core/text.h"
#include "platform/serial_port.h"

namespace hyetex::test {
namespace {

constexpr int Patience = 20000;  // ms
// The program looks for a tablet, and for one that was unplugged, once a second: an operator's pace.
constexpr int Hurried = 20;

void Say(const std::string& line) {
  std::fputs((line + "\n").c_str(), stdout);
  std::fflush(stdout);
}

class AgreeingDialogs : public UnattendedDialogs {
 public:
  AgreeingDialogs() { Agrees = true; }
  BoxAnswer MessageBox(const std::string& title, const std::string& text, BoxButtons buttons,
                       BoxIcon icon) override {
    Say("box " + OneLine(text));
    // There is room again soon: no other folder is wanted.
    if (text.find("in another folder ?") != std::string::npos) return BoxAnswer::No;
    return UnattendedDialogs::MessageBox(title, text, buttons, icon);
  }
};

class Operator {
 public:
  Operator(const std::string& folder, int tablet, const std::string& port)
      : desk_(StartWords{folder, {}, tablet, port}, dialogs_) {
    desk_.Start();
    desk_.Login()->findChild<QLineEdit*>("txtPassword")->setText("demo");
    Click(desk_.Login(), "cmdOK");
    Click(desk_.Window(WindowId::MainMenu), "cmdTask");
  }

  std::string Do(const std::string& line) {
    std::istringstream words(line);
    std::string word;
    words >> word;
    if (word == "open") {
      std::string row = line.substr(line.rfind(' ') + 1);
      return OpenChart(line.substr(5, line.size() - 6 - row.size()), std::stoi(row));
    }
    if (word == "choose") return Choose(line.substr(7));
    if (word == "lost" || word == "regained") {
      const bool open = word == "regained";
      return Port() && Comes([&] { return Port()->IsOpen() == open; }) ? word : "no line";
    }
    if (word == "points" && Session()) return "points " + std::to_string(Session()->Line.LastPoint() + 1);
    if (word == "comment") return WriteComment();
    if (word == "save") return Save();
    return "no such thing";
  }

 private:
  template <typename Condition>
  static bool Comes(Condition&& met) {
    return QTest::qWaitFor(std::forward<Condition>(met), Patience);
  }
  static void Click(QWidget* in, const char* name) {
    if (auto* button = in ? in->findChild<QAbstractButton*>(name) : nullptr) button->click();
  }
  frmHyetex* Digitizing() { return qobject_cast<frmHyetex*>(desk_.Window(WindowId::Digitizing)); }
  SerialPort* Port() { return Digitizing() ? Digitizing()->findChild<SerialPort*>("mscDig") : nullptr; }
  const hyetex::Session* Session() {
    return Digitizing() ? &Digitizing()->Machine().CurrentSession() : nullptr;
  }

  std::string OpenChart(const std::string& code, int row) {
    QWidget* tasks = desk_.Window(WindowId::Tasks);
    if (tasks == nullptr) return "no staging";
    tasks->findChild<QTimer*>("timComCheck")->setInterval(Hurried);
    auto* tree = tasks->findChild<QTreeWidget*>("tvwStations");
    for (QTreeWidgetItemIterator item(tree); *item != nullptr; ++item)
      if ((*item)->text(0).endsWith(QString::fromStdString(" - " + code))) tree->setCurrentItem(*item);
    tasks->findChild<QTableWidget*>("fgdTasks")->selectRow(row);
    const auto* told = tasks->findChild<QLabel*>("labDetect");
    if (!Comes([&] { return told->text().startsWith("Digitizer Detected"); }))
      return "no tablet: " + told->text().toStdString();
    Click(tasks, "cmdActivate");
    if (!Comes([&] { return Port() != nullptr; })) return "no session";
    Port()->RetryMs = Hurried;
    return Comes([&] { return Port()->IsOpen(); }) ? "open" : "no line";
  }
  std::string Choose(const std::string& item) {
    auto* action = desk_.ShellWindow()->findChild<QAction*>(QString::fromStdString(item));
    if (action == nullptr || !action->isEnabled()) return "no " + item;
    action->trigger();
    return "chosen";
  }
  std::string Save() {
    if (desk_.Window(WindowId::Save) == nullptr) Choose("mnuSave");
    if (desk_.Window(WindowId::Save) == nullptr) return "no saving";
    Click(desk_.Window(WindowId::Save), "cmdSave");
    if (desk_.Window(WindowId::Save) != nullptr) return "unsaved";
    const auto isBack = [this] {
      return desk_.Window(WindowId::Tasks) != nullptr && Digitizing() == nullptr;
    };
    return Comes(isBack) ? "saved" : "no staging";
  }
  std::string WriteComment() {
    if (!Comes([this] { return desk_.Window(WindowId::Comment) != nullptr; })) return "no question";
    QWidget* comment = desk_.Window(WindowId::Comment);
    comment->findChild<QLineEdit*>("txtComment")->setText(SoakComment);
    Click(comment, "cmdAdd");
    return Comes([this] { return desk_.Window(WindowId::Comment) == nullptr; }) ? "written" : "no end of it";
  }

  AgreeingDialogs dialogs_;
  AppDesk desk_;
};

}  // namespace

int RunDeskProgram(const std::string& folder, int tablet, const std::string& port) {
  std::signal(SIGXFSZ, SIG_IGN);  // a disk that is full says so by an error
  qputenv("QT_QPA_PLATFORM", "offscreen");

  qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type != QtDebugMsg && !text.contains("propagateSizeHints") && !text.contains("XDG_RUNTIME_DIR"))
      Say("qt " + text.toStdString());
  });
  int one = 1;
  std::string name = "hyetex_soak";
  char* words[] = {name.data(), nullptr};
  QApplication app(one, words);
  QApplication::setQuitOnLastWindowClosed(false);
  Operator human(folder, tablet, port);
  std::string told;
  QSocketNotifier orders(STDIN_FILENO, QSocketNotifier::Read);
  QObject::connect(&orders, &QSocketNotifier::activated, [&] {
    char bytes[512];
    const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
    if (count <= 0) return QApplication::quit();
    told.append(bytes, static_cast<std::size_t>(count));
    orders.setEnabled(false);
    for (std::size_t end = 0; (end = told.find('\n')) != std::string::npos;) {
      const std::string line = told.substr(0, end);
      told.erase(0, end + 1);
      Say(human.Do(line));
    }
    orders.setEnabled(true);
  });
  return QApplication::exec();
}

}  // namespace hyetex::test
