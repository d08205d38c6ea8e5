// EndLookScope: a look at the end of a file, at no more than the cost of reading it there.
//
//   {
//     const EndLookScope look;
//     std::fseek(file, 0, SEEK_END);        // ESPIPE if everything would have to be unpacked for this
//   }
//
// While a scope lives, the streams of its thread that are open already
//   - do not go to their end with SEEK_END if what is between would be read or unpacked: ESPIPE
//   - read at any position, whatever their read limit is: who looks there counts the bytes
//
// Errors   none.
// Threads  a scope counts on its own thread alone.
#pragma once

namespace textio::standalone {

class EndLookScope {
 public:
  EndLookScope() noexcept;
  ~EndLookScope();
  EndLookScope(const EndLookScope&) = delete;
  EndLookScope& operator=(const EndLookScope&) = delete;

 private:
  bool previous_;
};

// Whether this thread is in such a scope.
bool looks_at_end() noexcept;

}  // namespace textio::standalone
