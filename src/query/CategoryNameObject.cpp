// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "query/CategoryNameObject.h"

namespace gavelscope::query {

void CCategoryNameObject::Serialize(base::CArchive& archive) {
  if (archive.IsStoring()) {
    archive.WriteString(m_name);
  } else {
    archive.ReadString(m_name);
  }
}

}  // namespace gavelscope::query
