// How the lists manager is put together.
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "platform/controls.h"
#include "platform/up_down.h"
#include "staging/manager/chart_type_editing.h"
#include "staging/windows/frmLists.h"

namespace hyetex {
namespace {

/// A list that asks for no more than a few lines; it takes what there is.
class ShortList : public QListWidget {
 public:
  QSize sizeHint() const override {
    return {QListWidget::sizeHint().width(), fontMetrics().lineSpacing() * 6 + 2 * frameWidth()};
  }
};

QListWidget* MakeList(const char* name, const char* accessibleName) {
  QListWidget* list = Named(new ShortList, name);
  list->setAccessibleName(QObject::tr(accessibleName));
  list->setUniformItemSizes(true);
  list->setMinimumHeight(list->fontMetrics().lineSpacing() * 4);
  return list;
}

QGroupBox* Group(const char* title, QWidget* content) {
  auto* group = new QGroupBox(QObject::tr(title));
  (new QVBoxLayout(group))->addWidget(content);
  return group;
}

}  // namespace

QWidget* frmLists::MakeUsers() {
  lstUsers = MakeList("lstUsers", "Users");
  comLevel = Named(new QComboBox, "comLevel");
  comLevel->addItems({tr("Administrator"), tr("Database Operator"), tr("Digitizer Operator")});
  auto* group = new QGroupBox(tr("&Users"));
  auto* all = new QVBoxLayout(group);
  all->addWidget(lstUsers, 1);
  auto* level = new QHBoxLayout;
  level->addWidget(LabelOf("&Authorization Level:", comLevel));
  level->addWidget(comLevel, 1);
  all->addLayout(level);
  return group;
}

QWidget* frmLists::MakeChartTypes() {
  lstChart = MakeList("lstChart", "Chart Types");
  comMethod = Named(new QComboBox, "comMethod");
  comMethod->addItems({tr("Linear"), tr("Non-linear"), tr("Tipping Bubket")});
  txtHeight = Named(new QLineEdit, "txtHeight");
  QWidget* height = WithArrows(txtHeight, "udnHeight", StepHeight);
  connect(height->findChild<UpDown*>("udnHeight"), &UpDown::Stepped, this, &frmLists::TakeHeight);

  auto* group = new QGroupBox(tr("C&hart Types"));
  auto* all = new QVBoxLayout(group);
  all->addWidget(lstChart, 1);
  auto* fields = new QFormLayout;
  fields->addRow(LabelOf("Chart &Method:", comMethod), comMethod);
  fields->addRow(LabelOf("Chart Hei&ght:", txtHeight), height);
  all->addLayout(fields);
  for (std::size_t i = 0; i < cmdScale.size(); ++i) {
    cmdScale[i] = new QPushButton;
    cmdScale[i]->setObjectName(QStringLiteral("cmdScale%1").arg(i));
    all->addWidget(cmdScale[i]);
  }
  return group;
}

void frmLists::MakeLayout() {
  tvwStations = Named(new StationView, "tvwStations");
  tvwStations->setAccessibleName(tr("Core Parties, Agencies, and Stations"));
  tvwStations->setMinimumWidth(fontMetrics().averageCharWidth() * 54);
  lstComment = MakeList("lstComment", "Comments");
  cmdSave = Named(new QPushButton(tr("&Save Lists")), "cmdSave");
  cmdCancel = Named(new QPushButton(tr("&Return to Main Menu")), "cmdCancel");
  cmdCancel->setToolTip(tr("Asks about changes that are not saved."));
  cmdReadTable = Named(new QPushButton(tr("Read Station from data&base")), "cmdReadTable");
  auto* labHelp = Named(new QLabel(tr("Click on the lists with the right button of the mouse to use the Edit "
                                      "menu. To finish click on \"Save Lists\" button.")),
                        "labHelp");
  labHelp->setWordWrap(true);

  auto* grid = new QGridLayout;
  grid->addWidget(Group("C&ore Parties, Agencies, and Stations", tvwStations), 0, 0, 2, 1);
  grid->addWidget(MakeUsers(), 0, 1);
  grid->addWidget(MakeChartTypes(), 1, 1);
  grid->addWidget(Group("Comme&nts", lstComment), 2, 0, 1, 2);
  grid->setColumnStretch(0, 3);
  grid->setColumnStretch(1, 2);
  grid->setRowStretch(0, 2);
  grid->setRowStretch(1, 3);
  grid->setRowStretch(2, 2);

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdReadTable);
  buttons->addStretch();
  buttons->addWidget(cmdSave);
  buttons->addWidget(cmdCancel);
  auto* all = new QVBoxLayout(this);
  all->addLayout(grid, 1);
  all->addWidget(labHelp);
  all->addLayout(buttons);
  // Return in a list or a box must not save and close, so there is no default button.
  SetKeyButtons(nullptr, cmdCancel);
  LinkTabs({tvwStations, lstUsers, comLevel, lstChart, comMethod, txtHeight, cmdScale[0], cmdScale[1],
            lstComment, cmdReadTable, cmdSave, cmdCancel});
}

}  // namespace hyetex
