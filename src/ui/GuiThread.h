// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QMetaObject>
#include <QObject>
#include <QThread>

#include <utility>

namespace gavelscope::ui {

// Runs `work` on the thread of `context`: at once when already there, else queued. Workers never
// wait for the window, so a window that is joining them can never deadlock with them.
template <typename Work>
void OnGuiThread(QObject* context, Work&& work) {
  if (QThread::currentThread() == context->thread()) {
    work();
  } else {
    QMetaObject::invokeMethod(context, std::forward<Work>(work), Qt::QueuedConnection);
  }
}

}  // namespace gavelscope::ui
