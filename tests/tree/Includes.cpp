#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/support/Testsupport.h"

namespace {

/// A unit is a header with its sources: "model/Timer.cpp" and "model/Timer_linux.cpp" are one.
std::string UnitOf(const QString& path) {
  return path.section('.', 0, 0).section('_', 0, 0).toStdString();
}

/// Which units each unit includes, from the lines of its header and its sources.
const std::map<std::string, std::set<std::string>>& Includes() {
  static const auto result = [] {
    const QRegularExpression include(R"(^\s*#\s*include\s+"([^"]+\.h)\")");
    const QString root = SourceFile("");
    std::map<std::string, std::set<std::string>> graph;
    for (const QString& room : QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
      if (room == "build") continue;
      QDirIterator files(root + room, {"*.h", "*.cpp"}, QDir::Files, QDirIterator::Subdirectories);
      while (files.hasNext()) {
        QFile file(files.next());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const std::string unit = UnitOf(file.fileName().mid(root.size()));
        std::set<std::string>& used = graph[unit];
        while (!file.atEnd()) {
          const auto match = include.match(QString::fromUtf8(file.readLine()));
          if (match.hasMatch() && UnitOf(match.captured(1)) != unit) {
            used.insert(UnitOf(match.captured(1)));
          }
        }
      }
    }
    return graph;
  }();
  return result;
}

/// Where a unit stands in docs/layers.txt.
struct TStand {
  std::string Library;
  int Layer = 0;
  bool IsFolder = false;  ///< the line names a folder: no order within it
};

struct TLayers {
  std::map<std::string, TStand> Stands;                     ///< by unit, or by folder with a slash
  std::map<std::string, std::set<std::string>> MayInclude;  ///< libraries by library

  /// The unit's own line, else that of the nearest folder around it; null if there is neither.
  const TStand* Find(const std::string& unit) const {
    for (std::string place = unit; !place.empty();) {
      if (const auto found = Stands.find(place); found != Stands.end()) return &found->second;
      if (place.back() == '/') place.pop_back();
      place.erase(place.rfind('/') + 1);
    }
    return nullptr;
  }
};

const TLayers& Layers() {
  static const TLayers result = [] {
    TLayers layers;
    std::string library;
    int layer = 0;
    for (const QString& line : Document("layers.txt").split('\n')) {
      if (line.startsWith('#')) continue;
      if (line.startsWith('[')) {
        library = line.mid(1).section(QRegularExpression("[:\\]]"), 0, 0).toStdString();
        for (const QString& used :
             line.section(':', 1).remove(']').split(' ', Qt::SkipEmptyParts)) {
          EXPECT_TRUE(layers.MayInclude.contains(used.toStdString())) << line.toStdString();
          layers.MayInclude[library].insert(used.toStdString());
        }
        layers.MayInclude[library];
        continue;
      }
      if (line.startsWith('-')) ++layer;
      for (const QString& name : line.mid(1).split(' ', Qt::SkipEmptyParts)) {
        const TStand stand{library, layer, name.endsWith('/')};
        EXPECT_TRUE(layers.Stands.emplace(name.toStdString(), stand).second)
            << name.toStdString() << " stands there twice";
      }
    }
    return layers;
  }();
  return result;
}

TEST(Layers, NameEveryUnitAndNoOther) {
  ASSERT_GT(Includes().size(), 200u);
  for (const auto& [unit, used] : Includes()) EXPECT_TRUE(Layers().Find(unit)) << unit;
  for (const auto& [name, stand] : Layers().Stands) {
    const QString path = SourceFile(QString::fromStdString(name));
    EXPECT_TRUE(stand.IsFolder ? QDir(path).exists() : Includes().contains(name)) << name;
  }
}

/// An include that points upwards or into a library that may not be used; empty for a good one.
std::string FaultOf(const std::string& unit, const std::string& target) {
  const TStand* from = Layers().Find(unit);
  const TStand* to = Layers().Find(target);
  if (!from || !to) return "is not listed";
  if (from->Library != to->Library) {
    return Layers().MayInclude.at(from->Library).contains(to->Library)
               ? ""
               : from->Library + " may not use " + to->Library;
  }
  return to->Layer < from->Layer || (from == to && from->IsFolder) ? "" : "points upwards";
}

TEST(Layers, AreWhatIncludesGoBy) {
  for (const auto& [unit, used] : Includes()) {
    for (const std::string& target : used) {
      EXPECT_EQ(FaultOf(unit, target), "") << unit << " includes " << target;
    }
  }
  EXPECT_EQ(FaultOf("model/Vertex", "model/Animmodel"), "points upwards");
  EXPECT_EQ(FaultOf("model/Vertex", "signals/Fft"), "model may not use signals");
  EXPECT_EQ(FaultOf("designer/Designerplugin", "viewer/Viewwnd"), "designer may not use viewer");
  EXPECT_EQ(FaultOf("bench/Lines", "tests/support/Pictures"), "bench may not use tests");
  EXPECT_EQ(FaultOf("model/Vertex", "model/Nowhere"), "is not listed");
}

TEST(Includes, FormNoCycle) {
  auto left = Includes();
  const auto usesNoneLeft = [&left](const auto& unit) {
    return std::ranges::none_of(unit.second,
                                [&left](const std::string& used) { return left.contains(used); });
  };
  while (std::erase_if(left, usesNoneLeft) > 0) {
  }
  for (const auto& [unit, used] : left) ADD_FAILURE() << unit << " leads into a cycle";
}

/// What opens files, ports, sockets or programs asks whether its panel may, or somebody above it
/// has.
TEST(Includes, WhatReachesOutsideAsksFirst) {
  const QRegularExpression reaches(
      R"((?<!include <)\b(TOrdinaryFile|QFile|QSaveFile|WriteWholeFile|QTcpSocket|QTcpServer|)"
      R"(QUdpSocket|QLocalSocket|QSslSocket|QSerialPort|QProcess|QDesktopServices|)"
      R"(QNetworkAccessManager|QLibrary|QPluginLoader|QSettings|fopen|i?o?fstream|popen)\b)");
  const std::set<std::string> others = {
      "components/comms/Qlxdriver",        // its port asks
      "components/sources/Filename",       // opens nothing
      "components/graphing/Graphexport",   // its user names the file
      "components/controls/Picturefile"};  // its control asks
  QDirIterator files(SourceFile("components"), {"*.cpp", "*.h"}, QDir::Files,
                     QDirIterator::Subdirectories);
  int found = 0;
  while (files.hasNext()) {
    QFile file(files.next());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const std::string unit = UnitOf(file.fileName().mid(SourceFile("").size()));
    // What reads the form itself is the program, and no component.
    if (unit.starts_with("components/panels/") || others.contains(unit)) continue;
    if (!QString::fromUtf8(file.readAll()).contains(reaches)) continue;
    ++found;
    EXPECT_TRUE(Includes().at(unit).contains("components/links/Outside")) << unit;
  }
  EXPECT_GE(found, 5);
}

}  // namespace
