#pragma once

#include <QString>
#include <optional>

#include "model/Color.h"

/// Colours as files and forms write them: "#rrggbb", "none", "inherited". A name of the web's
/// colours and the plain 32-bit number are read too; a colour without opacity is none. Any thread.
QString ColorText(TColor color);
/// Nothing for a text that is no colour.
std::optional<TColor> ColorFromText(const QString& text);
