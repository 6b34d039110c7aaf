// A serial line without wires: the pseudo-terminal on which the tablet's end is played. The program under
// test opens the other end by its path, as it would a serial port. Linux only.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "core/result.h"

namespace hyetex {

class PtyLine {
 public:
  using Clock = std::chrono::steady_clock;
  using Time = std::optional<Clock::time_point>;  ///< nothing: for ever

  /// How a wait ended.
  enum class End {
    Done,
    TimedOut,
    Hurried,  ///< SIGINT or SIGTERM
  };

  /// A line in raw mode that nobody has opened. From here on SIGINT and SIGTERM only end waits.
  static Result<PtyLine> Open();
  PtyLine(PtyLine&& other) noexcept;
  PtyLine& operator=(PtyLine&&) = delete;
  ~PtyLine();

  /// What the reader opens.
  const std::string& Path() const { return path_; }
  /// Who has the other end open now, and how often it has been opened.
  int Readers() const { return readers_; }
  int Openings() const { return openings_; }
  /// What the reader has sent and Forget() has not taken away.
  const std::string& Received() const { return received_; }
  /// Takes away what has come from the reader, and what the reader has left unread.
  void Forget();

  End WaitForReader(Time until);
  /// Until the reader has sent this text.
  End WaitForText(std::string_view text, Time until);
  End WaitUntil(Clock::time_point until);
  /// Waits for room on the line and writes; how much has gone out is taken off the front of `bytes`. Gives up
  /// when there is no reader any more.
  End Write(std::string_view& bytes);
  /// Until nothing is left that the reader has not read, or there is no reader any more.
  End WaitUntilRead();
  std::size_t Unread() const;

 private:
  PtyLine() = default;
  template <typename Condition>
  End WaitFor(Condition&& met, Time until, bool forRoom = false);
  void NoteOpenings();
  void TakeReceived();

  std::string path_, received_;
  int master_ = -1, slave_ = -1, openingsFd_ = -1, signals_ = -1;
  int readers_ = 0, openings_ = 0;
};

}  // namespace hyetex
