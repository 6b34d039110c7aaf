// The menu entry that brings the station list and the database in line.
#include "database/stations/synchronising.h"

#include <QApplication>
#include <QProgressDialog>
#include <QTimer>
#include <memory>

#include "app/app_desk.h"
#include "database/windows/frmLoad.h"
#include "platform/qt_text.h"
#include "staging/manager/list_editor.h"
#include "staging/windows/frmLists.h"

namespace hyetex {
namespace {

// Shows itself while there is something to wait for; each wait says so several times a second.
class WaitBox : public Progress {
 public:
  explicit WaitBox(QWidget* parent) : parent_(parent) {
    over_.setSingleShot(true);
    QObject::connect(&over_, &QTimer::timeout, [this] { box_.reset(); });
  }

  bool Step(std::int64_t done, std::int64_t total, std::string_view what) override {
    constexpr int longestSilenceMs = 2000;
    over_.start(longestSilenceMs);
    if (box_ == nullptr) {
      box_ = std::make_unique<QProgressDialog>(parent_);
      box_->setWindowTitle("Syncronize Stations Lists");
      box_->setWindowModality(Qt::ApplicationModal);
      box_->setMinimumDuration(0);
      box_->setAutoClose(false);
      box_->setLabelText("Hyetex is " + ToQt(std::string(what)) + ".");
      box_->setMaximum(static_cast<int>(total));
      box_->show();
    }
    box_->setValue(static_cast<int>(done));
    QCoreApplication::processEvents();
    return !box_->wasCanceled();
  }

 private:
  QWidget* parent_;
  QTimer over_;
  std::unique_ptr<QProgressDialog> box_;
};

}  // namespace

void AppDesk::AddSynchronising() {
  QAction& command = shell_->Fix();
  QObject::connect(&command, &QAction::triggered, shell_.get(), [this] { SynchroniseStations(); });
  // What stands in its way comes and goes with windows, and a window that comes or goes moves the focus.
  const auto look = [this] {
    if (ending_) return;
    const std::string why = WhyNotSynchronise();
    shell_->Fix().setEnabled(why.empty());
    shell_->Fix().setToolTip(ToQt(why));
  };
  QObject::connect(qApp, &QApplication::focusChanged, shell_.get(), look);
  QObject::connect(&shell_->Area(), &QMdiArea::subWindowActivated, shell_.get(), look);
  look();
}

std::string AppDesk::WhyNotSynchronise() {
  if (!CanReadStations(program_.Database.ChosenConnection()))
    return "Select a database in the Main Menu first.";
  // They hold charts by the places of their stations in the list, and show the stations that there were.
  for (const WindowId holder : {WindowId::Tasks, WindowId::TaskDef, WindowId::Digitizing})
    if (Window(holder) != nullptr) return "Return to the Main Menu first: charts are being staged.";
  return {};
}

void AppDesk::SynchroniseStations() {
  if (!WhyNotSynchronise().empty()) return;
  auto* load = qobject_cast<frmLoad*>(Window(WindowId::Load));
  auto* manager = qobject_cast<frmLists*>(Window(WindowId::Lists));
  if (manager != nullptr && !manager->SaveBeforeReading()) return;
  if (load != nullptr) load->ReadUnMappedStations();
  // On a connection of its own: a window may stand on a row of the program's.
  HyetexPlotDB database(program_.Settings, dialogs_);
  database.ConnectionText = program_.Database.ChosenConnection();
  WaitBox waits(shell_.get());
  const Synchronised done =
      Synchronise(database, program_.Lists, program_.Settings.Folder(), dialogs_, waits);
  if (done == Synchronised::Not) return;
  if (load != nullptr) load->UpdateList();
  if (manager != nullptr) manager->StationsRead(done != Synchronised::Unsaved);
}

}  // namespace hyetex
