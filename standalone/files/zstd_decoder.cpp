#include <vltextstream/standalone/files/zstd_decoder.hpp>

#include <cerrno>
#include <new>

#include <zstd_errors.h>

#include <vltextstream/standalone/files/read_problem.hpp>

namespace textio::standalone {
namespace {

int problem_of(std::size_t result) {
  switch (ZSTD_getErrorCode(result)) {
    case ZSTD_error_no_error:
      return 0;
    case ZSTD_error_memory_allocation:
      return ENOMEM;
    case ZSTD_error_frameParameter_windowTooLarge:
      return kDataNeedMoreMemory;
    case ZSTD_error_dictionary_wrong:
      return kDataNeedADictionary;
    default:
      return kDataDamaged;
  }
}

}  // namespace

ZstdDecoder::ZstdDecoder() : context_(ZSTD_createDCtx()) {
  if (!context_) throw std::bad_alloc();
  ZSTD_DCtx_setParameter(context_.get(), ZSTD_d_windowLogMax, kLargestWindowLog);
}

void ZstdDecoder::restart() {
  ZSTD_DCtx_reset(context_.get(), ZSTD_reset_session_only);
  between_frames_ = true;
}

// Each call of the zstd library stops at the end of a frame. It must not be called between two
// frames without input: it would report that a frame is incomplete.
int ZstdDecoder::decode(Input& input, Output& output) {
  std::size_t result = 0;
  bool goes_on = !between_frames_ || input.begin != input.end;
  while (goes_on) {
    ZSTD_inBuffer in = {input.begin, static_cast<std::size_t>(input.end - input.begin), 0};
    ZSTD_outBuffer out = {output.begin, static_cast<std::size_t>(output.end - output.begin), 0};
    result = ZSTD_decompressStream(context_.get(), &out, &in);
    input.begin += in.pos;
    output.begin += out.pos;
    between_frames_ = result == 0;
    goes_on = between_frames_ && input.begin != input.end && output.begin != output.end;
  }
  return problem_of(result);
}

}  // namespace textio::standalone
