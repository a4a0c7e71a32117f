#pragma once

#include <QString>

/// A tool tip that shows a text as it is. The toolkit takes a text with tags for a rich one, which
/// may name files; texts of files, devices and servers do not get there as they are.
QString PlainTip(const QString& text);
