// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#pragma once

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "banner/PictureAnimation.h"

namespace gavelscope::ui {

// A picture as decoded, ready to be put up. Only QImages, so any thread may make it (QPixmap would
// tie it to the window's thread); the window's thread then installs it in a moment.
struct DecodedPicture {
  // Empty when there is nothing to show: undecodable data, or a picture over a limit.
  QSize size;
  // A still picture at `size`.
  QImage still;
  // An animated GIF's frames in file order, each only the part of its frame that lies on the
  // picture (null when none does), to be drawn at its frame's place; with their timing.
  std::vector<QImage> frames;
  std::vector<banner::FrameTiming> timings;
};

// A picture that plays an animated GIF frame by frame with the GIF disposal rules, or shows a still
// picture at its pixel size. Each frame is cut out of the GIF as a small GIF of its own and decoded
// once, at load; a timer on the window's thread moves the animation on.
class CAnimatedPicture : public QWidget, private banner::IPictureCanvas {
 public:
  explicit CAnimatedPicture(QWidget* parent = nullptr);

  // Decodes without touching any widget, on any thread. A picture wider or taller than
  // kMaxPictureSide, of more than kMaxPictureFrames frames or whose frames would decode to more than
  // kMaxDecodedPictureBytes is refused before a pixel of it is made; a stop request abandons it.
  static DecodedPicture Decode(std::string_view data, std::stop_token stop = {});
  // Puts a decoded picture in place of the one before, for Draw to show; false, with the control
  // left empty, for a picture that was refused.
  bool Install(const DecodedPicture& picture);

  bool LoadFromFile(const QString& path);
  bool LoadFromMemory(std::string_view data) { return Install(Decode(data)); }
  void Draw();
  // Stops the animation; the next Draw goes on from the frame that was showing.
  void Stop();
  void UnLoad();
  QSize GetSize() const { return m_pictureSize; }
  void SetBkColor(QColor colour);

  std::size_t frameCount() const { return m_frames.size(); }
  bool isPlaying() const { return m_timer.isActive() || m_waitingForStop; }
  std::size_t currentFrame() const { return m_animation ? m_animation->CurrentFrame() : 0; }
  const QImage& buffer() const { return m_buffer; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  bool PrepareBuffer(QSize size);
  void ShowAndSchedule();
  void OnTimer();

  // The canvas the animation composes on.
  void RenderFrame(std::size_t frame, const banner::FrameRect& rect) override;
  void FillRect(const banner::FrameRect& rect, std::uint32_t colour) override;
  void FillAll(std::uint32_t colour) override;
  void SaveArea(const banner::FrameRect& rect) override;
  void RestoreSavedArea(const banner::FrameRect& rect) override;

  QSize m_pictureSize;
  QImage m_buffer;
  QImage m_still;
  QImage m_saved;
  std::vector<QImage> m_frames;
  std::unique_ptr<banner::CPictureAnimation> m_animation;
  QColor m_background = Qt::white;
  QTimer m_timer;
  bool m_waitingForStop = false;
};

}  // namespace gavelscope::ui
