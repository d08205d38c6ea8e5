// Field: a view of UTF-16 text that somebody else owns.
//
//   Field field(text.data(), 3);       // the first three units of `text`
//
// Units      `length` counts UTF-16 code units, one per character of the text.
// Ownership  points into the buffer of a text stream, into the text handed to a strategy, or at an
//            empty constant. A field from a stream is valid until the stream is advanced or loads
//            more text.
#pragma once

#include <cstddef>

#include <vltextstream/host/export.hpp>

namespace textio {

class VLTEXTSTREAM_EXPORT Field {
 public:
  Field() = default;
  Field(const char16_t* first, std::size_t count) : data(first), length(count) {}
  Field(const Field&) = default;
  Field(Field&&) = default;
  Field& operator=(const Field&) = default;
  Field& operator=(Field&&) = default;
  virtual ~Field() = default;

  const char16_t* data = nullptr;
  std::size_t length = 0;
};

// The field of an empty line: length 0, `data` not null. One object, alive until the program ends.
VLTEXTSTREAM_EXPORT const Field& empty_field();

// MutableField: a field whose text can be rewritten without touching what it was a view of.
//
// Ownership  a view until `own_storage` copies the text into the object: texts shorter than
//            `kInlineUnits` units into the object itself, longer ones into a block it owns.
// Errors     own_storage throws std::bad_alloc and then leaves the field as it was.
class VLTEXTSTREAM_EXPORT MutableField : public Field {
 public:
  static constexpr std::size_t kInlineUnits = 32;

  explicit MutableField(const Field& view) : Field(view) {}
  MutableField(const MutableField&) = delete;
  MutableField& operator=(const MutableField&) = delete;
  ~MutableField() override;

  // Copies the text, once, and returns where it can be written; `data` points there from now on.
  char16_t* own_storage();

  bool owns_storage = false;
  char16_t inline_storage[kInlineUnits];
  char16_t* storage = inline_storage;
};

// What one step of a scan found: a field, and the index at which the next step starts. `next`
// counts units from the start of the scanned text; a consumed line ending or delimiter lies
// between the field's end and it.
struct FieldExtent {
  Field field;
  std::size_t next = 0;
};

}  // namespace textio
