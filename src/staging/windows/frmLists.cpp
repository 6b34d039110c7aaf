#include "staging/windows/frmLists.h"

#include <QCloseEvent>
#include <QSignalBlocker>

#include "core/numbers.h"
#include "core/text.h"
#include "platform/menu_key.h"
#include "platform/qt_text.h"
#include "staging/lists/login.h"
#include "staging/manager/chart_type_editing.h"

namespace hyetex {
namespace {

constexpr const char* Title = "Edit Lists";
constexpr const char* CloseTitle = "Quiting Lists Manager";

void Fill(QListWidget& list, const QStringList& texts) {
  const int row = list.currentRow();
  const QSignalBlocker quiet(&list);
  list.clear();
  list.addItems(texts);
  list.setCurrentRow(std::clamp(row, 0, list.count() - 1));
}

template <typename Records, typename TextOf>
QStringList TextsOfAll(const Records& records, TextOf textOf) {
  QStringList texts;
  for (const auto& record : records) texts.append(ToQt(textOf(record)));
  return texts;
}

}  // namespace

frmLists::frmLists(Desk& desk, Dialogs& dialogs, Settings& settings, ReferenceLists& lists,
                   std::int16_t& currentUser, ListsServices services, QWidget* parent)
    : FormWindow("frmLists", WindowId::Lists, desk, settings, parent),
      dialogs_(dialogs),
      lists_(lists),
      currentUser_(currentUser),
      services_(std::move(services)),
      editor_(dialogs, settings, lists, currentUser) {
  setWindowTitle(Title);
  MakeLayout();

  connect(tvwStations, &QTreeWidget::itemClicked, this, &frmLists::StationClicked);
  connect(tvwStations, &QTreeWidget::itemActivated, this, &frmLists::StationClicked);
  connect(lstUsers, &QListWidget::currentRowChanged, this, &frmLists::ShowUser);
  connect(lstChart, &QListWidget::currentRowChanged, this, &frmLists::ShowChartType);
  connect(comLevel, &QComboBox::activated, this, [this](int level) {
    editor_.SetLevel(lstUsers->currentRow(), level);
    UpdateLists();
    SelectPlace();
  });
  connect(comMethod, &QComboBox::activated, this, &frmLists::SetMethod);
  connect(txtHeight, &QLineEdit::editingFinished, this, &frmLists::TakeHeight);
  for (int i = 0; i < 2; ++i)
    connect(cmdScale[static_cast<std::size_t>(i)], &QPushButton::clicked, this,
            [this, i] { AskForScale(i); });
  connect(cmdReadTable, &QPushButton::clicked, this, [this] { services_.Synchronise(); });
  connect(cmdSave, &QPushButton::clicked, this, &frmLists::SaveAndClose);
  connect(cmdCancel, &QPushButton::clicked, this, &QWidget::close);
  OfferPopup(tvwStations, [this] {
    const TreeNode* node = tvwStations->Current();
    return node != nullptr && TakePlace(node->Kind, node->Index);
  });
  OfferPopup(lstUsers, [this] { return TakePlace(ListKind::User, lstUsers->currentRow()); });
  OfferPopup(lstChart, [this] { return TakePlace(ListKind::ChartType, lstChart->currentRow()); });
  OfferPopup(lstComment, [this] { return TakePlace(ListKind::Comment, lstComment->currentRow()); });

  UpdateLists();
  tvwStations->Select({ListKind::Core, 0});
  FocusChanged(true);
}

// ---- What it shows

void frmLists::UpdateLists() {
  const TreeNode* node = tvwStations->Current();
  const ListPlace stood = node ? ListPlace{node->Kind, node->Index} : ListPlace{};
  tvwStations->Show(lists_);
  tvwStations->Select(stood);
  Fill(*lstUsers, TextsOfAll(lists_.Users, [](const UserRecord& user) { return user.Name; }));
  Fill(*lstChart, TextsOfAll(lists_.ChartTypes, [](const ChartTypeRecord& type) { return type.Name; }));
  Fill(*lstComment, TextsOfAll(lists_.Comments, [](const CommentRecord& comment) {
    return ShortText(comment.Code) + " - " + comment.Description;
  }));
  ShowUser();
  ShowChartType();
}

void frmLists::FocusChanged(bool focused) {
  if (!focused) return;
  desk_.Flags.SetOpen(WindowId::Lists, true);
  const bool mayChangeUsers =
      IsAllowed(Right::Users, lists_.Users[static_cast<std::size_t>(currentUser_)].Level);
  lstUsers->setEnabled(mayChangeUsers);
  comLevel->setEnabled(mayChangeUsers);
  cmdReadTable->setEnabled(services_.Synchronise && services_.ConnectionText &&
                           CanReadStations(services_.ConnectionText()));
}

void frmLists::ShowUser() {
  const int user = lstUsers->currentRow();
  const auto level = user < 0 ? std::nullopt : LevelIndex(lists_.Users[static_cast<std::size_t>(user)].Level);
  comLevel->setCurrentIndex(level.value_or(-1));
}

ChartTypeRecord* frmLists::ChartType() {
  const int row = lstChart->currentRow();
  return row < 0 ? nullptr : &lists_.ChartTypes[static_cast<std::size_t>(row)];
}

void frmLists::ShowChartType() {
  const ChartTypeRecord* type = ChartType();
  if (type == nullptr) return;
  comMethod->setCurrentIndex(
      type->ChartMethod >= 0 && type->ChartMethod < comMethod->count() ? type->ChartMethod : -1);
  txtHeight->setText(ToQt(HeightText(type->ChartHeightMm)));
  UpdateButtons();
}

void frmLists::UpdateButtons() {
  const ChartTypeRecord* type = ChartType();
  if (type == nullptr) return;
  const QString time = ToQt(ScaleText(*type, ScaleKind::Time)),
                depth = ToQt(ScaleText(*type, ScaleKind::Depth));
  cmdScale[0]->setText("&" + time);
  cmdScale[1]->setText("&" + depth);
}

// ---- The popup menu

void frmLists::OfferPopup(QAbstractItemView* list, std::function<bool()> takePlace) {
  const auto offer = [this, list, takePlace = std::move(takePlace)](const QPoint& at) {
    if (takePlace()) ShowPopup(list->viewport()->mapToGlobal(at));
  };
  list->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(list, &QWidget::customContextMenuRequested, this, offer);
  AddMenuKey(list);
}

bool frmLists::TakePlace(ListKind kind, int index) {
  editor_.Place = {kind, static_cast<std::int16_t>(index)};
  return IsIn(lists_, editor_.Place);
}

void frmLists::ShowPopup(const QPoint& at) {
  const ListTexts& texts = TextsOf(editor_.Place.Kind);
  const auto command = [this](std::string_view caption, void (ListEditor::*run)()) {
    return PopupCommand{std::string(caption), [this, run] { Run(run); }};
  };
  services_.Popup.ShowPopup(*this, at,
                            {.Add = command(texts.AddCaption, &ListEditor::Add),
                             .Change = command(texts.ChangeCaption, &ListEditor::Change),
                             .Delete = command(texts.DeleteCaption, &ListEditor::Delete)});
}

void frmLists::Run(void (ListEditor::*command)()) {
  (editor_.*command)();
  UpdateLists();
  SelectPlace();
}

void frmLists::SelectPlace() {
  const ListPlace place = editor_.Place;
  switch (place.Kind) {
    case ListKind::User:
      return lstUsers->setCurrentRow(place.Index);
    case ListKind::ChartType:
      return lstChart->setCurrentRow(place.Index);
    case ListKind::Comment:
      return lstComment->setCurrentRow(place.Index);
    default:
      return tvwStations->Select(place);
  }
}

void frmLists::StationClicked() {
  const TreeNode* node = tvwStations->Current();
  if (node == nullptr) return;
  TakePlace(node->Kind, node->Index);
  if (editor_.EnsureStationHere()) {
    UpdateLists();
    tvwStations->currentItem()->setExpanded(true);
  }
}

// ---- Chart types

void frmLists::SetMethod(int method) {
  ChartTypeRecord* type = ChartType();
  if (type == nullptr) return;
  type->ChartMethod = static_cast<std::int16_t>(method);
  if (method == static_cast<int>(ChartMethod::NonLinear)) AskMiddleToBottom(dialogs_, *type);
  editor_.Touched();
}

bool frmLists::TakeHeight() {
  ChartTypeRecord* type = ChartType();
  const std::string typed = FromQt(txtHeight->text());
  if (type == nullptr || typed == HeightText(type->ChartHeightMm)) return true;
  // An empty box gives up what was typed.
  const bool isGivenUp = Trim(typed).empty();
  if (const auto set = SetHeight(*type, typed); !isGivenUp && !set) {
    const QSignalBlocker once(txtHeight);  // it loses the focus to the message
    dialogs_.MessageBox(Title, set.error(), BoxButtons::Ok, BoxIcon::Warning);
    return false;
  }
  txtHeight->setText(ToQt(HeightText(type->ChartHeightMm)));
  if (!isGivenUp) editor_.Touched();
  return true;
}

void frmLists::AskForScale(int index) {
  ChartTypeRecord* type = ChartType();
  if (type == nullptr || !AskScale(dialogs_, *type, static_cast<ScaleKind>(index))) return;
  editor_.Touched();
  UpdateButtons();
}

// ---- Leaving

bool frmLists::SaveBeforeReading() {
  if (!TakeHeight()) return false;
  if (!editor_.IsUnsaved()) return true;
  return dialogs_.MessageBox(Title,
                             "The lists hold changes that are not saved. They are saved before stations are "
                             "read from the database. Would you like to continue?",
                             BoxButtons::YesNo, BoxIcon::Question) == BoxAnswer::Yes &&
         editor_.Save();
}

void frmLists::StationsRead(bool saved) {
  saved ? editor_.TakeAsSaved() : editor_.Touched();
  UpdateLists();
}

void frmLists::SaveAndClose() {
  if (TakeHeight() && editor_.Save()) close();
}

void frmLists::closeEvent(QCloseEvent* event) {
  if (!TakeHeight()) return event->ignore();
  if (editor_.IsUnsaved()) {
    const BoxAnswer answer =
        dialogs_.MessageBox(CloseTitle, "Would you like to save the lists before you exit?",
                            BoxButtons::YesNoCancel, BoxIcon::Question);
    if (answer == BoxAnswer::No) editor_.Discard();
    if (answer == BoxAnswer::Cancel || (answer == BoxAnswer::Yes && !editor_.Save())) return event->ignore();
  }
  FormWindow::closeEvent(event);
}

}  // namespace hyetex
