#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>
#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <numbers>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/Files.h"
#include "tests/support/Pictures.h"
#include "tests/support/Testsupport.h"
#include "tests/support/Ticks.h"

/// What nearly every test uses: the frameworks, and windows and programs taken by their parts.

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// A child by its name and kind, or by its kind alone; throws if there is none.
template <class T>
T& Child(const QObject& parent, const QString& name = {}) {
  T* child = parent.findChild<T*>(name);
  if (!child) {
    throw std::runtime_error(T::staticMetaObject.className() + (" " + name).toStdString());
  }
  return *child;
}

/// A button of a dialog's row of buttons.
QAbstractButton& ButtonOf(const QDialog& dialog, QDialogButtonBox::StandardButton button);

/// Types a text in place of what a line holds and, unless told otherwise, ends it with Enter.
void EnterText(QLineEdit& line, const QString& text, bool isEnded = true);

/// Moves the mouse with the left button down, or another one, over a widget.
void DragMouse(QWidget& widget, QPoint to, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers keys = {});

/// How a program has ended. A program that a signal killed has the status -1.
struct TRun {
  int Status;
  QString Out, Errors;
};

/// Starts a program as a user without a display does, in the test's folder: one of the build
/// folder, or any by its full name. `variables` are set besides.
void StartProgram(QProcess& process, const QString& program, const QStringList& arguments,
                  const QMap<QString, QString>& variables = {});

/// A program that has written its first line. It is killed, without a farewell of any kind, when
/// this goes.
struct TStartedProgram {
  TStartedProgram(const QString& program, const QStringList& arguments);
  ~TStartedProgram();

  QProcess Process;
  QString FirstLine;
};

/// Runs it to its end.
TRun RunProgram(const QString& program, const QStringList& arguments,
                const QMap<QString, QString>& variables = {});

/// The published properties of an object and of its sub-objects in their saved order, by their
/// dotted names.
QStringList PublishedNames(const QObject& object, const QString& prefix = {});
