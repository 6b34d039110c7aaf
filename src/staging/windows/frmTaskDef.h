// The details of one staged chart, a new one or one that waits already.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTimeEdit>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/date_box.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"
#include "staging/tasks/task_details.h"

class QGridLayout;

namespace hyetex {

/// What the window is opened for.
struct TaskJob {
  enum class Mode : std::int16_t { Add = 1, Change = 2 };

  Mode What = Mode::Add;
  ChartRecord Task;     ///< a new one names its station only
  std::string Station;  ///< as the tree of stations shows it
  /// Takes the chart, or says why it cannot; the window closes behind it.
  std::function<std::optional<std::string>(ChartRecord)> Store = {};
  std::function<void()> Closed = {};
};

class frmTaskDef : public FormWindow {
  Q_OBJECT

 public:
  /// `openComment` opens the comment window on AddComment and EnableDetails.
  frmTaskDef(Desk& desk, Dialogs& dialogs, Settings& settings, TaskJob job, std::function<void()> openComment,
             QWidget* parent = nullptr);

  /// What the comment window adds. Says why it cannot be taken.
  std::optional<std::string> AddComment(std::string_view code, std::string_view text);
  /// While the comment window is open, this one waits behind it.
  void EnableDetails(bool enabled);

 protected:
  bool MayLeave() override;
  void Closing() override;
  void showEvent(QShowEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void MakeLayout();
  void AddDates(QGridLayout& layout);
  void AddDepths(QGridLayout& layout);
  QWidget* MakeComments();
  QWidget* MakeButtons();
  void SetTabOrder();

  void ShowDetails(const TaskDetails& details);
  TaskDetails ShownDetails() const;
  void UpdateCommentsList();
  void MarkDefective();
  void DeleteComment();
  void Confirm();
  /// Hands the chart on; false if it cannot be, which the operator has been told.
  bool Take();
  QList<QWidget*> EnterOrder() const;
  QWidget* ControlOf(TaskField field) const;

  Dialogs& dialogs_;
  TaskJob job_;
  std::function<void()> openComment_;
  TaskDetails opened_;    // as they were shown first
  std::string comments_;  // entries joined by "::"

  DateBox *dtpBeginDate, *dtpEndDate;
  QTimeEdit *dtpBeginTime, *dtpEndTime;
  QLineEdit *txtEyed, *txtManual;
  QComboBox* comChart;
  QCheckBox* chkNot;
  QListWidget* lstComment;
  QPushButton *cmdAdd, *cmdDelete, *cmdOK, *cmdCancel;
};

}  // namespace hyetex
