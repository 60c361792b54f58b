// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "keywords/CategoryNameObject.h"

namespace gavelscope::keywords {

void CCategoryNameObject::Serialize(app::CArchive& archive) {
  if (archive.IsStoring()) {
    archive.WriteString(m_name);
  } else {
    archive.ReadString(m_name);
  }
}

}  // namespace gavelscope::keywords
