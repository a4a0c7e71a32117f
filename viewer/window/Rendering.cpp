#include "viewer/window/Rendering.h"

#include <QFileInfo>
#include <algorithm>

#include "exchange/Openjob.h"
#include "model/Ending.h"
#include "model/Filekind.h"
#include "model/Message.h"
#include "viewer/opengl/Offscreengl.h"
#include "viewer/opengl/Picture.h"
#include "viewer/scene/Frametext.h"
#include "viewer/window/Savepicture.h"
#include "viewer/window/Viewstate.h"

namespace {

constexpr int kSmoothing = 2;

QString NumberedName(const QString& fileName, int number, int digits) {
  const QFileInfo file(fileName);
  return file.path() + '/' + file.completeBaseName() +
         QStringLiteral("-%1.").arg(number, digits, 10, QLatin1Char('0')) + file.suffix();
}

/// A window's state without the window.
class TRendering {
 public:
  explicit TRendering(const TSettings& settings);

  /// False if nothing could be read that could be drawn.
  /// `isToTell`: Findings are wanted of files of our own, too.
  bool Load(bool isToTell);
  bool Draw(const QString& fileName, int frames, QSize size);
  bool Faultless() const { return faultless_; }
  const TFindings& Findings() const { return findings_; }

 private:
  bool LoadJob(const QStringList& files);
  bool LoadOwn();
  bool Check(const TLoadReport& report, const QString& fileName);
  bool DrawFrame(TOffscreenGl& gl, const QString& fileName);

  TSettings settings_;
  TAppearance appearance_;
  TModel model_;
  TMeasuredData data_;
  TAnimation animation_;
  TViewTransform view_;
  TPicture picture_;
  TFindings findings_;
  bool faultless_ = true;
};

TRendering::TRendering(const TSettings& settings)
    : settings_(settings), appearance_(AppearanceOf(settings)) {
  data_.CheckedLabels = settings.CheckedLabels;
  ApplyAppearance(appearance_, model_, data_);
  ApplyView(settings, view_);
  animation_.ScaleType = ScaleTypeOf(settings.ScaleType);
  animation_.ViewScale = ViewScaleAt(settings.ViewScale.value_or(kScaleBarStart));
}

bool TRendering::Check(const TLoadReport& report, const QString& fileName) {
  if (!report.Ok()) {
    faultless_ = false;
    ShowMessage(report.Sentence(fileName));
  }
  return !report.Failed();
}

bool TRendering::LoadJob(const QStringList& files) {
  const TOpenedJob job = OpenJob(files, model_, data_, TWanted::Everything, {}, settings_.Matrices);
  findings_ = job.Findings;
  for (const QString& fault : job.Faults) ShowMessage(fault);
  faultless_ = job.Faults.isEmpty();
  if (!job.HasModel) {
    ShowMessage(findings_.Failed() ? findings_.Line()
                                   : QStringLiteral("There is no model to draw."));
  }
  MoveUnmeasured(settings_.FollowNeighbours, model_, data_);
  return job.HasModel;
}

bool TRendering::LoadOwn() {
  if (!QFileInfo::exists(settings_.ModelFile)) {
    ShowMessage(QStringLiteral("There is no model file to draw."));
    return false;
  }
  const auto load = [this](TFileKind kind, const QString& fileName, auto read) {
    return Check(LoadFileOf(kind, fileName, {}, read), fileName);
  };
  const auto readModel = [this](std::string_view text, const TLoadProgress&) {
    return model_.LoadFromMemory(text);
  };
  const auto readData = [this](std::string_view text, const TLoadProgress&) {
    return data_.LoadFromMemory(text, model_);
  };
  if (!load(TFileKind::Model, settings_.ModelFile, readModel)) return false;
  if (QFileInfo::exists(settings_.DataFile) &&
      !load(TFileKind::Data, settings_.DataFile, readData)) {
    return false;
  }
  return true;
}

bool TRendering::Load(bool isToTell) {
  QStringList files;
  for (const QString& name :
       QStringList{settings_.ModelFile, settings_.DataFile} + settings_.MoreFiles) {
    if (QFileInfo::exists(name)) files << name;
  }
  const bool isJob =
      !files.isEmpty() && (isToTell || std::any_of(files.begin(), files.end(), IsForeign));
  if (!(isJob ? LoadJob(files) : LoadOwn())) return false;
  view_.ModelSize = ModelSizeOf(model_);
  animation_.UpdateScale(data_, model_);
  animation_.Show(data_, model_);
  return true;
}

bool TRendering::Draw(const QString& fileName, int frames, QSize size) {
  TOffscreenGl gl;
  if (!gl.Create(size, kSmoothing)) {
    ShowMessage(QStringLiteral("Cannot draw: %1.").arg(gl.Error()));
    return false;
  }
  view_.ScaleViewPort(size.width(), size.height());
  picture_.Overlay.SetColor(appearance_.FontColor.ToQColor());
  picture_.Overlay.SetLines(OverlayLines(data_));
  gl.Render([&] { picture_.Init(gl.Resolver()); });
  const int digits = std::max(3, static_cast<int>(QString::number(frames).size()));
  for (int frame = 1; frame <= frames; ++frame) {
    if (TEnding::IsAsked()) {
      ShowMessage(QStringLiteral("Ended before picture %1 of %2.").arg(frame).arg(frames));
      return false;
    }
    const QString name = frames == 1 ? fileName : NumberedName(fileName, frame, digits);
    if (!DrawFrame(gl, name)) return false;
    animation_.Step(data_, model_);
  }
  return true;
}

bool TRendering::DrawFrame(TOffscreenGl& gl, const QString& fileName) {
  const bool showModel = data_.All.Empty();  // as the window does while no data are loaded
  const QImage image = gl.Render([&] {
    BeginPicture(view_, gl.DrawnSize(), appearance_.BackColor.ToQColor());
    picture_.Paint(view_, gl.DrawnSize(), gl.Smoothing(), model_, data_, animation_.ScaleType,
                   showModel);
    EndPicture();
  });
  const QString fault = image.isNull() ? QStringLiteral("Cannot draw: OpenGL was lost.")
                                       : SavePicture(image, fileName);
  if (!fault.isEmpty()) ShowMessage(fault);
  return fault.isEmpty();
}

}  // namespace

bool RenderFrames(const TSettings& settings, const QString& fileName, int frames, QSize size,
                  QString* report) {
  TRendering rendering(settings);
  const bool loaded = rendering.Load(report != nullptr);
  if (report) *report = rendering.Findings().Text();
  return loaded && rendering.Draw(fileName, frames, size) && rendering.Faultless();
}
