// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <filesystem>
#include <string_view>

#include "net/NetOptions.h"

namespace gavelscope::net {

// Writes `bytes` as the whole new content of `file`: written beside it first and moved into place,
// so a failure leaves what was there before and never a half-written file.
NetResult WriteFileAtomically(const std::filesystem::path& file, std::string_view bytes);

}  // namespace gavelscope::net
