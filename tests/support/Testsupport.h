#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <string>

/// The C library's strtod with a full stop as decimal point whatever the locale is: the reference
/// for scanners.
double ReferenceNumber(const char* text, char** end);

/// The texts handed to ShowMessage since the test began, oldest first. Reading empties the list.
QStringList TakeMessages();

/// Expects that the test draws a Qt warning that contains `part`; without it, every warning fails
/// the test.
void ExpectQtWarning(const QString& part);

/// Tells the program that the desktop session ends.
void EndSession();

/// The full name of a file of the source tree, such as "docs/user-guide.md".
QString SourceFile(const QString& name);

/// The full name of a file in the build folder, such as "velmora-animator".
QString BuiltFile(const QString& name);

/// A file of tests/data, whole. Fails the test if it is missing.
std::string TestData(const QString& name);

/// A folder of its own for the running test; removed when the test ends.
QString TestFolder();

/// Writes a file into TestFolder() and returns its full name.
QString WriteTestFile(const QString& name, const QByteArray& content);

/// A file of docs/, whole. Fails the test if it is missing.
QString Document(const QString& name);

/// The text of a document's first fence of this kind: the lines between "```" + kind and "```".
QByteArray Fence(const QString& document, const QString& kind);
