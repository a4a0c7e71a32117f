// Frames per second of the panel in a window, 1280 x 800: a plate of n nodes and about 2 n bars,
// all solid, every node moving in every frame.

#include <QApplication>
#include <QElapsedTimer>
#include <QMainWindow>
#include <cmath>
#include <ctime>
#include <numbers>

#include "bench/Bench.h"
#include "viewer/Glpanel.h"
#include "viewer/opengl/Picture.h"

namespace {

constexpr QSize kPanelSize(1280, 800);

/// A plate with a travelling wave in it.
struct TPlate {
  TPlate(int columns, int rows, double nodeRadius);

  TModel model;
  TMeasuredData data;
};

void MakeGrid(TModel& model, int columns, int rows) {
  constexpr double kWidth = 1.6, kHeight = 1.0;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      model.Nodes.Emplace(row * columns + column + 1, kWidth * (column / (columns - 1.0) - 0.5),
                          kHeight * (row / (rows - 1.0) - 0.5), 0.0);
    }
  }
  const auto join = [&model](int a, int b) {
    TElement* bar = model.Elements.Emplace(TElement::kBar, 2);
    bar->Nodes()[0] = a;
    bar->Nodes()[1] = b;
  };
  for (int node = 0; node < rows * columns; ++node) {
    if (node % columns + 1 < columns) join(node, node + 1);
    if (node / columns + 1 < rows) join(node, node + columns);
  }
  model.Size = 0.5 * std::hypot(kWidth, kHeight);
  model.Loaded = true;
}

TPlate::TPlate(int columns, int rows, double nodeRadius) {
  MakeGrid(model, columns, rows);
  auto set = std::make_unique<TDataNodeList>(&model, false);
  for (const TNode* node : model.Nodes) {
    TNode* moving = set->Emplace(node->ID, 0.0, 0.01, 0.06);
    moving->Angles = {0.0, 2.0 * node->Position.x, 6.0 * node->Position.x};
    moving->Link = node;
  }
  set->Elements = &model.Elements;
  set->NodeColor = TColor::Green();
  set->ElementColor = TColor::White();
  set->NodeRadius = nodeRadius;
  set->ElementRadius = 0.5 * nodeRadius;
  set->SetVisible(true);
  data.Shown.Refer(data.All.Add(std::move(set)));
}

/// Whether any pixel is green without red; a slim node covers hardly more than one.
bool HasNodeColor(const QImage& image) {
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QColor color = image.pixelColor(x, y);
      if (color.green() > 80 && color.red() == 0) return true;
    }
  }
  return false;
}

/// The panel in a window, showing a plate.
class TShow {
 public:
  TShow(TPlate& plate, TSceneRenderer::TMethod method);

  struct TCost {
    double fps, buildMs, restMs;
    double processorMs;  ///< of all threads; hardly disturbed by what else the machine does
  };
  TCost Measure(double seconds);

  /// Share of some of the nodes whose place in the picture has the nodes' colour.
  double ShareOfNodesSeen();

 private:
  void Frame();
  void Paint();

  TPlate& plate_;
  QMainWindow window_;
  TGLPanel* panel_ = new TGLPanel(&window_);
  TScene scene_;
  TSceneRenderer renderer_;
  double buildNs_ = 0.0;
  int frames_ = 0;
};

TShow::TShow(TPlate& plate, TSceneRenderer::TMethod method) : plate_(plate) {
  QObject::connect(panel_, &TGLPanel::OnInit, panel_,
                   [this, method] { renderer_.Init(panel_->Resolver(), method); });
  QObject::connect(panel_, &TGLPanel::OnPaint, panel_, [this] { Paint(); });
  panel_->View.ModelSize = plate.model.Size;
  panel_->setFixedSize(kPanelSize);
  window_.setCentralWidget(panel_);
  window_.show();
  for (int i = 0; i < 3; ++i) Frame();
}

void TShow::Frame() {
  for (TDataNodeList* list : plate_.data.Shown) list->Phase += TAnimation::kPhaseStep;
  const int before = frames_;
  panel_->Invalidate();
  while (frames_ == before) QApplication::processEvents();
}

void TShow::Paint() {
  QElapsedTimer clock;
  clock.start();
  BuildScene(scene_, panel_->View.ToViewer(), plate_.model, plate_.data, TScaleType::Absolute,
             false);
  buildNs_ += static_cast<double>(clock.nsecsElapsed());
  const QSize pixels = panel_->PixelSize();
  renderer_.Draw(scene_, panel_->View.PixelsPerUnit(pixels.width(), pixels.height()));
  ++frames_;
}

TShow::TCost TShow::Measure(double seconds) {
  buildNs_ = 0.0;
  frames_ = 0;
  const std::clock_t processor = std::clock();
  QElapsedTimer clock;
  clock.start();
  do Frame();
  while (static_cast<double>(clock.nsecsElapsed()) < seconds * 1e9);
  const double frameMs = static_cast<double>(clock.nsecsElapsed()) / 1e6 / frames_;
  const double buildMs = buildNs_ / 1e6 / frames_;
  const double processorMs = 1000.0 * static_cast<double>(std::clock() - processor) /
                             static_cast<double>(CLOCKS_PER_SEC) / frames_;
  return {1000.0 / frameMs, buildMs, frameMs - buildMs, processorMs};
}

double TShow::ShareOfNodesSeen() {
  const QImage picture = panel_->Picture();
  const TViewTransform& view = panel_->View;
  const double scale = view.PixelsPerUnit(picture.width(), picture.height());
  const double x = view.Rotation.x * std::numbers::pi / 180.0;
  const double y = view.Rotation.y * std::numbers::pi / 180.0;
  std::vector<TVertex> places;
  PlaceNodes(*plate_.data.Shown.Get(0), places);
  int seen = 0, asked = 0;
  for (std::size_t i = 0; i < places.size(); i += 97, ++asked) {
    const TVertex& p = places[i];
    const double across = std::cos(y) * p.x + std::sin(y) * p.z;
    const double away = std::cos(y) * p.z - std::sin(y) * p.x;
    const double up = std::cos(x) * p.y - std::sin(x) * away;
    const QPoint at(static_cast<int>(0.5 * picture.width() + scale * across),
                    static_cast<int>(0.5 * picture.height() - scale * up));
    seen += HasNodeColor(picture.copy(QRect(at - QPoint(1, 1), QSize(3, 3))));
  }
  return static_cast<double>(seen) / asked;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  TBench bench(argc, argv);
  const double seconds = bench.Quick() ? 0.1 : 2.0;
  const struct {
    const char* name;
    TSceneRenderer::TMethod method;
  } methods[] = {{"points", TSceneRenderer::TMethod::Shaders},
                 {"OpenGL 1.1", TSceneRenderer::TMethod::Batches}};
  const struct { int columns, rows; } sizes[] = {{40, 25}, {125, 80}, {400, 250}};
  for (const auto& method : methods) {
    for (const auto& size : sizes) {
      // As a model without radii of its own gets them, where nodes hide parts of the bars; and so
      // slim that every bar can be seen.
      for (const bool slim : {false, true}) {
        TPlate plate(size.columns, size.rows, slim ? 0.3 * 1.6 / size.columns : 0.01 * 0.943);
        TShow show(plate, method.method);
        const TShow::TCost cost = show.Measure(seconds);
        const std::string what = std::to_string(plate.model.Nodes.Count()) + " nodes, " +
                                 std::to_string(plate.model.Elements.Count()) + " bars, " +
                                 (slim ? "slim, " : "") + method.name;
        bench.Row(what, cost.fps, "frames/s");
        bench.Row("  build the scene", cost.buildMs, "ms");
        bench.Row("  draw and show it", cost.restMs, "ms");
        bench.Row("  processor time", cost.processorMs, "ms");
        bench.Check(show.ShareOfNodesSeen() > 0.9, "the nodes are not where they should be");
      }
    }
  }
  return bench.Result();
}
