#pragma once

#include <QString>

/// Whether a file is a model file, by its content: a header of a model's sections stands in its
/// first part. A file that cannot be read is none.
bool IsModelFile(const QString& fileName);
