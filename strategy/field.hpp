// Field: a view of UTF-16 text that another object owns.
//
//   Field field(text.data(), 3);       // the first three code units of `text`
//
// Units      `length` counts UTF-16 code units. A text stream has one for each character.
// Ownership  points into the buffer of a text stream, into the text that a strategy was given, or
//            to an empty constant. A field from a stream is valid until the stream advances or
//            loads more text.
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

// The field of an empty line: length 0, `data` not null. A single object with static lifetime.
VLTEXTSTREAM_EXPORT const Field& empty_field();

// MutableField: a field whose text can be modified without changing the text that it viewed.
//
// Ownership  a view until `own_storage` copies the text: into the object itself if it is shorter
//            than `kInlineUnits` code units, otherwise into a block that the object owns.
// Errors     own_storage throws std::bad_alloc and leaves the field unchanged.
class VLTEXTSTREAM_EXPORT MutableField : public Field {
 public:
  static constexpr std::size_t kInlineUnits = 32;

  explicit MutableField(const Field& view) : Field(view) {}
  MutableField(const MutableField&) = delete;
  MutableField& operator=(const MutableField&) = delete;
  ~MutableField() override;

  // Copies the text on the first call. Returns the writable copy, which `data` points to from then
  // on.
  char16_t* own_storage();

  bool owns_storage = false;
  char16_t inline_storage[kInlineUnits];
  char16_t* storage = inline_storage;
};

// The result of one scanning step: a field, and the position at which the next step starts. `next`
// counts code units from the start of the scanned text. A consumed line ending or delimiter is
// between the end of the field and `next`.
struct FieldExtent {
  Field field;
  std::size_t next = 0;
};

}  // namespace textio
