#pragma once

#include <string>
#include <string_view>

#include "model/Loadreport.h"
#include "model/Nodeindex.h"
#include "model/Records.h"

/// Everything a model file gives, normalised.
struct TModelContent {
  TNodeList Nodes;
  TNodeList Display;
  TElementList Elements;
  TNodeIndex Index;
  double NodeRadius = 0.0;
  double ElementRadius = 0.0;
  double Size = 0.0;
};

struct TModelHeaders {
  std::string Nodes;
  std::string Elements;
};

/// Reads the text of a model file. The elements refer to `nodeList`, the list that will hold the
/// nodes in the end. False if cancelled. Any thread.
[[nodiscard]] bool ReadModel(std::string_view text, const TModelHeaders& headers,
                             const TNodeList* nodeList, TModelContent& content, TLoadReport& report,
                             const TLoadProgress& progress);
