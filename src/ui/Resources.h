// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QString>

namespace gavelscope::ui {

// The window's pictures are found beside the program, never in the working directory: first in
// "resources" next to the executable (a build tree; the test programs get a copy of their own),
// then in "../share/gavelscope" (an installed tree). An installed program never reads the source
// tree.

// The full path of the picture `name` ("usa.gif"), or an empty string when no folder holds it.
QString PicturePath(const QString& name);

// The first of those folders that exists, or an empty string.
QString ResourceFolder();

}  // namespace gavelscope::ui
