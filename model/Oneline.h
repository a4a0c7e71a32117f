#pragma once

#include <QString>
#include <string_view>

// Texts of foreign origin, such as names of files and what stands in them, as they can be shown.

/// The text of bytes in a file: UTF-8, or Latin-1 where they are not valid UTF-8.
QString FromBytes(std::string_view bytes);

/// `text` without what would steer a terminal or turn the direction of writing: each such character
/// becomes a replacement character. Line ends and tabs stay.
QString Harmless(const QString& text);

/// Harmless, and on one line of at most `most` characters, which ends in dots where it was longer.
QString OneLine(const QString& text, qsizetype most = 200);

/// A name as part of a sentence: one line, cut in the middle if it is long, in quotes if it has
/// blanks. Unlike above, what does not show or turns the direction of writing is shown by its
/// number, for the user decides by such names. Any thread.
QString ShownName(const QString& name);

/// The name of a file without its folder.
QString ShownFileName(const QString& path);

/// The same for the title of a window, where the toolkit takes a single "[*]" for a mark of its
/// own.
QString TitleFileName(const QString& path);
