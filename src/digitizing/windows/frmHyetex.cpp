// The digitizing window as a session: opening, resuming, the tablet's port, closing.
#include "digitizing/windows/frmHyetex.h"

#include <QCloseEvent>
#include <QMdiSubWindow>
#include <QTimer>
#include <utility>

#include "core/files.h"
#include "core/numbers.h"
#include "digitizing/windows/units.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr double PartOfFrame = 0.85;  // of the shell's height, when no size is remembered
constexpr const char* CloseTitle = "Closing the Digitizing window";
const QColor ZoomColour(21, 101, 192), SelectionColour(198, 40, 40);

}  // namespace

frmHyetex::frmHyetex(Desk& desk, Shell& shell, Dialogs& dialogs, Settings& settings, Session& session,
                     int tablet, std::string device, QWidget* parent)
    : FormWindow("frmHyetex", WindowId::Digitizing, desk, settings, parent),
      shell_(shell),
      dialogs_(dialogs),
      session_(session),
      tablet_(tablet),
      device_(std::move(device)),
      machine_(session, TabletTypes()[static_cast<std::size_t>(tablet)], *this, &journal_),
      lost_(TabletTypes()[static_cast<std::size_t>(tablet)]),
      mscDig(new SerialPort(this)),
      picGraph_(new picGraph([this](Surface& surface) { Paint(surface, machine_.Layout); }, this)),
      linHor(new Shape("linHor", Shape::Kind::Filled, Qt::black, picGraph_)),
      linVer(new Shape("linVer", Shape::Kind::Filled, Qt::black, picGraph_)),
      shpSelect(new Shape("shpSelect", Shape::Kind::Dashed, SelectionColour, picGraph_)),
      shpZoom(new Shape("shpZoom", Shape::Kind::Dashed, ZoomColour, picGraph_)),
      shpToolBox(new Shape("shpToolBox", Shape::Kind::Outline, QColor(96, 125, 139), picGraph_)),
      frmToolBox_(new frmToolBox(picGraph_)),
      hand_(new MouseHand(*picGraph_, machine_, TabletTypes()[static_cast<std::size_t>(tablet)], this)),
      correcting_(machine_, [this](const std::string& why) { shell_.ShowPanel(panel::Instruction, why); }) {
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(ViewSizeFor(ToPixels(machine_.Layout.Board.Height) * 2));
  setWindowTitle(ToQt(DrawingTitle));
  mscDig->setObjectName(QStringLiteral("mscDig"));
  connect(mscDig, &SerialPort::Received, this, &frmHyetex::OnTabletBytes);
  connect(mscDig, &SerialPort::Lost, this, [this](const QString& why) {
    missedBytes_ = true;
    TellOfLostTablet(why);
  });
  connect(frmToolBox_, &frmToolBox::Clicked, this, [this](int tool) {
    machine_.State().CurrentTool = static_cast<std::int16_t>(tool);
    if (tool != tool::MoveBoard) machine_.PerformToolAction();
  });
  connect(frmToolBox_, &frmToolBox::Hovered, this, &frmHyetex::ShowToolText);
  connect(frmToolBox_, &frmToolBox::Dragged, this, &frmHyetex::DragBoard);
  connect(picGraph_, &picGraph::Wheeled, this, &frmHyetex::Zoom);
  connect(hand_, &MouseHand::ViewMoved, this, &frmHyetex::ShowView);
  connect(hand_, &MouseHand::CursorMoved, this, &frmHyetex::ShowMagnified);
  RestoreLayout();
  if (device_.empty()) BeginMouse();
}

QSize frmHyetex::sizeHint() const {
  const double remembered = settings_.Get(setting::ViewHeight);
  return ViewSizeFor(remembered != 0 ? ToPixels(remembered) : qRound(PartOfFrame * shell_.ClientHeight()));
}

// ---- Opening

void frmHyetex::StartSession() {
  desk_.Flags.SetOpen(WindowId::Digitizing, true);
  // Only the size that comes of it counts: in a smaller one on the way there the board might have no room.
  if (HasMouse())
    FillFrame();
  else
    ResizeView(sizeHint());
  FitView(size());
  ClearPanels();
  started_ = true;
  machine_.Start();
  if (!OfferUnfinishedChart()) {
    keepsJournal_ = true;
    CloseDesk();
    return;
  }
  OpenEarlierTrace();
  BeginScan();
  journal_.Start(settings_.Folder(), tablet_, session_.Chart);
  TellOfJournalTrouble();
  OpenPort();
  FocusChanged(true);
  TellOfDoubts();
}

// The board's place comes before the first size, so that the view it is brought into is the right one.
void frmHyetex::RestoreLayout() {
  const TabletExtents& tablet = session_.Line.Scales().Tablet;
  machine_.Layout = DefaultDeskLayout(tablet, frmHyetex::sizeHint().height() * UnitsPerPixel);
  const std::string place = settings_.Get(setting::BoardPlace);
  if (const double left = LeadingNumber(place); left != 0) {
    const std::size_t comma = place.find(',');
    machine_.Layout.Board.Left = left;
    machine_.Layout.Board.Top = comma == std::string::npos ? 0 : LeadingNumber(place.substr(comma + 1));
  }
}

void frmHyetex::StoreLayout() {
  if (HasMouse()) return;  // its board and its size are not the tablet's
  const Rect& board = machine_.Layout.Board;
  // What cannot be kept is not worth a message.
  (void)settings_.Set(setting::ViewHeight, static_cast<float>(picGraph_->height() * UnitsPerPixel));
  (void)settings_.Set(setting::BoardPlace, ShortText(static_cast<float>(board.Left)) + "," +
                                               ShortText(static_cast<float>(board.Top)));
}

bool frmHyetex::OfferUnfinishedChart() {
  const auto unfinished = FindUnfinishedChart(settings_.Folder());
  if (!unfinished) return true;
  // A scan that cannot be found any more must not keep its points from being gone on with.
  const bool onScan = openedScan_ != nullptr || (mouse_ && unfinished->Scan);
  const ResumeOffer offer = MakeResumeOffer(*unfinished, session_.Chart, tablet_, onScan);
  const BoxAnswer answer =
      Ask(offer.Title, offer.Text, offer.CanResume ? BoxButtons::YesNoCancel : BoxButtons::NoUnlessYes,
          BoxIcon::Question);
  if (offer.CanResume && answer == BoxAnswer::Yes) {
    Resume(*unfinished);
    return true;
  }
  if (answer != (offer.CanResume ? BoxAnswer::No : BoxAnswer::Yes)) return false;
  const auto aside = SetJournalAside(settings_.Folder());
  if (!aside) ShowMessage(offer.Title, aside.error());
  return aside.has_value();
}

void frmHyetex::Resume(const UnfinishedChart& unfinished) {
  replaying_ = true;
  const auto replayed = Replay(unfinished.Steps, machine_);
  replaying_ = false;
  if (const auto text = ReadWholeFile(JoinPath(settings_.Folder(), JournalFileName), MostJournalBytes))
    ResumeDoubts(*text);
  DrawGraph();
  if (!replayed)
    ShowMessage(ResumeTitle, "Only a part of the chart could be brought back: " + replayed.error());
}

// ---- The tablet

void frmHyetex::OpenPort() {
  if (device_.empty()) return;
  const TabletType& type = TabletTypes()[static_cast<std::size_t>(tablet_)];
  if (const auto opened = mscDig->Open(device_, type.Line, type.Initialisation); !opened)
    TellOfLostTablet(ToQt(opened.error()));
}

// A tool or a press may open a window or a box; what the tablet has sent after it is not meant for the chart.
// So the bytes are handed on no more than a report at a time.
void frmHyetex::OnTabletBytes(const QByteArray& bytes) {
  std::span rest(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                 static_cast<std::size_t>(bytes.size()));
  if (rest.size() >= RxBufferSize || !ListensToTablet()) {
    Lose(rest);
    return;
  }
  losing_ = false;
  if (std::exchange(missedBytes_, false)) machine_.ForgetReceived();
  const std::size_t packet = LengthsOf(TabletTypes()[static_cast<std::size_t>(tablet_)].Format).Packet;
  while (!rest.empty()) {
    const auto piece = rest.first(std::min(packet, rest.size()));
    rest = rest.subspan(piece.size());
    machine_.Receive(piece);
    if (!ListensToTablet() || missedBytes_) {
      Lose(rest);
      return;
    }
  }
}

void frmHyetex::Lose(std::span<const std::uint8_t> bytes) {
  missedBytes_ = true;
  if (!std::exchange(losing_, true)) lost_.Begin(machine_.State().CursorButton >= 0);
  lost_.Receive(bytes);
  TellOfLostPresses();
}

void frmHyetex::TellOfLostPresses() {
  if (!ListensToTablet() || std::exchange(tellingOfLost_, true)) return;
  QTimer::singleShot(0, this, [this] {
    tellingOfLost_ = false;
    if (!ListensToTablet()) return;  // told when it does again
    if (const int lost = lost_.Take(); lost > 0) ShowMessage(DrawingTitle, LostPressesText(lost));
  });
}

void frmHyetex::TellOfLostTablet(const QString& why) {
  if (std::exchange(tellingOfTablet_, true)) return;
  // Not from within the port's own signal, which must return first.
  QTimer::singleShot(0, this, [this, why] {
    ShowMessage(DrawingTitle,
                FromQt(why) + "\n\nThe session stays open, and goes on when the tablet is back.");
    tellingOfTablet_ = false;
  });
}

void frmHyetex::TellOfJournalTrouble() {
  const auto& trouble = journal_.Trouble();
  if (!trouble) toldOfJournal_ = false;
  if (!trouble || std::exchange(toldOfJournal_, true)) return;
  QTimer::singleShot(0, this, [this, why = *trouble] {
    ShowMessage(DrawingTitle, "What you digitize is not being kept against a breakdown: " + why +
                                  ".\n\nThe session goes on. Make room on the disk, or save the chart soon.");
  });
}

BoxAnswer frmHyetex::Ask(std::string_view title, const std::string& text, BoxButtons buttons, BoxIcon icon) {
  ++boxes_;
  const BoxAnswer answer = dialogs_.MessageBox(std::string(title), text, buttons, icon);
  --boxes_;
  missedBytes_ = true;
  TellOfLostPresses();
  return answer;
}

bool frmHyetex::MayRedigitize() {
  return replaying_ ||
         Ask("Reditizing", "Are you sure you want to delete the current digitization and begin a new one ?",
             BoxButtons::NoUnlessYes, BoxIcon::None) == BoxAnswer::Yes;
}

void frmHyetex::ShowMessage(std::string_view title, std::string_view text) {
  if (!replaying_) Ask(title, std::string(text), BoxButtons::Ok, BoxIcon::Warning);
}

// ---- Windows beside this one

void frmHyetex::OpenComment(const CommentRequest&) {
  if (!replaying_) desk_.Open(WindowId::Comment);
}

void frmHyetex::OpenSave() {
  if (replaying_) return;
  if (!MaySaveWithDoubts()) return EnableDesk(true);
  desk_.Open(WindowId::Save);
}

bool frmHyetex::Redigitize() {
  RunTool(tool::Redigitize);
  return !HasPoints();
}

void frmHyetex::EnableDesk(bool enabled) {
  if (replaying_) return;
  setEnabled(enabled);
  UpdateUndo();
  if (!enabled) return;
  setFocus();
  TellOfLostPresses();
}

// ---- Closing

// The machine that asks for it is still at work, so it happens afterwards.
void frmHyetex::CloseDesk() {
  if (replaying_ || std::exchange(closing_, true)) return;
  QTimer::singleShot(0, this, [this] {
    if (QMdiSubWindow* frame = Frame())
      frame->close();
    else
      close();
  });
}

void frmHyetex::closeEvent(QCloseEvent* event) {
  closing_ = false;
  event->ignore();
  if (!isEnabled()) return;  // the save or the comment window is open
  if (!MayClose()) return;
  closing_ = true;
  FormWindow::closeEvent(event);
}

bool frmHyetex::MayClose() {
  if (desk_.Flags.IsOpen(WindowId::Save) || session_.Saved || keepsJournal_) return true;
  // What is not on the disk cannot be kept for another time.
  if (!desk_.IsEnding() || journal_.Trouble())
    return Ask(CloseTitle, "The current digitization has not been saved. Are you sure you want to continue ?",
               BoxButtons::NoUnlessYes, BoxIcon::None) == BoxAnswer::Yes;
  const BoxAnswer answer =
      HasPoints()
          ? Ask("Leaving the program",
                "The current digitization has not been saved. Do you want to keep it, and go on with it "
                "when the program runs again ?\n\nNo gives it up. Cancel goes back to it.",
                BoxButtons::YesNoCancel, BoxIcon::Question)
          : BoxAnswer::Yes;
  keepsJournal_ = answer == BoxAnswer::Yes;
  return answer != BoxAnswer::Cancel;
}

void frmHyetex::ClearPanels() {
  for (int i : {panel::Depth, panel::Time, panel::Button, panel::Instruction}) shell_.ShowPanel(i, "");
}

void frmHyetex::Closing() {
  ClearPanels();
  mscDig->Close();
  StoreLayout();
  shell_.NotDigitizing();
  if (session_.Saved) {
    KeepReview();
    journal_.Remove();
  } else if (!keepsJournal_) {
    if (const auto aside = journal_.SetAside(); !aside) ShowMessage(CloseTitle, aside.error());
  }
}

}  // namespace hyetex
