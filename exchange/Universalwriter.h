#pragma once

#include <QDateTime>
#include <string>

#include "exchange/Findings.h"
#include "model/Animmodel.h"

enum class TLinesType { TraceLines = 82, Elements = 2412 };
enum class TShapesType { Nodal55 = 55, Nodal2414 = 2414 };

struct TUniversalOptions {
  TLinesType Lines = TLinesType::Elements;
  TShapesType Shapes = TShapesType::Nodal2414;
  bool IsDouble = false;  ///< values with 12 decimals in 20 columns instead of 6 or 7 in 13
  QDateTime Written;      ///< for the header; none if invalid
};

/// A universal file of a model and its data: header 151, units 164, nodes 2411, lines 82 or 2412,
/// faces 2412, and a data set 55 or 2414 for each of `data`. Values are complex where a set is or
/// where a phase differs from 0. What was not measured is not written. What the format cannot hold
/// (radii and colours, rolls, points, faces of more than four corners) is noted. Throws
/// std::bad_alloc.
std::string WriteUniversal(const TModel& model, const TMeasuredData& data,
                           const TUniversalOptions& options, TFindings& findings);
