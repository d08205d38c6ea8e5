#include <vltextstream/strategy/field.hpp>

#include <algorithm>

namespace textio {

const Field& empty_field() {
  static const Field field(u"", 0);
  return field;
}

MutableField::~MutableField() {
  if (owns_storage && storage != inline_storage) delete[] storage;
}

char16_t* MutableField::own_storage() {
  if (!owns_storage) {
    if (length >= kInlineUnits) storage = new char16_t[length];
    std::copy_n(data, length, storage);
    data = storage;
    owns_storage = true;
  }
  return storage + (data - storage);
}

}  // namespace textio
