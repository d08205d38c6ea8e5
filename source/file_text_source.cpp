// A fill asks for one byte per free unit, converts what came, folds surrogate pairs into single
// units, and goes on with the room that is left. Whatever the converter has not finished stays in
// the converter, so the chunk of bytes can live in the frame of the call.
#include <vltextstream/source/file_text_source.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include <sys/mman.h>

#include <vltextstream/host/code_converter.hpp>
#include <vltextstream/host/file_layer.hpp>

namespace textio {
namespace {

constexpr std::size_t kChunkBytes = 65'535;
constexpr std::size_t kScratchUnits = 65'535;
constexpr std::size_t kBarrenPerByte = 1024;  // no ordinary text has as many bytes without a unit

struct CloseFile {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Asks for huge pages wherever a whole one lies in the fresh `storage`: to touch two megabytes for
// the first time costs less in one of them than in 512 pages of 4 KB by far. It is mere advice, and
// a system without huge pages refuses it. Smaller storage holds none.
void prefer_huge_pages(std::u16string& storage) {
  constexpr std::size_t kHugePage = 2'097'152;
  void* begin = storage.data();
  std::size_t room = storage.capacity() * sizeof(char16_t);
  if (std::align(kHugePage, kHugePage, begin, room) == nullptr) return;
  ::madvise(begin, room - room % kHugePage, MADV_HUGEPAGE);
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// FileStreamBufferManager

std::size_t FileStreamBufferManager::resize(std::size_t n, char16_t*& begin, char16_t*& end) {
  if (n > units_.capacity()) {
    std::u16string grown;
    grown.reserve(n);
    prefer_huge_pages(grown);
    grown = units_;
    units_.swap(grown);
  }
  const bool grows = n > units_.size();
  units_.resize(n);
  if (grows && units_.capacity() > n) units_.shrink_to_fit();
  begin = units_.data();
  end = begin + n;
  return n;
}

char16_t* FileStreamBufferManager::begin() { return units_.data(); }

char16_t* FileStreamBufferManager::end() { return units_.data() + units_.size(); }

FileStreamBufferManager::~FileStreamBufferManager() = default;

// ---------------------------------------------------------------------------------------------
// FileTextSource

struct FileTextSource::FileState {
  FileState(File opened, const std::string& encoding)
      : file(std::move(opened)), converter(encoding, true) {}

  // Looks at the next byte; the position of the file does not change.
  bool at_end() {
    if (is_cut_off) return true;
    const int byte = std::fgetc(file.get());
    if (byte == EOF) {
      note_read_error();
      return true;
    }
    std::ungetc(byte, file.get());
    return false;
  }

  std::size_t read(char* bytes, std::size_t count) {
    const std::size_t got = std::fread(bytes, 1, count, file.get());
    if (got < count) note_read_error();
    return got;
  }

  // Right after a read that came short, while errno is still its own.
  void note_read_error() {
    if (std::ferror(file.get()) != 0) cut_off(errno);
  }

  // The text ends where the file stands: what a device delivers after an error need not follow what
  // it delivered before.
  void cut_off(int error) {
    if (read_error == 0) read_error = error != 0 ? error : EIO;
    is_cut_off = true;
  }

  source_pos position() { return ::ftello64(file.get()); }

  // Starts again at `pos`; when the file cannot get there the text has ended.
  bool go_to(source_pos pos) {
    converter.reset(pos == 0);
    if (::fseeko64(file.get(), pos, SEEK_SET) != 0) {
      cut_off(errno);
      return false;
    }
    std::clearerr(file.get());
    is_cut_off = false;
    return true;
  }

  // What `step` returns; when it throws, the file is put back to where it stood. Of an input that
  // cannot go back, the bytes are lost, so its text has ended.
  template <typename Step>
  auto or_go_back(Step step) {
    const source_pos before = position();
    try {
      return step();
    } catch (...) {
      go_back_to(before);
      throw;
    }
  }

  void go_back_to(source_pos before) {
    try {
      go_to(before);
    } catch (...) {
      cut_off(EIO);
    }
  }

  std::size_t decode(char16_t* begin, char16_t* end);
  unsigned long skip(unsigned long count);

  File file;
  StreamCodeConverter converter;
  int read_error = 0;
  bool is_cut_off = false;
};

// Fills [begin, end) as far as the text reaches; returns the number of units written. At the end
// of the file the converter is asked once more, without bytes: it may hold an unfinished
// character that the last read, filling its room exactly, did not show to be the last.
//
// It asks for one byte per free unit, so that the converter need not keep units back. While bytes
// give no units, as shift sequences do, it asks for more and more of them: they may fill megabytes
// where one unit of room is left.
std::size_t FileTextSource::FileState::decode(char16_t* begin, char16_t* end) {
  char chunk[kChunkBytes];
  char16_t* cursor = begin;
  std::size_t barren = 0;  // bytes since the last unit
  while (cursor != end) {
    const auto room = static_cast<std::size_t>(end - cursor);
    const std::size_t more = std::min(barren / kBarrenPerByte, kChunkBytes);
    const std::size_t ask = std::max(std::min(room, kChunkBytes), more);
    const std::size_t got = at_end() ? 0 : read(chunk, ask);
    char16_t* const first = cursor;
    const char* in = chunk;
    if (converter.convert(cursor, end, in, chunk + got, got < ask)) converter.reset(false);
    const bool has_delivered = cursor != first;  // a low surrogate alone folds to nothing
    barren = has_delivered ? 0 : barren + got;
    cursor = fold_surrogate_pairs(first, cursor);
    if (got == 0 && !has_delivered) break;
  }
  return static_cast<std::size_t>(cursor - begin);
}

// Decodes `count` units and forgets them; returns how many there were.
unsigned long FileTextSource::FileState::skip(unsigned long count) {
  char16_t scratch[kScratchUnits];
  unsigned long skipped = 0;
  while (skipped < count) {
    const std::size_t ask = std::min<std::size_t>(count - skipped, kScratchUnits);
    const std::size_t passed = decode(scratch, scratch + ask);
    if (passed == 0) break;
    skipped += passed;
  }
  return skipped;
}

FileTextSource::FileTextSource() = default;

FileTextSource::~FileTextSource() = default;

void FileTextSource::init_stream(const std::u16string& path, const std::string& encoding) {
  init_stream(open_file(path, "rb"), encoding);
}

void FileTextSource::init_stream(std::FILE* file, const std::string& encoding) {
  auto opened = std::make_unique<FileState>(File(file), encoding);
  if (!opened->file) throw std::runtime_error("File not found");
  std::clearerr(opened->file.get());  // what failed before is no failure of this text
  file_state = std::move(opened);
}

std::size_t FileTextSource::fillBuffer(char16_t* begin, char16_t* end) {
  if (!file_state) return 0;
  return file_state->or_go_back([&] { return file_state->decode(begin, end); });
}

bool FileTextSource::isEoS() const {
  return !file_state || (file_state->at_end() && !file_state->converter.has_more());
}

BufferManager* FileTextSource::getBufferManager() { return &buffer_manager_; }

source_pos FileTextSource::getPos() const { return file_state ? file_state->position() : 0; }

int FileTextSource::read_error() const { return file_state ? file_state->read_error : 0; }

std::FILE* FileTextSource::release() {
  const std::unique_ptr<FileState> released = std::move(file_state);
  return released ? released->file.release() : nullptr;
}

const StreamCodeConverter* FileTextSource::converter() const {
  return file_state ? &file_state->converter : nullptr;
}

// Where the file stands already, the converter goes on as it is, with what it holds back. That is
// also the only place that an input which cannot seek, such as a pipe, knows (it calls it -1).
unsigned long FileTextSource::skipFromPos(source_pos pos, unsigned long count) {
  if (!file_state) return 0;
  return file_state->or_go_back([&] {
    if (pos != getPos() && !file_state->go_to(pos)) return 0UL;
    return file_state->skip(count);
  });
}

}  // namespace textio
