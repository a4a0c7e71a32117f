#include "viewer/scene/Frametext.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "model/Oneline.h"

namespace {

constexpr std::size_t kMostSets = 8;
constexpr std::size_t kMostFrequencies = 6;
constexpr int kFramesPerCycle = 10;

QString Counted(std::size_t count, const QString& one, const QString& many) {
  return QString::number(count) + ' ' + (count == 1 ? one : many);
}

QString FrameOf(long long frame) {
  return QStringLiteral(", frame %1 of %2").arg(frame % kFramesPerCycle + 1).arg(kFramesPerCycle);
}

}  // namespace

QString NameOf(const TDataNodeList& list) {
  QString name = OneLine(list.Section.sliced(1).chopped(1));
  const TShapeInfo& info = list.Info;
  if (info.Mode > 0) name += QStringLiteral(", mode %1").arg(info.Mode);
  if (info.Damping != 0.0) name += QStringLiteral(", %1 %").arg(100.0 * info.Damping, 0, 'g', 3);
  return name;
}

QString RemarkOf(const TDataNodeList& list) {
  QStringList lines;
  for (const QString& text : list.Info.Lines) {
    const QString line = OneLine(text.trimmed());
    if (!line.isEmpty() && line != QLatin1String("NONE")) lines << line;
  }
  return lines.join('\n');
}

QStringList OverlayLines(const TMeasuredData& data) {
  QStringList lines;
  for (const TDataNodeList* list : data.Shown) {
    if (lines.size() == kMostSets) {
      lines << QStringLiteral("and %1 more").arg(data.Shown.Count() - kMostSets);
      break;
    }
    lines << NameOf(*list);
  }
  return lines;
}

QString ShownText(const TMeasuredData& data) {
  if (data.All.Empty()) return {};
  QStringList frequencies;
  for (const TDataNodeList* list : data.Shown) {
    if (frequencies.size() == kMostFrequencies) {
      frequencies << QStringLiteral("...");
      break;
    }
    frequencies << QString::number(list->Frequency);
  }
  const QString count =
      QStringLiteral("%1 of %2")
          .arg(data.Shown.Count())
          .arg(Counted(data.All.Count(), QStringLiteral("data set"), QStringLiteral("data sets")));
  if (frequencies.isEmpty()) return count;
  return count + QStringLiteral(": F = ") + frequencies.join(QStringLiteral(", "));
}

QString FrameText(const TAnimation& animation, const TMeasuredData& data) {
  if (data.Shown.Empty()) return {};
  if (animation.ScaleType != TScaleType::Sum) {
    const double degrees = animation.Phase * 180.0 / std::numbers::pi;
    return QStringLiteral("Phase %1\u00b0").arg(degrees, 0, 'f', 0) +
           FrameOf(std::llround(animation.Phase / TAnimation::kPhaseStep));
  }
  double highest = 0.0;
  for (const TDataNodeList* list : data.Shown) highest = std::max(highest, list->Frequency);
  const double frame = animation.Time * highest * kFramesPerCycle;
  // A few hours of animation are nothing, but a file may name any frequency.
  const bool countable = frame >= 0.0 && frame < 1e15;
  return QStringLiteral("Time ") + QString::number(animation.Time) +
         (countable ? FrameOf(std::llround(frame)) : QString());
}

QString CountText(const TModel& model) {
  if (model.Nodes.Empty()) return {};
  return Counted(model.Nodes.Count(), QStringLiteral("node"), QStringLiteral("nodes")) + ", " +
         Counted(model.Elements.Count(), QStringLiteral("element"), QStringLiteral("elements"));
}
