// TextLines: the lines of a text as a line reader finds them, in ascending order, and their numbers.
//
//   TextLines lines(text, options);
//   lines.line().next;                 // the start of the second line
//   lines.go_to(500);
//   lines.number();                    // of the line that contains position 500
//
// Units      positions count code units; lines are numbered from 1.
// Ownership  refers to the text. The options must outlive the object.
#pragma once

#include <cstddef>
#include <memory>

#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/line_cursor.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>

namespace textio::standalone {

class TextLines {
 public:
  // Starts at the first line.
  TextLines(const Field& text, const parser::options& options)
      : text_(text),
        reader_(options),
        lines_(reader_.lines_of(text_)),
        line_(lines_->line_at(0).extent) {}

  // Advances to the line that contains position `pos`. Every line has a code unit or a line ending,
  // so the loop ends. It does not pass a U+FFFF.
  void go_to(std::size_t pos) {
    while (pos >= line_.next && !ends_at(text_, line_.next)) {
      line_ = lines_->line_at(line_.next).extent;
      ++number_;
    }
  }

  const FieldExtent& line() const { return line_; }
  std::size_t number() const { return number_; }

  // A line to return to.
  struct Place {
    FieldExtent line;
    std::size_t number;
  };
  Place place() const { return {line_, number_}; }
  void return_to(const Place& place) {
    line_ = place.line;
    number_ = place.number;
  }

 private:
  const Field text_;
  LineReaderStrategy reader_;
  std::unique_ptr<LineCursor> lines_;
  FieldExtent line_;
  std::size_t number_ = 1;
};

}  // namespace textio::standalone
