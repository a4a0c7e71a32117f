#pragma once

#include <QByteArray>
#include <QString>

class TKorvalGraph;
class QPagedPaintDevice;

/// Ways out of a graph: files, paper and a menu for both. All of them draw through the graph's own
/// Draw, so that each shows what the screen shows. GUI thread only.

/// Kinds of file, by the ending of their names.
enum class TGraphFile { kPng, kSvg, kPdf };

/// The graph as the bytes of a file, none if it cannot be made; `ratio` device pixels to a logical
/// one concern PNG only. A PDF page has the size of the graph at 96 pixels per inch.
QByteArray GraphToBytes(TKorvalGraph& graph, TGraphFile kind, double ratio = 2.0);

/// Writes the graph into a file whose name ends in .png, .svg or .pdf. Returns false and a message
/// if the ending is another or the file cannot be written; a file that was there then stays whole.
[[nodiscard]] bool SaveGraph(TKorvalGraph& graph, const QString& fileName, QString* message);

/// Draws the graph as large as the device's current page allows, upright and in its proportions. A
/// printer is such a device. False if the device cannot be drawn on, or the graph has no area.
[[nodiscard]] bool PrintGraph(TKorvalGraph& graph, QPagedPaintDevice& device);

/// Gives the graph a context menu: copy, save, print and show the coordinates under the mouse.
void AddExportActions(TKorvalGraph& graph);
