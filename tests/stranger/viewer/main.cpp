#include <QApplication>
#include <QHBoxLayout>

#include "components/channels/Datachannel.h"
#include "components/graphing/Graph.h"
#include "model/Animation.h"
#include "model/Message.h"
#include "model/Timer.h"
#include "viewer/Glpanel.h"
#include "viewer/opengl/Picture.h"

extern const char kMast[], kMotion[];  // Mast.cpp

/// A mast that sways, and a graph of how far its top is from its place.
class TMastWindow : public QWidget {
 public:
  /// Saves what is seen under each of these names, 25 frames apart, and then ends the program;
  /// without names it runs until it is closed.
  explicit TMastWindow(QStringList pictures) : pictures_(std::move(pictures)) {
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(&panel_, 1);
    layout->addWidget(&graph_, 1);
    resize(900, 400);

    ReadMast();
    channel_.SetPointCount(100);
    TGraphLink& link = *channel_.GetGraphLink();  // the curve and, which is not wanted, statistics
    link.GetSeriesList().Get(1)->SetVisible(false);
    link.SetGraph(&graph_);
    graph_.GetHorizontalAx()->GetTitle()->SetCaption("Frame");
    graph_.GetVerticalAx()->GetTitle()->SetCaption("Displacement [m]");

    connect(&panel_, &TGLPanel::OnInit, this, [this] {
      picture_.Init(panel_.Resolver());
      timer_.SetEnabled(true);
    });
    connect(&panel_, &TGLPanel::OnPaint, this, [this] {
      picture_.Paint(panel_.View, panel_.PixelSize(), panel_.devicePixelRatioF(), model_, data_,
                     animation_.ScaleType, false);
    });
    timer_.SetInterval(3);  // ticks of 10 ms
    timer_.SetOnTimer(TNotifyEvent(this, &TMastWindow::Tick));
  }

 private:
  void ReadMast() {
    const TLoadReport model = model_.LoadFromMemory(kMast);
    if (!model.Ok()) ShowMessage(model.Sentence("The mast"));
    const TLoadReport data = data_.LoadFromMemory(kMotion, model_);
    if (!data.Ok()) ShowMessage(data.Sentence("The motion"));
    animation_.ScaleType = TScaleType::Sum;
    animation_.UpdateScale(data_, model_);
    panel_.View.ModelSize = model_.Size;
  }

  void Tick(QObject*) {
    animation_.Step(data_, model_);
    panel_.Invalidate();
    channel_.SetValue(model_.Display.Get(2)->Position.x);
    if (++frame_ % 25 == 0 && !pictures_.isEmpty()) Save(pictures_.takeFirst());
  }

  void Save(const QString& name) {
    panel_.Picture().save(name + "-scene.png");
    graph_.Picture().save(name + "-graph.png");
    if (pictures_.isEmpty()) QApplication::quit();
  }

  TModel model_;
  TMeasuredData data_;
  TAnimation animation_;
  TGLPanel panel_;
  TPicture picture_;
  TKorvalGraph graph_;
  TDataChannel channel_{this};
  TTimerClient timer_;
  QStringList pictures_;
  int frame_ = 0;
};

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  TMastWindow window(QApplication::arguments().mid(1));
  window.show();
  return QApplication::exec();
}
