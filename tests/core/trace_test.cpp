#include "core/trace.h"

#include <array>
#include <cmath>
#include <random>

namespace hyetex {
namespace {

ChartScales Scales(int method) {
  return {{9145, 6100, 458, 350}, {"Weekly", 100, 0.1F, 2, static_cast<std::int16_t>(method), 12.5F}};
}

// The same trace in plain tables, summed from the start every time.
struct PlainTrace {
  ChartScales Scale;
  std::vector<DigitizedPoint> Points;
  std::vector<ChartPaper> Papers{MaxPaper + 1};
  int Current = 0;

  int PaperOf(int i) const {
    if (i < Papers[1].FirstPoint || Current == 0) return 0;
    int found = 0;
    for (int p = 1; p <= Current; ++p)
      if (Papers[static_cast<std::size_t>(p)].FirstPoint <= i) found = p;
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
    if (Scale.ChartType.ChartMethod != 1) return t;
    const double h = 100.0 / 350 * 6100, d = 12.5 * 9145 / 458, r = (h * h / 4 + d * d) / (2 * d);
    const double off = h / 2 - Height(i, paper);
    return t + d - r + std::sqrt(std::max(0.0, r * r - off * off));
  }
  std::array<double, 6> Numbers(int i, int paper) const {
    const DigitizedPoint& q = Points[static_cast<std::size_t>(i)];
    const ChartPaper& p = Papers[static_cast<std::size_t>(paper)];
    return {q.X >= 1e6 ? q.X - 1e6 : q.X, q.Y, p.BottomLeftX, p.BottomLeftY, p.BottomRightX, p.BottomRightY};
  }
  double Time(int n) const {
    double s = 0;
    for (int i = 1; i <= n; ++i)
      if (Points[static_cast<std::size_t>(i)].X < 1e6) s += Along(i, PaperOf(i)) - Along(i - 1, PaperOf(i));
    return s / 9145 * 458 * 2 / 24;
  }
  double Depth(int n) const {
    double s = 0;
    int p = 0;
    for (int i = 1; i <= n; ++i) {
      const DigitizedPoint& q = Points[static_cast<std::size_t>(i)];
      if (q.X >= 1e6 || q.Comment.find("CODE203") != std::string::npos ||
          q.Comment.find("CODE205") != std::string::npos)
        continue;
      const double d = Height(i, p) - Height(i - 1, p);
      if (d < 0 && Scale.ChartType.ChartMethod == 0) continue;
      p = PaperOf(i);
      if (Scale.ChartType.ChartMethod != 2) s += std::abs(d);
    }
    return s / 6100 * 350 * 0.1F;
  }
};

// A random session on both: segments, strips, codes, erasing, and comments that come later.
class RandomSession {
 public:
  RandomSession(int method, unsigned seed) : line(Scales(method)), random(seed) {
    plain.Scale = Scales(method);
    const double slope = 20 * Next(-10, 10);
    line.SetPage(1000, 1500, 8000, 1500 + slope);
    plain.Papers[0] = {1000, 1500, 8000, 1500 + slope, 0, 0};
  }
  void Step() {
    const int last = line.LastPoint();
    const double x = Next(1000, 8000), y = Next(1500, 3200);
    switch (Next(0, 19)) {
      case 0:
        line.RemoveLast();
        if (last >= 0) plain.Points.pop_back();
        break;
      case 1:
        line.Add(x, y, true);
        plain.Points.push_back({x + 1e6, y, "", false});
        break;
      case 2:
      case 3:
        if (last < 0) break;
        Comment(Next(0, last), Next(0, 3) == 0 ? "" : Next(0, 1) == 0 ? "CODE203" : "CODE205 + wet");
        break;
      case 4:
        if (plain.Current == MaxPaper || last < 0) break;
        ++plain.Current;
        Paper() = {x, y, x + 1000, y + 300, 0, static_cast<std::int16_t>(last + 1)};
        line.AttachPaper(x, y, x + 1000, y + 300);
        if (Next(0, 3) == 0) break;
        for (int i = Next(0, 2); i > 0 && line.LastPoint() > 0; --i) {  // erased before its first point came
          line.RemoveLast();
          plain.Points.pop_back();
        }
        line.AddFirstOfPaper(x, y);
        plain.Points.push_back({x + 1e6, y, "", false});
        Paper().FirstPoint = line.LastPoint();
        break;
      case 5:
        if (Next(0, 9) != 0) break;
        line.Clear();
        plain.Points.clear();
        plain.Current = 0;
        break;
      default:
        line.Add(x, y);
        plain.Points.push_back({x, y, "", false});
    }
  }
  void Compare() {
    if (Next(0, 2) != 0) return;
    const int n = Next(-1, line.LastPoint());
    ASSERT_NEAR(line.TimeTo(n), plain.Time(n), 2e-4);
    ASSERT_NEAR(line.TotalDepth(n), plain.Depth(n), 1e-3 + plain.Depth(n) * 1e-6);
    for (int i = 0; i <= n; ++i) ASSERT_EQ(line.PaperOfPoint(i), plain.PaperOf(i));
  }
  Trace line;
  PlainTrace plain;

 private:
  int Next(int from, int to) { return std::uniform_int_distribution(from, to)(random); }
  ChartPaper& Paper() { return plain.Papers[static_cast<std::size_t>(plain.Current)]; }
  void Comment(int i, std::string entry) {
    std::string& comment = plain.Points[static_cast<std::size_t>(i)].Comment;
    if (entry.empty()) {
      line.ClearComment(i);
      comment.clear();
    } else {
      line.AddComment(i, entry);
      comment += comment.empty() ? entry : "::" + entry;
      EXPECT_EQ(line.Point(i).Comment, comment);
    }
  }
  std::mt19937 random;
};

TEST(Trace, RunningSumsEqualSummingFromTheStart) {
  for (int method = 0; method <= 2; ++method)
    for (unsigned seed = 0; seed < 40; ++seed) {
      RandomSession session(method, seed);
      for (int step = 0; step < 200; ++step) {
        session.Step();
        session.Compare();
        ASSERT_FALSE(HasFatalFailure()) << method << " " << seed << " " << step;
      }
    }
}

TEST(Trace, TurningOrMovingThePageChangesNothing) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> x(1000, 8000), y(1500, 3200);
  for (int method = 0; method <= 2; ++method)
    for (const double angle : {0.0, 0.02, -0.3, 1.2}) {
      const auto turned = [&](double px, double py) {
        return std::pair(px * std::cos(angle) - py * std::sin(angle) + 431,
                         px * std::sin(angle) + py * std::cos(angle) - 77);
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
        if (mx >= 0) {
          moved.Add(mx, my, i % 50 == 49);
        } else {  // off the tablet: the mark would not be told from a position
          plain.RemoveLast();
        }
        const int last = plain.LastPoint();
        ASSERT_NEAR(moved.TimeTo(last), plain.TimeTo(last), 2e-4);
        ASSERT_NEAR(moved.TotalDepth(last), plain.TotalDepth(last), 2e-3);
      }
      EXPECT_EQ(plain.TotalDepth(plain.LastPoint()) > 0, method != 2);
    }
}

TEST(Trace, WorkedSession) {
  Trace line({{4000, 4000, 400, 400}, {"Weekly", 100, 0.1F, 2, 0, 0}});
  line.SetPage(500, 500, 3500, 500);
  EXPECT_EQ(line.TotalDepth(-1), 0);
  line.Add(500, 600);
  EXPECT_EQ(line.TimeTo(0), 0);
  line.Add(620, 1100);  // 12 mm are a day, 50 mm are 5 mm of rain
  EXPECT_DOUBLE_EQ(line.TimeTo(1), 1);
  EXPECT_FLOAT_EQ(line.TotalDepth(1), 5);
  line.Add(620, 600);        // the pen's return adds nothing
  line.Add(700, 600, true);  // nor does another segment's start
  line.Add(580, 700);        // back a day, up 10 mm
  line.Add(580, 700);
  EXPECT_DOUBLE_EQ(line.TimeTo(5), 0);
  EXPECT_FLOAT_EQ(line.TotalDepth(5), 6);
  line.Add(700, 900, false, "CODE203");
  EXPECT_DOUBLE_EQ(line.TimeTo(6), 1);
  EXPECT_FLOAT_EQ(line.TotalDepth(6), 6);
  line.AddComment(4, "CODE205");
  EXPECT_FLOAT_EQ(line.TotalDepth(6), 5);
  line.ClearComment(6);
  EXPECT_FLOAT_EQ(line.TotalDepth(6), 7);
}

}  // namespace
}  // namespace hyetex
