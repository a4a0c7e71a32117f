#include "viewer/window/Buttonfaces.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <cmath>
#include <numbers>

#include "viewer/Imagebutton.h"

namespace {

constexpr QSize kFaceSize(56, 48);
constexpr QPointF kMiddle(28, 24);
constexpr int kFacesPerButton = 4;

enum TFaceState { fsUp, fsHighlight, fsDown, fsDisabled };

QColor Mixed(const QColor& a, const QColor& b, qreal shareOfB) {
  const auto mix = [&](qreal x, qreal y) { return static_cast<float>(x + (y - x) * shareOfB); };
  return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()),
                          mix(a.blueF(), b.blueF()));
}

/// The colours of one face. Axes are red, green and blue, as in most views of space.
struct TInk {
  explicit TInk(TFaceState state);

  QColor tile, frame, line, accent, x, y, z;
};

TInk::TInk(TFaceState state) {
  const QPalette palette = QGuiApplication::palette();
  const QColor window = palette.color(QPalette::Window);
  const QColor text = palette.color(QPalette::WindowText);
  const QColor highlight = palette.color(QPalette::Highlight);
  const bool dark = window.lightness() < 128;
  // A face that cannot be clicked fades into the window.
  const auto inked = [&](const QColor& color) {
    return state == fsDisabled ? Mixed(window, color, 0.3) : color;
  };
  line = inked(Mixed(window, text, 0.85));
  accent = inked(dark ? highlight.lighter(135) : highlight);
  x = inked(dark ? QColor(255, 110, 100) : QColor(200, 40, 40));
  y = inked(dark ? QColor(110, 215, 110) : QColor(25, 135, 45));
  z = inked(dark ? QColor(120, 170, 255) : QColor(35, 85, 205));
  switch (state) {
    case fsUp:
      tile = Mixed(window, text, 0.04);
      frame = Mixed(window, text, 0.18);
      break;
    case fsHighlight:
      tile = Mixed(window, highlight, 0.16);
      frame = Mixed(window, highlight, 0.75);
      break;
    case fsDown:
      tile = Mixed(window, highlight, 0.38);
      frame = highlight;
      break;
    case fsDisabled:
      tile = window;
      frame = Mixed(window, text, 0.10);
      break;
  }
}

QPen RoundPen(const QColor& color, qreal width) {
  return {color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

void DrawTile(QPainter& p, const TInk& ink) {
  p.setPen(QPen(ink.frame, 1));
  p.setBrush(ink.tile);
  p.drawRoundedRect(QRectF(QPointF(), kFaceSize).adjusted(1.5, 1.5, -1.5, -1.5), 6, 6);
  p.setBrush(Qt::NoBrush);
}

void DrawArrow(QPainter& p, QPointF from, QPointF to, const QColor& color) {
  const QPointF along = (to - from) / std::hypot(to.x() - from.x(), to.y() - from.y());
  const QPointF across(-along.y(), along.x());
  p.setPen(RoundPen(color, 2));
  p.drawLine(from, to - along * 5);
  p.setPen(Qt::NoPen);
  p.setBrush(color);
  p.drawPolygon(QPolygonF({to, to - along * 7 + across * 3.6, to - along * 7 - across * 3.6}));
  p.setBrush(Qt::NoBrush);
}

/// A letter drawn as a shape, so that it sits exactly in the middle whatever the font.
void DrawText(QPainter& p, QPointF middle, const QString& text, qreal height, const QColor& color) {
  QFont font = QGuiApplication::font();
  font.setBold(true);
  font.setPixelSize(40);
  QPainterPath path;
  path.addText(0, 0, font, text);
  const QRectF box = path.boundingRect();
  if (box.isEmpty()) return;
  p.save();
  p.translate(middle);
  p.scale(height / box.height(), height / box.height());
  p.translate(-box.center());
  p.fillPath(path, color);
  p.restore();
}

struct TAxis {
  QString name;
  QColor color;
  QPointF direction;
};

/// The view along one axis: that axis as an arrow head seen from the front, named in large, and
/// the two others as they lie in the picture.
void DrawAxisView(QPainter& p, const TAxis& sight, const TAxis& a, const TAxis& b) {
  constexpr qreal kLength = 25;
  // The letter stands in the quarter between the two arrows.
  const QPointF origin = kMiddle - (a.direction + b.direction) * 9.5;
  for (const TAxis& axis : {a, b}) {
    DrawArrow(p, origin + axis.direction * 5, origin + axis.direction * kLength, axis.color);
  }
  DrawText(p, origin + (a.direction + b.direction) * 15, sight.name, 15, sight.color);
  p.setPen(RoundPen(sight.color, 2));
  p.drawEllipse(origin, 4.5, 4.5);
  p.setPen(Qt::NoPen);
  p.setBrush(sight.color);
  p.drawEllipse(origin, 1.7, 1.7);
  p.setBrush(Qt::NoBrush);
}

void DrawViewX(QPainter& p, const TInk& ink) {
  DrawAxisView(p, {"X", ink.x, {}}, {"Y", ink.y, {0, -1}}, {"Z", ink.z, {-1, 0}});
}
void DrawViewY(QPainter& p, const TInk& ink) {
  DrawAxisView(p, {"Y", ink.y, {}}, {"X", ink.x, {1, 0}}, {"Z", ink.z, {0, 1}});
}
void DrawViewZ(QPainter& p, const TInk& ink) {
  DrawAxisView(p, {"Z", ink.z, {}}, {"X", ink.x, {1, 0}}, {"Y", ink.y, {0, -1}});
}

/// A cube from above and from the side, its three visible faces in three tones.
void DrawView3D(QPainter& p, const TInk& ink) {
  constexpr qreal kEdge = 17;
  const QPointF right(kEdge * 0.87, -kEdge * 0.42), left(-kEdge * 0.87, -kEdge * 0.42);
  const QPointF down(0, kEdge);
  const QPointF corner = kMiddle + QPointF(0, -0.9);
  p.setPen(RoundPen(ink.line, 1.6));
  const auto face = [&](QPointF u, QPointF v, qreal tone) {
    p.setBrush(Mixed(ink.tile, ink.accent, tone));
    p.drawPolygon(QPolygonF({corner, corner + u, corner + u + v, corner + v}));
  };
  face(left, right, 0.25);
  face(left, down, 0.5);
  face(right, down, 0.8);
  p.setBrush(Qt::NoBrush);
}

/// "1:1" between the corners of a view finder.
void DrawView1_1(QPainter& p, const TInk& ink) {
  p.setPen(RoundPen(ink.accent, 2));
  for (const QPointF side : {QPointF(-1, -1), QPointF(1, -1), QPointF(-1, 1), QPointF(1, 1)}) {
    const QPointF corner = kMiddle + QPointF(side.x() * 19, side.y() * 15);
    p.drawPolyline(
        QPolygonF({corner - QPointF(side.x() * 6, 0), corner, corner - QPointF(0, side.y() * 6)}));
  }
  DrawText(p, kMiddle, QStringLiteral("1:1"), 13, ink.line);
}

void DrawPlay(QPainter& p, const QColor& color, QPointF base, qreal width) {
  const qreal half = std::abs(width) * 0.62;
  p.setPen(RoundPen(color, 2));
  p.setBrush(color);
  p.drawPolygon(
      QPolygonF({base + QPointF(0, -half), base + QPointF(width, 0), base + QPointF(0, half)}));
  p.setBrush(Qt::NoBrush);
}

/// What a click does: play, or pause while it plays.
void DrawAnim(QPainter& p, const TInk& ink, TFaceState state) {
  if (state != fsDown) return DrawPlay(p, ink.accent, kMiddle + QPointF(-7, 0), 17);
  p.setPen(RoundPen(ink.line, 2));
  p.setBrush(ink.line);
  for (const qreal x : {-8.0, 3.0}) p.drawRect(QRectF(kMiddle + QPointF(x, -9), QSizeF(5, 18)));
  p.setBrush(Qt::NoBrush);
}

/// `side`: 1 forward, -1 back.
void DrawStep(QPainter& p, const TInk& ink, int side) {
  DrawPlay(p, ink.line, kMiddle + QPointF(-9 * side, 0), 13 * side);
  p.setPen(RoundPen(ink.line, 4));
  p.drawLine(kMiddle + QPointF(9 * side, -8), kMiddle + QPointF(9 * side, 8));
}

/// One period of a sine about (`left`, `middle`).
void DrawWave(QPainter& p, QPointF left, qreal length, qreal amplitude, const QPen& pen) {
  constexpr int kSegments = 32;
  QPolygonF line;
  for (int i = 0; i <= kSegments; ++i) {
    const qreal part = static_cast<qreal>(i) / kSegments;
    line << left + QPointF(part * length, -amplitude * std::sin(2 * std::numbers::pi * part));
  }
  p.setPen(pen);
  p.drawPolyline(line);
}

/// Two waves between the same two lines: in the absolute type one of them stays small, in the
/// relative type both reach the lines.
void DrawTwoWaves(QPainter& p, const TInk& ink, qreal second) {
  constexpr qreal kReach = 13;
  p.setPen(QPen(Mixed(ink.tile, ink.line, 0.55), 1));
  for (const qreal y : {10.5, 37.5}) p.drawLine(QPointF(8, y), QPointF(48, y));
  DrawWave(p, {9, 24}, 18, kReach, RoundPen(ink.accent, 2.2));
  DrawWave(p, {30, 24}, 18, second, RoundPen(ink.line, 2.2));
}

/// A capital sigma beside the sum of two waves.
void DrawSumScale(QPainter& p, const TInk& ink) {
  p.setPen(RoundPen(ink.line, 2.6));
  p.drawPolyline(QPolygonF({{23, 14}, {22, 12}, {9, 12}, {16, 24}, {9, 36}, {22, 36}, {23, 34}}));
  QPolygonF sum;
  for (int i = 0; i <= 40; ++i) {
    const qreal angle = 2 * std::numbers::pi * i / 40;
    sum << QPointF(28 + i * 0.5, 24 - 7 * std::sin(angle) - 6 * std::sin(3 * angle));
  }
  p.setPen(RoundPen(ink.accent, 2.2));
  p.drawPolyline(sum);
}

void DrawGlyph(QPainter& p, TButtonFace button, TFaceState state, const TInk& ink) {
  switch (button) {
    case bfAnim:
      return DrawAnim(p, ink, state);
    case bfAnimBack:
      return DrawStep(p, ink, -1);
    case bfAnimForward:
      return DrawStep(p, ink, 1);
    case bfViewX:
      return DrawViewX(p, ink);
    case bfViewY:
      return DrawViewY(p, ink);
    case bfViewZ:
      return DrawViewZ(p, ink);
    case bfView3D:
      return DrawView3D(p, ink);
    case bfAbsolScale:
      return DrawTwoWaves(p, ink, 5);
    case bfRelatScale:
      return DrawTwoWaves(p, ink, 13);
    case bfSumScale:
      return DrawSumScale(p, ink);
    case bfView1_1:
      return DrawView1_1(p, ink);
  }
}

void DrawFace(QPainter& p, int index) {
  const auto state = static_cast<TFaceState>(index % kFacesPerButton);
  const TInk ink(state);
  DrawTile(p, ink);
  if (state == fsDown) p.translate(0, 1);
  DrawGlyph(p, static_cast<TButtonFace>(index - state), state, ink);
}

}  // namespace

TImageList* MakeButtonFaces(QObject* parent) {
  auto* faces = new TImageList(kFaceSize, parent);
  faces->SetImages(bfView1_1 + kFacesPerButton, DrawFace);
  return faces;
}
