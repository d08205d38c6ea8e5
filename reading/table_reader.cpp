// Three steps, one after the other for each block: the text is decoded and cut into records (RecordStream), the
// records become columns (make_batch), and the account and the plan of the columns are settled in the order of the
// file. Only the second runs in several threads. A batch that was made with a plan which an earlier block has
// changed meanwhile is made again, so that the result does not depend on the threads.
#include <vltextstream/reading/table_reader.hpp>

#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include <fmt/format.h>

#include <vltextstream/layout/given_settings.hpp>
#include <vltextstream/reading/batch_maker.hpp>
#include <vltextstream/reading/opened_source.hpp>
#include <vltextstream/reading/record_stream.hpp>
#include <vltextstream/reading/table_plan.hpp>

namespace textio::reading {
namespace {

using parser::row_rule;
using standalone::Layout;
using standalone::LayoutMode;

constexpr std::size_t kLeastWindow = 256;

// Positions in a window have 32 bits, and a window is doubled until it holds the record.
constexpr std::size_t kMostCharacters = std::size_t{1} << 30;

bool omits_columns(const parser::options& rules) {
  return rules.missing_rule == row_rule::omitvar || rules.import_error_rule == row_rule::omitvar ||
         rules.partial_field_rule == parser::partial_field_action::omitvar;
}

RecordShape shape_of(const Layout& layout, const RecordCutter& cutter) {
  return {layout.mode,
          cutter.quote(),
          cutter.escape(),
          layout.is_framed,
          layout.dialect.blanks_after_delimiters,
          layout.widths};
}

void check(const ReadSettings& settings) {
  if (settings.num_threads == 0) {
    throw ReadError("num_threads: Expected at least 1, got 0.", 0, 0);
  }
  if (settings.longest_record == 0 ||
      settings.longest_record > kMostCharacters) {
    throw ReadError(fmt::format("longest_record: Expected from 1 to {} characters, got {}.",
                                kMostCharacters, settings.longest_record),
                    0, 0);
  }
  if (!standalone::has_usual_line_endings(settings.detect)) {
    throw ReadError(
        "LineEnding: a table is read with the line endings \"\\r\\n\", \"\\n\" and \"\\r\" alone",
        0, 0);
  }
}

}  // namespace

// -------------------------------------------------------------------------------------------------

ReadError::ReadError(const std::string& message, std::uint64_t line, std::size_t column)
    : std::runtime_error(message), line_(line), column_(column) {}
ReadError::~ReadError() = default;

class TableReader::Work {
 public:
  Work(Opened opened, const ReadSettings& settings)
      : source_(std::move(opened.source)), layout_(std::move(opened.layout)), settings_(settings) {
    check(settings_);
    settings_.window = std::max(std::min(settings_.window, settings_.longest_record), kLeastWindow);
    plan_ = std::make_shared<const TablePlan>(plan_of(layout_, settings_));
    if (omits_columns(settings_.detect.options) || settings_.two_passes) learn();
    File file = opened.file ? std::move(opened.file) : source_.open();
    stream_.emplace(TextInput(std::move(file), source_.name(), layout_.encoding,
                              standalone::line_endings_of(settings_.detect)),
                    layout_, settings_);
    shape_ = shape_of(layout_, stream_->cutter());
    note_names();
    if (settings_.num_threads > 1) start_threads();
  }

  ~Work() { stop_threads(); }
  Work(const Work&) = delete;
  Work& operator=(const Work&) = delete;

  const Layout& layout() const { return layout_; }
  const std::vector<std::string>& names() const { return names_; }
  const Account& account() const { return account_; }
  std::size_t row_names_column() const {
    return static_cast<std::size_t>(settings_.detect.options.row_names_field);
  }

  std::optional<Batch> next() {
    while (!has_ended_) {
      std::optional<Made> made;
      try {
        made = next_made();
      } catch (...) {
        has_ended_ = true;
        throw;
      }
      if (!made) {
        has_ended_ = true;
        break;
      }
      settle(made->batch, made->block.ill_formed_parts);
      keep_used(std::move(made->block));
      if (made->batch.batch.num_rows > 0) return std::move(made->batch.batch);
    }
    return std::nullopt;
  }

 private:
  using Plan = std::shared_ptr<const TablePlan>;

  struct Made {
    Block block;
    MadeBatch batch;
    std::size_t version = 0;  // of the plan it was made with
    std::exception_ptr failure = nullptr;
    bool is_end = false;
  };

  // ------------------------------------------------------------------------------------------------
  // A first pass

  // What is learnt of the columns by reading all of them.
  void learn() {
    if (!source_.is_repeatable()) {
      throw ReadError(
          fmt::format(
              "{} cannot be read twice, which a rule \"omitvar\" or two passes need; write it "
              "to a file first",
              source_.name()),
          0, 0);
    }
    ReadSettings settings = settings_;
    settings.two_passes = false;
    settings.rejects = nullptr;
    parser::options& rules = settings.detect.options;
    const parser::options rules_given = rules;
    if (rules.missing_rule == row_rule::omitvar) rules.missing_rule = row_rule::fill;
    if (rules.import_error_rule == row_rule::omitvar) rules.import_error_rule = row_rule::fill;
    if (rules.partial_field_rule == parser::partial_field_action::omitvar) {
      rules.partial_field_rule = parser::partial_field_action::fill;
    }
    Work first(Opened(source_, layout_), settings);
    while (first.next()) {
    }
    TablePlan plan = *first.plan_;
    plan.version = 0;
    const auto leave_out = [&](const std::vector<std::size_t>& counts) {
      for (std::size_t c = 0; c < counts.size() && c < plan.columns.size(); ++c) {
        if (counts[c] > 0) plan.columns[c].is_left_out = true;
      }
    };
    if (rules_given.missing_rule == row_rule::omitvar) leave_out(first.missing_);
    if (rules_given.import_error_rule == row_rule::omitvar) leave_out(first.misfits_);
    if (rules_given.partial_field_rule == parser::partial_field_action::omitvar) {
      leave_out(first.cut_short_);
    }
    plan_ = std::make_shared<const TablePlan>(std::move(plan));
  }

  // ------------------------------------------------------------------------------------------------
  // Batches in the order of the file

  std::optional<Made> next_made() {
    if (settings_.num_threads <= 1) {
      std::optional<Block> block = stream_->next(take_used());
      if (!block) return std::nullopt;
      Made made{std::move(*block), {}};
      made.batch = make_batch(made.block, *plan_, shape_, settings_, room_);
      return made;
    }
    Made made = take_from_threads();
    if (made.failure) std::rethrow_exception(made.failure);
    if (made.is_end) return std::nullopt;
    if (made.version != plan_->version) {
      made.batch = make_batch(made.block, *plan_, shape_, settings_, room_);
    }
    return made;
  }

  void settle(MadeBatch& made, std::size_t ill_formed_parts) {
    for (const FateRun& run : made.fates) account_.add(run.fate, run.num_lines, run.num_bytes);
    for (OddPlace& place : made.places) note(std::move(place));
    for (std::size_t i = 0; i < kOddities; ++i) account_.oddities[i] += made.oddities[i];
    account_.oddities[static_cast<std::size_t>(Oddity::ill_formed)] += ill_formed_parts;
    add_counts(made.missing, missing_);
    add_counts(made.misfits, misfits_);
    add_counts(made.cut_short, cut_short_);
    if (settings_.rejects != nullptr) {
      for (const MadeBatch::Reject& reject : made.rejects) {
        settings_.rejects->add(reject.line, reject.text, reject.reason);
      }
    }
    if (made.error) {
      has_ended_ = true;
      throw *made.error;
    }
    if (made.plan) {
      // All rows before lack a column that is added.
      for (std::size_t c = plan_->columns.size(); c < made.plan->columns.size(); ++c) {
        missing_[c] += account_.num_rows;
      }
    }
    account_.num_rows += made.batch.num_rows;
    if (!made.plan) return;
    const std::lock_guard<std::mutex> lock(mutex_);
    plan_ = std::make_shared<const TablePlan>(std::move(*made.plan));
    note_names();
  }

  void note(OddPlace place) {
    std::size_t& places = num_places_[static_cast<std::size_t>(place.oddity)];
    if (places == Account::kMostPlaces) return;
    ++places;
    account_.places.push_back(std::move(place));
  }

  static void add_counts(const std::vector<std::size_t>& counts, std::vector<std::size_t>& sums) {
    if (sums.size() < counts.size()) sums.resize(counts.size());
    for (std::size_t c = 0; c < counts.size(); ++c) sums[c] += counts[c];
  }

  void note_names() {
    names_.clear();
    for (const PlannedColumn& column : plan_->columns) {
      if (!column.is_left_out) names_.push_back(column.name);
    }
  }

  // ------------------------------------------------------------------------------------------------
  // Memory of blocks, which are used again: memory that is new costs more than what is done with it

  Block take_used() {
    const std::lock_guard<std::mutex> lock(used_mutex_);
    if (used_.empty()) return {};
    Block block = std::move(used_.back());
    used_.pop_back();
    return block;
  }

  void keep_used(Block block) {
    const std::lock_guard<std::mutex> lock(used_mutex_);
    used_.push_back(std::move(block));
  }

  // ------------------------------------------------------------------------------------------------
  // Threads

  // No more blocks than this wait to be taken.
  std::size_t most_waiting() const { return std::size_t{settings_.num_threads} + 1; }

  // If the system has fewer threads than are wanted, those that there are.
  void start_threads() {
    done_.resize(most_waiting());
    threads_.reserve(settings_.num_threads);
    try {
      for (unsigned i = 0; i < settings_.num_threads; ++i) {
        threads_.emplace_back([this] { make_batches(); });
      }
    } catch (const std::system_error&) {
      if (threads_.empty()) settings_.num_threads = 1;
    } catch (...) {
      stop_threads();
      throw;
    }
  }

  void stop_threads() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      is_stopped_ = true;
    }
    may_read_.notify_all();
    for (std::thread& thread : threads_) thread.join();
  }

  // What each thread does: read a block, make it, put it where it is waited for.
  void make_batches() {
    BatchRoom room;
    for (;;) {
      Made made;
      std::uint64_t number = 0;
      if (!read_block(made, number)) return;
      if (!made.failure && !made.is_end) make(made, room);
      {
        const std::lock_guard<std::mutex> lock(mutex_);
        done_[number % done_.size()] = std::move(made);
      }
      is_done_.notify_one();
    }
  }

  // False if there is nothing more to do.
  bool read_block(Made& made, std::uint64_t& number) {
    const std::lock_guard<std::mutex> reading(stream_mutex_);
    {
      std::unique_lock<std::mutex> lock(mutex_);
      may_read_.wait(lock, [this] {
        return is_stopped_ || is_read_ || num_read_ < num_taken_ + most_waiting();
      });
      if (is_stopped_ || is_read_) return false;
      number = num_read_++;
    }
    try {
      std::optional<Block> block = stream_->next(take_used());
      made.is_end = !block;
      if (block) made.block = std::move(*block);
    } catch (...) {
      made.failure = std::current_exception();
    }
    if (made.is_end || made.failure) {
      const std::lock_guard<std::mutex> lock(mutex_);
      is_read_ = true;
    }
    return true;
  }

  void make(Made& made, BatchRoom& room) {
    try {
      Plan plan;
      {
        const std::lock_guard<std::mutex> lock(mutex_);
        plan = plan_;
      }
      made.version = plan->version;
      made.batch = make_batch(made.block, *plan, shape_, settings_, room);
    } catch (...) {
      made.failure = std::current_exception();
    }
  }

  Made take_from_threads() {
    std::unique_lock<std::mutex> lock(mutex_);
    std::optional<Made>& done = done_[num_taken_ % done_.size()];
    is_done_.wait(lock, [&] { return done.has_value(); });
    Made made = std::move(*done);
    done.reset();
    ++num_taken_;
    lock.unlock();
    may_read_.notify_all();
    return made;
  }

  Source source_;
  Layout layout_;
  ReadSettings settings_;
  std::optional<RecordStream> stream_;
  RecordShape shape_;
  Plan plan_;
  std::vector<std::string> names_;
  Account account_;
  std::array<std::size_t, kOddities> num_places_{};
  std::vector<std::size_t> missing_;  // in each column
  std::vector<std::size_t> misfits_;
  std::vector<std::size_t> cut_short_;
  bool has_ended_ = false;

  BatchRoom room_;  // of the thread that calls next()
  std::mutex used_mutex_;
  std::vector<Block> used_;

  std::vector<std::thread> threads_;
  std::mutex stream_mutex_;  // of the stream, so that blocks are read in their order
  std::mutex mutex_;         // of the plan and of all below
  std::condition_variable may_read_;
  std::condition_variable is_done_;
  std::vector<std::optional<Made>> done_;  // block n is at n % size
  std::uint64_t num_read_ = 0;
  std::uint64_t num_taken_ = 0;
  bool is_read_ = false;
  bool is_stopped_ = false;
};

// -------------------------------------------------------------------------------------------------

TableReader::TableReader(std::unique_ptr<Work> work) : work_(std::move(work)) {}

TableReader::TableReader(const std::string& path, const ReadSettings& settings)
    : work_(std::make_unique<Work>(detected({path, std::nullopt}, settings.detect), settings)) {}

TableReader::TableReader(const std::string& path, const Layout& layout,
                         const ReadSettings& settings)
    : work_(std::make_unique<Work>(Opened({path, std::nullopt}, layout), settings)) {}

TableReader TableReader::of_bytes(std::string_view bytes, const ReadSettings& settings) {
  return TableReader(std::make_unique<Work>(detected({"", bytes}, settings.detect), settings));
}

TableReader TableReader::of_bytes(std::string_view bytes, const Layout& layout,
                                  const ReadSettings& settings) {
  return TableReader(std::make_unique<Work>(Opened({"", bytes}, layout), settings));
}

TableReader::TableReader(TableReader&&) noexcept = default;
TableReader& TableReader::operator=(TableReader&&) noexcept = default;
TableReader::~TableReader() = default;

const Layout& TableReader::layout() const { return work_->layout(); }
const std::vector<std::string>& TableReader::names() const { return work_->names(); }
std::size_t TableReader::row_names_column() const { return work_->row_names_column(); }
std::optional<Batch> TableReader::next() { return work_->next(); }
const Account& TableReader::account() const { return work_->account(); }

}  // namespace textio::reading
