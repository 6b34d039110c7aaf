#include "graph/layout.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "graph/ticks.h"

namespace hyetex {
namespace {

constexpr double SmallestTitle = 4, TitleStep = 0.5;
constexpr Rgb Ink = graph_colour::Black;

// All lengths are multiples of the font size.
constexpr double Margin = 0.9;
constexpr double BelowTitle = 0.5;
constexpr double SampleWidth = 2.4, SampleGap = 0.5, EntryGap = 1.6, LegendRow = 1.35;
constexpr double TickLength = 0.4, TickToLabel = 0.35;
constexpr double RowGap = 0.2, TitleGap = 0.45;
constexpr double LeastTimeGap = 1.6, LeastNumberGap = 2.4, LabelGap = 1.0;
constexpr double MostSideTicks = 12;
constexpr double EndLine = 1.4, EndPad = 0.5;
constexpr double LeastPlot = 4;
constexpr double MostOfLegend = 0.3;  // of the surface's height

enum class Room { All, Bare };  // Bare: without legend and axis titles

class Layouter {
 public:
  Layouter(const Graph& graph, const Surface& surface, Room room)
      : graph_(graph),
        surface_(surface),
        bare_(room == Room::Bare),
        em_(graph.FontPoints),
        font_{em_, false},
        height_(surface.Measure("0", font_).Height()),
        ascent_(surface.Measure("0", font_).Ascent) {
    const double margin = Margin * em_;
    rest_ = surface.Area();
    rest_ = {rest_.Left + margin, rest_.Top + margin, rest_.Width - 2 * margin, rest_.Height - 2 * margin};
  }

  GraphLayout Make() {
    PlaceTitle();
    if (graph_.Layers.empty()) {
      PlaceWords(graph_.Notes);
      return std::move(out_);
    }
    const GraphWindow view = ViewOf(graph_);
    out_.X = {view.FromX, view.ToX, 0, 0};
    out_.Left = {view.FromY, view.ToY, 0, 0};
    if (!bare_) PlaceLegend();
    ChooseEnds();
    if (!PlacePlot()) return std::move(out_);
    PlaceTimeOrNumbers();
    PlaceSides();
    PlaceSections();
    PlaceEnds();
    PlaceNotes();
    out_.HasPlot = true;
    return std::move(out_);
  }

 private:
  double Em(double times) const { return times * em_; }
  double WidthOf(const std::string& text) const { return surface_.Measure(text, font_).Width; }

  void Place(std::string text, const TextStyle& style, double x, double y) {
    if (text.empty()) return;
    const TextSize size = surface_.Measure(text, style.Font);
    const double share = style.Place == TextPlace::Begins ? 0 : style.Place == TextPlace::Ends ? 1 : 0.5;
    const Rect box = style.Upwards
                         ? Rect{x - size.Ascent, y - (1 - share) * size.Width, size.Height(), size.Width}
                         : Rect{x - share * size.Width, y - size.Ascent, size.Width, size.Height()};
    out_.Texts.push_back({std::move(text), style, {x, y}, box});
  }
  TextStyle Style(TextPlace place, bool upwards = false) const { return {font_, Ink, place, upwards}; }

  // The text in the largest font up to `size` in which it is no wider than `width`, cut where even the
  // smallest is too large.
  std::pair<std::string, Font> Fitted(std::string text, Font font, double width) const {
    while (font.Size > SmallestTitle && surface_.Measure(text, font).Width > width)
      font.Size = std::max(SmallestTitle, font.Size - TitleStep);
    return {Cut(std::move(text), font, width), font};
  }
  std::string Cut(std::string text, const Font& font, double width) const {
    if (surface_.Measure(text, font).Width <= width) return text;
    while (!text.empty() && surface_.Measure(text + "...", font).Width > width) {
      while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80) text.pop_back();
      if (!text.empty()) text.pop_back();
    }
    return text.empty() ? text : text + "...";
  }

  void TakeFromTop(double height) {
    rest_.Top += height;
    rest_.Height -= height;
  }

  void PlaceTitle() {
    if (graph_.Title.empty()) return;
    const auto [text, font] = Fitted(graph_.Title, {Em(graph_.TitleTimes), true}, rest_.Width);
    const TextSize size = surface_.Measure(text, font);
    if (size.Height() > rest_.Height) return;
    Place(text, {font, Ink, TextPlace::Centred}, rest_.Left + rest_.Width / 2, rest_.Top + size.Ascent);
    TakeFromTop(size.Height() + Em(BelowTitle));
  }

  // Lines in the middle of what is left.
  void PlaceWords(const std::vector<std::string>& lines) {
    const double step = height_ * 1.5;
    double y = rest_.Top + std::max(0.0, (rest_.Height - step * static_cast<double>(lines.size())) / 2);
    for (const std::string& line : lines) {
      const auto [text, font] = Fitted(line, font_, rest_.Width);
      if (y + height_ > rest_.Bottom()) return;
      Place(text, {font, Ink, TextPlace::Centred}, rest_.Left + rest_.Width / 2, y + ascent_);
      y += step;
    }
  }

  // As many entries to a row as fit; each row is centred.
  void PlaceLegend() {
    struct Entry {
      std::size_t Layer;
      std::string Name;
      double Width;
    };
    std::vector<std::vector<Entry>> rows(1);
    double used = 0;
    const double beside = Em(SampleWidth + SampleGap);
    for (std::size_t i = 0; i < graph_.Layers.size(); ++i) {
      std::string name = std::visit([](const auto& layer) { return layer.Name; }, graph_.Layers[i]);
      if (name.empty()) continue;
      name = Cut(std::move(name), font_, rest_.Width - beside);
      const double width = beside + WidthOf(name);
      if (!rows.back().empty() && used + Em(EntryGap) + width > rest_.Width) {
        rows.emplace_back();
        used = 0;
      }
      used += (rows.back().empty() ? 0 : Em(EntryGap)) + width;
      rows.back().push_back({i, std::move(name), width});
    }
    const double row = height_ * LegendRow;
    const double all = row * static_cast<double>(rows.size());
    if (rows.front().empty() || all > MostOfLegend * surface_.Area().Height) return;
    for (const std::vector<Entry>& entries : rows) {
      double width = -Em(EntryGap);
      for (const Entry& entry : entries) width += entry.Width + Em(EntryGap);
      double x = rest_.Left + (rest_.Width - width) / 2;
      for (const Entry& entry : entries) {
        out_.Legend.push_back({entry.Layer, {x, rest_.Top, Em(SampleWidth), height_}});
        Place(entry.Name, Style(TextPlace::Begins), x + beside, rest_.Top + ascent_);
        x += entry.Width + Em(EntryGap);
      }
      TakeFromTop(row);
    }
    TakeFromTop(row - height_);
  }

  // The marked ends that are in view.
  void ChooseEnds() {
    if (bare_ || out_.X.To < graph_.X.To) return;
    for (std::size_t i = 0; i < graph_.Ends.size(); ++i) {
      const GraphEndMark& mark = graph_.Ends[i];
      if (mark.Value < out_.Left.From || mark.Value > out_.Left.To) continue;
      out_.Ends.push_back({i, {}, {}});
      endsWidth_ = std::max(endsWidth_, WidthOf(mark.Name));
    }
    if (!out_.Ends.empty()) endsWidth_ += Em(EndLine + 2 * EndPad);
  }

  bool HasTitle(const GraphAxis& axis) const { return !bare_ && !axis.Title.empty(); }

  // Heights first: they depend on fonts alone, and how many ticks there are to the left and right on them.
  bool PlacePlot() {
    const bool time = graph_.X.Kind == AxisKind::Time;
    if (!graph_.Sections.empty()) {
      sectionsTop_ = rest_.Top;
      TakeFromTop(height_ + Em(RowGap));
    } else {
      TakeFromTop(Em(TickToLabel));  // half of the uppermost label stands above the plot
    }
    labelTop_ = TickLength + TickToLabel;
    double below = Em(labelTop_) + height_;
    if (time) below += Em(RowGap) + height_;
    if (HasTitle(graph_.X)) below += Em(TitleGap) + height_;
    const double height = rest_.Height - below;
    if (height < Em(LeastPlot)) return false;

    const auto ticks = [&](const GraphAxis& axis, double from, double to, std::vector<Tick>& made) {
      made = NumberTicks(from, to, height, std::max(Em(LeastNumberGap), height / MostSideTicks));
      double widest = 0;
      for (const Tick& tick : made) widest = std::max(widest, WidthOf(tick.Label));
      return widest + Em(TickLength + TickToLabel) + (HasTitle(axis) ? height_ + Em(TitleGap) : 0);
    };
    double left = ticks(graph_.Left, out_.Left.From, out_.Left.To, leftTicks_), right = 0;
    if (graph_.Right) {
      // The same share of the right axis is in view as of the left one.
      const auto share = [&](double value) {
        return graph_.Right->From + (value - graph_.Left.From) / (graph_.Left.To - graph_.Left.From) *
                                        (graph_.Right->To - graph_.Right->From);
      };
      out_.Right = AxisScale{share(out_.Left.From), share(out_.Left.To), 0, 0};
      right = ticks(*graph_.Right, out_.Right->From, out_.Right->To, rightTicks_);
    }
    // The labels below stand around their ticks, also at the plot's ends.
    double half = WidthOf("00:00") / 2;
    if (!time)
      for (const double end : {out_.X.From, out_.X.To})
        for (const Tick& tick : NumberTicks(end - 1, end + 1, rest_.Width, rest_.Width / 4))
          half = std::max(half, WidthOf(tick.Label) / 2);
    left = std::max(left, half);
    right = std::max(right, half - endsWidth_);
    const double width = rest_.Width - left - right - endsWidth_;
    if (width < Em(LeastPlot)) return false;

    out_.Plot = {rest_.Left + left, rest_.Top, width, height};
    out_.Frame = {out_.Plot.Left, out_.Plot.Top, width + endsWidth_, height};
    out_.X.Begin = out_.Plot.Left;
    out_.X.End = out_.Plot.Right();
    out_.Left.Begin = out_.Plot.Bottom();
    out_.Left.End = out_.Plot.Top;
    if (out_.Right) {
      out_.Right->Begin = out_.Left.Begin;
      out_.Right->End = out_.Left.End;
    }
    return true;
  }

  void AddUpright(std::vector<PlacedLine>& lines, double x, double from, double to) {
    lines.push_back({{x, from}, {x, to}});
  }

  void PlaceTimeOrNumbers() {
    const Rect& plot = out_.Plot;
    const double bottom = plot.Bottom(), label = bottom + Em(labelTop_) + ascent_;
    double row = label;
    std::vector<Tick> ticks;
    if (graph_.X.Kind == AxisKind::Time) {
      TimeTicks times = MakeTimeTicks(out_.X.From, out_.X.To, plot.Width, Em(LeastTimeGap),
                                      [this](const std::string& text) { return WidthOf(text); });
      row += Em(RowGap) + height_;
      for (const double day : times.DayMarks)
        AddUpright(out_.DayMarks, out_.X.ToSurface(day), plot.Top, bottom);
      for (const TimeSpan& span : times.Spans) {
        Place(span.Label, Style(TextPlace::Centred), out_.X.ToSurface((span.From + span.To) / 2), row);
        if (span.From > out_.X.From)
          AddUpright(out_.Ticks, out_.X.ToSurface(span.From), row - ascent_, row - ascent_ + height_);
      }
      ticks = std::move(times.Ticks);
    } else {
      double gap = Em(LeastNumberGap);
      for (int i = 0; i < 6; ++i) {  // wider labels may want a longer step, whose labels may be wider
        ticks = NumberTicks(out_.X.From, out_.X.To, plot.Width, gap);
        double widest = 0;
        for (const Tick& tick : ticks) widest = std::max(widest, WidthOf(tick.Label));
        if (widest + Em(LabelGap) <= gap) break;
        gap = widest + Em(LabelGap);
      }
    }
    for (const Tick& tick : ticks) {
      const double x = out_.X.ToSurface(tick.Value);
      AddUpright(out_.Grid, x, plot.Top, bottom);
      AddUpright(out_.Ticks, x, bottom, bottom + Em(tick.Label.empty() ? TickLength / 2 : TickLength));
      Place(tick.Label, Style(TextPlace::Centred), x, label);
    }
    if (HasTitle(graph_.X)) {
      const auto [text, font] = Fitted(graph_.X.Title, font_, plot.Width);
      Place(text, {font, Ink, TextPlace::Centred}, plot.Left + plot.Width / 2, row + Em(TitleGap) + height_);
    }
  }

  void PlaceSide(const GraphAxis& axis, const AxisScale& scale, const std::vector<Tick>& ticks, bool right) {
    const Rect& frame = out_.Frame;
    const double edge = right ? frame.Right() : frame.Left, away = right ? 1 : -1;
    for (const Tick& tick : ticks) {
      const double y = scale.ToSurface(tick.Value);
      if (!right) out_.Grid.push_back({{out_.Plot.Left, y}, {out_.Plot.Right(), y}});
      out_.Ticks.push_back({{edge, y}, {edge + away * Em(TickLength), y}});
      Place(tick.Label, Style(right ? TextPlace::Begins : TextPlace::Ends),
            edge + away * Em(TickLength + TickToLabel), y + ascent_ - height_ / 2);
    }
    if (!HasTitle(axis)) return;
    const auto [text, font] = Fitted(axis.Title, font_, out_.Plot.Height);
    Place(text, {font, Ink, TextPlace::Centred, true},
          right ? rest_.Right() - (height_ - ascent_) : rest_.Left + ascent_,
          out_.Plot.Top + out_.Plot.Height / 2);
  }

  void PlaceSides() {
    PlaceSide(graph_.Left, out_.Left, leftTicks_, false);
    if (graph_.Right) PlaceSide(*graph_.Right, *out_.Right, rightTicks_, true);
  }

  void PlaceSections() {
    for (const GraphSection& section : graph_.Sections) {
      const double from = std::max(out_.X.ToSurface(section.From), out_.Plot.Left);
      const double to = std::min(out_.X.ToSurface(section.To), out_.Plot.Right());
      if (to <= from) continue;
      if (WidthOf(section.Name) + Em(SampleGap) <= to - from)
        Place(section.Name, Style(TextPlace::Centred), (from + to) / 2, sectionsTop_ + ascent_);
      if (from > out_.Plot.Left && &section != &graph_.Sections.front())
        AddUpright(out_.Boundaries, from, sectionsTop_, out_.Plot.Bottom());
    }
  }

  // Names stand beside their marks, moved apart where values lie close to each other.
  void PlaceEnds() {
    std::vector<PlacedEnd>& ends = out_.Ends;
    const double highest = out_.Frame.Top + height_ / 2, lowest = out_.Frame.Bottom() - height_ / 2;
    if (static_cast<double>(ends.size()) * height_ > out_.Frame.Height) {
      ends.clear();
      return;
    }
    std::stable_sort(ends.begin(), ends.end(), [&](const PlacedEnd& a, const PlacedEnd& b) {
      return graph_.Ends[a.Mark].Value > graph_.Ends[b.Mark].Value;
    });
    double above = -std::numeric_limits<double>::infinity();
    for (PlacedEnd& end : ends) {
      end.At = out_.ToSurface({out_.X.To, graph_.Ends[end.Mark].Value});
      end.Label = {end.At.X + Em(EndLine), std::max(std::clamp(end.At.Y, highest, lowest), above + height_)};
      above = end.Label.Y;
    }
    double below = lowest + height_;
    for (auto end = ends.rbegin(); end != ends.rend(); ++end)
      below = end->Label.Y = std::min(end->Label.Y, below - height_);
    for (const PlacedEnd& end : ends)
      Place(graph_.Ends[end.Mark].Name, Style(TextPlace::Begins), end.Label.X + Em(EndPad),
            end.Label.Y + ascent_ - height_ / 2);
  }

  void PlaceNotes() {
    double y = out_.Plot.Top + Em(TickToLabel);
    for (const std::string& note : graph_.Notes) {
      const auto [text, font] = Fitted(note, font_, out_.Plot.Width - Em(1));
      if (y + height_ > out_.Plot.Bottom()) return;
      Place(text, {font, Ink, TextPlace::Begins}, out_.Plot.Left + Em(0.5), y + ascent_);
      y += height_ * 1.2;
    }
  }

  const Graph& graph_;
  const Surface& surface_;
  const bool bare_;
  const double em_;
  const Font font_;
  const double height_, ascent_;
  Rect rest_;  // what is not taken yet
  double sectionsTop_ = 0, labelTop_ = 0, endsWidth_ = 0;
  std::vector<Tick> leftTicks_, rightTicks_;
  GraphLayout out_;
};

}  // namespace

std::optional<GraphWindow> GraphLayout::WindowOf(const Rect& rect) const {
  const double left = std::max(rect.Left, Plot.Left), right = std::min(rect.Right(), Plot.Right());
  const double top = std::max(rect.Top, Plot.Top), bottom = std::min(rect.Bottom(), Plot.Bottom());
  if (!HasPlot || right <= left || bottom <= top) return std::nullopt;
  const GraphPoint from = ToData(left, bottom), to = ToData(right, top);
  return GraphWindow{from.X, to.X, from.Y, to.Y};
}

GraphLayout LayOut(const Graph& graph, const Surface& surface) {
  GraphLayout layout = Layouter(graph, surface, Room::All).Make();
  if (!layout.HasPlot && !graph.Layers.empty()) layout = Layouter(graph, surface, Room::Bare).Make();
  if (!layout.HasPlot && !graph.Layers.empty()) {
    Graph words;
    words.Title = graph.Title;
    words.TitleTimes = graph.TitleTimes;
    words.FontPoints = graph.FontPoints;
    words.Notes = {"There is no room for the graph here."};
    layout = Layouter(words, surface, Room::Bare).Make();
  }
  return layout;
}

}  // namespace hyetex
