// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Gavelscope developers
#include "ui/AnimatedPicture.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QPainter>

#include <algorithm>
#include <limits>

#include "banner/GifBlocks.h"
#include "net/NetOptions.h"

namespace gavelscope::ui {

namespace {

using net::limits::kMaxDecodedPictureBytes;
using net::limits::kMaxPictureFrames;
using net::limits::kMaxPictureSide;

QRect ToRect(const banner::FrameRect& rect) {
  return {rect.left, rect.top, rect.width, rect.height};
}

bool WithinSideLimit(QSize size) {
  return size.width() <= kMaxPictureSide && size.height() <= kMaxPictureSide;
}

// The decoder makes 32-bit pixels.
std::size_t DecodedBytes(QSize size) {
  return static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height()) * 4;
}

// A whole file, read only when its header gives a size within the limit; a format that cannot say
// its size before decoding is not trusted to keep within it.
QImage DecodeWhole(std::string_view data) {
  QByteArray bytes = QByteArray::fromRawData(data.data(), static_cast<qsizetype>(data.size()));
  QBuffer device(&bytes);
  device.open(QIODevice::ReadOnly);
  QImageReader reader(&device);
  const QSize size = reader.size();
  if (!size.isValid() || !WithinSideLimit(size)) return {};
  QImage image = reader.read();
  return WithinSideLimit(image.size()) ? image : QImage();
}

// The screen a frame is decoded on: the part of the frame that lies on the picture, at least one
// pixel, so that a frame off the picture is still tried and left out only if it does not decode.
QSize OwnScreen(const banner::GifFrame& frame, QSize screen) {
  return {std::max(1, std::min(frame.width, screen.width() - frame.left)),
          std::max(1, std::min(frame.height, screen.height() - frame.top))};
}

}  // namespace

CAnimatedPicture::CAnimatedPicture(QWidget* parent) : QWidget(parent) {
  m_timer.setSingleShot(true);
  connect(&m_timer, &QTimer::timeout, this, [this] { OnTimer(); });
}

DecodedPicture CAnimatedPicture::Decode(std::string_view data, std::stop_token stop) {
  banner::GifBlockWalker walker(data);
  if (!walker.IsGif()) {
    QImage still = DecodeWhole(data);
    if (still.isNull()) return {};
    return {still.size(), std::move(still), {}, {}};
  }
  const QSize screen(walker.ScreenWidth(), walker.ScreenHeight());
  if (screen.isEmpty() || !WithinSideLimit(screen)) return {};
  // Every frame is counted and costed before any is decoded, so a picture over a limit costs no
  // more than this walk.
  std::vector<banner::GifFrame> frames;
  std::size_t bytes = 0;
  while (auto frame = walker.NextFrame()) {
    bytes += DecodedBytes(OwnScreen(*frame, screen));
    if (frames.size() == static_cast<std::size_t>(kMaxPictureFrames) || bytes > kMaxDecodedPictureBytes) return {};
    frames.push_back(std::move(*frame));
  }
  if (frames.empty()) return {};
  if (frames.size() == 1) {
    // A single image is a still picture of the screen's size.
    QImage still = DecodeWhole(data);
    if (still.isNull()) return {};
    return {screen, std::move(still), {}, {}};
  }
  DecodedPicture picture{screen, {}, {}, {}};
  for (const banner::GifFrame& frame : frames) {
    if (stop.stop_requested()) return {};
    const QSize own = OwnScreen(frame, screen);
    const std::string file = banner::FrameFileAtOrigin(frame, own.width(), own.height());
    QImage image = QImage::fromData(reinterpret_cast<const uchar*>(file.data()), static_cast<int>(file.size()), "GIF");
    // A frame the decoder refuses is left out of the animation.
    if (image.isNull() || image.width() > own.width() || image.height() > own.height()) continue;
    const QRect rect(frame.left, frame.top, frame.width, frame.height);
    if (!rect.intersects(QRect(QPoint(0, 0), screen))) image = QImage();
    picture.frames.push_back(std::move(image));
    picture.timings.push_back({frame.delay, frame.disposal, {frame.left, frame.top, frame.width, frame.height}, true});
  }
  if (picture.frames.empty()) return {};
  return picture;
}

bool CAnimatedPicture::LoadFromFile(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    UnLoad();
    return false;
  }
  const QByteArray bytes = file.readAll();
  return LoadFromMemory(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
}

bool CAnimatedPicture::Install(const DecodedPicture& picture) {
  UnLoad();
  if (picture.size.isEmpty()) return false;
  m_still = picture.still;
  m_frames = picture.frames;
  if (!PrepareBuffer(picture.size)) return false;
  if (!m_frames.empty()) {
    banner::IPictureCanvas& canvas = *this;
    m_animation = std::make_unique<banner::CPictureAnimation>(picture.timings, canvas, 0);
  }
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

void CAnimatedPicture::RenderFrame(std::size_t frame, const banner::FrameRect& rect) {
  if (m_frames[frame].isNull()) return;
  QPainter painter(&m_buffer);
  painter.drawImage(QPoint(rect.left, rect.top), m_frames[frame]);
}

void CAnimatedPicture::FillRect(const banner::FrameRect& rect, std::uint32_t) {
  QPainter painter(&m_buffer);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.fillRect(ToRect(rect), m_background);
}

void CAnimatedPicture::FillAll(std::uint32_t) {
  m_buffer.fill(m_background);
}

void CAnimatedPicture::SaveArea(const banner::FrameRect& rect) {
  m_saved = m_buffer.copy(ToRect(rect));
}

void CAnimatedPicture::RestoreSavedArea(const banner::FrameRect& rect) {
  if (m_saved.isNull()) return;
  QPainter painter(&m_buffer);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.drawImage(QPoint(rect.left, rect.top), m_saved);
  m_saved = {};
}

}  // namespace gavelscope::ui
