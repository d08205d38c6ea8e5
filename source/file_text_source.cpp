// A fill reads one byte for each free code unit, converts the bytes, folds each surrogate pair into
// one code unit, and repeats with the room that is left. The converter keeps unfinished characters,
// so the chunk of bytes can be a local array.
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
constexpr std::size_t kBarrenPerByte = 1024;  // bytes without a code unit; ordinary text has fewer

// A converter keeps at most a surrogate pair for each byte that it got.
constexpr std::size_t kMostUnitsPerByte = 2;

struct CloseFile {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Asks for huge pages where `storage` contains whole ones. The first access to two megabytes costs
// far less with one huge page than with 512 pages of 4 KB. This is only advice: a system without
// huge pages refuses it.
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

  // Peeks at the next byte; the file position does not change.
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

  // Call directly after a short read, while errno still belongs to it.
  void note_read_error() {
    if (std::ferror(file.get()) != 0) cut_off(errno);
  }

  // Ends the text at the current position: bytes that a device delivers after an error need not
  // follow those before it.
  void cut_off(int error) {
    if (read_error == 0) read_error = error != 0 ? error : EIO;
    is_cut_off = true;
  }

  source_pos position() { return ::ftello64(file.get()); }

  // Restarts at `pos`. If the seek fails, the text has ended.
  bool go_to(source_pos pos) {
    converter.reset(pos == 0);
    most_kept_units = 0;
    if (::fseeko64(file.get(), pos, SEEK_SET) != 0) {
      cut_off(errno);
      return false;
    }
    std::clearerr(file.get());
    is_cut_off = false;
    return true;
  }

  // Returns the result of `step`. If it throws, the file goes back to its position before the call;
  // an input that cannot seek has lost those bytes, so its text has ended.
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

  // Whether a conversion without bytes could deliver text at the end of the file. The first one
  // can: the last read may have filled its room exactly, so that an unfinished character was not
  // yet known to be the last. Later ones can only deliver what found no room. The bound on the kept
  // code units ends the text of a converter that never says that it is empty.
  bool may_keep_text() const {
    return most_kept_units > 0 && (!is_flushed || converter.has_more());
  }

  // Counts a conversion of `bytes` bytes that delivered `units` code units.
  void note_conversion(std::size_t bytes, std::size_t units) {
    is_flushed = bytes == 0;
    if (bytes == 0) {
      most_kept_units -= std::min(most_kept_units, units);
    } else {
      most_kept_units += bytes * kMostUnitsPerByte;
    }
  }

  std::size_t decode(char16_t* begin, char16_t* end);
  unsigned long skip(unsigned long count);

  File file;
  StreamCodeConverter converter;
  int read_error = 0;
  bool is_cut_off = false;
  bool is_flushed = false;          // the last conversion had no bytes
  std::size_t most_kept_units = 0;  // code units that the converter can still hold
};

// Fills [begin, end) as far as the text reaches. Returns the number of code units written.
//
// Asks for one byte per free code unit, so that the converter need not keep code units back. While
// bytes give no code units, as shift sequences do, it asks for more and more of them: they may fill
// megabytes where one code unit of room is left.
std::size_t FileTextSource::FileState::decode(char16_t* begin, char16_t* end) {
  char chunk[kChunkBytes];
  char16_t* cursor = begin;
  std::size_t barren = 0;  // bytes since the last code unit
  while (cursor != end) {
    const auto room = static_cast<std::size_t>(end - cursor);
    const std::size_t more = std::min(barren / kBarrenPerByte, kChunkBytes);
    const std::size_t ask = std::max(std::min(room, kChunkBytes), more);
    const std::size_t got = at_end() ? 0 : read(chunk, ask);
    if (got == 0 && !may_keep_text()) break;
    char16_t* const first = cursor;
    const char* in = chunk;
    if (converter.convert(cursor, end, in, chunk + got, got < ask)) converter.reset(false);
    note_conversion(got, static_cast<std::size_t>(cursor - first));
    const bool has_delivered = cursor != first;  // an unpaired low surrogate folds to nothing
    barren = has_delivered ? 0 : barren + got;
    cursor = fold_surrogate_pairs(first, cursor);
    if (got == 0 && !has_delivered) break;
  }
  return static_cast<std::size_t>(cursor - begin);
}

// Decodes and discards up to `count` code units. Returns how many there were.
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
  std::clearerr(opened->file.get());  // earlier errors do not concern this text
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

// A skip from the current position does not seek, and the converter keeps its state. It is also the
// only skip that works for an input without positions, such as a pipe, whose position is always -1.
unsigned long FileTextSource::skipFromPos(source_pos pos, unsigned long count) {
  if (!file_state) return 0;
  return file_state->or_go_back([&] {
    if (pos != getPos() && !file_state->go_to(pos)) return 0UL;
    return file_state->skip(count);
  });
}

}  // namespace textio
