#include <vltextstream/strategy/field.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>

#include <vltextstream/strategy/field_array.hpp>
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::text_of;

TEST(FieldValue, StartsWithoutText) {
  const Field field;
  EXPECT_EQ(field.data, nullptr);
  EXPECT_EQ(field.length, 0u);
}

TEST(FieldValue, IsAViewOfTheGivenCodeUnits) {
  const ExactText text(u"abc");
  const Field field(text.data() + 1, 2);
  EXPECT_EQ(field.data, text.data() + 1);
  EXPECT_EQ(field.length, 2u);
  EXPECT_EQ(text_of(field), u"bc");
}

TEST(FieldValue, CopyingAndMovingCopyTheTwoWords) {
  const ExactText text(u"abc");
  Field field(text.data(), 3);
  const Field copied(field);
  const Field moved(std::move(field));
  Field assigned;
  assigned = copied;
  for (const Field& view : {copied, moved, assigned}) {
    EXPECT_EQ(view.data, text.data());
    EXPECT_EQ(view.length, 3u);
  }
}

TEST(FieldValue, HoldsAVirtualDestructorAndTwoWords) {
  static_assert(std::is_polymorphic_v<Field>);
  static_assert(std::has_virtual_destructor_v<Field>);
  EXPECT_EQ(sizeof(Field), sizeof(void*) + sizeof(const char16_t*) + sizeof(std::size_t));
}

TEST(FieldEmpty, IsOneObjectOfLengthZeroWithData) {
  EXPECT_EQ(&empty_field(), &empty_field());
  EXPECT_EQ(empty_field().length, 0u);
  EXPECT_NE(empty_field().data, nullptr);
}

TEST(FieldExtentValue, StartsEmptyAtZero) {
  const FieldExtent extent;
  EXPECT_EQ(extent.field.length, 0u);
  EXPECT_EQ(extent.next, 0u);
}

TEST(FieldArrayValue, StartsWithoutFieldsAndLines) {
  const FieldArray array;
  EXPECT_TRUE(array.fields.empty());
  EXPECT_TRUE(array.counts.empty());
}

TEST(MutableFieldView, IsAFieldThatOwnsNothingAtFirst) {
  static_assert(std::is_base_of_v<Field, MutableField>);
  static_assert(std::has_virtual_destructor_v<MutableField>);
  const ExactText text(u"abc");
  const MutableField field(text.field());
  EXPECT_EQ(field.data, text.data());
  EXPECT_EQ(field.length, 3u);
  EXPECT_FALSE(field.owns_storage);
}

TEST(MutableFieldView, HoldsItsMembersInTheirOrder) {
  const MutableField field{Field()};
  const auto address = [](const auto& member) { return reinterpret_cast<std::size_t>(&member); };
  EXPECT_EQ(address(field.owns_storage) - reinterpret_cast<std::size_t>(&field), sizeof(Field));
  EXPECT_LT(address(field.owns_storage), address(field.inline_storage));
  EXPECT_LT(address(field.inline_storage), address(field.storage));
  EXPECT_EQ(sizeof field.inline_storage, 32 * sizeof(char16_t));
}

struct OwnStorageCase {
  const char* rule;
  std::size_t length;
  bool inside;
};
std::ostream& operator<<(std::ostream& out, const OwnStorageCase& row) { return out << row.rule; }

const OwnStorageCase kOwnStorageCases[] = {
    {"AnEmptyTextStaysInside", 0, true},
    {"OneUnitStaysInside", 1, true},
    {"OneBelowTheRoomStaysInside", MutableField::kInlineUnits - 1, true},
    {"AsMuchAsTheRoomGetsABlock", MutableField::kInlineUnits, false},
    {"OneMoreThanTheRoomGetsABlock", MutableField::kInlineUnits + 1, false},
    {"ALongTextGetsABlock", 5000, false},
};

std::u16string alphabet_of(std::size_t length) {
  std::u16string text;
  for (std::size_t i = 0; i < length; ++i) text.push_back(static_cast<char16_t>(u'A' + i % 57));
  return text;
}

class MutableFieldOwnStorage : public testing::TestWithParam<OwnStorageCase> {};

TEST_P(MutableFieldOwnStorage, CopiesTheTextToWhereItCanBeWritten) {
  const std::u16string expected = alphabet_of(GetParam().length);
  const ExactText text(expected);
  MutableField field(text.field());
  char16_t* const storage = field.own_storage();
  EXPECT_TRUE(field.owns_storage);
  EXPECT_EQ(field.storage, storage);
  EXPECT_EQ(field.data, storage);
  EXPECT_NE(field.data, text.data());
  EXPECT_EQ(storage == field.inline_storage, GetParam().inside);
  EXPECT_EQ(text_of(field), expected);
}

TEST_P(MutableFieldOwnStorage, DoesNotChangeTheSourceWhenTheCopyIsWritten) {
  const std::u16string expected = alphabet_of(GetParam().length);
  const ExactText text(expected);
  MutableField field(text.field());
  char16_t* const storage = field.own_storage();
  for (std::size_t i = 0; i < field.length; ++i) storage[i] = u'#';
  EXPECT_EQ(text.view(), expected);
  EXPECT_EQ(text_of(field), std::u16string(GetParam().length, u'#'));
}

TEST_P(MutableFieldOwnStorage, CopiesOnlyOnce) {
  const ExactText text(alphabet_of(GetParam().length));
  MutableField field(text.field());
  char16_t* const storage = field.own_storage();
  if (field.length > 0) storage[0] = u'#';
  const std::u16string edited = text_of(field);
  EXPECT_EQ(field.own_storage(), storage);
  EXPECT_EQ(text_of(field), edited);
}

INSTANTIATE_TEST_SUITE_P(Table, MutableFieldOwnStorage, testing::ValuesIn(kOwnStorageCases),
                         testing_support::ByRule());

TEST(MutableFieldDestructor, FreesItsBlockThroughTheBase) {
  const ExactText text(alphabet_of(100));
  auto* field = new MutableField(text.field());
  field->own_storage();
  const Field* base = field;
  delete base;  // the leak checker would report a block that is still allocated
}

}  // namespace
}  // namespace textio
