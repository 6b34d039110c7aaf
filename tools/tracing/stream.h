// The steps of a session as a tablet sends them, and as a journal tells them.
#pragma once

#include <span>
#include <string>

#include "digitizing/journal.h"
#include "digitizing/tablets.h"

namespace hyetex {

/// The reports of an operator who works through `steps`: the cursor glides to each place with no button down,
/// is pressed there for a few reports, and is let go. Tools are pressed on their squares of the board at its
/// first place. A tablet has no keys: while a comment is written the cursor rests, and the comment's own
/// words are not in the stream.
std::string EncodeSteps(const TabletType& tablet, std::span<const JournalEvent> steps);

/// The journal of a session on tablet type `tablet`, 0 to 4.
std::string JournalText(int tablet, std::span<const JournalEvent> steps);

}  // namespace hyetex
