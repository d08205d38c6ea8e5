// The handler of a signal may not allocate, so the paths of the files to remove are in a table of fixed size.
#include "tool/writing/output_file.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <random>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tool/writing/table_writer.hpp"

namespace textio::tool {
namespace {

constexpr mode_t kForEveryone = 0666;  // the mask of the process takes away from it
constexpr int kEndings[] = {SIGINT, SIGTERM, SIGHUP};
constexpr int kMostNames = 100;  // to try

// Of the folder with its last "/", or empty.
std::string folder_of(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

std::string random_word() {
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
  std::random_device device;
  std::string word;
  for (int i = 0; i < 8; ++i) word += kLetters[device() % kLetters.size()];
  return word;
}

// The end of a chain of links.
std::string followed(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr),
                                                         std::free);
  return real ? real.get() : path;
}

// Holds back the signals that end the process.
class SignalsWait {
 public:
  SignalsWait() {
    sigset_t endings;
    sigemptyset(&endings);
    for (const int signal : kEndings) sigaddset(&endings, signal);
    pthread_sigmask(SIG_BLOCK, &endings, &before_);
  }
  SignalsWait(const SignalsWait&) = delete;
  SignalsWait& operator=(const SignalsWait&) = delete;
  ~SignalsWait() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_ = {};
};

}  // namespace

struct OutputFile::Slot {
  std::atomic<bool> is_taken = false;
  std::atomic<bool> has_path = false;
  std::array<char, PATH_MAX> path{};
};

OutputFile::Slot OutputFile::slots_[kMostAtOnce];

OutputFile::OutputFile(Unopened /*state*/, const std::string& path)
    : path_(path), target_(path), written_(path) {}

// From its first line on, what fails runs the destructor, which gives up the place in the table.
OutputFile::OutputFile(const std::string& path) : OutputFile(Unopened{}, path) {
  struct stat about = {};
  const bool exists = stat(path.c_str(), &about) == 0;
  if (exists && S_ISDIR(about.st_mode)) fail(EISDIR);
  if (exists && !S_ISREG(about.st_mode)) {
    fd_ = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd_ < 0) fail(errno);
    return;
  }
  if (exists) target_ = followed(path);
  write_beside(exists ? about.st_mode & 07777U : 0U);
}

OutputFile::~OutputFile() { discard(); }

// Signals wait until the new file is in the table.
void OutputFile::write_beside(unsigned permissions) {
  for (Slot& slot : slots_) {
    if (slot.is_taken.exchange(true)) continue;
    slot_ = &slot;
    break;
  }
  if (slot_ == nullptr) fail(EMFILE);
  const SignalsWait signals_wait;
  for (int attempt = 0; fd_ < 0 && attempt < kMostNames; ++attempt) {
    written_ = folder_of(target_) + ".vltext-" + random_word();
    errno = 0;
    if (written_.size() >= slot_->path.size()) break;
    fd_ = open(written_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kForEveryone);
    if (fd_ < 0 && errno != EEXIST) break;
  }
  if (fd_ < 0) fail(errno == 0 ? ENAMETOOLONG : errno);
  written_.copy(slot_->path.data(), written_.size());
  slot_->path[written_.size()] = '\0';
  slot_->has_path = true;
  // A file system without permissions refuses; the file is complete without them.
  if (permissions != 0) static_cast<void>(fchmod(fd_, permissions));
}

void OutputFile::clear() {
  if (slot_ == nullptr) return;
  if (ftruncate(fd_, 0) != 0 || lseek(fd_, 0, SEEK_SET) != 0) fail(errno);
}

void OutputFile::commit() {
  if (slot_ != nullptr) {
    if (fsync(fd_) != 0) fail(errno);
    if (close(std::exchange(fd_, -1)) != 0) fail(errno);
    if (rename(written_.c_str(), target_.c_str()) != 0) fail(errno);
    slot_->has_path = false;
    slot_->is_taken = false;
    slot_ = nullptr;
    synchronise_folder_of(target_);
  } else if (close(std::exchange(fd_, -1)) != 0) {
    fail(errno);
  }
}

void OutputFile::discard() noexcept {
  close_file();
  if (slot_ == nullptr) return;
  if (slot_->has_path) unlink(slot_->path.data());
  slot_->has_path = false;
  slot_->is_taken = false;
  slot_ = nullptr;
}

void OutputFile::close_file() noexcept {
  if (fd_ >= 0) close(fd_);
  fd_ = -1;
}

void OutputFile::fail(int error) const { throw WriteError(path_ + ": " + std::strerror(error)); }

void synchronise_folder_of(const std::string& path) noexcept {
  try {
    const std::string folder = folder_of(path);
    const int fd = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    fsync(fd);
    close(fd);
  } catch (const std::bad_alloc&) {
    // The file is complete, only not sure to survive a loss of power.
  }
}

// Ends the process as the signal would have, once the files are gone.
void clean_up(int signal) {
  for (OutputFile::Slot& slot : OutputFile::slots_) {
    if (slot.has_path) unlink(slot.path.data());
  }
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void clean_up_on_signals() {
  for (const int signal : kEndings) {
    if (std::signal(signal, clean_up) == SIG_IGN) std::signal(signal, SIG_IGN);
  }
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace textio::tool
