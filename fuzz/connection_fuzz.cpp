// Any bytes as a connection text: no password that is found in it is shown, and a value that is put into one
// comes back.
#include "platform/odbc/connection_text.h"
#include "program_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hyetex;
  using fuzz::Must;
  const std::string_view text = fuzz::Text(data, size);
  const ConnectionText connection(text);
  const std::string shown = ShownConnection(text);
  const ConnectionText of(shown);
  for (const std::string& password : of.Passwords()) Must(password == "***");
  (void)connection.Find("DSN");
  (void)connection.Text();
  if (text.empty() || text.find('\0') != std::string_view::npos) return 0;
  const std::string pair = ConnectionPair("PWD", text);
  Must(ConnectionText(pair).Find("pwd") == std::string(text));
  Must(ShownConnection(pair).find("***") != std::string::npos);
  return 0;
}
