#pragma once

#include <QString>
#include <functional>

/// Shows a text to the user. The program installs a message box as the sink; without a sink the
/// text goes to the standard error stream, so that nothing waits for a user who is not there,
/// and without characters that would steer a terminal.
/// GUI thread only.
void ShowMessage(const QString& text);

/// Replaces the sink of ShowMessage; an empty function brings the standard error stream back.
void SetMessageSink(std::function<void(const QString&)> sink);
