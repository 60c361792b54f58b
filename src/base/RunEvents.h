// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

namespace gavelscope::base {

// What an analysis thread reports to the run controller as it works and when it ends.
class IRunEvents {
 public:
  virtual ~IRunEvents() = default;
  virtual void StepProgress() = 0;
  virtual void SetRefreshDone(bool done) = 0;
  // Redraws the whole window once a load is in.
  virtual void RedrawWindow() = 0;
  // One finished load; counted before the caller goes on.
  virtual void OnThreadFinished() = 0;
};

}  // namespace gavelscope::base
