#include "viewer/window/Settings.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

#include "model/Readfile.h"
#include "model/Wholefile.h"
#include "viewer/window/Inifile.h"

namespace {

constexpr qint64 kMaxFileSize = 1 << 20;
constexpr double kMaxAngle = 1e9;  ///< degrees
constexpr double kMaxPan = 1e12;   ///< model units
constexpr double kMaxZoom = 1e6;
constexpr int kMaxColor = 0xffffff;
constexpr QChar kBetweenNames = u'\t';
constexpr int kMostNames = 1000;

/// A view of zoom 0 would be empty; below that it is mirrored, which a drag can do as well.
bool IsZoom(double value) { return std::abs(value) >= 1 / kMaxZoom && std::abs(value) <= kMaxZoom; }
bool IsAngle(double value) { return std::abs(value) <= kMaxAngle; }
bool IsPan(double value) { return std::abs(value) <= kMaxPan; }

/// Takes each value from an ini file if its section and key are there and it makes sense.
class TReader {
 public:
  explicit TReader(const TIniFile& ini) : ini_(ini) {}

  void Section(const char* name) { section_ = name; }

  void Key(const char* key, QString& value) {
    if (const auto text = ini_.Value(section_, key)) value = QString::fromUtf8(*text);
  }
  void Key(const char* key, QStringList& value) {
    QString names;
    Key(key, names);
    value = names.split(kBetweenNames, Qt::SkipEmptyParts).mid(0, kMostNames);
  }
  void Key(const char* key, int& value) {
    Integer(key, [&](int read) { value = read; });
  }
  void Key(const char* key, std::optional<int>& value) {
    Integer(key, [&](int read) { value = read; });
  }
  void Key(const char* key, bool& value) {
    Integer(key, [&](int read) { value = read != 0; });
  }
  void Key(const char* key, std::optional<bool>& value) {
    Integer(key, [&](int read) { value = read != 0; });
  }
  void Key(const char* key, TColor& value) {
    Integer(key, [&](int read) {
      if (read >= 0 && read <= kMaxColor) value = TColor(read);
    });
  }
  template <class Real>
  void Key(const char* key, Real& value, bool (*makesSense)(double)) {
    const auto text = ini_.Value(section_, key);
    bool isReal = false;
    const double read = text ? text->toDouble(&isReal) : 0.0;
    if (isReal && makesSense(read)) value = read;
  }
  void OldKey(const char* key, TColor& value) { Key(key, value); }

 private:
  template <class Take>
  void Integer(const char* key, Take take) {
    const auto text = ini_.Value(section_, key);
    bool isInteger = false;
    const int read = text ? text->toInt(&isInteger) : 0;
    if (isInteger) take(read);
  }

  const TIniFile& ini_;
  const char* section_ = nullptr;
};

/// Puts every value into an ini file; an optional without a value is left out.
class TWriter {
 public:
  explicit TWriter(TIniFile& ini) : ini_(ini) {}

  void Section(const char* name) { section_ = name; }

  void Key(const char* key, const QString& value) {
    const bool fitsOneLine = !value.contains('\n') && !value.contains('\r');
    Write(key, fitsOneLine ? value.toUtf8() : QByteArray());
  }
  void Key(const char* key, const QStringList& value) { Key(key, value.join(kBetweenNames)); }
  void Key(const char* key, int value) { Write(key, QByteArray::number(value)); }
  void Key(const char* key, bool value) { Write(key, value ? "1" : "0"); }
  void Key(const char* key, TColor value) { Key(key, value.Value()); }
  template <class T>
  void Key(const char* key, const std::optional<T>& value) {
    if (value) Key(key, *value);
  }
  void Key(const char* key, double value, bool (*)(double)) {
    Write(key, QString::number(value, 'g', QLocale::FloatingPointShortest).toLatin1());
  }
  void Key(const char* key, const std::optional<double>& value, bool (*makesSense)(double)) {
    if (value) Key(key, *value, makesSense);
  }
  void OldKey(const char*, TColor) {}

 private:
  void Write(const char* key, const QByteArray& value) { ini_.SetValue(section_, key, value); }

  TIniFile& ini_;
  const char* section_ = nullptr;
};

/// Every key in its order. OldKey is read but no longer written.
template <class Visitor, class Settings>
void VisitKeys(Visitor& ini, Settings& s) {
  ini.Section("General");
  ini.Key("ModelFile", s.ModelFile);
  ini.Key("DataFile", s.DataFile);
  ini.Key("AnimationOn", s.AnimationOn);
  ini.Key("AnimationSpeed", s.AnimationSpeed);
  ini.OldKey("BackColor", s.BackColor);
  ini.OldKey("ElementColor", s.ElementColor);
  ini.Key("RotX", s.RotX, IsAngle);
  ini.Key("RotY", s.RotY, IsAngle);
  ini.Key("ScaleX", s.ScaleX, IsZoom);
  ini.Key("ScaleY", s.ScaleY, IsZoom);
  ini.Key("ScaleZ", s.ScaleZ, IsZoom);
  ini.Key("PanPosX", s.PanPosX, IsPan);
  ini.Key("PanPosY", s.PanPosY, IsPan);
  ini.Key("ScaleType", s.ScaleType);
  ini.Key("ViewScale", s.ViewScale);
  ini.Key("ShowModel", s.ShowModel);
  ini.Key("CanSave", s.CanSave);
  ini.Key("SavePath", s.SavePath);
  ini.Section("Windows");
  ini.Key("Left", s.Left);
  ini.Key("Top", s.Top);
  ini.Key("Width", s.Width);
  ini.Key("Height", s.Height);
  ini.Key("LabelsLeft", s.LabelsLeft);
  ini.Key("LabelsTop", s.LabelsTop);
  ini.Key("LabelsWidth", s.LabelsWidth);
  ini.Key("LabelsHeight", s.LabelsHeight);
  ini.Key("LabelsVisible", s.LabelsVisible);
  ini.Key("CheckedLabels", s.CheckedLabels);
  ini.Section("Colors");
  ini.Key("BackColor", s.BackColor);
  ini.Key("ElementColor", s.ElementColor);
  ini.Key("NodeColor", s.NodeColor);
  ini.Key("FontColor", s.FontColor);
  ini.Key("NodeShape", s.NodeShape);
  ini.Section("Job");
  ini.Key("MoreFiles", s.MoreFiles);
  ini.Key("FollowNeighbours", s.FollowNeighbours);
}

/// The text of a file that may hold settings: a regular file of ordinary size that holds text.
std::optional<QByteArray> ReadText(const QString& fileName, QString* why = nullptr) {
  QFile file(fileName);
  QByteArray text;
  QString obstacle = WhyNotReadable(fileName);
  if (obstacle.isEmpty()) {
    if (file.open(QIODevice::ReadOnly)) text = file.read(std::min(kMaxFileSize + 1, file.size()));
    if (file.error() != QFile::NoError) obstacle = file.errorString();
    if (text.size() > kMaxFileSize) obstacle = QStringLiteral("it is larger than 1 MiB");
    if (text.contains('\0')) obstacle = QStringLiteral("it is not a text file");
  }
  if (why) *why = obstacle;
  return obstacle.isEmpty() ? std::optional(text) : std::nullopt;
}

bool IsReadOnly(const QFileInfo& file) {
  constexpr auto kAnyWrite = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
  // The system lets its administrator write into any file; a read-only one is left alone even so.
  return !file.isWritable() || !(file.permissions() & kAnyWrite);
}

}  // namespace

TSettings ParseSettings(const QByteArray& text) {
  const TIniFile ini(text);
  TReader reader(ini);
  TSettings settings;
  VisitKeys(reader, settings);
  return settings;
}

QByteArray UpdateSettings(const QByteArray& text, const TSettings& settings) {
  TIniFile ini(text);
  TWriter writer(ini);
  VisitKeys(writer, settings);
  return ini.Text();
}

QString WhyNoSettings(const QString& fileName) {
  QString why;
  static_cast<void>(ReadText(fileName, &why));
  return why;
}

TSettings LoadSettings(const QString& fileName) {
  const auto text = ReadText(fileName);
  return text ? ParseSettings(*text) : TSettings();
}

void SaveSettings(const QString& fileName, const TSettings& settings) {
  const auto text = ReadText(fileName);
  if (!text || IsReadOnly(QFileInfo(fileName))) return;
  const QByteArray updated = UpdateSettings(*text, settings);
  if (updated.size() <= kMaxFileSize) static_cast<void>(WriteWholeFile(fileName, updated));
}

QString SettingsFileFor(const QString& executable) {
  const QFileInfo file(executable);
  return file.path() + '/' + file.completeBaseName() + ".ini";
}

QString WithFolder(const QString& name, const QString& folder) {
  if (name.isEmpty() || name.contains('/') || name.contains('\\')) return name;
  return folder + '/' + name;
}
