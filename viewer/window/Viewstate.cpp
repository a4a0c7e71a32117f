#include "viewer/window/Viewstate.h"

#include <algorithm>

#include "model/Message.h"
#include "shapes/Neighbours.h"

TAppearance AppearanceOf(const TSettings& settings) {
  return {settings.BackColor, settings.ElementColor, settings.NodeColor, settings.FontColor,
          settings.NodeShape == 1 ? TNodeShape::Cube : TNodeShape::Sphere};
}

void ApplyAppearance(const TAppearance& appearance, TModel& model, TMeasuredData& data) {
  model.Nodes.ShowNodes = model.Nodes.ShowElements = true;
  for (TDataNodeList* list : {&model.Nodes, &model.Display}) {
    list->ElementColor = appearance.ElementColor;
    list->NodeColor = appearance.NodeColor;
    list->NodeShape = appearance.NodeShape;
  }
  for (TNodesSet* set : {&data.All, &data.Shown}) {
    set->SetElementColor(appearance.ElementColor);
    set->SetNodeColor(appearance.NodeColor);
    set->SetNodeShape(appearance.NodeShape);
  }
}

bool MoveUnmeasured(bool follow, const TModel& model, TMeasuredData& data,
                    const TLoadProgress& progress) {
  if (!follow) {
    TNeighbours::Rest(data);
    return true;
  }
  const TNeighbours::TOutcome outcome = TNeighbours(model).Follow(data, progress);
  if (outcome == TNeighbours::TOutcome::NoMemory) {
    ShowMessage(QStringLiteral("Nodes without a measurement rest: not enough memory."));
  }
  return outcome == TNeighbours::TOutcome::Done;
}

void ApplyView(const TSettings& settings, TViewTransform& view) {
  view.Rotation.x = settings.RotX.value_or(view.Rotation.x);
  view.Rotation.y = settings.RotY.value_or(view.Rotation.y);
  view.ScaleX = settings.ScaleX;
  view.ScaleY = settings.ScaleY;
  view.Zoom = settings.ScaleZ;
  view.PanPosX = settings.PanPosX;
  view.PanPosY = settings.PanPosY;
}

double ModelSizeOf(const TModel& model) { return model.Size > 0.0 ? model.Size : 1.0; }

TScaleType ScaleTypeOf(int number) {
  return number == 1 || number == 2 ? static_cast<TScaleType>(number) : TScaleType::Absolute;
}

double ViewScaleAt(int position) { return std::clamp(position, kScaleBarMin, kScaleBarMax) * 0.05; }
