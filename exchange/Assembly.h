#pragma once

#include "exchange/Findings.h"
#include "exchange/Job.h"
#include "model/Animmodel.h"
#include "model/Datareader.h"
#include "model/Modelreader.h"

/// Makes a model of a job's geometry. Nodes come in ascending order of their numbers; the first of
/// several with one number counts. Bars and traced strokes between the same two nodes are one bar;
/// shells become faces that show from both sides; of solids only the faces that no other solid
/// shares. Elements that name a missing node are left out and noted. The model is centred, and Size
/// is taken from its centre. `nodeList`: the list that will hold the nodes in the end. Lengths are
/// those of the first file that gives units. Any thread. Throws std::bad_alloc.
TModelContent AssembleModel(const TJob& job, const TNodeList* nodeList, TFindings& findings);

/// Makes data sets of a job's shapes for a model, and empties them on the way. Values are turned to
/// the global system by the displacement systems of the job's nodes, or by the model's axes if the
/// job has none, and to the model's unit of length if they are displacements, velocities or
/// accelerations; a node without a value rests
/// and is marked as unmeasured, sets that measure the same nodes in other directions are merged. At
/// most `mostNodes` nodes of all sets together. Any thread. Throws std::bad_alloc.
std::vector<TDataSet> AssembleShapes(TJob& job, const TModelNodes& model, const TVertex& centre,
                                     std::size_t mostNodes, TFindings& findings);

/// "37 nodes, 53 bars, 11 complex modes from 0.76 to 29.9 Hz".
QString Summary(const TModel& model, const TMeasuredData& data, const TJob& job);
