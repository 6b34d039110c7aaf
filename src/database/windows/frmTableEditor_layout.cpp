// The table editor's controls and where they stand.
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>

#include "database/windows/frmTableEditor.h"
#include "platform/controls.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

// More boxes than this stand in two columns, and more than that in three.
constexpr int MostInOneColumn = 8, MostInTwo = 26;
constexpr int MostLinesInSight = 26;

QPushButton* MoveButton(QWidget* window, const char* name, const QString& caption, const QString& does,
                        const QKeySequence& key) {
  auto* button = Named(new QPushButton(caption), name);
  button->setAccessibleName(does);
  button->setToolTip(does + " (" + key.toString(QKeySequence::NativeText) + ")");
  // Not the button's own, which would press it slowly, for the eye.
  auto* shortcut = new QShortcut(key, window);
  QObject::connect(shortcut, &QShortcut::activated, button, [button] {
    if (button->isVisible()) button->click();
  });
  button->setFixedWidth(button->fontMetrics().averageCharWidth() * 6);
  return button;
}

QPushButton* Button(const char* name, const QString& caption) {
  return Named(new QPushButton(caption), name);
}

// As large as all boxes where there is room for them.
class FieldsArea : public QScrollArea {
 public:
  explicit FieldsArea(QSize wanted) : wanted_(wanted) {
    setMinimumSize(std::min(wanted.width(), 60 * fontMetrics().averageCharWidth()),
                   std::min(wanted.height(), 8 * fontMetrics().lineSpacing()));
  }
  QSize sizeHint() const override { return wanted_; }

 private:
  const QSize wanted_;
};

}  // namespace

void frmTableEditor::MakeControls() {
  cmdFirst = MoveButton(this, "cmdFirst", "|<", tr("First record"), Qt::ALT | Qt::Key_Home);
  cmdPrevious = MoveButton(this, "cmdPrevious", "<", tr("Previous record"), Qt::ALT | Qt::Key_PageUp);
  cmdNext = MoveButton(this, "cmdNext", ">", tr("Next record"), Qt::ALT | Qt::Key_PageDown);
  cmdLast = MoveButton(this, "cmdLast", ">|", tr("Last record"), Qt::ALT | Qt::Key_End);
  cmdAdd = Button("cmdAdd", tr("&Add"));
  cmdEdit = Button("cmdEdit", tr("Ed&it"));
  cmdDelete = Button("cmdDelete", tr("&Delete"));
  cmdRefresh = Button("cmdRefresh", tr("&Refresh"));
  cmdClose = Button("cmdClose", tr("&Close"));
  cmdUpdate = Button("cmdUpdate", tr("&Update"));
  cmdCancel = Button("cmdCancel", tr("&Cancel"));
  cmdStop = Button("cmdStop", tr("S&top"));
  prbWaiting = Named(new QProgressBar, "prbWaiting");
  lblStatus = Named(new QLabel, "lblStatus");
  labDoing = Named(new QLabel, "labDoing");
  txtFind = Named(new QLineEdit, "txtFind");
  txtFind->setClearButtonEnabled(true);
  txtFind->setToolTip(tr("Goes to the first record that begins with what is typed"));
  QString column = ToQt(editor_->Table().FindBy);
  labFind = LabelOf("", txtFind);
  labFind->setText(tr("Fi&nd %1:").arg(column.replace('_', ' ')));
  int number = 0;
  for (const Field& field : editor_->Fields())
    boxes_.push_back(MakeFieldBox(field, QString("txtFields%1").arg(number++), dialogs_));
}

void frmTableEditor::MakeLayout() {
  auto* all = new QVBoxLayout(this);
  auto* find = new QHBoxLayout;
  if (editor_->Table().HasMaster()) {
    txtMaster = Named(new QLineEdit, "txtMaster");
    txtMaster->setReadOnly(true);
    txtMaster->setMinimumWidth(30 * fontMetrics().averageCharWidth());
    find->addWidget(LabelOf("Instru&ment code id:", txtMaster));
    find->addWidget(txtMaster, 1);
  }
  find->addWidget(labFind);
  find->addWidget(txtFind, 1);
  all->addLayout(find);
  if (editor_->Table().ShowsGrid) all->addWidget(MakeRows(), 1);
  all->addWidget(MakeFields(), editor_->Table().ShowsGrid ? 0 : 1);
  auto* moves = new QHBoxLayout;
  for (QPushButton* button : {cmdFirst, cmdPrevious}) moves->addWidget(button);
  lblStatus->setFrameShape(QFrame::StyledPanel);
  lblStatus->setMinimumHeight(cmdFirst->sizeHint().height());  // also while the buttons are hidden
  moves->addWidget(lblStatus, 1);
  for (QPushButton* button : {cmdNext, cmdLast}) moves->addWidget(button);
  all->addLayout(moves);
  all->addWidget(MakeButtons());
}

QWidget* frmTableEditor::MakeRows() {
  grdRows = Named(new QTableView, "grdRows");
  grdRows->setAccessibleName(tr("Records"));
  grdRows->setModel(&model_);
  grdRows->setSelectionBehavior(QAbstractItemView::SelectRows);
  grdRows->setSelectionMode(QAbstractItemView::SingleSelection);
  grdRows->setTabKeyNavigation(false);
  grdRows->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
  grdRows->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  grdRows->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  grdRows->setMinimumSize(70 * fontMetrics().averageCharWidth(), 9 * fontMetrics().lineSpacing());
  auto* rows = new QWidget;
  auto* layout = new QVBoxLayout(rows);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(grdRows, 1);
  labCount = Named(new QLabel, "labCount");
  layout->addWidget(labCount);
  return rows;
}

QWidget* frmTableEditor::MakeFields() {
  auto* fields = new QWidget;
  // Each column by itself: a high box in one moves nothing in the others.
  auto* beside = new QHBoxLayout(fields);
  beside->setSpacing(2 * fontMetrics().averageCharWidth());
  const int count = static_cast<int>(boxes_.size());
  const int columns = count > MostInTwo ? 3 : count > MostInOneColumn ? 2 : 1;
  const int lines = (count + columns - 1) / columns;
  QGridLayout* grid = nullptr;
  for (int i = 0; i < count; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const int line = i % lines;
    if (line == 0) {
      beside->addLayout(grid = new QGridLayout, 1);
      grid->setSpacing(6);
      grid->setColumnStretch(1, 1);
      grid->setRowStretch(lines, 1);
    }
    const Field& field = editor_->Fields()[at];
    QWidget* box = &boxes_[at]->Widget();
    auto* label = new QLabel(ToQt(field.Label) + ":");
    label->setTextFormat(Qt::PlainText);
    label->setBuddy(box);
    const bool isHigh = field.Kind == FieldKind::LongText || field.Kind == FieldKind::Picture;
    grid->addWidget(label, line, 0, isHigh ? Qt::AlignTop : Qt::AlignVCenter);
    grid->addWidget(box, line, 1);
  }
  const QSize wanted = fields->sizeHint();
  const int inSight = MostLinesInSight * fontMetrics().lineSpacing();
  const QScrollBar bar;
  scrFields = Named(
      new FieldsArea({wanted.width() + bar.sizeHint().width() + 8, std::min(wanted.height() + 4, inSight)}),
      "scrFields");
  scrFields->setWidget(fields);
  scrFields->setWidgetResizable(true);
  scrFields->setFocusPolicy(Qt::NoFocus);
  return scrFields;
}

QWidget* frmTableEditor::MakeButtons() {
  auto* buttons = new QWidget;
  auto* layout = new QHBoxLayout(buttons);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(prbWaiting);
  layout->addWidget(cmdStop);
  layout->addWidget(labDoing, 1);
  for (QPushButton* button : {cmdAdd, cmdEdit, cmdDelete, cmdRefresh, cmdClose, cmdUpdate, cmdCancel})
    layout->addWidget(button);
  labDoing->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  prbWaiting->hide();
  cmdStop->hide();
  return buttons;
}

}  // namespace hyetex
