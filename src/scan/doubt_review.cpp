#include "scan/doubt_review.h"

#include <algorithm>

namespace hyetex {

void DoubtReview::Begin(std::vector<DoubtPlace> places) {
  places_ = std::move(places);
  current_ = -1;
}

int DoubtReview::Open() const {
  return static_cast<int>(std::count_if(places_.begin(), places_.end(),
                                        [](const DoubtPlace& place) { return !place.Confirmed; }));
}

bool DoubtReview::Go(bool forward) {
  const int count = static_cast<int>(places_.size());
  if (Open() == 0) {
    current_ = -1;
    return false;
  }
  int at = current_ < 0 && !forward ? 0 : current_;
  do at = (at + (forward ? 1 : count - 1)) % count;
  while (places_[Index(at)].Confirmed);
  current_ = at;
  return true;
}

bool DoubtReview::Confirm() {
  if (current_ < 0) return false;
  places_[Index(current_)].Confirmed = true;
  Go(true);
  return true;
}

std::string DoubtReview::Prompt() const {
  const DoubtPlace* place = Current();
  if (place == nullptr) return {};
  return "Doubt " + std::to_string(current_ + 1) + " of " + std::to_string(places_.size()) + ": " +
         place->Why + " Return confirms it, Tab goes on.";
}

}  // namespace hyetex
