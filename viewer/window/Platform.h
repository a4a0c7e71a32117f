#pragma once

#include <QApplication>
#include <memory>

/// Makes the application object on a display, or, if `needsDisplay` is false, on whatever there is.
/// Without a display that can be reached and is needed, says so in one sentence on the standard
/// error stream and ends the program with status 1, where the toolkit would abort it.
std::unique_ptr<QApplication> MakeApplication(int& argc, char** argv, bool needsDisplay);
