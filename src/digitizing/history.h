// The changes of a session in their order, so that each can be taken back and made again. A step is all that
// one press, tool, comment window or correction has changed of points, papers and the general comment, with
// what the tools waited for before and behind it. It keeps only what differs, so a step of a long trace costs
// no more than one of a short trace.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/session.h"

namespace hyetex {

class History {
 public:
  /// What a session waits for.
  struct Rest {
    float Action = 0;
    bool AlphaNext = false;
    float CornerX = 0, CornerY = 0;
    float PageAngle = 0;
  };

  /// Where points have come and gone: `Removed` from `At` on have become `Inserted`.
  struct Shift {
    int At = 0, Removed = 0, Inserted = 0;
    /// The new index of a point; -1 when it is gone.
    int Of(int point) const;
  };

  /// Forgets all steps; the session as it is becomes the one that cannot be taken back.
  void Begin(Session& session, const Rest& rest);
  /// Makes a step of all that has changed since the last one; nothing if nothing has. A step that was taken
  /// back can then no longer be made again.
  std::optional<Shift> Commit(Session& session, const Rest& rest, std::string_view what);
  /// What is waited for from here on without a change, so that it is not for Undo to take back.
  void Settle(const Rest& rest) { rest_ = rest; }
  const Rest& Settled() const { return rest_; }

  bool CanUndo() const { return done_ > 0; }
  bool CanRedo() const { return done_ < steps_.size(); }
  /// What the step was called; there must be one.
  const std::string& UndoName() const { return steps_[done_ - 1].What; }
  const std::string& RedoName() const { return steps_[done_].What; }
  /// The session is the one before the last step, or behind the next one, and waits for Settled(). There must
  /// be such a step, and nothing changed since.
  Shift Undo(Session& session);
  Shift Redo(Session& session);

 private:
  struct Papers {
    std::vector<ChartPaper> All;
    std::int16_t Current = 0;
    bool operator==(const Papers&) const = default;
  };
  template <typename T>
  struct Both {
    T Before, After;
  };
  struct Step {
    std::string What;
    int At = 0;
    Both<std::vector<DigitizedPoint>> Points;
    std::optional<Both<Papers>> Sheets;
    std::optional<Both<std::string>> General;
    Both<Rest> Waits;
  };

  bool FindPoints(Session& session, Step& step) const;
  static bool IsSame(const DigitizedPoint& a, const DigitizedPoint& b);
  Shift Apply(Session& session, const Step& step, bool forward);
  void Remember(int at, int count, const std::vector<DigitizedPoint>& points);

  // The session after the last step.
  std::vector<DigitizedPoint> points_;
  Papers papers_;
  std::string general_;
  Rest rest_;

  std::vector<Step> steps_;
  std::size_t done_ = 0;  // steps that are not taken back
};

}  // namespace hyetex
