// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
//
// A query file is whatever the user picks in Load Query, or hands to `gavelscope-cli query`.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "query/MySettings.h"
#include "query/QueryFile.h"

using gavelscope::query::CMySettings;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CMySettings loaded;
  std::string error;
  if (!gavelscope::query::LoadQueryBytes(std::string(reinterpret_cast<const char*>(data), size), loaded, error)) {
    // A refusal must say why: the CLI prints it.
    if (error.empty()) std::abort();
    return 0;
  }
  (void)gavelscope::query::DescribeSettings(loaded);
  // Whatever form was read, saving it again must give a file that loads to the same query: the
  // dialog saves what it loaded.
  CMySettings again;
  if (!gavelscope::query::LoadQueryBytes(gavelscope::query::SaveQueryBytes(loaded), again, error)) std::abort();
  if (!(again == loaded)) std::abort();
  return 0;
}
