#include "core/trace.h"

#include <array>
#include <cmath>
#include <random>

namespace hyetex {
namespace {

ChartScales Scales(int method) {
  return {{9145, 6100, 458, 350}, {"Weekly", 100, 0.1F, 2, static_cast<std::int16_t>(method), 12.5F}};
}

// What a trace adds up to, summed from the start every time and by the formulas alone.
class PlainSums {
 public:
  explicit PlainSums(const Trace& line) : line_(line), method_(line.Scales().ChartType.ChartMethod) {}
  double Time(int n) const {
    double s = 0;
    for (int i = 1; i <= n; ++i)
      if (line_.Point(i).X < 1e6) s += Along(i, PaperOf(i)) - Along(i - 1, PaperOf(i));
    return s / 9145 * 458 * 2 / 24;
  }
  double Depth(int n) const {
    double s = 0;
    for (int i = 1, p = 0; i <= n; ++i) {
      const std::string& comment = line_.Point(i).Comment;
      const auto says = [&](const char* code) { return comment.find(code) != std::string::npos; };
      if (line_.Point(i).X >= 1e6 || says("CODE203") || says("CODE205")) continue;
      const double d = Height(i, p) - Height(i - 1, p);
      if (d < 0 && method_ == 0) continue;
      p = PaperOf(i);
      if (method_ != 2) s += std::abs(d);
    }
    return s / 6100 * 350 * 0.1F;
  }

 private:
  int PaperOf(int i) const {
    int found = 0;
    for (int p = 1; p <= line_.CurrentPaper() && i >= line_.Paper(1).FirstPoint; ++p)
      if (line_.Paper(p).FirstPoint <= i) found = p;
    return found;
  }
  double Height(int i, int paper) const {
    const auto [x, y, x1, y1, x2, y2] = Numbers(i, paper);
    return ((y1 - y2) * x + (x2 - x1) * y - x2 * y1 + y2 * x1) / std::hypot(y1 - y2, x1 - x2);
  }
  double Along(int i, int paper) const {
    const auto [x, y, x1, y1, x2, y2] = Numbers(i, paper);
    const double t =
        ((x2 - x1) * x + (y2 - y1) * y + (y1 - y2) * y1 + (x1 - x2) * x1) / std::hypot(y1 - y2, x1 - x2);
    const double h = 100.0 / 350 * 6100, d = 12.5 * 9145 / 458, r = (h * h / 4 + d * d) / (2 * d);
    const double off = h / 2 - Height(i, paper);
    return method_ == 1 ? t + d - r + std::sqrt(std::max(0.0, r * r - off * off)) : t;
  }
  std::array<double, 6> Numbers(int i, int paper) const {
    const DigitizedPoint& q = line_.Point(i);
    const ChartPaper& p = line_.Paper(paper);
    return {q.X >= 1e6 ? q.X - 1e6 : q.X, q.Y, p.BottomLeftX, p.BottomLeftY, p.BottomRightX, p.BottomRightY};
  }
  const Trace& line_;
  int method_;
};

// Points, segments, strips, codes that come later, and erasing.
void DoAnything(Trace& line, std::mt19937& random) {
  const auto next = [&](int from, int to) { return std::uniform_int_distribution(from, to)(random); };
  const double x = next(1000, 8000), y = next(1500, 3200);
  const int kind = next(0, 19), last = line.LastPoint();
  if (kind == 0) {
    line.RemoveLast();
  } else if (kind < 4 && last >= 0) {
    const int point = next(0, last);
    if (kind == 1)
      line.ClearComment(point);
    else
      line.AddComment(point, kind == 2 ? "CODE203" : "CODE205 + wet");
  } else if (kind == 4 && !line.PapersAreFull()) {
    line.AttachPaper(x, y, x + 1000, y + 300);
    for (int i = next(0, 2); i > 0; --i) line.RemoveLast();  // erased before the strip's first point came
    if (next(0, 3) > 0) line.AddFirstOfPaper(x, y);
  } else if (kind == 5 && next(0, 9) == 0) {
    line.Clear();
  } else {
    line.Add(x, y, kind == 6);
  }
}

TEST(Trace, RunningSumsEqualSummingFromTheStart) {
  std::mt19937 random(3);
  for (int round = 0; round < 120; ++round) {
    Trace line(Scales(round % 3));
    line.SetPage(1000, 1500, 8000, 1300 + 10 * round);
    for (int step = 0; step < 200; ++step) {
      DoAnything(line, random);
      if (step % 3 != 0) continue;
      const int n = std::uniform_int_distribution(-1, static_cast<int>(line.LastPoint()))(random);
      const PlainSums plain(line);
      ASSERT_NEAR(line.TimeTo(n), plain.Time(n), 2e-4) << round << " " << step;
      ASSERT_NEAR(line.TotalDepth(n), plain.Depth(n), 1e-3 + plain.Depth(n) * 1e-6) << round << " " << step;
    }
  }
}

TEST(Trace, AStripHoldsNoPointBeforeItsFirst) {
  Trace line(Scales(0));
  line.SetPage(1000, 1500, 8000, 1500);
  line.Add(2000, 1600, false);
  line.Add(3000, 1700, false);
  line.AttachPaper(1000, 5000, 8000, 5000);
  EXPECT_EQ(line.PaperOfPoint(1), 0);
  line.AddFirstOfPaper(1100, 5100);
  EXPECT_EQ(line.PaperOfPoint(1), 0);
  EXPECT_EQ(line.PaperOfPoint(2), 1);
}

TEST(Trace, TurningOrMovingThePageChangesNothing) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> x(1000, 8000), y(1500, 3200);
  for (int method = 0; method <= 2; ++method)
    for (const double angle : {0.0, 0.02, -0.3, 1.2}) {
      const auto turned = [&](double px, double py) {
        const double sine = std::sin(angle), cosine = std::cos(angle);
        return std::pair(px * cosine - py * sine + 5000, px * sine + py * cosine - 77);
      };
      Trace plain(Scales(method)), moved(Scales(method));
      const auto [lx, ly] = turned(1000, 1500);
      const auto [rx, ry] = turned(8000, 1500);
      plain.SetPage(1000, 1500, 8000, 1500);
      moved.SetPage(lx, ly, rx, ry);
      EXPECT_NEAR(moved.Paper(0).Angle, angle, 1e-6);
      for (int i = 0; i < 300; ++i) {
        const double px = x(random), py = y(random);
        const auto [mx, my] = turned(px, py);
        plain.Add(px, py, i % 50 == 49);
        moved.Add(mx, my, i % 50 == 49);
        ASSERT_NEAR(moved.TimeTo(i), plain.TimeTo(i), 2e-4);
        ASSERT_NEAR(moved.TotalDepth(i), plain.TotalDepth(i), 2e-3);
      }
      EXPECT_EQ(plain.TotalDepth(299) > 0, method != 2);
    }
}

}  // namespace
}  // namespace hyetex
