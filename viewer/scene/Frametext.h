#pragma once

#include <QString>
#include <QStringList>

#include "model/Animation.h"

// What the window says about the picture, in words. Numbers have a "." whatever the locale.

/// The name of a data set as its file has it, fit to be shown: its section without the brackets,
/// then the number and the damping of a mode.
QString NameOf(const TDataNodeList& list);

/// What else its file says of it, line by line; plain text of any origin.
QString RemarkOf(const TDataNodeList& list);

/// The text over the picture: the names of the shown data sets, and how many more there are.
QStringList OverlayLines(const TMeasuredData& data);

/// How many data sets are shown, and their frequencies; empty without data.
QString ShownText(const TMeasuredData& data);

/// Phase, or time, and the frame within the cycle: of the common phase, or in the sum type of the
/// highest frequency shown. Empty while no data set is shown.
QString FrameText(const TAnimation& animation, const TMeasuredData& data);

/// How many nodes and elements the model has; empty without a model.
QString CountText(const TModel& model);
