#pragma once

#include <QSize>
#include <QString>
#include <QStringList>
#include <optional>

#include "exchange/Savejob.h"
#include "model/Animation.h"
#include "viewer/window/Settings.h"

/// What the user asked for on the command line.
struct TCommandLine {
  QStringList Files;            ///< of a model and its data; none: the settings say
  QStringList Forms;            ///< panels to open beside the animator
  QString SettingsFile;         ///< empty: the one beside the executable
  QString PanelFile;            ///< empty: the animator is wanted
  double PanelSeconds = 0.0;    ///< how long a panel runs before it is rendered or saved
  QString PanelSaveFile;        ///< where to save the panel then; empty: nowhere
  bool PanelIsTrusted = false;  ///< it starts without a question
  bool PanelIsForced = false;   ///< it is saved over another program's changes
  QString RenderFile;           ///< empty: a window is wanted
  int Frames = 1;
  QSize Size = {1280, 800};         ///< of rendered pictures, pixels
  bool HasSize = false;             ///< the user gave it
  std::optional<TVertex> Rotation;  ///< degrees
  std::optional<TScaleType> ScaleType;
  bool Animate = false;
  std::optional<bool> FollowNeighbours;

  std::optional<TMatrixReading> Matrices;  ///< of local systems

  QString ConvertFile;       ///< where to write what the files hold; empty: nowhere
  TUniversalOptions Format;  ///< of a universal file
  bool Report = false;       ///< tell what was in the files
  bool Mac = false;          ///< compare the shapes in them
  bool Complexity = false;   ///< tell how complex those are

  /// Tables are wanted instead of a window.
  bool Compares() const { return Mac || Complexity; }

  QString Answer;  ///< help or version, which is all the user wants to see
  QString Fault;   ///< one sentence: what is wrong with the arguments
};

/// The first argument is the program. Checks that named files are there, but for those that a
/// window will ask for, and puts a data file and a model file of ours that stand the wrong way
/// round right.
TCommandLine ParseCommandLine(const QStringList& arguments);

/// The settings file that counts. `executable`: with its full path.
QString SettingsFileOf(const TCommandLine& commandLine, const QString& executable);

/// The settings, bare names completed with the executable's folder, and overridden by what the
/// command line says; its files are left to NameFiles or to the window.
TSettings SettingsOf(const TCommandLine& commandLine, const QString& executable);

/// Puts the files of the command line in place of those of the settings; another model than theirs
/// is seen without their pan.
void NameFiles(const TCommandLine& commandLine, TSettings& settings);
