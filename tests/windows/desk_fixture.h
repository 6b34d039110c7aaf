// A session of the sample program folder in the real program, with a tablet on a line and hands on its
// cursor.
#pragma once

#include <QAction>
#include <QLineEdit>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include "app/app_desk.h"
#include "chartfiles/chart_text.h"
#include "paths.h"
#include "windows/support.h"
#include "windows/wired_tablet.h"

namespace hyetex::test {

class DeskTest : public FolderTest {
 protected:
  DeskTest() {
    std::filesystem::copy(test::Demo("program"), folder_.Path());
    Remember("frmHyetex-Height", "12000");  // 800 pixels, for which streams are recorded
  }

  void Open(int task = 0, int tablet = 1) {
    type_ = &TabletTypes()[static_cast<std::size_t>(tablet)];
    desk_ = std::make_unique<AppDesk>(StartWords{folder_.Path(), task, tablet, tablet_.Link()}, dialogs_);
    desk_->Start();
    desk_->LoggedIn();
    if (IsOpen()) Listen();
  }
  /// Counts what the digitizing window reads from its port.
  void Listen() {
    auto* port = Window().findChild<SerialPort*>("mscDig");
    port->RetryMs = 20;
    heard_ = 0;
    QObject::connect(port, &SerialPort::Received,
                     [this](const QByteArray& bytes) { heard_ += bytes.size(); });
    QCoreApplication::processEvents();
  }
  /// As when the machine breaks down: nothing is closed or saved.
  void BreakDown() { desk_.reset(); }
  void OpenAndCalibrate() {
    Open();
    Calibrate();
  }

  frmHyetex& Window() { return *qobject_cast<frmHyetex*>(desk_->Window(WindowId::Digitizing)); }
  bool IsOpen() { return desk_->Window(WindowId::Digitizing) != nullptr; }
  ActionMachine& Machine() { return Window().Machine(); }
  const DeskState& State() { return Machine().State(); }
  const Session& Digitized() { return Machine().CurrentSession(); }
  int LastPoint() { return Digitized().Line.LastPoint(); }
  template <typename Widget = QWidget>
  Widget& Part(const char* name) {
    return Find<Widget>(*desk_->ShellWindow(), name);
  }
  ToolSquare& Square(int tool) { return Part<ToolSquare>(("picButton" + std::to_string(tool)).c_str()); }
  std::string Panel(int panel) { return desk_->ShellWindow()->PanelText(panel); }
  std::string Title() { return Window().windowTitle().toStdString(); }
  std::string ChartText() {
    const auto text = MakeChartText(Digitized(), {"Core", "Agency", "Station", "Code", "User"}, "");
    return text ? text->Text : text.error();
  }

  /// The journal that was set aside last; empty if none was.
  std::string Aside() {
    std::string last;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path()))
      if (entry.path().filename().string().starts_with("Journal.txt.bak-"))
        last = std::max(last, entry.path().string());
    return last.empty() ? last : ReadFile(last);
  }

  // ---- The tablet

  /// Until the program has read all of it.
  void Send(const QByteArray& bytes) {
    const qsizetype wanted = heard_ + bytes.size();
    tablet_.Send(bytes);
    ASSERT_TRUE(WaitFor([&] { return heard_ >= wanted; }));
    QCoreApplication::processEvents();
  }
  QByteArray Bytes(double x, double y, int button = -1) {
    return QByteArray::fromStdString(EncodeReport(*type_, {qRound(x), qRound(y), button}));
  }
  void Report(double x, double y, int button = -1) { Send(Bytes(x, y, button)); }
  void Press(double x, double y) { Press(x, y, type_->DrawingButton); }
  void Press(double x, double y, int button) {
    for (int b : {-1, button, -1}) Report(x, y, b);
  }
  void Drag(double x, double y, double toX, double toY) {
    Report(x, y);
    Report(x, y, type_->DrawingButton);
    Report(toX, toY, type_->DrawingButton);
    Report(toX, toY);
  }
  /// What lies under the middle of a square, in whatever part of the tablet is shown.
  std::pair<double, double> OnSquare(int tool) {
    const DeskLayout& layout = Machine().Layout;
    const Rect& square = layout.Squares[static_cast<std::size_t>(tool)];
    const double x = layout.Board.Left + square.Left + square.Width / 2 - ToolCursorPoint;
    const double y = layout.Board.Top + square.Top + square.Height / 2 - ToolCursorPoint;
    return {layout.ViewX0 + x / layout.ScaleX, layout.ViewY0 + (layout.ScaleHeight - y) / layout.ScaleY};
  }
  void PressSquare(int tool) {
    const auto [x, y] = OnSquare(tool);
    Press(x, y);
  }
  /// The two ends of the page's bottom line.
  void Calibrate() {
    Press(500, 800);
    Press(8500, 830);
  }

  // ---- The mouse and the keys

  void ClickSquare(int tool) {
    Click(*desk_->ShellWindow(), ("picButton" + std::to_string(tool)).c_str());
    QCoreApplication::processEvents();
  }
  void Choose(const char* item) {
    auto* action = desk_->ShellWindow()->findChild<QAction*>(item);
    ASSERT_NE(action, nullptr) << item;
    action->trigger();
    QCoreApplication::processEvents();
  }
  void AddComment(const char* text) {
    QWidget* window = desk_->Window(WindowId::Comment);
    ASSERT_NE(window, nullptr);
    Find<QLineEdit>(*window, "txtComment").setText(text);
    Click(*window, "cmdAdd");
    QCoreApplication::processEvents();
  }

  WiredTablet tablet_{folder_ / "tablet"};
  const TabletType* type_ = nullptr;
  qsizetype heard_ = 0;
  std::unique_ptr<AppDesk> desk_;
};

inline const ShownBox CloseQuestion{
    "Closing the Digitizing window",
    "The current digitization has not been saved. Are you sure you want to continue ?",
    BoxButtons::NoUnlessYes, BoxIcon::None};

}  // namespace hyetex::test
