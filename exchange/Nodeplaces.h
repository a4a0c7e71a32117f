#pragma once

#include "exchange/Linewriter.h"
#include "model/Animmodel.h"

/// The coordinates of a model's nodes as their file had them.
class TNodePlaces {
 public:
  explicit TNodePlaces(const TModel& model)
      : x_(model.Centre.x, model.Size),
        y_(model.Centre.y, model.Size),
        z_(model.Centre.z, model.Size) {}

  TVertex Of(const TNode& node) const {
    const TVertex& p = node.Position;
    return {x_.Of(p.x), y_.Of(p.y), z_.Of(p.z)};
  }

 private:
  TCoordinates x_, y_, z_;
};
