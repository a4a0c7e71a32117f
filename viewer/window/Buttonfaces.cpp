#include "viewer/window/Buttonfaces.h"

#include <QGuiApplication>
#include <QPalette>

#include "pictures/Svgpicture.h"
#include "viewer/Imagebutton.h"

namespace {

constexpr QSize kFaceSize(56, 48);
constexpr int kFacesPerButton = 4;

enum TFaceState { fsUp, fsHighlight, fsDown, fsDisabled };

QColor Mixed(const QColor& a, const QColor& b, qreal shareOfB) {
  const auto mix = [&](qreal x, qreal y) { return static_cast<float>(x + (y - x) * shareOfB); };
  return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()),
                          mix(a.blueF(), b.blueF()));
}

/// The colours of one face by the names that its pictures give them. Axes are red, green and blue,
/// as in most views of space.
TPictureColors ColorsOf(TFaceState state) {
  const QPalette palette = QGuiApplication::palette();
  const QColor window = palette.color(QPalette::Window);
  const QColor text = palette.color(QPalette::WindowText);
  const QColor highlight = palette.color(QPalette::Highlight);
  const bool dark = window.lightness() < 128;
  // A face that cannot be clicked fades into the window.
  const auto inked = [&](const QColor& color) {
    return state == fsDisabled ? Mixed(window, color, 0.3) : color;
  };
  const QColor tiles[] = {Mixed(window, text, 0.04), Mixed(window, highlight, 0.16),
                          Mixed(window, highlight, 0.38), window};
  const QColor frames[] = {Mixed(window, text, 0.18), Mixed(window, highlight, 0.75), highlight,
                           Mixed(window, text, 0.10)};
  return {{"white", tiles[state]},
          {"silver", frames[state]},
          {"black", inked(Mixed(window, text, 0.85))},
          {"orange", inked(dark ? highlight.lighter(135) : highlight)},
          {"red", inked(dark ? QColor(255, 110, 100) : QColor(200, 40, 40))},
          {"green", inked(dark ? QColor(110, 215, 110) : QColor(25, 135, 45))},
          {"blue", inked(dark ? QColor(120, 170, 255) : QColor(35, 85, 205))}};
}

/// The picture of a button; the one of the animation shows what a click does: play, or pause while
/// it plays.
QString PictureOf(TButtonFace button, TFaceState state) {
  if (button == bfAnim && state == fsDown) return QStringLiteral("faces/Pause");
  constexpr const char* kNames[] = {"Anim",       "AnimBack", "AnimForward", "ViewX",
                                    "ViewY",      "ViewZ",    "View3D",      "AbsolScale",
                                    "RelatScale", "SumScale", "View1_1"};
  return QStringLiteral("faces/") + QLatin1String(kNames[button / kFacesPerButton]);
}

void DrawFace(QPainter& painter, int index) {
  const auto state = static_cast<TFaceState>(index % kFacesPerButton);
  const TPictureColors colors = ColorsOf(state);
  const QRectF box(QPointF(), kFaceSize);
  DrawSvgPicture(painter, box, QStringLiteral("faces/Tile"), colors);
  DrawSvgPicture(painter, box.translated(0, state == fsDown ? 1 : 0),
                 PictureOf(static_cast<TButtonFace>(index - state), state), colors);
}

}  // namespace

TImageList* MakeButtonFaces(QObject* parent) {
  auto* faces = new TImageList(kFaceSize, parent);
  faces->SetImages(bfView1_1 + kFacesPerButton, DrawFace);
  return faces;
}
