#include "digitizing/windows/scan_controls.h"

#include <QGridLayout>
#include <QMenu>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "platform/controls.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

QLabel* Words(const char* name) {
  auto* label = Named(new QLabel, name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

}  // namespace

ScanControls::ScanControls(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("scanControls"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(labScanDoubt = Words("labScanDoubt"));
  layout->addWidget(labScanName = Words("labScanName"));
  layout->addWidget(labScanTrouble = Words("labScanTrouble"));
  layout->addWidget(labScanScale = Words("labScanScale"));

  cmdTraceScan = Named(new QPushButton(tr("&Trace This Scan")), "cmdTraceScan");
  cmdTraceScan->setToolTip(tr("The program traces the line by itself, and tells where to look (T)"));
  connect(cmdTraceScan, &QPushButton::clicked, this, &ScanControls::TraceChosen);
  layout->addWidget(cmdTraceScan);
  prbTraceScan = Named(new QProgressBar, "prbTraceScan");
  prbTraceScan->setTextVisible(false);
  prbTraceScan->setAccessibleName(tr("The scan is being traced"));
  cmdTraceCancel = Named(new QPushButton(tr("Cancel Tracing")), "cmdTraceCancel");
  cmdTraceCancel->setFocusPolicy(Qt::NoFocus);  // Escape presses it
  for (QWidget* part : std::initializer_list<QWidget*>{prbTraceScan, cmdTraceCancel}) {
    part->hide();
    layout->addWidget(part);
  }

  cmdScanScale = Named(new QPushButton(tr("S&cale...")), "cmdScanScale");
  auto* scales = new QMenu(cmdScanScale);
  const auto offer = [&](const char* name, const char* caption, ScanScale::Source by) {
    QAction* action = scales->addAction(tr(caption));
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, [this, by] { emit ScaleChosen(by); });
    return action;
  };
  offer("actMarks", "By &Two Marks and Their Distance", ScanScale::Source::Marks);
  offer("actWidth", "By the Paper's &Width", ScanScale::Source::PaperWidth);
  actResolution = offer("actResolution", "By the &File's Resolution", ScanScale::Source::Resolution);
  cmdScanScale->setMenu(scales);
  layout->addWidget(cmdScanScale);

  cmdTurnLeft = Named(new QPushButton(tr("&Left 90°")), "cmdTurnLeft");
  cmdTurnRight = Named(new QPushButton(tr("Ri&ght 90°")), "cmdTurnRight");
  spnTurn = Named(new QDoubleSpinBox, "spnTurn");
  spnTurn->setAccessibleName(tr("Turn of the scan, degrees, counter-clockwise"));
  spnTurn->setRange(-180, 180);
  spnTurn->setDecimals(2);
  spnTurn->setSingleStep(0.1);
  spnTurn->setWrapping(true);
  spnTurn->setSuffix(tr("°"));
  spnTurn->setKeyboardTracking(false);
  auto* turns = new QGridLayout;
  turns->addWidget(cmdTurnLeft, 0, 0);
  turns->addWidget(cmdTurnRight, 0, 1);
  turns->addWidget(LabelOf("&Turned by:", spnTurn), 1, 0);
  turns->addWidget(spnTurn, 1, 1);
  layout->addLayout(turns);
  layout->addWidget(labScanFixed = Words("labScanFixed"));
  const auto turn = [this](double by) {
    double angle = spnTurn->value() + by;
    if (angle > 180) angle -= 360;
    if (angle <= -180) angle += 360;
    spnTurn->setValue(angle);
  };
  connect(cmdTurnLeft, &QPushButton::clicked, this, [turn] { turn(90); });
  connect(cmdTurnRight, &QPushButton::clicked, this, [turn] { turn(-90); });
  connect(spnTurn, &QDoubleSpinBox::valueChanged, this, &ScanControls::AngleChosen);

  sliders_ = {AddSlider("sldBrightness", "&Brightness:", -100), AddSlider("sldContrast", "C&ontrast:", -100),
              AddSlider("sldFade", "F&ade the grid:", 0)};
  cmdLookReset = Named(new QPushButton(tr("As Sca&nned")), "cmdLookReset");
  connect(cmdLookReset, &QPushButton::clicked, this, [this] {
    for (QSlider* slider : sliders_) slider->setValue(0);
  });
  layout->addWidget(cmdLookReset);
  ShowTrouble("");
  ShowDoubt("");
  ShowFixed("");
}

QSlider* ScanControls::AddSlider(const char* name, const char* caption, int least) {
  auto* slider = Named(new QSlider(Qt::Horizontal), name);
  slider->setRange(least, 100);
  slider->setPageStep(20);
  slider->setSingleStep(5);
  auto* both = static_cast<QVBoxLayout*>(layout());
  both->addWidget(LabelOf(caption, slider));
  both->addWidget(slider);
  connect(slider, &QSlider::valueChanged, this, &ScanControls::TellLook);
  return slider;
}

void ScanControls::TellLook() {
  emit LookChanged({sliders_[0]->value(), sliders_[1]->value(), sliders_[2]->value()});
}

void ScanControls::ShowName(const std::string& name) {
  labScanName->setText(ToQt(name));
  labScanName->setToolTip(ToQt(name));
}

void ScanControls::ShowScale(const std::string& text) { labScanScale->setText(ToQt(text)); }

void ScanControls::ShowAngle(double degrees) {
  const QSignalBlocker quiet(spnTurn);
  spnTurn->setValue(degrees);
}

void ScanControls::ShowTrouble(const std::string& why) {
  labScanTrouble->setText(ToQt(why));
  labScanTrouble->setVisible(!why.empty());
}

void ScanControls::ShowDoubt(const std::string& words) {
  labScanDoubt->setText(
      ToQt(words) + tr("\n\nReturn: the line is right there. A press takes a point, to be dragged where it "
                       "belongs. R traces the stretch again between its two ends. Tab: the next. Escape: "
                       "back to tracing."));
  labScanDoubt->setVisible(!words.empty());
}

void ScanControls::ShowFixed(const std::string& why) {
  for (QWidget* control : std::initializer_list<QWidget*>{cmdScanScale, cmdTurnLeft, cmdTurnRight, spnTurn})
    control->setEnabled(why.empty());
  labScanFixed->setText(ToQt(why));
  labScanFixed->setVisible(!why.empty());
}

}  // namespace hyetex
