#include "tool/emit_command.hpp"

#include <exception>
#include <new>

#include <fmt/format.h>

#include <vltextstream/layout/file_error.hpp>

#include "tool/emit/targets.hpp"

namespace textio::tool {

int emit_program(const Arguments& arguments, const Streams& streams) {
  const std::string& file = arguments.files.front();
  try {
    const Facts facts = facts_of(file, arguments.settings, arguments.given);
    const std::string program = find_target(*arguments.emit)->program(facts);
    if (!write_out(program, "", streams)) return kFailed;
    if (facts.confidence.value_or(1) * 100 >= static_cast<double>(arguments.least_percent)) {
      return kSucceeded;
    }
    complain(fmt::format("{}: the layout is only {:.0f} % sure", file, *facts.confidence * 100),
             streams.err);
    return kDoubtful;
  } catch (const standalone::FileError& error) {
    complain(error.what(), streams.err);
  } catch (const std::bad_alloc&) {
    complain_of_memory(file, streams.err);
  } catch (const std::exception& error) {
    complain(file + ": " + error.what(), streams.err);
  }
  return kFailed;
}

}  // namespace textio::tool
