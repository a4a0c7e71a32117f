#pragma once

class QObject;
class TImageList;

/// The first of the four faces (up, highlight, down, disabled) of each button of the main window.
enum TButtonFace {
  bfAnim = 0,
  bfAnimBack = 4,
  bfAnimForward = 8,
  bfViewX = 12,
  bfViewY = 16,
  bfViewZ = 20,
  bfView3D = 24,
  bfAbsolScale = 28,
  bfRelatScale = 32,
  bfSumScale = 36,
  bfView1_1 = 40,
};

/// The list of those faces, 56 x 48, in the colours of the application's palette.
TImageList* MakeButtonFaces(QObject* parent);
