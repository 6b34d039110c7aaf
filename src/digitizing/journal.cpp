#include "digitizing/journal.h"

#include <algorithm>
#include <charconv>

#include "core/numbers.h"
#include "core/records.h"
#include "core/text.h"
#include "digitizing/action_machine.h"
#include "digitizing/scan_placement.h"

namespace hyetex {
namespace {

constexpr std::string_view Header = "HYETEX88 JOURNAL 1";

struct Word {
  std::string_view Name;
  JournalEvent::Kind Kind;
};
constexpr Word Words[] = {
    {"press", JournalEvent::Kind::Press},     {"tool", JournalEvent::Kind::Tool},
    {"select", JournalEvent::Kind::Select},   {"comment", JournalEvent::Kind::Comment},
    {"general", JournalEvent::Kind::General}, {"clear", JournalEvent::Kind::Clear},
    {"escape", JournalEvent::Kind::Escape},   {"page", JournalEvent::Kind::Page},
    {"scan", JournalEvent::Kind::Scan},       {"move", JournalEvent::Kind::Move},
    {"delete", JournalEvent::Kind::Delete},   {"insert", JournalEvent::Kind::Insert},
    {"corner", JournalEvent::Kind::Corner},   {"undo", JournalEvent::Kind::Undo},
    {"redo", JournalEvent::Kind::Redo},
};

std::string_view NameOf(JournalEvent::Kind kind) {
  for (const Word& word : Words)
    if (word.Kind == kind) return word.Name;
  return {};
}

// Takes the next blank-separated field off the front of `text`.
std::string_view TakeField(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  const std::string_view field = text.substr(0, text.find(' '));
  text.remove_prefix(field.size());
  return field;
}

// The whole of `field` as a number; what has other text in it is none.
template <typename Number>
std::optional<Number> Whole(std::string_view field) {
  Number value{};
  const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
  if (field.empty() || error != std::errc{} || end != field.data() + field.size()) return std::nullopt;
  return value;
}

bool IsPosition(const std::optional<double>& value) { return value && *value >= 0 && *value < SegmentMark; }

bool ReadPoints(std::string_view rest, std::vector<int>& points) {
  for (std::string_view field = TakeField(rest); !field.empty(); field = TakeField(rest)) {
    const auto point = Whole<int>(field);
    if (!point || *point < 0 || *point > MaxPoint) return false;
    points.push_back(*point);
  }
  return true;
}

bool ReadPosition(std::string_view& rest, JournalEvent& event) {
  const auto x = Whole<double>(TakeField(rest)), y = Whole<double>(TakeField(rest));
  if (!IsPosition(x) || !IsPosition(y)) return false;
  event.X = *x;
  event.Y = *y;
  return true;
}

bool ReadPoint(std::string_view& rest, JournalEvent& event) {
  const auto point = Whole<int>(TakeField(rest));
  if (!point || *point < 0 || *point > MaxPoint) return false;
  event.Point = *point;
  return true;
}

bool ReadScan(std::string_view rest, ScanPlacement& scan) {
  scan.Sha256 = TakeField(rest);
  const auto page = Whole<int>(TakeField(rest));
  const auto x = Whole<double>(TakeField(rest)), y = Whole<double>(TakeField(rest)),
             unitsPerPx = Whole<double>(TakeField(rest)), angle = Whole<double>(TakeField(rest));
  if (!page || !x || !y || !unitsPerPx || !angle || rest.empty()) return false;
  scan.Page = *page;
  scan.X0 = *x;
  scan.Y0 = *y;
  scan.UnitsPerPx = *unitsPerPx;
  scan.AngleDegrees = *angle;
  scan.Path = rest.substr(1);  // its own blanks are part of it
  return !CheckPlacement(scan);
}

std::optional<JournalEvent> ReadEvent(std::string_view line) {
  std::string_view rest = line;
  const std::string_view name = TakeField(rest);
  for (const Word& word : Words) {
    if (word.Name != name) continue;
    JournalEvent event{.What = word.Kind};
    switch (word.Kind) {
      case JournalEvent::Kind::Press:
        if (!ReadPosition(rest, event)) return std::nullopt;
        break;
      case JournalEvent::Kind::Move:
      case JournalEvent::Kind::Insert:
        if (!ReadPoint(rest, event) || !ReadPosition(rest, event)) return std::nullopt;
        break;
      case JournalEvent::Kind::Delete:
        if (!ReadPoint(rest, event)) return std::nullopt;
        break;
      case JournalEvent::Kind::Corner: {
        const std::string_view side = TakeField(rest);
        event.Right = side == "right";
        if ((!event.Right && side != "left") || !ReadPosition(rest, event)) return std::nullopt;
        break;
      }
      case JournalEvent::Kind::Scan:
        return ReadScan(rest, event.Scan) ? std::optional(event) : std::nullopt;
      case JournalEvent::Kind::Tool: {
        const auto index = Whole<int>(TakeField(rest));
        if (!index || *index < 0 || *index >= ToolCount) return std::nullopt;
        event.Tool = *index;
        break;
      }
      case JournalEvent::Kind::Select:
        return ReadPoints(rest, event.Points) ? std::optional(event) : std::nullopt;
      case JournalEvent::Kind::Comment:
      case JournalEvent::Kind::General: {
        const std::size_t bar = rest.find('|');
        if (rest.empty() || bar == std::string_view::npos) return std::nullopt;
        event.Code = rest.substr(1, bar - 1);
        event.Text = rest.substr(bar + 1);
        return event;
      }
      case JournalEvent::Kind::Clear:
      case JournalEvent::Kind::Escape:
      case JournalEvent::Kind::Page:
      case JournalEvent::Kind::Undo:
      case JournalEvent::Kind::Redo:
        break;
    }
    return TakeField(rest).empty() ? std::optional(event) : std::nullopt;
  }
  return std::nullopt;
}

std::optional<int> ReadTablet(std::string_view line) {
  if (TakeField(line) != "tablet") return std::nullopt;
  const auto type = Whole<int>(TakeField(line));
  if (!type || *type < 0 || *type >= TabletTypeCount || !TakeField(line).empty()) return std::nullopt;
  return type;
}

// Journals of earlier versions hold comments for the first point, which takes none.
bool OnlyFirstPointIsSelected(const ActionMachine& machine) {
  const Trace& line = machine.CurrentSession().Line;
  return !machine.CommentIsOpen() && line.LastPoint() >= 0 && line.Point(0).Selected;
}

std::optional<std::string> WhyNot(const Result<void>& done) {
  return done ? std::nullopt : std::optional(done.error());
}

// What an event asks for that the machine's state has no answer to.
std::optional<std::string> Apply(const JournalEvent& event, ActionMachine& machine) {
  const auto closeComment = [&] {
    if (machine.CommentIsOpen()) machine.LeaveComment();
  };
  switch (event.What) {
    case JournalEvent::Kind::Press:
      closeComment();
      if (auto refusal = machine.RefuseCorner(event.X)) return refusal;
      machine.PressAt(event.X, event.Y);
      break;
    case JournalEvent::Kind::Tool:
      closeComment();
      if (!IsViewTool(event.Tool)) machine.RunTool(event.Tool);
      break;
    case JournalEvent::Kind::Select:
      closeComment();
      if (!machine.LassoIsOpen()) return "there is no lasso to end";
      for (int point : event.Points)
        if (point > machine.CurrentSession().Line.LastPoint()) return "there is no point " + ShortText(point);
      machine.EndLasso(event.Points);
      break;
    case JournalEvent::Kind::Comment:
    case JournalEvent::Kind::General: {
      const bool general = event.What == JournalEvent::Kind::General;
      if (general && !machine.CommentIsOpen()) machine.RunTool(tool::GeneralComment);
      if (!general && OnlyFirstPointIsSelected(machine)) break;
      if (!machine.CommentIsOpen() || machine.OpenCommentRequest()->General != general)
        return "there are no points selected for the comment";
      if (auto refusal = machine.AddComment(event.Code, event.Text)) return refusal;
      closeComment();
      break;
    }
    case JournalEvent::Kind::Clear:
      if (OnlyFirstPointIsSelected(machine)) break;
      if (!machine.CommentIsOpen()) return "there are no comments to clear";
      machine.ClearComments();
      break;
    case JournalEvent::Kind::Escape:
      closeComment();
      machine.Escape();
      break;
    case JournalEvent::Kind::Page:
      closeComment();
      machine.SetPageAgain();
      break;
    case JournalEvent::Kind::Scan:
      return WhyNot(machine.PlaceScan(event.Scan));
    case JournalEvent::Kind::Move:
      closeComment();
      return WhyNot(machine.MovePoint(event.Point, event.X, event.Y));
    case JournalEvent::Kind::Delete:
      closeComment();
      return WhyNot(machine.DeletePoint(event.Point));
    case JournalEvent::Kind::Insert:
      closeComment();
      return WhyNot(machine.InsertPoint(event.Point, event.X, event.Y));
    case JournalEvent::Kind::Corner:
      closeComment();
      return WhyNot(machine.MoveCorner(event.Right, event.X, event.Y));
    case JournalEvent::Kind::Undo:
      closeComment();
      if (!machine.CanUndo()) return "there is nothing to undo";
      machine.Undo();
      break;
    case JournalEvent::Kind::Redo:
      closeComment();
      if (!machine.CanRedo()) return "there is nothing to redo";
      machine.Redo();
      break;
  }
  return std::nullopt;
}

std::string AtLine(int line, std::string_view what) {
  return "journal line " + ShortText(line) + ": " + std::string(what);
}

}  // namespace

std::string JournalLine(const JournalEvent& event) {
  std::string line(NameOf(event.What));
  switch (event.What) {
    case JournalEvent::Kind::Press:
      line += " " + ExactText(event.X) + " " + ExactText(event.Y);
      break;
    case JournalEvent::Kind::Tool:
      line += " " + ShortText(event.Tool);
      break;
    case JournalEvent::Kind::Select:
      for (int point : event.Points) line += " " + ShortText(point);
      break;
    case JournalEvent::Kind::Comment:
    case JournalEvent::Kind::General:
      line += " " + event.Code + "|" + event.Text;
      break;
    case JournalEvent::Kind::Move:
    case JournalEvent::Kind::Insert:
      line += " " + ShortText(event.Point) + " " + ExactText(event.X) + " " + ExactText(event.Y);
      break;
    case JournalEvent::Kind::Delete:
      line += " " + ShortText(event.Point);
      break;
    case JournalEvent::Kind::Corner:
      line += std::string(event.Right ? " right " : " left ") + ExactText(event.X) + " " + ExactText(event.Y);
      break;
    case JournalEvent::Kind::Scan: {
      const ScanPlacement& scan = event.Scan;
      line += " " + scan.Sha256 + " " + ShortText(scan.Page);
      for (double number : {scan.X0, scan.Y0, scan.UnitsPerPx, scan.AngleDegrees})
        line += " " + ExactText(number);
      line += " " + scan.Path;
      break;
    }
    case JournalEvent::Kind::Clear:
    case JournalEvent::Kind::Escape:
    case JournalEvent::Kind::Page:
    case JournalEvent::Kind::Undo:
    case JournalEvent::Kind::Redo:
      break;
  }
  return line;
}

std::string JournalHead(int tablet) {
  return std::string(Header).append("\ntablet ").append(ShortText(tablet)).append("\n");
}

bool HoldsSteps(const Journal& journal) {
  return std::any_of(journal.Events.begin(), journal.Events.end(),
                     [](const JournalEvent& event) { return event.What != JournalEvent::Kind::Scan; });
}

Journal ReadJournal(std::string_view text) {
  Journal journal;
  int number = 0;
  ForEachLine(text, [&](std::string_view line) {
    ++number;
    if (journal.Error) return;
    if (number == 1) {
      if (line != Header) journal.Error = AtLine(1, "this is no session journal");
      return;
    }
    if (line.empty() || line.front() == '#') return;
    if (const auto tablet = ReadTablet(line)) {
      if (journal.Tablet >= 0) journal.Error = AtLine(number, "a second tablet");
      journal.Tablet = *tablet;
    } else if (auto event = ReadEvent(line); !event) {
      journal.Error = AtLine(number, "\"" + ShownText(line.substr(0, 60)) + "\" is no step of a session");
    } else if (journal.Tablet < 0) {
      journal.Error = AtLine(number, "the tablet has not been named");
    } else {
      journal.Events.push_back(*std::move(event));
      journal.Lines.push_back(number);
    }
  });
  if (!journal.Error && journal.Tablet < 0)
    journal.Error = AtLine(number, number == 0 ? "the journal is empty" : "the tablet has not been named");
  return journal;
}

Result<void> Replay(const Journal& journal, ActionMachine& machine) {
  std::optional<std::string> error;
  for (std::size_t i = 0; i < journal.Events.size() && !error; ++i)
    if (auto trouble = Apply(journal.Events[i], machine)) error = AtLine(journal.Lines[i], *trouble);
  if (!error) error = journal.Error;
  // A session that ended with the window open gave the last end no comment.
  if (machine.CommentIsOpen()) machine.CommentClosed();
  if (error) return Failure(*error);
  return {};
}

}  // namespace hyetex
