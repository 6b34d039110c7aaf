#include "app/help_places.h"

namespace hyetex {

std::string_view HelpPlace(WindowId window) {
  switch (window) {
    case WindowId::MainMenu:
    case WindowId::LargeView:  // shows whatever another window has to say
      return {};
    case WindowId::Lists:
    case WindowId::ProgramDefaults:
    case WindowId::Definitions:
      return "before";
    case WindowId::Connection:
    case WindowId::Logon:
    case WindowId::CreateTable:
      return "database";
    case WindowId::Tasks:
    case WindowId::TaskDef:
      return "staging";
    case WindowId::ScanChoice:
    case WindowId::ScanLook:
      return "scan";
    case WindowId::Digitizing:
      return "tracing";
    case WindowId::TraceScans:
      return "box";
    case WindowId::Comment:
      return "comments";
    case WindowId::Save:
      return "saving";
    case WindowId::Editor:
      return "review";
    case WindowId::Load:
      return "loading";
    case WindowId::Alpha:
      return "skew";
    case WindowId::PrePop:
    case WindowId::Populate:
      return "conversion";
    case WindowId::Rainfall:
    case WindowId::ChartReview:
      return "rain";
    case WindowId::SelectTable:
    case WindowId::TableEditor:
      return "records";
    case WindowId::Exchange:
    case WindowId::TableExchange:
      return "exchange";
  }
  return {};
}

}  // namespace hyetex
