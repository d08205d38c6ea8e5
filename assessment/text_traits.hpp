// What a text is when it is not a table, told from the look of its lines.
//
// Cost  linear in the sampled text.
#pragma once

#include <cstddef>
#include <limits>

#include <vltextstream/assessment/sampled_lines.hpp>

namespace textio::assessment {

// Shares of the lines that are not blank.
struct TextTraits {
  // Running text: at least five words, most of them plain, one blank between them; of Chinese and
  // Japanese, letters with the end of a sentence among them.
  double prose = 0;

  // As in source code: a bracket or semicolon at the end, a call, a block, a comment, a preprocessor line.
  double code = 0;

  // As in documents with tags or brackets: tags, or quoted keys, or brackets at an end; or the branches of a tree.
  double markup = 0;

  // 1 if all of the text is nested brackets or tags, see is_nested(); else 0.
  double nested = 0;

  // One key and its value with `=` or `:` between them, or a heading in brackets.
  double keyed = 0;

  // Lines that begin further in or out than the line before.
  double indented = 0;

  // Lines after a blank line, the first one not counted.
  double spaced = 0;

  // 1 / lines: few lines tell little. 0 if brackets or tags nest, which one line can tell.
  double brief = 0;
};

// Of the first `most` lines that are not blank.
TextTraits traits_of(const SampledLines& lines,
                     std::size_t most = std::numeric_limits<std::size_t>::max());

}  // namespace textio::assessment
