#pragma once

#include "model/Animation.h"
#include "viewer/scene/Viewtransform.h"

/// Sets zoom and pan so that what is shown fills nine tenths of the picture, with the displacements
/// that it has over a whole cycle: the model if `showModel`, and the shown data sets at their
/// DrawScale; of their sum, the largest that it can become. The pan becomes 0. A view of nothing
/// stays as it is. Linear in the nodes.
void FitToShown(TViewTransform& view, const TModel& model, const TMeasuredData& data,
                TScaleType scaleType, bool showModel);
