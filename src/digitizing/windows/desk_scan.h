// The scan under the trace: its image, how many of its pixels are a millimetre, how it is turned and shown.
// What was decided about it goes to the action machine, and so into the journal.
#pragma once

#include <QFileSystemWatcher>
#include <QImage>
#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "digitizing/action_machine.h"
#include "digitizing/pointer_tool.h"
#include "digitizing/scan_placement.h"
#include "digitizing/windows/mouse_hand.h"
#include "digitizing/windows/scan_controls.h"
#include "platform/dialogs.h"
#include "scan/scan_image.h"
#include "scan/scan_scale.h"

namespace hyetex {

class DeskScan : public QObject {
  Q_OBJECT

 public:
  /// `programFolder` remembers scales. All references must outlive it.
  DeskScan(std::shared_ptr<const ScanImage> image, ActionMachine& machine, MouseHand& hand, Dialogs& dialogs,
           std::string programFolder, QObject* parent);

  ScanControls* Panel() { return look_; }
  const ScanImage& Image() const { return *image_; }
  /// For work that may outlast the window.
  std::shared_ptr<const ScanImage> SharedImage() const { return image_; }
  const ScanPlacement& Placement() const { return placement_; }
  bool HasScale() const { return scale_.has_value(); }
  /// How it is shown; for pictures.
  void SetLook(const ScanLook& look);

  /// Lays the scan under a new trace, at the scale that its chart type and its file say; asks for one where
  /// they do not.
  void Begin();
  /// Lays it where a journal says that it was.
  void Resume(const ScanPlacement& placement);
  /// Lays it where the program has found the chart on it, by the printed grid.
  void LayByGrid(const ScanPlacement& placement);
  /// Fills a picture with what lies under a view.
  void Paint(QImage& picture, const DeskLayout& layout, Rgb around) const;
  /// The session has gone on: the scan may have to stay as it is now, or may be free again.
  void SessionChanged();

  /// Waits for two marks on the scan.
  void Measure();
  /// Leaves the measuring; false if there was none.
  bool Escape();
  /// The tablet positions of the marks that have been clicked.
  const std::vector<std::pair<double, double>>& Marks() const { return marks_.At; }

 signals:
  void Changed();                           ///< it looks different, or lies elsewhere
  void TraceAsked();                        ///< by the program itself
  void Instruction(std::string_view text);  ///< for the operator

 private:
  // Two places on the scan, one after the other.
  struct MarkTool : PointerTool {
    explicit MarkTool(DeskScan& owner) : Owner(owner) {}
    void Press(double x, double y) override;
    void PressTwice(double, double) override {}
    void Move(double, double, bool) override {}
    void Release(double, double) override;
    bool Step(double, double) override { return false; }
    DeskScan& Owner;
    std::vector<std::pair<double, double>> At;
  };
  // Nothing is traced on a scan without a scale.
  struct NoScaleTool : PointerTool {
    explicit NoScaleTool(DeskScan& owner) : Owner(owner) {}
    void Press(double, double) override {}
    void PressTwice(double, double) override {}
    void Move(double, double, bool) override {}
    void Release(double, double) override;
    bool Step(double, double) override { return false; }
    DeskScan& Owner;
  };

  ScanFacts Facts() const;
  void ChooseScale(ScanScale::Source by);
  void AskForScale();
  void AskForWidth();
  void Measured();
  void Take(const Result<ScanScale>& scale);
  bool Lay(const ScanScale& scale);
  void Turn(double degrees);
  void Place(const ScanPlacement& placement);
  void Keep();
  void GiveHandBack();
  std::string WhyFixed() const;
  std::optional<double> AskForMm(const std::string& prompt);
  void LookAtFile();
  void Tell(const std::string& text);
  const std::string& ChartType() const { return machine_.CurrentSession().Line.Scales().ChartType.Name; }

  const std::shared_ptr<const ScanImage> image_;
  ActionMachine& machine_;
  MouseHand& hand_;
  Dialogs& dialogs_;
  const std::string programFolder_;
  ScanControls* look_;
  ScanLook shown_;
  ScanPlacement placement_;
  std::optional<ScanScale> scale_;
  double typedMm_ = 0;  // the length that was typed last
  MarkTool marks_{*this};
  NoScaleTool noScale_{*this};
  bool measuring_ = false;
  QFileSystemWatcher watcher_;
  QTimer settled_;  // a file that is being written is looked at once it rests
};

}  // namespace hyetex
