#pragma once

#include <QByteArray>
#include <QRect>
#include <QString>
#include <QStringList>
#include <optional>

#include "exchange/Job.h"
#include "model/Color.h"

/// What the program remembers between runs. A missing optional means that the file has no such key
/// and the current value stays in force; the others hold their defaults then.
struct TSettings {
  // General
  QString ModelFile;
  QString DataFile;
  bool AnimationOn = false;
  std::optional<int> AnimationSpeed;
  std::optional<double> RotX, RotY;
  double ScaleX = 1.0, ScaleY = 1.0, ScaleZ = 1.0;
  double PanPosX = 0.0, PanPosY = 0.0;
  int ScaleType = 0;
  std::optional<int> ViewScale;
  bool ShowModel = true;
  bool CanSave = true;
  QString SavePath;

  // Windows
  std::optional<int> Left, Top, Width, Height;
  std::optional<int> LabelsLeft, LabelsTop, LabelsWidth, LabelsHeight;
  std::optional<bool> LabelsVisible;
  QString CheckedLabels = QStringLiteral("111");

  // Colors
  TColor BackColor = TColor::Black();
  TColor ElementColor = TColor::White();
  TColor NodeColor = TColor::Green();
  TColor FontColor = TColor::White();
  int NodeShape = 0;

  // Job
  QStringList MoreFiles;                                  ///< of the same job as the two above
  bool FollowNeighbours = false;                          ///< unmeasured nodes do
  TMatrixReading Matrices = TMatrixReading::RowsAreAxes;  ///< the command line's; not in the file
};

/// The settings in a file's text. Never fails: what is missing or makes no sense as a number takes
/// its default. Keys of a section count only if the section is there.
TSettings ParseSettings(const QByteArray& text);

/// `text` with every key set to the settings' values, everything else in it kept. Sections and keys
/// that are new come in their fixed order.
QByteArray UpdateSettings(const QByteArray& text, const TSettings& settings);

/// Why an existing file can hold no settings: it is a folder, a pipe or a device, holds no text or
/// is too large. Empty if nothing speaks against it.
QString WhyNoSettings(const QString& fileName);

/// Reads a settings file; a missing or unreadable one gives the defaults.
TSettings LoadSettings(const QString& fileName);

/// Updates an existing, writable file and replaces it whole; a missing or read-only one is left
/// alone. Never creates a file and never reports: that is the contract.
void SaveSettings(const QString& fileName, const TSettings& settings);

/// The settings file that belongs to an executable: same folder and name, extension "ini".
QString SettingsFileFor(const QString& executable);

/// A bare file name with this folder before it; a name that has a folder part, and an empty one,
/// as it is.
QString WithFolder(const QString& name, const QString& folder);
