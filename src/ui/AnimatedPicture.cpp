// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/AnimatedPicture.h"

#include <QFile>
#include <QPainter>

#include <algorithm>
#include <limits>

#include "hotitems/GifBlocks.h"

namespace gavelscope::ui {

namespace {

QRect ToRect(const hotitems::FrameRect& rect) {
  return {rect.left, rect.top, rect.width, rect.height};
}

QImage Decode(const std::string& data) {
  return QImage::fromData(reinterpret_cast<const uchar*>(data.data()), static_cast<int>(data.size()));
}

}  // namespace

CAnimatedPicture::CAnimatedPicture(QWidget* parent) : QWidget(parent) {
  m_timer.setSingleShot(true);
  connect(&m_timer, &QTimer::timeout, this, [this] { OnTimer(); });
}

bool CAnimatedPicture::LoadFromFile(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    UnLoad();
    return false;
  }
  const QByteArray bytes = file.readAll();
  return LoadFromMemory(std::string(bytes.constData(), static_cast<std::size_t>(bytes.size())));
}

bool CAnimatedPicture::LoadFromMemory(const std::string& data) {
  UnLoad();
  hotitems::GifBlockWalker walker(data);
  if (!walker.IsGif()) {
    m_still = Decode(data);
    return !m_still.isNull() && PrepareBuffer(m_still.size());
  }
  m_pictureSize = QSize(walker.ScreenWidth(), walker.ScreenHeight());
  const int blocks = walker.CountGraphicBlocks();
  if (blocks == 0) return false;
  if (blocks == 1) {
    m_still = Decode(data);
    return !m_still.isNull() && PrepareBuffer(m_pictureSize);
  }
  std::vector<hotitems::FrameTiming> timings;
  walker.Rewind();
  while (auto frame = walker.NextFrame()) {
    QImage image = Decode(frame->file);
    // A frame the decoder refuses is left out of the animation.
    if (image.isNull()) continue;
    m_frames.push_back(std::move(image));
    timings.push_back({frame->delay, frame->disposal, {frame->left, frame->top, frame->width, frame->height}, true});
  }
  if (m_frames.empty() || !PrepareBuffer(m_pictureSize)) return false;
  hotitems::IPictureCanvas& canvas = *this;
  m_animation = std::make_unique<hotitems::CPictureAnimation>(std::move(timings), canvas, 0);
  return true;
}

bool CAnimatedPicture::PrepareBuffer(QSize size) {
  if (size.isEmpty()) return false;
  m_pictureSize = size;
  setFixedSize(size);
  m_buffer = QImage(size, QImage::Format_ARGB32_Premultiplied);
  // The picture's own background gives way to the window's face colour.
  m_background = palette().color(QPalette::Button);
  m_buffer.fill(palette().color(QPalette::Window));
  return true;
}

void CAnimatedPicture::Draw() {
  if (m_buffer.isNull()) return;
  if (m_frames.size() > 1 && m_animation) {
    m_animation->Resume();
    ShowAndSchedule();
    return;
  }
  if (!m_still.isNull()) {
    QPainter painter(&m_buffer);
    painter.drawImage(QRect(QPoint(0, 0), m_pictureSize), m_still);
    update();
  }
}

void CAnimatedPicture::ShowAndSchedule() {
  const std::optional<std::chrono::milliseconds> hold = m_animation->ShowCurrent();
  update();
  m_waitingForStop = !hold.has_value();
  if (hold) m_timer.start(static_cast<int>(std::min<long long>(hold->count(), std::numeric_limits<int>::max())));
}

void CAnimatedPicture::OnTimer() {
  m_animation->Advance();
  ShowAndSchedule();
}

void CAnimatedPicture::Stop() {
  m_timer.stop();
  m_waitingForStop = false;
}

void CAnimatedPicture::UnLoad() {
  Stop();
  m_animation.reset();
  m_frames.clear();
  m_still = {};
  m_saved = {};
  m_buffer = {};
  m_background = Qt::white;
}

void CAnimatedPicture::SetBkColor(QColor colour) {
  if (m_buffer.isNull()) return;
  m_background = colour;
  m_buffer.fill(colour);
  update();
}

void CAnimatedPicture::paintEvent(QPaintEvent*) {
  if (m_buffer.isNull()) return;
  QPainter painter(this);
  painter.drawImage(QPoint(0, 0), m_buffer);
}

void CAnimatedPicture::RenderFrame(std::size_t frame, const hotitems::FrameRect& rect) {
  // Each frame file decodes at the full screen size with the frame in its place.
  QPainter painter(&m_buffer);
  const QRect target = ToRect(rect);
  painter.drawImage(target, m_frames[frame], target);
}

void CAnimatedPicture::FillRect(const hotitems::FrameRect& rect, std::uint32_t) {
  QPainter painter(&m_buffer);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.fillRect(ToRect(rect), m_background);
}

void CAnimatedPicture::FillAll(std::uint32_t) {
  m_buffer.fill(m_background);
}

void CAnimatedPicture::SaveArea(const hotitems::FrameRect& rect) {
  m_saved = m_buffer.copy(ToRect(rect));
}

void CAnimatedPicture::RestoreSavedArea(const hotitems::FrameRect& rect) {
  if (m_saved.isNull()) return;
  QPainter painter(&m_buffer);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.drawImage(QPoint(rect.left, rect.top), m_saved);
  m_saved = {};
}

}  // namespace gavelscope::ui
