#pragma once

/// The everyday controls of a panel.

#include "components/controls/Colorlabel.h"    // IWYU pragma: export
#include "components/controls/Hyperlink.h"     // IWYU pragma: export
#include "components/controls/Imagecontrol.h"  // IWYU pragma: export
#include "components/controls/Textlabel.h"     // IWYU pragma: export
#include "components/controls/Textpanel.h"     // IWYU pragma: export
#include "components/controls/Valueedit.h"     // IWYU pragma: export
