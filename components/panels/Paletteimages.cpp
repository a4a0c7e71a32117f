#include "components/panels/Paletteimages.h"

#include <QPainter>
#include <QPainterPath>

#include "components/controls/Iconimages.h"

namespace {

const QColor kInk(40, 48, 60);
const QColor kBlue(30, 100, 200);
const QColor kRed(205, 60, 50);
const QColor kHeader(214, 230, 250);

QPen Ink(double width, const QColor& color = kInk) {
  return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

void DrawSheetOfPaper(QPainter& painter, const QRectF& rect) {
  painter.setPen(Ink(1.3));
  painter.setBrush(Qt::white);
  painter.drawRect(rect);
}

void DrawGraph(QPainter& painter) {
  DrawSheetOfPaper(painter, QRectF(1.5, 2.5, 21.0, 19.0));
  painter.drawPolyline(QPolygonF({{5.5, 5.0}, {5.5, 18.0}, {20.0, 18.0}}));
  QPainterPath curve({6.0, 15.0});
  curve.cubicTo({10.0, 0.0}, {13.0, 24.0}, {19.5, 7.0});
  painter.setBrush(Qt::NoBrush);
  painter.setPen(Ink(1.6, kBlue));
  painter.drawPath(curve);
}

/// Two links of a chain in the lower right corner.
void DrawChain(QPainter& painter) {
  painter.setPen(Ink(1.7, kRed));
  painter.setBrush(Qt::white);
  painter.drawRoundedRect(QRectF(11.0, 16.5, 7.0, 5.0), 2.5, 2.5);
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(15.5, 16.5, 7.0, 5.0), 2.5, 2.5);
}

void DrawLinkedGraph(QPainter& painter) {
  DrawGraph(painter);
  DrawChain(painter);
}

void DrawLinkedLabel(QPainter& painter) {
  DrawSheetOfPaper(painter, QRectF(1.5, 5.5, 21.0, 13.0));
  painter.setPen(Ink(1.6, kBlue));
  painter.drawPolyline(QPolygonF({{5.5, 9.5}, {7.5, 8.5}, {7.5, 15.0}}));
  painter.drawPoint(QPointF(11.0, 15.0));
  painter.drawEllipse(QPointF(15.0, 11.8), 1.8, 3.2);
  DrawChain(painter);
}

void DrawGrid(QPainter& painter) {
  painter.setPen(Ink(1.0));
  for (const double y : {8.0, 12.5, 17.0}) painter.drawLine(QPointF(1.5, y), QPointF(22.5, y));
  for (const double x : {8.5, 15.5}) painter.drawLine(QPointF(x, 3.5), QPointF(x, 21.5));
}

void DrawTable(QPainter& painter) {
  DrawSheetOfPaper(painter, QRectF(1.5, 3.5, 21.0, 18.0));
  painter.fillRect(QRectF(2.2, 4.2, 19.6, 3.6), kHeader);
  DrawGrid(painter);
}

/// A table with a cell being edited.
void DrawDataSheet(QPainter& painter) {
  DrawTable(painter);
  painter.fillRect(QRectF(2.2, 4.2, 6.0, 16.6), kHeader);
  DrawGrid(painter);
  painter.setPen(Ink(1.8, kRed));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(QRectF(8.5, 12.5, 7.0, 4.5));
}

/// Rows on paper and the pen that writes them.
void DrawLogger(QPainter& painter) {
  DrawSheetOfPaper(painter, QRectF(3.0, 2.0, 14.0, 20.0));
  painter.setPen(Ink(1.2, kBlue));
  for (const double y : {6.0, 9.5, 13.0}) painter.drawLine(QPointF(5.5, y), QPointF(14.5, y));
  painter.drawLine(QPointF(5.5, 16.5), QPointF(9.0, 16.5));
  painter.setPen(Ink(3.2, kInk));
  painter.drawLine(QPointF(12.5, 17.0), QPointF(20.5, 9.0));
  painter.setPen(Ink(1.6, kRed));
  painter.drawLine(QPointF(10.5, 19.0), QPointF(12.5, 17.0));
}

}  // namespace

void RegisterPaletteImages() {
  RegisterIconImage(QStringLiteral("TKorvalGraph"), DrawGraph);
  RegisterIconImage(QStringLiteral("TLinkedGraph"), DrawLinkedGraph);
  RegisterIconImage(QStringLiteral("TLinkedLabel"), DrawLinkedLabel);
  RegisterIconImage(QStringLiteral("TDataTable"), DrawTable);
  RegisterIconImage(QStringLiteral("TDataSheet"), DrawDataSheet);
  RegisterIconImage(QStringLiteral("DataLogger"), DrawLogger);
}
