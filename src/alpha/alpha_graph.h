// The scatter of alpha values over the dates of their charts, as a graph for the screen and for paper.
#pragma once

#include "alpha/alpha_review.h"
#include "graph/graph.h"

namespace hyetex {

/// The most values that are drawn; the rest is told.
inline constexpr std::size_t MostAlphaPairs = 5001;

struct AlphaGraphOptions {
  bool Grid = true;
  double FontPoints = 9;  ///< of txtFontSize
};

/// The selected and all other alphas of the rows that are not left out. Without any, a graph with its title
/// and the words that say so.
Graph MakeAlphaGraph(const AlphaReview& review, const RowBlock& rows, const AlphaGraphOptions& options);

}  // namespace hyetex
