#include "exchange/xml_rows.h"

#include <expat.h>

#include <algorithm>
#include <array>
#include <vector>

#include "core/text.h"
#include "exchange/xml_text.h"

namespace hyetex {
namespace {

// What the bytes 0x80 to 0x9F are there.
constexpr std::array<int, 32> Windows1252 = {0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021,
                                             0x2C6,  0x2030, 0x160,  0x2039, 0x152,  0x8D,   0x17D,  0x8F,
                                             0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                             0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178};

std::string_view BaseOf(std::string_view name) { return name.substr(name.find_last_of(':') + 1); }

bool IsBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

std::string Shortened(std::string_view name) {
  constexpr std::size_t most = 60;
  return ShownText(name.substr(0, most)) + (name.size() > most ? "..." : "");
}

}  // namespace

struct XmlRows::State {
  explicit State(const XmlTaker& taker) : Taker(taker), Parser(XML_ParserCreate(nullptr)) {
    XML_SetUserData(Parser, this);
    XML_SetElementHandler(
        Parser,
        [](void* self, const char* name, const char** attributes) {
          static_cast<State*>(self)->Begin(name, attributes);
        },
        [](void* self, const char*) { static_cast<State*>(self)->End(); });
    XML_SetCharacterDataHandler(Parser, [](void* self, const char* text, int length) {
      static_cast<State*>(self)->Text({text, static_cast<std::size_t>(length)});
    });
    XML_SetStartDoctypeDeclHandler(Parser, [](void* self, const char*, const char*, const char*, int) {
      static_cast<State*>(self)->Refuse("the file has a document type (DOCTYPE), which is not taken");
    });
    XML_SetUnknownEncodingHandler(
        Parser,
        [](void* self, const char* name, XML_Encoding* encoding) {
          return static_cast<State*>(self)->Encoding(name, *encoding);
        },
        this);
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() { XML_ParserFree(Parser); }

  void Refuse(std::string what) {
    if (!Trouble) Trouble = At() + std::move(what);
    XML_StopParser(Parser, XML_FALSE);
  }
  // A later event of the same piece of text can still come once the parser was stopped.
  bool Stopped() const { return Trouble.has_value(); }

  std::string At() const {
    return "line " + std::to_string(XML_GetCurrentLineNumber(Parser)) + ", column " +
           std::to_string(XML_GetCurrentColumnNumber(Parser) + 1) + ": ";
  }

  int Encoding(std::string_view name, XML_Encoding& encoding) {
    if (!EqualIgnoringCase(name, "windows-1252") && !EqualIgnoringCase(name, "cp1252")) {
      UnknownEncoding = name;
      return XML_STATUS_ERROR;
    }
    for (int i = 0; i < 256; ++i)
      encoding.map[i] = i < 0x80 || i >= 0xA0 ? i : Windows1252[static_cast<std::size_t>(i - 0x80)];
    encoding.data = nullptr;
    encoding.convert = nullptr;
    encoding.release = nullptr;
    return XML_STATUS_OK;
  }

  bool CheckTag(std::string_view name, const char** attributes) {
    if (name.size() > MostXmlNameBytes)
      return Refuse("the element's name is too long: " + Shortened(name)), false;
    std::size_t count = 0;
    for (; attributes[2 * count] != nullptr; ++count) {
      const std::string_view attribute = attributes[2 * count];
      if (attribute.size() > MostXmlNameBytes || count == MostXmlAttributes)
        return Refuse("the element " + Shortened(name) + " has too many attributes, or one with a long name"),
               false;
    }
    return true;
  }

  void Begin(std::string_view name, const char** attributes) {
    if (Stopped() || !CheckTag(name, attributes)) return;
    const std::string_view base = BaseOf(name);
    switch (++Depth) {
      case 1:
        return Check(Taker.Root(base));
      case 2:
        Used = Count = Bytes = 0;
        Line = XML_GetCurrentLineNumber(Parser);
        return;
      case 3:
        return BeginField(base, attributes);
      default:
        return Refuse("an element <" + Shortened(name) + "> stands within the field " + Shortened(FieldName) +
                      "; a field holds text only");
    }
  }

  void BeginField(std::string_view name, const char** attributes) {
    FieldName = name;
    Field = nullptr;
    if (++Count > MostXmlFields) return;
    if (Used == Fields.size()) Fields.emplace_back();
    Field = &Fields[Used++];
    Field->Name = name;
    Field->Text.clear();
    Field->Encoding.clear();
    for (; *attributes != nullptr; attributes += 2)
      if (BaseOf(*attributes) == EncodingAttribute)
        Field->Encoding = std::string_view(attributes[1]).substr(0, MostXmlNameBytes);
  }

  void Text(std::string_view text) {
    if (Stopped()) return;
    if (Depth < 3) {
      if (!IsBlank(text)) Refuse("text stands outside of the fields");
      return;
    }
    Bytes += text.size();
    if (Bytes > MostXmlRowBytes)
      for (XmlField& field : Fields) std::string().swap(field.Text);
    else if (Field != nullptr)
      Field->Text += text;
  }

  void End() {
    if (Stopped()) return;
    if (Depth-- != 2) return;
    Check(Taker.Row({.Fields = std::span(Fields).first(Used),
                     .FieldCount = Count,
                     .Line = Line,
                     .IsTooLong = Bytes > MostXmlRowBytes}));
    // A row with a long text is seldom followed by another one.
    if (constexpr std::size_t kept = 1U << 20; Bytes > kept) Fields.clear();
  }

  void Check(const Result<void>& taken) {
    if (taken) return;
    Trouble = taken.error();
    XML_StopParser(Parser, XML_FALSE);
  }

  Result<void> Parse(std::string_view bytes, bool isLast) {
    if (Trouble) return Failure(*Trouble);
    Given += bytes.size();
    const XML_Status status = XML_Parse(Parser, bytes.data(), static_cast<int>(bytes.size()), isLast ? 1 : 0);
    const XML_Index at = XML_GetCurrentByteIndex(Parser);
    if (status == XML_STATUS_OK && (at < 0 || Given - static_cast<std::size_t>(at) <= MostXmlTokenBytes))
      return {};
    if (!Trouble)
      Trouble = At() + (status == XML_STATUS_OK ? std::string("a tag or a comment is longer than 1 MB")
                                                : WordsOf(XML_GetErrorCode(Parser)));
    return Failure(*Trouble);
  }

  std::string WordsOf(XML_Error error) const {
    switch (error) {
      case XML_ERROR_NO_ELEMENTS:
        return Given == 0 ? "the file is empty" : "the file holds no XML element, or is cut off";
      case XML_ERROR_UNCLOSED_TOKEN:
      case XML_ERROR_UNCLOSED_CDATA_SECTION:
      case XML_ERROR_PARTIAL_CHAR:
        return "the file is cut off here";
      case XML_ERROR_UNKNOWN_ENCODING:
      case XML_ERROR_INCORRECT_ENCODING:
        return (UnknownEncoding.empty() ? "the file is not in the encoding that it names"
                                        : "the file is in the encoding " + Shortened(UnknownEncoding)) +
               "; UTF-8, ASCII, UTF-16, ISO-8859-1 and Windows-1252 are read";
      case XML_ERROR_UNDEFINED_ENTITY:
        return "there is an \"&\" that is none of &lt; &gt; &amp; &quot; &apos; and no character's number";
      case XML_ERROR_INVALID_TOKEN:
        return "this is no XML: a \"<\" or \"&\" that was not written as &lt; or &amp;, or a character that "
               "is "
               "not UTF-8";
      case XML_ERROR_JUNK_AFTER_DOC_ELEMENT:
        return "something stands behind the end of the root element";
      default:
        return std::string("this is no XML: ") + XML_ErrorString(error);
    }
  }

  const XmlTaker& Taker;
  XML_Parser Parser;
  std::size_t Given = 0;  // bytes
  int Depth = 0;
  std::vector<XmlField> Fields;  // their texts keep their room from row to row
  std::size_t Used = 0, Count = 0, Bytes = 0;
  XmlField* Field = nullptr;  // the open one, if it is kept
  std::string FieldName;
  std::uint64_t Line = 0;
  std::string UnknownEncoding;
  std::optional<std::string> Trouble;
};

XmlRows::XmlRows(const XmlTaker& taker) : state_(std::make_unique<State>(taker)) {}
XmlRows::~XmlRows() = default;

Result<void> XmlRows::Take(std::string_view bytes) {
  // As small pieces as the parser likes them, and as its lengths are.
  constexpr std::size_t piece = 1U << 16;
  while (!bytes.empty()) {
    if (auto taken = state_->Parse(bytes.substr(0, piece), false); !taken) return taken;
    bytes.remove_prefix(std::min(piece, bytes.size()));
  }
  return {};
}

Result<void> XmlRows::End() { return state_->Parse({}, true); }

}  // namespace hyetex
