// OutputFile: a file that appears at its path only when it is complete.
//
//   OutputFile out("gauge.jsonl");
//   write(out.fd(), ...);
//   out.commit();                // gauge.jsonl is replaced
//
// It is written under another name in the same folder, synchronised, and renamed. Until then what was at the path
// stays as it was; without commit() it stays for good, and the other file is removed: by the destructor, and by
// SIGINT, SIGTERM and SIGHUP where clean_up_on_signals() was called. A link is followed, and the permissions of a
// file that is replaced are kept.
//
// At a path to something that is no regular file, such as /dev/null or a pipe, there is nothing to replace: it is
// written to at once.
//
// Errors   WriteError; its message begins with the path.
// Threads  any; kMostAtOnce files at the same time.
#pragma once

#include <cstddef>
#include <string>

namespace textio::tool {

class OutputFile {
 public:
  static constexpr std::size_t kMostAtOnce = 8;

  explicit OutputFile(const std::string& path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();

  int fd() const { return fd_; }

  // The path as it was given, and the one of the file that is written.
  const std::string& path() const { return path_; }
  const std::string& written_path() const { return written_; }

  // Whether it replaces a file, or is a new one.
  bool is_replacing() const { return slot_ != nullptr; }

  // Empties the file, to begin anew.
  void clear();

  void commit();

 private:
  struct Slot;
  struct Unopened {};
  OutputFile(Unopened state, const std::string& path);
  friend void clean_up(int signal);

  [[noreturn]] void fail(int error) const;
  void write_beside(unsigned permissions);
  void discard() noexcept;
  void close_file() noexcept;

  std::string path_;
  std::string target_;  // what is replaced: the end of a chain of links
  std::string written_;
  int fd_ = -1;
  Slot* slot_ = nullptr;

  static Slot slots_[kMostAtOnce];
};

// From now on these signals remove the files that are not complete, before they end the process. A signal that is
// ignored stays so. SIGPIPE and SIGXFSZ are ignored: the write that they announce fails with a reason.
void clean_up_on_signals();

// Makes the name of a file that was renamed last: it is there after a loss of power.
void synchronise_folder_of(const std::string& path) noexcept;

}  // namespace textio::tool
