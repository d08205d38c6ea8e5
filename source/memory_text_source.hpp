// MemoryTextSource: a text that is already in memory, lent to its reader without a copy.
//
//   std::u16string text = u"a,b\n1,2\n";
//   MemoryTextSource source(text.data(), text.size());
//   TextStream stream(&source);        // reads `text` in place
//
// The text is handed out unchanged: a caller that needs one code unit per character folds surrogate
// pairs first.
//
// Units      everything counts UTF-16 code units.
// Ownership  borrows the text, which must outlive the source and is never written to.
// Cost       no operation copies or allocates.
#pragma once

#include <cstddef>

#include <vltextstream/source/text_source.hpp>

namespace textio {

class VLTEXTSTREAM_EXPORT MemoryTextSource : public TextSource {
 public:
  MemoryTextSource(const char16_t* text, std::size_t length);

  // Hands out all of [begin, end) if `begin` is the next code unit to hand out, otherwise nothing.
  // `end` must lie within the lent text.
  std::size_t fillBuffer(char16_t* begin, char16_t* end) override;

  // Always true: there is no text beyond the lent one.
  bool isEoS() const override;

  BufferManager* getBufferManager() override;

  // The number of code units handed out by the last fill, or the end of the last skip.
  source_pos getPos() const override;

  // Lends the text from pos + count on; nothing if the text is shorter.
  unsigned long skipFromPos(source_pos pos, unsigned long count) override;

  ~MemoryTextSource() override;

 private:
  // Exposes the lent text for any size, also after it was handed out.
  class VLTEXTSTREAM_LOCAL LendingBufferManager : public BufferManager {
   public:
    explicit LendingBufferManager(MemoryTextSource* source) : source_(source) {}
    std::size_t resize(std::size_t n, char16_t*& begin, char16_t*& end) override;
    char16_t* begin() override;
    char16_t* end() override;
    ~LendingBufferManager() override;

   private:
    MemoryTextSource* source_;
  };

  char16_t* next_;
  char16_t* lent_end_;
  char16_t* text_;
  std::size_t position_ = 0;
  std::size_t length_;
  LendingBufferManager buffer_manager_;
  char16_t* lent_begin_;
};

}  // namespace textio
