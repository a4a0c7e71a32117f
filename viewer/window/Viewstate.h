#pragma once

#include <optional>

#include "model/Animation.h"
#include "viewer/scene/Viewtransform.h"
#include "viewer/window/Settings.h"

// How settings and commands become what the picture shows; the same for the window and for
// pictures made without one.

/// Colours and shape of everything in the picture.
struct TAppearance {
  TColor BackColor = TColor::Black();
  TColor ElementColor = TColor::White();  ///< of elements without a colour of their own
  TColor NodeColor = TColor::Green();
  TColor FontColor = TColor::White();
  TNodeShape NodeShape = TNodeShape::Sphere;
};

TAppearance AppearanceOf(const TSettings& settings);

/// Gives the model's lists and all data sets, present and to come, these colours and this shape,
/// and makes the undeformed model visible; whether it is drawn is up to the picture.
void ApplyAppearance(const TAppearance& appearance, TModel& model, TMeasuredData& data);

/// Preset rotations, in degrees.
constexpr TVertex kAlongX = {0.0, -90.0, 0.0};
constexpr TVertex kAlongY = {90.0, 0.0, 0.0};
constexpr TVertex kAlongZ = {0.0, 0.0, 0.0};
constexpr TVertex kOblique = {30.0, -45.0, 0.0};

/// Lets the nodes that were not measured follow their neighbours, or rest, which they do where
/// memory does not suffice, of which the user is told, or where the user cancels. Returns whether
/// they do as they should.
bool MoveUnmeasured(bool follow, const TModel& model, TMeasuredData& data,
                    const TLoadProgress& progress = {});

/// Rotation, zoom and pan.
void ApplyView(const TSettings& settings, TViewTransform& view);

/// The view volume's half-extent for a model; 1 for a model without extent.
double ModelSizeOf(const TModel& model);

/// Absolute for any number that stands for no type.
TScaleType ScaleTypeOf(int number);

/// Range and first position of the scale bar.
constexpr int kScaleBarMin = 1;
constexpr int kScaleBarMax = 20;
constexpr int kScaleBarStart = 5;

/// The factor that a position of the scale bar stands for; a position outside counts as the
/// nearest bound.
double ViewScaleAt(int position);
