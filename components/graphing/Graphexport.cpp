#include "components/graphing/Graphexport.h"

#include <QAction>
#include <QBuffer>
#include <QFileDialog>
#include <QFileInfo>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrinter>
#include <QSvgGenerator>
#include <algorithm>
#include <optional>

#include "components/graphing/Graph.h"
#include "model/Message.h"
#include "model/Wholefile.h"

namespace {

constexpr double kPixelsPerInch = 96.0;

std::optional<TGraphFile> KindOf(const QString& fileName) {
  const QString ending = QFileInfo(fileName).suffix().toLower();
  if (ending == QLatin1String("png")) return TGraphFile::kPng;
  if (ending == QLatin1String("svg")) return TGraphFile::kSvg;
  if (ending == QLatin1String("pdf")) return TGraphFile::kPdf;
  return std::nullopt;
}

void WriteSvg(TKorvalGraph& graph, QIODevice& file) {
  if (graph.size().isEmpty()) return;
  QSvgGenerator svg;
  svg.setOutputDevice(&file);
  svg.setResolution(static_cast<int>(kPixelsPerInch));
  svg.setSize(graph.size());
  svg.setViewBox(graph.rect());
  svg.setTitle(QStringLiteral("Graph"));
  QPainter painter(&svg);
  graph.Draw(painter);
}

void WritePdf(TKorvalGraph& graph, QIODevice& file) {
  if (graph.size().isEmpty()) return;
  QPdfWriter pdf(&file);
  pdf.setPageSize(QPageSize(QSizeF(graph.size()) * 72.0 / kPixelsPerInch, QPageSize::Point,
                            QString(), QPageSize::ExactMatch));
  pdf.setPageMargins(QMarginsF());
  static_cast<void>(PrintGraph(graph, pdf));
}

void SaveByDialog(TKorvalGraph& graph) {
  QString fileName = QFileDialog::getSaveFileName(
      &graph, TKorvalGraph::tr("Save the graph"), QStringLiteral("graph.png"),
      TKorvalGraph::tr("Pictures (*.png);;Drawings (*.svg);;Documents (*.pdf)"));
  if (fileName.isEmpty()) return;
  if (QFileInfo(fileName).suffix().isEmpty()) fileName += QStringLiteral(".png");
  QString message;
  if (!SaveGraph(graph, fileName, &message)) ShowMessage(message);
}

void PrintByDialog(TKorvalGraph& graph) {
  QPrinter printer(QPrinter::HighResolution);
  printer.setPageOrientation(graph.width() > graph.height() ? QPageLayout::Landscape
                                                            : QPageLayout::Portrait);
  QPrintDialog dialog(&printer, &graph);
  if (dialog.exec() != QDialog::Accepted) return;
  if (!PrintGraph(graph, printer)) {
    ShowMessage(QStringLiteral("Cannot print on %1").arg(printer.printerName()));
  }
}

}  // namespace

QByteArray GraphToBytes(TKorvalGraph& graph, TGraphFile kind, double ratio) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  switch (kind) {
    case TGraphFile::kPng:
      graph.Picture(ratio).save(&buffer, "PNG");
      break;
    case TGraphFile::kSvg:
      WriteSvg(graph, buffer);
      break;
    case TGraphFile::kPdf:
      WritePdf(graph, buffer);
      break;
  }
  return bytes;
}

bool SaveGraph(TKorvalGraph& graph, const QString& fileName, QString* message) {
  const std::optional<TGraphFile> kind = KindOf(fileName);
  if (!kind) {
    *message =
        QStringLiteral("Cannot write %1: its name must end in .png, .svg or .pdf").arg(fileName);
    return false;
  }
  const QByteArray bytes = GraphToBytes(graph, *kind);
  if (bytes.isEmpty()) {
    *message = QStringLiteral("Cannot write %1: a graph of %2 x %3 pixels has no such picture")
                   .arg(fileName)
                   .arg(graph.width())
                   .arg(graph.height());
    return false;
  }
  const QString why = WriteWholeFile(fileName, bytes);
  if (!why.isEmpty()) *message = QStringLiteral("Cannot write %1: %2").arg(fileName, why);
  return why.isEmpty();
}

bool PrintGraph(TKorvalGraph& graph, QPagedPaintDevice& device) {
  QPainter painter;
  if (graph.size().isEmpty() || !painter.begin(&device)) return false;
  const QSizeF page(device.width(), device.height());
  const double scale = std::min(page.width() / graph.width(), page.height() / graph.height());
  painter.scale(scale, scale);
  graph.Draw(painter);
  return true;
}

void AddExportActions(TKorvalGraph& graph) {
  TKorvalGraph* target = &graph;
  const auto add = [target](const QString& text) {
    auto* action = new QAction(text, target);
    target->addAction(action);
    return action;
  };
  QObject::connect(add(TKorvalGraph::tr("&Copy")), &QAction::triggered, target,
                   &TKorvalGraph::CopyToClipboardAsBitmap);
  QObject::connect(add(TKorvalGraph::tr("&Save as...")), &QAction::triggered, target,
                   [target] { SaveByDialog(*target); });
  QObject::connect(add(TKorvalGraph::tr("&Print...")), &QAction::triggered, target,
                   [target] { PrintByDialog(*target); });
  QAction* coordinates = add(TKorvalGraph::tr("Show c&oordinates"));
  coordinates->setCheckable(true);
  coordinates->setChecked(target->GetShowCoordinates());
  QObject::connect(coordinates, &QAction::toggled, target, &TKorvalGraph::SetShowCoordinates);
  target->setContextMenuPolicy(Qt::ActionsContextMenu);
}
