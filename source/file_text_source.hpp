// FileTextSource: the text of a file, decoded from a named encoding.
//
//   FileTextSource source;
//   source.init_stream(u"measurements.csv", "UTF-8");
//   TextStream text(&source);
//
// Every character is one code unit: a character outside the Basic Multilingual Plane arrives as
// U+001A, so that column arithmetic counts characters. Ill-formed bytes arrive as U+FFFD; a
// byte-order mark at byte 0 is dropped.
//
// Units      a source_pos is a byte offset in the file; everything else counts code units.
// Ownership  owns the file and the converter; closes the file when destroyed.
// Errors     see init_stream. A read or a seek that fails looks like the end of the file, until a
//            skip leads elsewhere; read_error tells. What the converter throws passes through; the
//            source goes back to where it was, or has ended when its file cannot go back.
// Cost       no heap allocation per fill; the file is read in chunks of at most 65,535 bytes.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include <vltextstream/source/text_source.hpp>

namespace textio {

class StreamCodeConverter;

// Keeps the text of a file in one string, whose length is the size of the buffer. A large one lies
// in huge pages where the system grants them.
class VLTEXTSTREAM_EXPORT FileStreamBufferManager : public BufferManager {
 public:
  // A growth leaves no spare capacity; a shrink keeps the storage for the next growth.
  std::size_t resize(std::size_t n, char16_t*& begin, char16_t*& end) override;
  char16_t* begin() override;
  char16_t* end() override;
  ~FileStreamBufferManager() override;

 private:
  std::u16string units_;
};

class VLTEXTSTREAM_EXPORT FileTextSource : public TextSource {
 public:
  // Without a file; reads as an empty text until init_stream succeeds.
  FileTextSource();

  // Opens the file at the UTF-16 `path` and decodes it from `encoding`, a name that the host's
  // converter knows. Throws std::runtime_error "File not found" when the file cannot be opened,
  // whatever the reason; what the host throws for an unknown encoding passes through. After an
  // error the source is what it was before.
  void init_stream(const std::u16string& path, const std::string& encoding);

  // The same with an open stream, which the source closes, also when this throws. A null pointer is
  // "File not found".
  void init_stream(std::FILE* file, const std::string& encoding);

  std::size_t fillBuffer(char16_t* begin, char16_t* end) override;
  bool isEoS() const override;
  BufferManager* getBufferManager() override;
  source_pos getPos() const override;
  unsigned long skipFromPos(source_pos pos, unsigned long count) override;
  ~FileTextSource() override;

  // The errno of the first read or seek that failed since the file was opened, 0 if none did; the
  // text ends there.
  int read_error() const;

  // Gives the open stream back, wherever reading has come to, null if there is none. The source is
  // an empty text from then on; what it has decoded stays in its buffer.
  std::FILE* release();

  // The converter of the file's encoding; null before init_stream.
  const StreamCodeConverter* converter() const;

 private:
  struct VLTEXTSTREAM_LOCAL FileState;

  FileStreamBufferManager buffer_manager_;
  std::unique_ptr<FileState> file_state;
};

}  // namespace textio
