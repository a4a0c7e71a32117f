#include "viewer/scene/Fitting.h"

#include "tests/support/Testing.h"

namespace {

/// Nodes at x = -1 and 1 that swing by 0.5 along x and 2 along y, a quarter of a cycle apart.
struct TSwinging {
  TSwinging() {
    EXPECT_TRUE(Model.LoadFromMemory("[Nodes]\n1 -1 0 0\n2 1 0 0\n").Failed() == false);
    EXPECT_TRUE(Data.LoadFromMemory("[F = 1]\n1 0.5 2 0 0 1.5707963 0\n2 0.5 2 0 0 1.5707963 0\n"
                                    "[F = 2]\n1 0.5 0 0\n2 0.5 0 0\n",
                                    Model)
                    .Ok());
    View.Rotation = {};
    View.ScaleX = 2.0;
  }
  double Fitted(TScaleType type, bool showModel = false) {
    View.Zoom = View.PanPosX = View.PanPosY = 1.0;
    FitToShown(View, Model, Data, type, showModel);
    return View.Zoom;
  }
  TModel Model;
  TMeasuredData Data;
  TViewTransform View;
};

TEST(FitToShown, FillsNineTenthsOfThePictureWithAllThatTheShownSetsReach) {
  TSwinging s;
  s.Data.Show({});
  EXPECT_DOUBLE_EQ(s.Fitted(TScaleType::Absolute), 1.0 / 2.0 / 0.9);  // the model alone, across
  EXPECT_EQ(s.View.PanPosX, 0.0);
  s.Data.Show({true, true});
  for (TDataNodeList* list : s.Data.All) list->DrawScale = 1.0;
  EXPECT_NEAR(s.Fitted(TScaleType::Absolute), 2.0 / 0.9, 1e-12);  // up
  s.Data.Show({false, true});
  EXPECT_NEAR(s.Fitted(TScaleType::Relative), 1.5 / 2.0 / 0.9, 1e-12);
  s.Data.Show({true, true});
  s.Model.Display.DrawScale = 4.0;
  EXPECT_NEAR(s.Fitted(TScaleType::Sum), 8.0 / 0.9, 1e-12);
  s.View.Rotation = {0.0, 90.0, 0.0};  // along x: only up is left
  s.Data.Show({false, true});
  EXPECT_EQ(s.Fitted(TScaleType::Relative), 1.0) << "nothing reaches anywhere";
}

TEST(FitToShown, LeavesAViewOfNothingAsItIs) {
  TModel model;
  TMeasuredData data;
  TViewTransform view;
  view.PanPosX = 3.0;
  FitToShown(view, model, data, TScaleType::Absolute, true);
  EXPECT_EQ(view.PanPosX, 3.0);
  EXPECT_EQ(view.Zoom, 1.0);
}

}  // namespace
