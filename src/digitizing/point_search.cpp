#include "digitizing/point_search.h"

#include <algorithm>
#include <cmath>

namespace hyetex {
namespace {

double DistanceToPiece(const DigitizedPoint& a, const DigitizedPoint& b, double x, double y) {
  const double dx = b.TrueX() - a.TrueX(), dy = b.Y - a.Y, length2 = dx * dx + dy * dy;
  const double along = length2 > 0 ? ((x - a.TrueX()) * dx + (y - a.Y) * dy) / length2 : 0;
  const double part = std::clamp(along, 0.0, 1.0);
  return std::hypot(x - a.TrueX() - part * dx, y - a.Y - part * dy);
}

}  // namespace

int PointAt(const Trace& line, double x, double y, double reach) {
  int found = -1;
  for (int i = 0; i <= line.LastPoint(); ++i)
    if (const double far = std::hypot(line.Point(i).TrueX() - x, line.Point(i).Y - y); far <= reach) {
      reach = far;
      found = i;
    }
  return found;
}

int NearestSegmentAt(const Trace& line, double x, double y, double reach) {
  int found = -1;
  for (int i = 1; i <= line.LastPoint(); ++i) {
    if (line.Point(i).StartsSegment()) continue;
    if (const double far = DistanceToPiece(line.Point(i - 1), line.Point(i), x, y); far <= reach) {
      reach = far;
      found = i;
    }
  }
  return found;
}

}  // namespace hyetex
