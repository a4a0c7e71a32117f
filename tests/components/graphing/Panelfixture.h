#pragma once

#include <QImage>
#include <QPainter>
#include <QRect>
#include <memory>
#include <vector>

#include "components/graphing/Axis.h"
#include "components/graphing/Gseries.h"

/// A data panel with two axes from 0 to 10 (0.01 to 100 if logarithmic), in a picture of its own.
/// Its rectangle begins at (20, 10) and is 101 x 201 pixels: 10 pixels a unit to the right, 20
/// upwards; 25 and 50 a decade.
struct TPanelFixture {
  static constexpr QRect kRect{20, 10, 101, 201};

  explicit TPanelFixture(bool isLog = false) {
    SetUp(horizontal, TAxis::aoHorizontal, TAxis::alBottom, isLog);
    SetUp(vertical, TAxis::aoVertical, TAxis::alLeft, isLog);
    panel.SetOrigin(kRect);
  }

  static void SetUp(TAxis& axis, TAxis::TAxisOrientation orientation, TAxis::TAxisAlign align,
                    bool isLog) {
    axis.SetOrientation(orientation);
    axis.SetAlign(align);
    axis.SetFixedOrigin(true);
    axis.OnQueryPlotRect = [] { return kRect; };
    axis.SetAutoMin(false);
    axis.SetAutoMax(false);
    if (isLog) axis.SetScale(TAxis::asLog);
    axis.SetMinMax(isLog ? 0.01 : 0.0, isLog ? 100.0 : 10.0);
    axis.AdjustOrigin();
  }

  /// The picture of the panel on white.
  QImage Picture() {
    QImage image(150, 230, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    panel.Draw(&painter);
    return image;
  }

  /// Adds a series of these points without markers.
  TSeries* AddCurve(std::vector<TCoordinate> points, TCoordinate size = {}) {
    TSeries* series = panel.AddSeries(std::make_unique<TSeries>());
    series->GetStyle()->SetPointStyle(TSeriesStyle::psNone);
    series->DataSource = [points = std::move(points), size](int& index, TCoordinate& point,
                                                            TCoordinate& extent) {
      if (index >= static_cast<int>(points.size())) return false;
      point = points[static_cast<std::size_t>(index++)];
      extent = size;
      return true;
    };
    return series;
  }

  TAxis horizontal;
  TAxis vertical;
  TDataPanel panel{&horizontal, &vertical};
};

inline int CountPixels(const QImage& image, QColor color, const QRect& part = {}) {
  const QRect where = part.isNull() ? image.rect() : part;
  int count = 0;
  for (int y = where.top(); y <= where.bottom(); ++y) {
    for (int x = where.left(); x <= where.right(); ++x) count += image.pixelColor(x, y) == color;
  }
  return count;
}
