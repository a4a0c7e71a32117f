#pragma once

#include <string_view>

#include "exchange/Findings.h"
#include "exchange/Job.h"
#include "model/Loadreport.h"

/// Whether the first line is the head of a table of nodes, lines, faces or shapes.
bool IsTextTable(std::string_view start);

/// Reads a table with a head line into the job. Columns are separated by commas, semicolons or
/// tabs; with the latter two the decimal sign may be a comma. Heads, in any case and order of
/// columns: nodes `node,x,y,z`; lines `node1,node2`; faces `n1,n2,n3[,n4...]`; shapes
/// `frequency,node,x,y,z` with phases `px,py,pz`, in radians or, headed `px[deg]`, degrees, or
/// complex as `xre,xim,yre,yim,zre,zim`. `findings` is at the file. Any thread. Throws
/// std::bad_alloc.
void ReadTextTable(std::string_view text, TJob& job, TFindings& findings,
                   const TLoadProgress& progress = {});
