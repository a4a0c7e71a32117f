#include "examples/gallery/Gallery.h"

#include <QPainter>

#include "components/graphing/Graphexport.h"
#include "components/graphing/painting/Plotfont.h"
#include "examples/gallery/Exhibits.h"

namespace {

constexpr int kColumns = 4;
constexpr int kMargin = 10;   ///< pixels between two exhibits
constexpr int kCaption = 22;  ///< height of the caption above each

}  // namespace

TGallery::TGallery(QWidget* parent) : QWidget(parent) {
  setWindowTitle(tr("Gallery of graphs"));
  resize(sizeHint());
  for (const TExhibit& exhibit : Exhibits()) {
    auto* graph = new TKorvalGraph(this);
    graphs_.push_back(graph);
    graph->setGeometry(Place(static_cast<int>(graphs_.size()) - 1));
    exhibit.fill(*graph);
    graph->Replay();
    graph->SetShowCoordinates(true);
    AddExportActions(*graph);
  }
}

QSize TGallery::sizeHint() const { return {1320, 920}; }

/// Where the graph `index` hangs: as many columns as fit the exhibits, of equal size.
QRect TGallery::Place(int index) const {
  const int rows = (static_cast<int>(Exhibits().size()) + kColumns - 1) / kColumns;
  const int column = index % kColumns;
  const int row = index / kColumns;
  const int w = (width() - kMargin) / kColumns;
  const int h = (height() - kMargin) / rows;
  return QRect(kMargin + column * w, kMargin + row * h + kCaption, w - kMargin,
               h - kMargin - kCaption);
}

void TGallery::DrawCaptions(QPainter& painter) const {
  QFont font(QStringLiteral("Arial"), 9);
  font.setBold(true);
  painter.setFont(PlotFont(font));
  painter.setPen(QColor(60, 60, 60));
  for (std::size_t i = 0; i < graphs_.size(); ++i) {
    const QRect place = Place(static_cast<int>(i));
    painter.drawText(QRect(place.left(), place.top() - kCaption, place.width(), kCaption),
                     Qt::AlignLeft | Qt::AlignVCenter, QString::fromUtf8(Exhibits()[i].caption));
  }
}

QImage TGallery::Render(double ratio) {
  QImage picture((QSizeF(size()) * ratio).toSize(), QImage::Format_RGB32);
  picture.setDevicePixelRatio(ratio);
  picture.fill(QColor(240, 240, 240));
  QPainter painter(&picture);
  DrawCaptions(painter);
  for (TKorvalGraph* graph : graphs_) {
    painter.save();
    painter.translate(graph->pos());
    graph->Draw(painter);
    painter.restore();
  }
  return picture;
}

void TGallery::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor(240, 240, 240));
  DrawCaptions(painter);
}

void TGallery::resizeEvent(QResizeEvent*) {
  for (std::size_t i = 0; i < graphs_.size(); ++i) {
    graphs_[i]->setGeometry(Place(static_cast<int>(i)));
  }
}
