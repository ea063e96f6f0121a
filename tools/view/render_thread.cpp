// Makes frames while the window goes on.
#include "view/render_thread.h"

#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include "photo/picture_writer.h"

namespace zuqel::tools {
namespace {

namespace fs = std::filesystem;

// A link that leads nowhere has the name too.
bool IsTaken(const fs::path& path) {
  std::error_code ignored;
  return fs::symlink_status(path, ignored).type() != fs::file_type::not_found;
}

std::string SaveAndTell(FrameMaker& maker, const FrameRequest& request,
                        const std::string& photo) {
  try {
    const std::string path = FreeResultName(photo);
    maker.Save(request, path);
    return "saved " + path;
  } catch (const std::exception& error) {
    return std::string("not saved: ") + error.what();
  }
}

}  // namespace

std::string FreeResultName(const std::string& photo) {
  const fs::path folder = fs::path(photo).parent_path();
  const std::string start = fs::path(photo).stem().string() + "_bokeh";
  const std::string extension = ResultExtension(photo);
  fs::path path = folder / (start + extension);
  for (int number = 2; IsTaken(path); ++number) {
    std::string name = start + "_";
    name += std::to_string(number) + extension;
    path = folder / name;
  }
  return path;
}

RenderThread::RenderThread(ViewSource source, const DepthOptions& options,
                           std::function<void()> on_news)
    : on_news_(std::move(on_news)),
      thread_([this, source = std::move(source), options]() mutable {
        Work(std::move(source), options);
      }) {}

RenderThread::~RenderThread() {
  {
    const std::lock_guard lock(mutex_);
    is_ending_ = true;
  }
  has_work_.notify_one();
  thread_.join();
}

void RenderThread::Ask(const FrameRequest& request) {
  {
    const std::lock_guard lock(mutex_);
    wanted_ = request;
  }
  has_work_.notify_one();
}

void RenderThread::Save(const FrameRequest& request, const std::string& photo) {
  {
    const std::lock_guard lock(mutex_);
    saves_.push_back({request, photo});
  }
  has_work_.notify_one();
}

std::shared_ptr<const ShownFrame> RenderThread::TakeFrame() {
  const std::lock_guard lock(mutex_);
  return std::exchange(frame_, nullptr);
}

std::string RenderThread::TakeReport() {
  const std::lock_guard lock(mutex_);
  return std::exchange(report_, {});
}

void RenderThread::Work(ViewSource source, const DepthOptions& options) {
  FrameMaker maker(std::move(source), options);
  std::unique_lock lock(mutex_);
  while (true) {
    has_work_.wait(lock,
                   [this] { return wanted_ || !saves_.empty() || is_ending_; });
    if (!saves_.empty()) {
      const SaveTask task = std::move(saves_.front());
      saves_.pop_front();
      lock.unlock();
      std::string report = SaveAndTell(maker, task.request, task.photo);
      lock.lock();
      report_ = std::move(report);
    } else if (is_ending_) {
      return;
    } else {
      const FrameRequest request = *std::exchange(wanted_, std::nullopt);
      lock.unlock();
      auto frame = std::make_shared<const ShownFrame>(maker.Make(request));
      lock.lock();
      frame_ = std::move(frame);
    }
    lock.unlock();
    on_news_();
    lock.lock();
  }
}

}  // namespace zuqel::tools
