#include "digitizing/windows/mdiHyetex.h"

#include <QApplication>
#include <QCloseEvent>
#include <QIcon>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QStatusBar>

#include "core/desk.h"
#include "digitizing/tools.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

// What each panel of the status bar makes room for.
constexpr std::array<const char*, 4> PanelSamples{"00000.00 cm", "00/00/0000 00:00:00", "FF", ""};

}  // namespace

mdiHyetex::mdiHyetex(QWidget* parent) : QMainWindow(parent), area_(new QMdiArea) {
  setObjectName("mdiHyetex");
  setWindowTitle("Hyetex");
  setWindowIcon(QIcon(":/icons/hyetex.svg"));
  setMinimumSize(760, 520);
  area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  area_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  area_->setBackground(palette().brush(QPalette::Mid));
  setCentralWidget(area_);
  connect(area_, &QMdiArea::subWindowActivated, this, &mdiHyetex::TellFocus);
  // Behind what brought them about, since that may set the focus itself.
  connect(area_, &QMdiArea::subWindowActivated, this, &mdiHyetex::EnsureFocus, Qt::QueuedConnection);
  connect(qApp, &QApplication::focusChanged, this, &mdiHyetex::EnsureFocus, Qt::QueuedConnection);
  MakeMenus();
  MakeStatusBar();
  NotDigitizing();
}

mdiHyetex::~mdiHyetex() {
  // The windows inside may speak to the shell until they are gone, so they go while all of it is there.
  area_->disconnect(this);
  delete area_;
}

void mdiHyetex::ShowChart(const std::string& name) {
  setWindowTitle(name.empty() ? "Hyetex" : "Hyetex - " + ToQt(name));
}

QMenu* mdiHyetex::AddMenu(const char* name, const char* caption) {
  QMenu* menu = menuBar()->addMenu(tr(caption));
  menu->setObjectName(name);
  menu->setToolTipsVisible(true);
  return menu;
}

QAction* mdiHyetex::AddItem(QMenu* menu, const char* name, const char* caption, std::function<void()> run) {
  QAction* item = menu->addAction(tr(caption));
  item->setObjectName(name);
  if (run) connect(item, &QAction::triggered, this, [run = std::move(run)] { run(); });
  return item;
}

void mdiHyetex::AddToolItem(const char* name, const char* caption, int tool) {
  QAction* item = AddItem(mnuTools, name, caption, [this, tool] {
    const bool needsPoints = tool == tool::NewSegment || tool == tool::AttachPaper;
    if (commands_ && (!needsPoints || commands_->HasPoints())) commands_->RunTool(tool);
  });
  if (tool == tool::Erase) item->setShortcut(QKeySequence::Delete);
}

void mdiHyetex::AddPopupItem(const char* name, PopupCommand PopupCommands::*command) {
  AddItem(mnuPop, name, "", [this, command] {
    const auto run = (popup_.*command).Run;  // a copy, since it may show the menu anew
    if (popupOwner_ && run) run();
  });
}

void mdiHyetex::MakeMenus() {
  const auto tell = [this](void (*command)(SessionCommands&)) {
    return [this, command] {
      if (commands_) command(*commands_);
    };
  };

  mnuFile = AddMenu("mnuFile", "&File");
  mnuNew = AddItem(mnuFile, "mnuNew", "&New Digitation", tell([](SessionCommands& c) { c.NewFile(); }));
  mnuNew->setShortcut(QKeySequence::New);
  mnuSave = AddItem(mnuFile, "mnuSave", "&Save Digitation", tell([](SessionCommands& c) { c.SaveFile(); }));
  mnuSave->setShortcut(QKeySequence::Save);
  QAction* exit = AddItem(mnuFile, "mnuExit", "E&xit", [this] { close(); });
  exit->setShortcut(Qt::CTRL | Qt::Key_Q);
  exit->setMenuRole(QAction::QuitRole);

  mnuView = AddMenu("mnuView", "&View");
  AddItem(mnuView, "mnuToolBox", "&ToolBox", tell([](SessionCommands& c) { c.ShowBoard(); }));
  mnuPoints = AddItem(mnuView, "mnuPoints", "&Digitation Points",
                      tell([](SessionCommands& c) { c.PointsToggled(); }));
  mnuPoints->setCheckable(true);
  AddItem(mnuView, "mnuAutoZoom", "&Auto Zoom", tell([](SessionCommands& c) { c.AutoZoom(); }));

  // Letters alone, since the other hand has the mouse.
  mnuMagnifier =
      AddItem(mnuView, "mnuMagnifier", "&Magnifier", tell([](SessionCommands& c) { c.ToggleMagnifier(); }));
  mnuMagnifier->setShortcut(Qt::Key_M);
  mnuMagnifier->setCheckable(true);
  mnuMagnify =
      AddItem(mnuView, "mnuMagnify", "Ma&gnify More", tell([](SessionCommands& c) { c.MagnifyMore(); }));
  mnuMagnify->setShortcut(Qt::SHIFT | Qt::Key_M);
  mnuOverlay = AddItem(mnuView, "mnuOverlay", "&Hours and Depths",
                       tell([](SessionCommands& c) { c.ToggleOverlay(); }));
  mnuOverlay->setShortcut(Qt::Key_G);
  mnuOverlay->setCheckable(true);

  // Without a letter: windows need them all. F10 and the arrow keys lead here.
  mnuDEf = AddMenu("mnuDEf", "Definitions");
  AddItem(mnuDEf, "mnuParameter", "&Reset Digitation's Parameter");
  mnuAngle = AddItem(mnuDEf, "mnuAngle", "Page &Angle");
  mnuVertical = AddItem(mnuDEf, "mnuVertical", "&Vertical Scale");
  mnuHorizontal = AddItem(mnuDEf, "mnuHorizontal", "&Horizontal Scale");
  AddItem(mnuDEf, "mnuPage", "&Set the Page Again", tell([](SessionCommands& c) { c.SetPageAgain(); }));
  mnuDefaults = AddItem(mnuDEf, "mnuDefaults", "&Program Defaults...", [this] { emit DefaultsChosen(); });
  mnuDefaults->setVisible(false);

  mnuTools = AddMenu("mnuTools", "&Edit");
  mnuUndo = AddItem(mnuTools, "mnuUndo", "&Undo", tell([](SessionCommands& c) { c.Undo(); }));
  mnuUndo->setShortcut(QKeySequence::Undo);
  mnuRedo = AddItem(mnuTools, "mnuRedo", "Re&do", tell([](SessionCommands& c) { c.Redo(); }));
  mnuRedo->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
  AddToolItem("mnuErase", "&Erase Last Point", tool::Erase);
  AddToolItem("mnuSegment", "New &Segment", tool::NewSegment);
  AddToolItem("mnuLevel", "&Level a Point", tool::Level);
  AddToolItem("mnuAlpha", "Toggle &Alpha Sign", tool::Alpha);
  AddToolItem("mnuGap", "Toggle Data &Gap", tool::Gap);
  AddToolItem("mnuComment", "Add a &Comment", tool::SegmentComment);
  AddToolItem("mnuRecovered", "Toggle &Recovered Sign", tool::Recovered);
  AddToolItem("mnuAppend", "Attach Additional Strip C&hart", tool::AttachPaper);
  mnuCorrect = AddItem(mnuTools, "mnuCorrect", "Correct &Points",
                       tell([](SessionCommands& c) { c.ToggleCorrecting(); }));
  mnuCorrect->setShortcut(Qt::Key_C);
  mnuCorrect->setCheckable(true);
  AddItem(mnuTools, "mnuInsert", "&Insert a Point", tell([](SessionCommands& c) { c.InsertPoint(); }))
      ->setShortcut(Qt::Key_Insert);
  mnuTrace =
      AddItem(mnuTools, "mnuTrace", "&Trace This Scan", tell([](SessionCommands& c) { c.TraceScan(); }));
  mnuTrace->setShortcut(Qt::Key_T);

  mnuPop = new QMenu(this);
  mnuPop->setObjectName("mnuPop");
  AddPopupItem("mnuPopChange", &PopupCommands::Change);
  AddPopupItem("mnuPopAdd", &PopupCommands::Add);
  AddPopupItem("mnuPopDelete", &PopupCommands::Delete);

  mnuFix = menuBar()->addAction(tr("S&yncronize Stations Lists"));
  mnuFix->setObjectName("mnuFix");
  mnuFix->setEnabled(false);

  auto* help = new QAction(this);
  help->setObjectName("actHelp");
  help->setShortcut(QKeySequence::HelpContents);
  connect(help, &QAction::triggered, this, &mdiHyetex::HelpChosen);
  addAction(help);
}

void mdiHyetex::MakeStatusBar() {
  statusBar()->setObjectName("sbrLoc");
  for (std::size_t i = 0; i < panels_.size(); ++i) {
    panels_[i] = new QLabel;
    panels_[i]->setObjectName(QStringLiteral("sbrLoc%1").arg(i + 1));
    panels_[i]->setTextFormat(Qt::PlainText);
    panels_[i]->setMinimumWidth(fontMetrics().horizontalAdvance(PanelSamples[i]) + 12);
    statusBar()->addWidget(panels_[i], i + 1 == panels_.size() ? 1 : 0);
  }
  // An instruction may be long; it must not make the frame wider.
  panels_.back()->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  prbThink = new QProgressBar;
  prbThink->setObjectName("prbThink");
  prbThink->setMaximumWidth(160);
  prbThink->hide();
  statusBar()->addPermanentWidget(prbThink);
}

void mdiHyetex::Digitizing(SessionCommands& commands) {
  commands_ = &commands;
  ShowSessionMenus(true);
}

void mdiHyetex::NotDigitizing() {
  commands_ = nullptr;
  ShowUndo({"Undo", "Redo"});  // Ctrl+Z is the text boxes' again
  ShowSessionMenus(false);
}

void mdiHyetex::ShowSessionMenus(bool shown) {
  for (QAction* item : {mnuNew, mnuSave}) item->setEnabled(shown);
  for (QMenu* menu : {mnuView, mnuTools}) {
    menu->menuAction()->setVisible(shown);
    // Hidden, it would still keep its letter from the windows.
    QString caption = menu->title();
    if (!shown)
      caption.remove('&');
    else if (!caption.contains('&'))
      caption.prepend('&');
    menu->setTitle(caption);
  }
  for (QAction* item : {mnuMagnifier, mnuMagnify, mnuTrace}) item->setVisible(shown && commands_->HasMouse());
  for (QAction* item : mnuDEf->actions())
    if (item != mnuDefaults) item->setVisible(shown);
  mnuDEf->menuAction()->setVisible(shown || mnuDefaults->isVisible());
}

void mdiHyetex::OfferDefaults() {
  mnuDefaults->setVisible(true);
  ShowSessionMenus(commands_ != nullptr);
}

void mdiHyetex::ShowPopup(QWidget& owner, const QPoint& at, PopupCommands commands) {
  popupOwner_ = &owner;
  popup_ = std::move(commands);
  const std::pair<const char*, PopupCommand*> items[] = {
      {"mnuPopChange", &popup_.Change}, {"mnuPopAdd", &popup_.Add}, {"mnuPopDelete", &popup_.Delete}};
  for (const auto& [name, command] : items)
    mnuPop->findChild<QAction*>(name)->setText("&" + ToQt(command->Caption));
  mnuPop->popup(at);
}

void mdiHyetex::ShowScales(const ScaleCaptions& captions) {
  mnuAngle->setText(ToQt(captions.Angle));
  mnuHorizontal->setText(ToQt(captions.Horizontal));
  mnuVertical->setText(ToQt(captions.Vertical));
}

void mdiHyetex::ShowModes(const DeskModes& modes) {
  mnuMagnifier->setChecked(modes.Magnifier);
  mnuOverlay->setChecked(modes.Overlay);
  mnuCorrect->setChecked(modes.Correcting);
}

void mdiHyetex::ShowUndo(const UndoCaptions& captions) {
  mnuUndo->setText("&" + ToQt(captions.Undo));
  mnuUndo->setEnabled(captions.CanUndo);
  mnuRedo->setText(ToQt(captions.Redo).replace("Redo", "Re&do"));
  mnuRedo->setEnabled(captions.CanRedo);
}

// Letters and keys need the focus in the current window. It is nowhere when what had it was disabled or is
// gone, as after a window that was opened over another one.
void mdiHyetex::EnsureFocus() {
  QMdiSubWindow* frame = area_->currentSubWindow();
  QWidget* window = frame ? frame->widget() : nullptr;
  if (window == nullptr || !window->isVisible() || !window->isEnabled()) return;
  const QWidget* focus = QApplication::focusWidget();
  if (focus != nullptr && (focus == window || window->isAncestorOf(focus))) return;
  if (focus != nullptr && focus->window() != this) return;  // a box, a menu or another frame has it
  QWidget* next = window->focusWidget();
  if (next == nullptr || !next->isEnabled() || !next->isVisible()) {
    next = window;
    do next = next->nextInFocusChain();
    while (next != window && !(window->isAncestorOf(next) && next->isEnabled() && next->isVisible() &&
                               (next->focusPolicy() & Qt::TabFocus) != 0));
  }
  next->setFocus();
}

void mdiHyetex::ShowPanel(int panel, std::string_view text) {
  if (panel < 1 || panel > static_cast<int>(panels_.size())) return;
  QLabel* label = panels_[static_cast<std::size_t>(panel - 1)];
  if (const QString shown = ToQt(text); label->text() != shown) {
    label->setText(shown);
    if (panel == panel::Instruction) label->setToolTip(shown);
  }
}

std::string mdiHyetex::PanelText(int panel) const {
  if (panel < 1 || panel > static_cast<int>(panels_.size())) return {};
  return FromQt(panels_[static_cast<std::size_t>(panel - 1)]->text());
}

int mdiHyetex::ClientHeight() const { return area_->viewport()->height(); }

void mdiHyetex::closeEvent(QCloseEvent* event) {
  event->ignore();
  emit ExitChosen();
}

void mdiHyetex::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) area_->setBackground(palette().brush(QPalette::Mid));
  QMainWindow::changeEvent(event);
}

bool mdiHyetex::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::EnabledChange)
    QMetaObject::invokeMethod(this, &mdiHyetex::EnsureFocus, Qt::QueuedConnection);
  return QMainWindow::eventFilter(watched, event);
}

// While a box is shown the area has no active window, but still a current one.
void mdiHyetex::TellFocus() {
  QMdiSubWindow* frame = area_->currentSubWindow();
  QWidget* now = frame ? frame->widget() : nullptr;
  if (now == focused_) return;
  if (now) now->installEventFilter(this);
  QWidget* before = focused_;
  focused_ = now;
  if (auto* listener = dynamic_cast<FocusListener*>(before)) listener->FocusChanged(false);
  if (auto* listener = dynamic_cast<FocusListener*>(now)) listener->FocusChanged(true);
}

}  // namespace hyetex
