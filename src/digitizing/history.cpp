#include "digitizing/history.h"

#include <algorithm>
#include <utility>

namespace hyetex {

int History::Shift::Of(int point) const {
  if (point < At) return point;
  if (point >= At + Removed) return point + Inserted - Removed;
  return Removed == Inserted ? point : -1;
}

bool History::IsSame(const DigitizedPoint& a, const DigitizedPoint& b) {
  return a.X == b.X && a.Y == b.Y && a.Comment == b.Comment;
}

void History::Begin(Session& session, const Rest& rest) {
  const Trace& line = session.Line;
  points_.assign(line.Points().begin(), line.Points().end());
  papers_ = {{line.Papers().begin(), line.Papers().end()}, line.CurrentPaper()};
  general_ = session.Chart.GeneralComment;
  rest_ = rest;
  steps_.clear();
  done_ = 0;
  (void)session.Line.TakeChange();
}

// The trace tells between which points it was changed; what was put back in there counts as never touched.
bool History::FindPoints(Session& session, Step& step) const {
  const Trace::Change change = session.Line.TakeChange();
  const auto now = session.Line.Points();
  const int before = static_cast<int>(points_.size()), after = static_cast<int>(now.size());
  int from = std::min({change.From, before, after});
  int tail = std::min(change.Tail, std::min(before, after) - from);
  const auto same = [&](int i, int j) {
    return IsSame(points_[static_cast<std::size_t>(i)], now[static_cast<std::size_t>(j)]);
  };
  while (from + tail < std::min(before, after) && same(from, from)) ++from;
  while (from + tail < std::min(before, after) && same(before - tail - 1, after - tail - 1)) ++tail;
  step.At = from;
  step.Points.Before.assign(points_.begin() + from, points_.end() - tail);
  step.Points.After.assign(now.begin() + from, now.end() - tail);
  return !step.Points.Before.empty() || !step.Points.After.empty();
}

std::optional<History::Shift> History::Commit(Session& session, const Rest& rest, std::string_view what) {
  const Trace& line = session.Line;
  Step step;
  bool changed = FindPoints(session, step);
  if (!std::ranges::equal(papers_.All, line.Papers()) || papers_.Current != line.CurrentPaper()) {
    Papers now{{line.Papers().begin(), line.Papers().end()}, line.CurrentPaper()};
    step.Sheets = {std::exchange(papers_, now), now};
    changed = true;
  }
  if (general_ != session.Chart.GeneralComment) {
    step.General = {std::exchange(general_, session.Chart.GeneralComment), session.Chart.GeneralComment};
    changed = true;
  }
  if (!changed) return std::nullopt;
  step.What = what;
  step.Waits = {std::exchange(rest_, rest), rest};
  const int removed = static_cast<int>(step.Points.Before.size());
  Remember(step.At, removed, step.Points.After);
  const Shift shift{step.At, removed, static_cast<int>(step.Points.After.size())};
  steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(done_), steps_.end());
  steps_.push_back(std::move(step));
  done_ = steps_.size();
  return shift;
}

void History::Remember(int at, int count, const std::vector<DigitizedPoint>& points) {
  points_.erase(points_.begin() + at, points_.begin() + at + count);
  points_.insert(points_.begin() + at, points.begin(), points.end());
}

History::Shift History::Undo(Session& session) { return Apply(session, steps_[--done_], false); }

History::Shift History::Redo(Session& session) { return Apply(session, steps_[done_++], true); }

History::Shift History::Apply(Session& session, const Step& step, bool forward) {
  const auto& from = forward ? step.Points.Before : step.Points.After;
  const auto& to = forward ? step.Points.After : step.Points.Before;
  const int removed = static_cast<int>(from.size());
  session.Line.Replace(step.At, removed, to);
  Remember(step.At, removed, to);
  if (step.Sheets) {
    papers_ = forward ? step.Sheets->After : step.Sheets->Before;
    session.Line.RestorePapers(papers_.All, papers_.Current);
  }
  if (step.General) {
    general_ = forward ? step.General->After : step.General->Before;
    session.Chart.GeneralComment = general_;
  }
  rest_ = forward ? step.Waits.After : step.Waits.Before;
  (void)session.Line.TakeChange();
  return {step.At, removed, static_cast<int>(to.size())};
}

}  // namespace hyetex
