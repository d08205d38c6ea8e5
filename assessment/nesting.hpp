// Whether a text is one document from its first character on, whose brackets or tags nest.
//
//   is_nested(u"{\"a\":[1,2],\"b\":")      // true: JSON, of which a sample may end anywhere
//   is_nested(u"<r><a>1</a><a>2</a>")      // true: XML
//   is_nested(u"[1] one\n[2] two\n")       // false
//
// Documents are often written in one line, in which the commas of a list look like those of a table. By chance a
// table hardly ever follows such a grammar from its first character to its last.
//
// Units    UTF-16.
// Errors   nothing throws but std::bad_alloc.
// Cost     linear in the text if it begins as a document does, otherwise constant.
// Threads  all functions may run at the same time.
#pragma once

#include <string_view>

namespace textio::assessment {

// Of JSON, one value after another, each an object or an array, as in JSON lines; or of XML or HTML, with all text
// inside of elements. At least one value must be complete, or one element closed.
bool is_nested(std::u16string_view text);

}  // namespace textio::assessment
