// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <string>

#include "base/Archive.h"

namespace gavelscope::query {

// A category name as the query files store it.
class CCategoryNameObject {
 public:
  static constexpr const char* kClassName = "CCategoryNameObject";
  // Schema 4, marked versionable.
  static constexpr std::uint32_t kSchema = 0x80000004;

  CCategoryNameObject() = default;
  explicit CCategoryNameObject(std::string name) : m_name(std::move(name)) {}
  virtual ~CCategoryNameObject() = default;

  // Writes the name when the archive stores, reads it back when it loads; nothing else is kept.
  virtual void Serialize(base::CArchive& archive);

  const std::string& name() const { return m_name; }

 private:
  std::string m_name;
};

}  // namespace gavelscope::query
