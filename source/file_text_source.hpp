// FileTextSource: the text of a file, decoded from a named encoding.
//
//   FileTextSource source;
//   source.init_stream(u"measurements.csv", "UTF-8");
//   TextStream text(&source);
//
// Every character is one code unit: a character outside the Basic Multilingual Plane arrives as
// U+001A, so that column arithmetic counts characters. Ill-formed bytes arrive as U+FFFD. A
// byte-order mark at byte 0 is dropped.
//
// Units      a source_pos is a byte offset in the file; everything else counts UTF-16 code units.
// Ownership  owns the file and the converter; closes the file when destroyed.
// Errors     see init_stream. A failed read or seek looks like the end of the file until a skip
//            leads elsewhere; read_error() returns its errno. Exceptions of the converter pass
//            through: the source returns to its position before the call, or has ended if its file
//            cannot seek.
// Cost       no heap allocation per fill; the file is read in chunks of at most 65,535 bytes. At
//            the end of the file the converter is called once more without bytes, and again only
//            while it has code units that found no room.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include <vltextstream/source/text_source.hpp>

namespace textio {

class StreamCodeConverter;

// Keeps the text of a file in one string, whose length is the size of the buffer. A large string
// uses huge pages where the system grants them.
class VLTEXTSTREAM_EXPORT FileStreamBufferManager : public BufferManager {
 public:
  // Growing leaves no spare capacity; shrinking keeps the storage for the next growth.
  std::size_t resize(std::size_t n, char16_t*& begin, char16_t*& end) override;
  char16_t* begin() override;
  char16_t* end() override;
  ~FileStreamBufferManager() override;

  // Exchanges the storage, its size included, with `other`.
  void swap(std::u16string& other) noexcept { units_.swap(other); }

 private:
  std::u16string units_;
};

class VLTEXTSTREAM_EXPORT FileTextSource : public TextSource {
 public:
  // A source without a file. It reads as an empty text until init_stream succeeds.
  FileTextSource();

  // Opens the file at the UTF-16 `path` and decodes it from `encoding`, a name that the host's
  // converter knows. Throws std::runtime_error "File not found" if the file cannot be opened for
  // any reason; the host's exception for an unknown encoding passes through. After an error the
  // source is unchanged.
  void init_stream(const std::u16string& path, const std::string& encoding);

  // The same with an open stream. The source closes it, even if this call throws. A null pointer
  // gives "File not found".
  void init_stream(std::FILE* file, const std::string& encoding);

  std::size_t fillBuffer(char16_t* begin, char16_t* end) override;
  bool isEoS() const override;
  BufferManager* getBufferManager() override;
  source_pos getPos() const override;
  unsigned long skipFromPos(source_pos pos, unsigned long count) override;
  ~FileTextSource() override;

  // The errno of the first read or seek that failed since the file was opened, 0 if none failed.
  // The text ends at the failure.
  int read_error() const;

  // Returns the open stream at its current position, null if there is none. The source is an empty
  // text from then on; decoded text stays in its buffer.
  std::FILE* release();

  // The converter of the file's encoding; null before init_stream.
  const StreamCodeConverter* converter() const;

 private:
  struct VLTEXTSTREAM_LOCAL FileState;

  FileStreamBufferManager buffer_manager_;
  std::unique_ptr<FileState> file_state;
};

}  // namespace textio
