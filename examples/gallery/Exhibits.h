#pragma once

#include <QString>
#include <vector>

#include "components/graphing/Graph.h"

/// One graph of the gallery: what it shows, and what fills it.
struct TExhibit {
  const char* caption;
  void (*fill)(TKorvalGraph& graph);
};

/// One exhibit for each kind of graph, in the order in which they hang.
const std::vector<TExhibit>& Exhibits();
