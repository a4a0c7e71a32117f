#include "components/controls/Iconimages.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <utility>

namespace {

constexpr double kSize = 24.0;  ///< side of the square that pictures are drawn in

const QColor kInk(38, 50, 72);
const QColor kPaper(250, 251, 253);
const QColor kBlue(32, 96, 200);
const QColor kAmber(226, 150, 30);

QPen Ink(double width, const QColor& color = kInk) {
  return {color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

void DrawTile(QPainter& painter, const QColor& fill = kPaper) {
  painter.setPen(Ink(1.4));
  painter.setBrush(fill);
  painter.drawRoundedRect(QRectF(1.5, 1.5, 21.0, 21.0), 4.0, 4.0);
  painter.setBrush(Qt::NoBrush);
}

/// One period of a sine from `left` to `right` about the height `middle`.
void DrawWave(QPainter& painter, double left, double right, double middle, double amplitude) {
  constexpr int kSteps = 24;
  QPainterPath path;
  for (int step = 0; step <= kSteps; ++step) {
    const double part = static_cast<double>(step) / kSteps;
    const QPointF point(left + part * (right - left),
                        middle - amplitude * std::sin(2.0 * std::numbers::pi * part));
    if (step == 0)
      path.moveTo(point);
    else
      path.lineTo(point);
  }
  painter.drawPath(path);
}

void DrawBars(QPainter& painter) {
  constexpr std::array<double, 5> kHeights = {4.0, 9.0, 14.0, 11.0, 6.0};
  painter.setPen(Ink(0.8));
  painter.setBrush(kBlue);
  double left = 4.0;
  for (const double height : kHeights) {
    painter.drawRect(QRectF(left, 20.0 - height, 3.2, height));
    left += 3.2;
  }
  painter.setBrush(Qt::NoBrush);
}

void DrawChannel(QPainter& painter) {
  DrawTile(painter);
  painter.setPen(Ink(2.0, kBlue));
  DrawWave(painter, 4.0, 20.0, 12.0, 6.0);
}

void DrawDataChannel(QPainter& painter) {
  DrawTile(painter);
  painter.setPen(Ink(1.8, kBlue));
  DrawWave(painter, 4.0, 20.0, 9.0, 4.0);
  painter.setPen(Ink(1.2));
  for (const double row : {15.5, 18.5}) painter.drawLine(QPointF(5.0, row), QPointF(19.0, row));
}

void DrawVariable(QPainter& painter) {
  DrawTile(painter);
  painter.setPen(Ink(2.4, kBlue));
  painter.drawLine(QPointF(7.5, 7.5), QPointF(16.5, 16.5));
  painter.drawLine(QPointF(16.5, 7.5), QPointF(7.5, 16.5));
}

void DrawMacro(QPainter& painter) {
  DrawTile(painter);
  painter.setPen(Ink(2.0, kBlue));  // a sum sign
  painter.drawPolyline(QPolygonF({{16.5, 8.0},
                                  {16.5, 6.0},
                                  {7.5, 6.0},
                                  {13.0, 12.0},
                                  {7.5, 18.0},
                                  {16.5, 18.0},
                                  {16.5, 16.0}}));
}

void DrawHistogram(QPainter& painter) {
  DrawTile(painter);
  DrawBars(painter);
}

void DrawOccurrenceHistogram(QPainter& painter) {
  DrawHistogram(painter);
  QPainterPath bell(QPointF(4.0, 17.0));
  bell.cubicTo(QPointF(9.0, 17.0), QPointF(9.0, 4.0), QPointF(12.0, 4.0));
  bell.cubicTo(QPointF(15.0, 4.0), QPointF(15.0, 17.0), QPointF(20.0, 17.0));
  painter.setPen(Ink(1.6, kAmber));
  painter.drawPath(bell);
}

void DrawSimulator(QPainter& painter) {
  painter.setPen(Ink(1.4));
  painter.setBrush(kPaper);
  painter.drawEllipse(QRectF(1.5, 1.5, 21.0, 21.0));
  painter.setPen(Ink(2.0, kBlue));
  painter.setBrush(Qt::NoBrush);
  DrawWave(painter, 5.0, 19.0, 12.0, 5.0);
}

void DrawPage(QPainter& painter) {
  painter.setPen(Ink(1.4));
  painter.setBrush(kPaper);
  painter.drawPolygon(QPolygonF({{4.0, 1.5}, {14.0, 1.5}, {20.0, 7.5}, {20.0, 22.5}, {4.0, 22.5}}));
  painter.setBrush(Qt::NoBrush);
  painter.drawPolyline(QPolygonF({{14.0, 1.5}, {14.0, 7.5}, {20.0, 7.5}}));
}

void DrawFileReader(QPainter& painter) {
  DrawPage(painter);
  painter.setPen(Ink(1.8, kBlue));
  DrawWave(painter, 6.5, 17.5, 14.5, 4.0);
}

void DrawTextConverter(QPainter& painter) {
  DrawPage(painter);
  painter.setPen(Ink(1.4, kBlue));
  for (const double row : {10.5, 13.5, 16.5}) {
    painter.drawLine(QPointF(7.0, row), QPointF(17.0, row));
  }
}

void DrawSpectrum(QPainter& painter) {
  constexpr std::array<double, 6> kHeights = {3.0, 6.0, 14.0, 5.0, 9.0, 3.0};
  DrawTile(painter);
  painter.setPen(Ink(1.4, kBlue));
  double x = 4.5;
  for (const double height : kHeights) {
    painter.drawLine(QPointF(x, 19.0), QPointF(x, 19.0 - height));
    x += 3.0;
  }
  painter.setPen(Ink(1.2));
  painter.drawLine(QPointF(4.0, 19.5), QPointF(20.0, 19.5));
}

void DrawCompass(QPainter& painter) {
  painter.setPen(Ink(1.4));
  painter.setBrush(kPaper);
  painter.drawEllipse(QRectF(1.5, 1.5, 21.0, 21.0));
  painter.setPen(Ink(0.8));
  painter.setBrush(kBlue);
  painter.drawPolygon(QPolygonF({{17.5, 6.5}, {13.8, 13.8}, {10.2, 10.2}}));
  painter.setBrush(QColor(200, 206, 216));
  painter.drawPolygon(QPolygonF({{6.5, 17.5}, {13.8, 13.8}, {10.2, 10.2}}));
}

void DrawArrow(QPainter& painter) {
  painter.setPen(Ink(1.4));
  painter.setBrush(kPaper);
  painter.drawRect(QRectF(1.5, 14.5, 9.0, 8.0));
  painter.drawRect(QRectF(13.5, 1.5, 9.0, 6.0));
  painter.setPen(Ink(1.8, kBlue));
  painter.drawLine(QPointF(8.0, 14.0), QPointF(17.0, 9.5));
  painter.drawPolyline(QPolygonF({{13.5, 8.7}, {17.5, 9.2}, {15.2, 12.6}}));
}

/// The outline of a field, with or without its own paper.
void DrawField(QPainter& painter, const QColor& fill = kPaper) {
  painter.setPen(Ink(1.4));
  painter.setBrush(fill);
  painter.drawRect(QRectF(1.5, 6.0, 21.0, 12.0));
  painter.setBrush(Qt::NoBrush);
}

void DrawValueEdit(QPainter& painter) {
  DrawField(painter);
  painter.setPen(Ink(1.6, kBlue));
  painter.drawLine(QPointF(5.0, 9.0), QPointF(5.0, 15.0));
  painter.drawLine(QPointF(8.0, 12.0), QPointF(12.0, 12.0));
  painter.setPen(Ink(1.0));
  painter.setBrush(kInk);
  painter.drawPolygon(QPolygonF({{15.5, 10.8}, {17.8, 8.2}, {20.1, 10.8}}));
  painter.drawPolygon(QPolygonF({{15.5, 13.2}, {17.8, 15.8}, {20.1, 13.2}}));
}

void DrawColorLabel(QPainter& painter) {
  DrawField(painter);
  painter.setPen(Qt::NoPen);
  const QColor levels[] = {QColor(60, 180, 80), kAmber, QColor(214, 60, 50)};
  double left = 2.2;
  for (const QColor& level : levels) {
    painter.fillRect(QRectF(left, 6.7, 6.6, 10.6), level);
    left += 6.5;
  }
}

/// A capital letter A in lines.
void DrawLetter(QPainter& painter, QPointF foot, double height) {
  const double half = 0.38 * height;
  painter.drawPolyline(
      QPolygonF({foot, foot + QPointF(half, -height), foot + QPointF(2 * half, 0)}));
  painter.drawLine(foot + QPointF(0.5 * half, -0.4 * height),
                   foot + QPointF(1.5 * half, -0.4 * height));
}

void DrawTextLabel(QPainter& painter) {
  painter.setPen(Ink(2.4));
  DrawLetter(painter, QPointF(5.5, 20.0), 16.5);
}

void DrawTextPanel(QPainter& painter) {
  painter.fillRect(QRectF(1.5, 3.5, 21.0, 17.0), QColor(226, 229, 235));
  painter.setPen(Ink(1.6, QColor(250, 251, 253)));
  painter.drawPolyline(QPolygonF({{2.0, 20.0}, {2.0, 4.0}, {22.0, 4.0}}));
  painter.setPen(Ink(1.6, QColor(128, 134, 146)));
  painter.drawPolyline(QPolygonF({{2.0, 20.0}, {22.0, 20.0}, {22.0, 4.0}}));
  painter.setPen(Ink(1.8));
  DrawLetter(painter, QPointF(8.4, 16.5), 9.5);
}

void DrawHyperlink(QPainter& painter) {
  painter.setPen(Ink(2.2, kBlue));
  DrawLetter(painter, QPointF(6.0, 17.0), 14.5);
  painter.setPen(Ink(1.6, kBlue));
  painter.drawLine(QPointF(4.0, 21.0), QPointF(20.0, 21.0));
}

void DrawImage(QPainter& painter) {
  painter.setPen(Ink(1.4));
  painter.setBrush(QColor(214, 230, 250));
  painter.drawRect(QRectF(1.5, 3.5, 21.0, 17.0));
  painter.setPen(Qt::NoPen);
  painter.setBrush(kAmber);
  painter.drawEllipse(QPointF(7.5, 8.5), 2.4, 2.4);
  painter.setBrush(kBlue);
  painter.drawPolygon(QPolygonF(
      {{2.2, 19.8}, {9.0, 13.0}, {12.5, 16.0}, {17.0, 10.0}, {21.8, 16.5}, {21.8, 19.8}}));
}

/// The way out for a name nobody registered: a tile in a colour of its own with the first letter.
void DrawInitial(QPainter& painter, const QString& name) {
  const int hue = static_cast<int>(qHash(name, 1) % 360);
  DrawTile(painter, QColor::fromHsv(hue, 60, 245));
  const bool typeName = name.size() > 1 && name[0] == 'T' && name[1].isUpper();
  QFont font = painter.font();
  font.setPixelSize(14);
  font.setBold(true);
  painter.setFont(font);
  painter.setPen(kInk);
  painter.drawText(QRectF(0.0, 0.0, kSize, kSize), Qt::AlignCenter, name.mid(typeName ? 1 : 0, 1));
}

void DrawLamp(QPainter& painter, const QColor& color) {
  painter.setPen(QPen(kPaper, 1.2));
  painter.setBrush(color);
  painter.drawEllipse(QPointF(18.5, 18.5), 4.5, 4.5);
}

QHash<QString, TIconPainter>& Images() {
  static QHash<QString, TIconPainter> images = {
      {"ChannelImage", DrawChannel},
      {"DataChannelImage", DrawDataChannel},
      {"VariableImage", DrawVariable},
      {"MacroImage", DrawMacro},
      {"THistogram", DrawHistogram},
      {"TOccurrenceHistogram", DrawOccurrenceHistogram},
      {"Simulator", DrawSimulator},
      {"FileReader", DrawFileReader},
      {"TextConverter", DrawTextConverter},
      {"FFTImage", DrawSpectrum},
      {"TCompass", DrawCompass},
      {"TArrow", DrawArrow},
      {"TValueEdit", DrawValueEdit},
      {"TColorLabel", DrawColorLabel},
      {"TTextLabel", DrawTextLabel},
      {"TTextPanel", DrawTextPanel},
      {"THyperlink", DrawHyperlink},
      {"TImageControl", DrawImage},
  };
  return images;
}

/// The state that a name ends in, as the rest of the name and the colour of its lamp.
std::optional<std::pair<QString, QColor>> StateOf(const QString& name) {
  const std::pair<QString, QColor> states[] = {
      {"Active", QColor(40, 180, 70)}, {"Idle", QColor(150, 156, 166)}, {"Down", kAmber}};
  for (const auto& [suffix, color] : states) {
    if (name.size() > suffix.size() && name.endsWith(suffix)) {
      return {{name.chopped(suffix.size()), color}};
    }
  }
  return {};
}

void DrawNamed(QPainter& painter, const QString& name) {
  if (const auto found = Images().constFind(name); found != Images().constEnd()) {
    (*found)(painter);
  } else if (const auto state = StateOf(name)) {
    DrawNamed(painter, state->first);
    DrawLamp(painter, state->second);
  } else {
    DrawInitial(painter, name);
  }
}

}  // namespace

void RegisterIconImage(const QString& name, const TIconPainter& draw) {
  Images().insert(name, draw);
}

QString ProvideIconImage(const QString& name, const TIconPainter& draw) {
  if (!HasIconImage(name)) RegisterIconImage(name, draw);
  return name;
}

bool HasIconImage(const QString& name) { return Images().contains(name); }

void DrawIconImage(QPainter& painter, const QRectF& box, const QString& name) {
  const double side = std::min(box.width(), box.height());
  if (name.isEmpty() || side <= 0.0) return;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(box.center() - QPointF(side / 2.0, side / 2.0));
  painter.scale(side / kSize, side / kSize);
  DrawNamed(painter, name);
  painter.restore();
}
