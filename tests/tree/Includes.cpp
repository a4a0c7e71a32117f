#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <map>
#include <set>
#include <string>

#include "tests/support/Testsupport.h"

namespace {

using TGraph = std::map<std::string, std::set<std::string>>;

/// A unit is a header with its sources: "model/Timer.cpp" and "model/Timer_linux.cpp" are one.
std::string UnitOf(const QString& path) {
  return path.section('.', 0, 0).section('_', 0, 0).toStdString();
}

/// Which units each unit includes, from the lines of its header and its sources.
const TGraph& Includes() {
  static const TGraph result = [] {
    const QRegularExpression include(R"(^\s*#\s*include\s+"([^"]+)\")");
    const QString root = SourceFile("");
    TGraph graph;
    for (const char* room : {"model", "signals", "components", "viewer"}) {
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

/// Walks depth first; returns the units of a cycle, or nothing.
std::string FindCycle(const std::string& unit, std::set<std::string>& done,
                      std::vector<std::string>& path) {
  if (done.contains(unit)) return {};
  if (std::find(path.begin(), path.end(), unit) != path.end()) return unit;
  path.push_back(unit);
  if (const auto found = Includes().find(unit); found != Includes().end()) {
    for (const std::string& next : found->second) {
      const std::string cycle = FindCycle(next, done, path);
      if (!cycle.empty()) return unit + " > " + cycle;
    }
  }
  path.pop_back();
  done.insert(unit);
  return {};
}

TEST(Includes, FormNoCycle) {
  ASSERT_GT(Includes().size(), 10u);
  std::set<std::string> done;
  for (const auto& [unit, used] : Includes()) {
    std::vector<std::string> path;
    EXPECT_EQ(FindCycle(unit, done, path), "");
  }
}

TEST(Includes, AreWrittenFromTheRoot) {
  for (const auto& [unit, used] : Includes()) {
    for (const std::string& target : used) {
      const QString header = SourceFile(QString::fromStdString(target) + ".h");
      EXPECT_TRUE(QFile::exists(header)) << unit << " includes " << target;
    }
  }
}

/// What opens files, ports, sockets or programs asks whether its panel may, or somebody above it
/// has.
TEST(Includes, WhatReachesOutsideAsksFirst) {
  const QRegularExpression reaches(
      R"((?<!include <)\b(TOrdinaryFile|QFile|QSaveFile|QTcpSocket|QTcpServer|QUdpSocket|)"
      R"(QLocalSocket|QSslSocket|QSerialPort|QProcess|QDesktopServices|QNetworkAccessManager|)"
      R"(QLibrary|QPluginLoader|QSettings|fopen|i?o?fstream|popen)\b)");
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

TEST(Includes, PointDownwards) {
  const auto in = [](const std::string& name, const char* room) {
    return name.rfind(room, 0) == 0;
  };
  for (const auto& [unit, used] : Includes()) {
    for (const std::string& target : used) {
      SCOPED_TRACE(unit + " includes " + target);
      if (in(unit, "model/")) {
        EXPECT_TRUE(in(target, "model/"));
      }
      if (in(unit, "components/")) {
        EXPECT_FALSE(in(target, "viewer/"));
      }
      // The program itself stands on top of both.
      if (in(unit, "viewer/") && unit != "viewer/main" && in(target, "components/")) {
        EXPECT_TRUE(in(target, "components/controls/Korvaltools") ||
                    in(target, "components/controls/Compbase"));
      }
    }
  }
}

}  // namespace
