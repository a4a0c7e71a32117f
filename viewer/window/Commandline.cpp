#include "viewer/window/Commandline.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <array>
#include <utility>

#include "exchange/Openjob.h"
#include "model/Datetime.h"
#include "model/Filekind.h"
#include "model/Oneline.h"
#include "viewer/Animatorabout.h"
#include "viewer/window/Savepicture.h"
#include "viewer/window/Viewstate.h"

namespace {

constexpr int kMostFrames = 100'000;

/// The parser with all it knows, in the order in which the help lists it.
struct TOptions {
  TOptions();

  QCommandLineParser Parser;
  QCommandLineOption Help{{"h", "help"}, "Show this help."};
  QCommandLineOption Version{{"v", "version"}, "Show the version."};
  QCommandLineOption Animate{"animate", "Start with the animation on."};
  QCommandLineOption View{"view", "View along an axis, or the oblique 3D view.", "x|y|z|3d"};
  QCommandLineOption ScaleType{"scale-type", "How data sets are shown together.",
                               "absolute|relative|sum"};
  QCommandLineOption Settings{"settings", "Settings file instead of the one beside the program.",
                              "FILE"};
  QCommandLineOption Render{"render", "Write the picture to FILE instead of opening a window.",
                            "FILE.png"};
  QCommandLineOption Frames{
      "frames", "With --render: write N frames of the animation, FILE-001.png and on.", "N"};
  QCommandLineOption Size{"size", "With --render: size of the picture; 1280x800 if not given.",
                          "WxH"};
  QCommandLineOption Panel{"panel", "Open a panel of measurement components.", "FILE.ui"};
  QCommandLineOption After{"after", "With --panel: let it run so long before --render or --save.",
                           "SECONDS"};
  QCommandLineOption Save{"save", "With --panel: save it to FILE.ui instead of opening a window.",
                          "FILE.ui"};
  QCommandLineOption Trust{"trust", "With --panel: start it without asking."};
  QCommandLineOption Force{
      "force", "With --save: overwrite what another program has changed in the file meanwhile."};
  QCommandLineOption Unmeasured{"unmeasured", "What nodes without a measurement do.",
                                "rest|follow"};
  QCommandLineOption Matrix{
      "matrix", "How the matrices of local systems (2420) stand in files; rows if not given.",
      "rows|columns"};
  QCommandLineOption Report{"report", "Tell what was in the files, used or left out and why."};
  QCommandLineOption Convert{
      "convert",
      "Write what the files hold to the last of them instead of opening a window: OUT.mod writes "
      "OUT.mod and OUT.dat, OUT.unv or OUT.uff a universal file."};
  QCommandLineOption Lines{"lines", "With --convert: the lines of a universal file.", "82|2412"};
  QCommandLineOption Shapes{"shapes", "With --convert: the shapes of a universal file.", "55|2414"};
  QCommandLineOption Double{"double", "With --convert: shapes with 12 decimals instead of 6."};
  QCommandLineOption Mac{"mac",
                         "Write a table that compares all shapes with each other, or with those of "
                         "a second data file, instead of opening a window."};
  QCommandLineOption Complexity{
      "complexity", "Write a table of how complex the shapes are instead of opening a window."};
};

TOptions::TOptions() {
  Parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
  Parser.setApplicationDescription(
      QStringLiteral("Shows a structure move with its measured vibration."));
  Parser.addPositionalArgument(
      "FILES", "A model file and a data file, or universal files and tables of one structure.",
      "[FILES...]");
  for (const QCommandLineOption& option :
       {Help,   Version,    Animate, View,   ScaleType, Unmeasured, Matrix, Settings,
        Render, Frames,     Size,    Report, Convert,   Lines,      Shapes, Double,
        Mac,    Complexity, Panel,   Trust,  After,     Save,       Force}) {
    Parser.addOption(option);
  }
}

QString NoFile(const QString& name) {
  return QStringLiteral("Cannot read %1: there is no such file.").arg(OneLine(name));
}

/// Each of these takes one option's text and returns what is wrong with it, or nothing.

QString TakeFiles(QStringList names, TCommandLine& line) {
  const bool window =
      line.RenderFile.isEmpty() && line.ConvertFile.isEmpty() && !line.Report && !line.Compares();
  for (const QString& name : names) {  // a window opens all the same and says it then
    if (!window && !QFileInfo::exists(name)) return NoFile(name);
    if (window && ContentOf(name) == TFileContent::Form) line.Forms << name;
  }
  for (const QString& form : std::as_const(line.Forms)) names.removeAll(form);
  const bool job = std::any_of(names.begin(), names.end(), IsForeign);
  if (line.Compares()) {
    if (names.isEmpty()) return QStringLiteral("--mac and --complexity need the files to read.");
    if (!job && names.size() > 3) {
      return QStringLiteral("There are %1 file names; a model file and two data files are enough.")
          .arg(names.size());
    }
  } else if (!job && names.size() > 2) {
    return QStringLiteral("There are %1 file names; a model file and a data file are enough.")
        .arg(names.size());
  }
  if (names.size() == 2 && IsModelFile(names[1]) && !IsModelFile(names[0])) names.swapItemsAt(0, 1);
  line.Files = names;
  return {};
}

/// The last of the names is where to write.
QString TakeConvert(QStringList& names, TCommandLine& line) {
  if (names.size() < 2) {
    return QStringLiteral("--convert needs the files to read and the file to write.");
  }
  line.ConvertFile = names.takeLast();
  const QString suffix = QFileInfo(line.ConvertFile).suffix().toLower();
  if (suffix != QLatin1String("mod") && !IsUniversalName(line.ConvertFile)) {
    return QStringLiteral("--convert writes FILE.mod, FILE.unv or FILE.uff, not \"%1\".")
        .arg(line.ConvertFile);
  }
  for (const QString& name : names) {
    if (!AreSameFile(name, line.ConvertFile) &&
        (IsUniversalName(line.ConvertFile) ||
         !AreSameFile(name, DataFileBeside(line.ConvertFile)))) {
      continue;
    }
    return QStringLiteral("--convert would overwrite %1, which it is to read.").arg(OneLine(name));
  }
  return {};
}

QString TakeLines(const QString& type, TCommandLine& line) {
  if (type != "82" && type != "2412") {
    return QStringLiteral("--lines is 82 or 2412, not \"%1\".").arg(type);
  }
  line.Format.Lines = type == "82" ? TLinesType::TraceLines : TLinesType::Elements;
  return {};
}

QString TakeShapes(const QString& type, TCommandLine& line) {
  if (type != "55" && type != "2414") {
    return QStringLiteral("--shapes is 55 or 2414, not \"%1\".").arg(type);
  }
  line.Format.Shapes = type == "55" ? TShapesType::Nodal55 : TShapesType::Nodal2414;
  return {};
}

QString TakeUnmeasured(const QString& word, TCommandLine& line) {
  if (word != "rest" && word != "follow") {
    return QStringLiteral("--unmeasured is rest or follow, not \"%1\".").arg(word);
  }
  line.FollowNeighbours = word == "follow";
  return {};
}

QString TakeMatrix(const QString& word, TCommandLine& line) {
  if (word != "rows" && word != "columns") {
    return QStringLiteral("--matrix is rows or columns, not \"%1\".").arg(word);
  }
  line.Matrices = word == "rows" ? TMatrixReading::RowsAreAxes : TMatrixReading::ColumnsAreAxes;
  return {};
}

QString TakeRender(const QString& name, TCommandLine& line) {
  if (!IsPictureName(name)) {
    return QStringLiteral("--render needs the name of a picture such as picture.png, not \"%1\".")
        .arg(name);
  }
  line.RenderFile = name;
  return {};
}

QString TakeView(const QString& name, TCommandLine& line) {
  const std::array<std::pair<QString, TVertex>, 4> views = {
      {{"x", kAlongX}, {"y", kAlongY}, {"z", kAlongZ}, {"3d", kOblique}}};
  for (const auto& [known, rotation] : views) {
    if (name == known) line.Rotation = rotation;
  }
  return line.Rotation ? QString()
                       : QStringLiteral("--view is x, y, z or 3d, not \"%1\".").arg(name);
}

QString TakeScaleType(const QString& name, TCommandLine& line) {
  const QStringList names = {"absolute", "relative", "sum"};
  const auto type = names.indexOf(name);
  if (type < 0) {
    return QStringLiteral("--scale-type is absolute, relative or sum, not \"%1\".").arg(name);
  }
  line.ScaleType = static_cast<TScaleType>(type);
  return {};
}

QString TakeFrames(const QString& text, TCommandLine& line) {
  bool isNumber = false;
  line.Frames = text.toInt(&isNumber);
  if (isNumber && line.Frames >= 1 && line.Frames <= kMostFrames) return {};
  return QStringLiteral("--frames is a number from 1 to %1, not \"%2\".")
      .arg(kMostFrames)
      .arg(text);
}

QString TakeSize(const QString& text, TCommandLine& line) {
  static const QRegularExpression form(QStringLiteral("^([0-9]{1,5})x([0-9]{1,5})$"));
  const QRegularExpressionMatch match = form.match(text);
  line.Size = {match.captured(1).toInt(), match.captured(2).toInt()};
  line.HasSize = true;
  if (match.hasMatch() && !line.Size.isEmpty()) return {};
  return QStringLiteral("--size is a width and a height such as 1280x800, not \"%1\".").arg(text);
}

QString TakeSettings(const QString& name, TCommandLine& line) {
  line.SettingsFile = name;
  if (!QFileInfo::exists(name)) return NoFile(name);
  const QString why = WhyNoSettings(name);
  return why.isEmpty() ? why : QStringLiteral("Cannot read %1: %2.").arg(OneLine(name), why);
}

QString TakePanel(const QString& name, TCommandLine& line) {
  line.PanelFile = name;
  return QFileInfo::exists(name) ? QString() : NoFile(name);
}

QString TakeAfter(const QString& text, TCommandLine& line) {
  bool isNumber = false;
  line.PanelSeconds = text.toDouble(&isNumber);
  if (isNumber && line.PanelSeconds >= 0.0 && line.PanelSeconds <= kSecondsPerDay) return {};
  return QStringLiteral("--after is a number of seconds from 0 to %1, not \"%2\".")
      .arg(kSecondsPerDay)
      .arg(text);
}

QString TakeSave(const QString& name, TCommandLine& line) {
  line.PanelSaveFile = name;
  return {};
}

/// What makes no sense without something else, or beside it.
QString CheckTogether(const TOptions& options, const TCommandLine& line) {
  const auto needs = [&](const QCommandLineOption& option, const char* other, bool has) {
    return options.Parser.isSet(option) && !has ? QStringLiteral("--%1 is of use with --%2 alone.")
                                                      .arg(option.names().front(), other)
                                                : QString();
  };
  const bool panel = !line.PanelFile.isEmpty();
  const bool render = !line.RenderFile.isEmpty();
  const bool convert = options.Parser.isSet(options.Convert);
  for (const QString& fault :
       {needs(options.Frames, "render", render), needs(options.Size, "render", render),
        needs(options.After, "panel", panel), needs(options.Save, "panel", panel),
        needs(options.Trust, "panel", panel),
        needs(options.Force, "save", !line.PanelSaveFile.isEmpty()),
        needs(options.Lines, "convert", convert), needs(options.Shapes, "convert", convert),
        needs(options.Double, "convert", convert)}) {
    if (!fault.isEmpty()) return fault;
  }
  if (convert && render) return QStringLiteral("--render is of no use with --convert.");
  const auto useless = [&](const QList<QCommandLineOption>& others, const char* with) {
    for (const QCommandLineOption& option : others) {
      if (!options.Parser.isSet(option)) continue;
      return QStringLiteral("--%1 is of no use with --%2.").arg(option.names().front(), with);
    }
    return QString();
  };
  if (panel) {
    return useless({options.Animate, options.View, options.ScaleType, options.Settings,
                    options.Frames, options.Unmeasured, options.Matrix, options.Report,
                    options.Convert, options.Mac, options.Complexity},
                   "panel");
  }
  if (line.Compares()) {
    return useless({options.Render, options.Report, options.Convert},
                   line.Mac ? "mac" : "complexity");
  }
  return {};
}

QString TakeOptions(const TOptions& options, TCommandLine& line) {
  const QCommandLineParser& parser = options.Parser;
  const std::pair<const QCommandLineOption&, QString (*)(const QString&, TCommandLine&)> takers[] =
      {{options.Settings, TakeSettings}, {options.Render, TakeRender},
       {options.View, TakeView},         {options.ScaleType, TakeScaleType},
       {options.Frames, TakeFrames},     {options.Size, TakeSize},
       {options.Panel, TakePanel},       {options.After, TakeAfter},
       {options.Save, TakeSave},         {options.Lines, TakeLines},
       {options.Shapes, TakeShapes},     {options.Unmeasured, TakeUnmeasured},
       {options.Matrix, TakeMatrix}};
  for (const auto& [option, take] : takers) {
    if (!parser.isSet(option)) continue;
    if (QString fault = take(parser.value(option), line); !fault.isEmpty()) return fault;
  }
  QStringList names = parser.positionalArguments();
  if (names.size() == 1 && line.PanelFile.isEmpty() && ContentOf(names[0]) == TFileContent::Form) {
    line.PanelFile = names.takeFirst();
  }
  line.Mac = parser.isSet(options.Mac);
  line.Complexity = parser.isSet(options.Complexity);
  if (QString fault = CheckTogether(options, line); !fault.isEmpty()) return fault;
  line.Animate = parser.isSet(options.Animate);
  line.PanelIsTrusted = parser.isSet(options.Trust);
  line.PanelIsForced = parser.isSet(options.Force);
  line.Report = parser.isSet(options.Report);
  line.Format.IsDouble = parser.isSet(options.Double);
  if (parser.isSet(options.Convert)) {
    if (QString fault = TakeConvert(names, line); !fault.isEmpty()) return fault;
  }
  if (line.Report && names.isEmpty()) return QStringLiteral("--report needs the files to read.");
  return TakeFiles(names, line);
}

}  // namespace

TCommandLine ParseCommandLine(const QStringList& arguments) {
  TCommandLine line;
  TOptions options;
  if (!options.Parser.parse(arguments)) {
    line.Fault = options.Parser.errorText();
  } else if (options.Parser.isSet(options.Help)) {
    line.Answer = options.Parser.helpText();
  } else if (options.Parser.isSet(options.Version)) {
    line.Answer =
        QStringLiteral("%1 %2\n").arg(QLatin1String(kProgramTitle), QLatin1String(kProgramVersion));
  } else {
    line.Fault = TakeOptions(options, line);
  }
  return line;
}

QString SettingsFileOf(const TCommandLine& commandLine, const QString& executable) {
  return commandLine.SettingsFile.isEmpty() ? SettingsFileFor(executable)
                                            : commandLine.SettingsFile;
}

TSettings SettingsOf(const TCommandLine& commandLine, const QString& executable) {
  TSettings settings = LoadSettings(SettingsFileOf(commandLine, executable));
  const QString folder = QFileInfo(executable).path();
  settings.ModelFile = WithFolder(settings.ModelFile, folder);
  settings.DataFile = WithFolder(settings.DataFile, folder);
  if (commandLine.Rotation) {
    settings.RotX = commandLine.Rotation->x;
    settings.RotY = commandLine.Rotation->y;
  }
  if (commandLine.ScaleType) settings.ScaleType = static_cast<int>(*commandLine.ScaleType);
  if (commandLine.Animate) settings.AnimationOn = true;
  if (commandLine.FollowNeighbours) settings.FollowNeighbours = *commandLine.FollowNeighbours;
  if (commandLine.Matrices) settings.Matrices = *commandLine.Matrices;
  return settings;
}

void NameFiles(const TCommandLine& commandLine, TSettings& settings) {
  const QStringList& files = commandLine.Files;
  if (files.isEmpty()) return;
  if (!AreSameFile(files[0], settings.ModelFile)) settings.PanPosX = settings.PanPosY = 0.0;
  settings.ModelFile = files[0];
  settings.DataFile = files.value(1);
  settings.MoreFiles = files.mid(2);
}
