"""Makes the tables of docs/performance.md from the output of the benchmark programs.

    report.py goals RESULTS                    prints the goals
    report.py document RESULTS DOCUMENT        writes the tables of `scripts/bench` into DOCUMENT
    report.py steps RESULTS CACHE [DOCUMENT]   prints the table of `scripts/bench-steps`, or writes
                                               it into DOCUMENT

RESULTS is a folder with a file *.json for each run of a program. The median of the repetitions
counts; the minimum is shown beside it, because disturbances only make a run longer. For the steps,
RESULTS has such a folder for each commit, and rows.tsv, which names the commits in order. CACHE is
the CMakeCache.txt of the build of the programs. Each table is between markers of its own; the rest
of a document does not change.
"""
import glob
import json
import math
import os
import re
import statistics
import subprocess
import sys
import textwrap
from datetime import date

COPY = "machine/memory_copy"
MEASURED = "<!-- measured -->", "<!-- end of measured -->"
STEPS = "<!-- steps -->", "<!-- end of steps -->"


# --- what was measured ------------------------------------------------------------------------

class Figure:
    """One step: the times of its repetitions in microseconds, and its counters."""

    def __init__(self):
        self.times = []
        self.facts = {}

    median = property(lambda self: statistics.median(self.times))
    least = property(lambda self: min(self.times))

    @property
    def bytes_per_second(self):
        rate = self.facts.get("bytes_per_second")
        return rate and rate * self.facts["time of the rate"] / self.median


def read_results(folder):
    figures = {}
    for path in sorted(glob.glob(os.path.join(folder, "*.json"))):
        with open(path, encoding="utf-8") as file:
            runs = json.load(file)["benchmarks"]
        for run in runs:
            if run["run_type"] != "iteration":
                continue
            add_run(figures, run)
    return figures


def add_run(figures, run):
    name = run["run_name"]
    is_real = name.endswith("/real_time")
    figure = figures.setdefault(name.removesuffix("/real_time"), Figure())
    time = run["real_time" if is_real else "cpu_time"]
    microseconds = time * {"ns": 1e-3, "us": 1.0, "ms": 1e3, "s": 1e6}[run["time_unit"]]
    figure.times.append(microseconds)
    figure.facts.update({key: value for key, value in run.items() if isinstance(value, (int, float))})
    figure.facts["time of the rate"] = microseconds


# --- goals ------------------------------------------------------------------------------------

class Goal:
    """A goal: `measure` gives the figure and the limit, given a function that reads times."""

    def __init__(self, what, unit, measure):
        self.what, self.unit, self.measure = what, unit, measure

    def text(self, value):
        digits = 4 if abs(value) < 0.1 else 2 if value < 10 else 1 if value < 100 else 0
        return f"{value:.{digits}f}{self.unit}"


def ratio(name, to, limit):
    return lambda figures, time: (time(figures[name]) / time(figures[to]), limit)


def allocations(figures, _):
    facts = figures["detect_layout/regular/100_lines"].facts
    return facts["allocations"], 40 * facts["candidates"] + 100


def allocations_per_line(figures, _):
    few = figures["detect_layout/regular/100_lines"].facts
    all_lines = figures["detect_layout/regular/all_lines"].facts
    more = all_lines["allocations"] - few["allocations"]
    return more / (all_lines["lines"] - few["lines"]), 0.01


GOALS = [
    Goal("Open a file of 4 MB of ASCII, decode the sample of 4,194,304 characters and cut it: at most"
         " 8 copies", " copies", ratio("open_decode_cut/ascii", COPY, 8)),
    Goal("The same with 5 % of two-byte characters in UTF-8: at most 20 copies", " copies",
         ratio("open_decode_cut/utf8_two_byte", COPY, 20)),
    Goal("`pick_strategy`, 20 columns, 100 lines: at most the cost of decoding the ASCII sample once",
         " decodings", ratio("pick_strategy/regular/100_lines", "decode/ascii", 1)),
    Goal("`pick_strategy`, 20 columns, 4 candidate characters, all lines of the sample: at most 40 copies",
         " copies", ratio("pick_strategy/regular/all_lines", COPY, 40)),
    Goal("`pick_strategy`, quoted fields, all lines of the sample: at most 80 copies", " copies",
         ratio("pick_strategy/quoted/all_lines", COPY, 80)),
    Goal("56 candidate characters, all lines: at most 15 times as long as 4", " times",
         ratio("pick_strategy/all_candidates/all_lines", "pick_strategy/regular/all_lines", 15)),
    Goal("Allocations of a detection, file of 20 columns, 100 lines: at most 40 for each candidate"
         " and 100", "", allocations),
    Goal("None per line or field: fewer than one more for each hundred lines more (vectors"
         " that double)", "", allocations_per_line),
    Goal("A whole detection of a file of 10 KB by the cascade, after the first: at most 150 microseconds", " us",
         lambda figures, time: (time(figures["detect_small_file"]), 150)),
    Goal("A large file costs what a small one costs: 100 MB at most 3 times as long as 10 KB", " times",
         ratio("detect_large_file", "detect_small_file", 3)),
    Goal("The assessment of 10 KB: at most 3 times as long as the cascade alone", " times",
         ratio("assess_small_file", "detect_small_file", 3)),
    Goal("The assessment of 4 MB: at most 3 times as long as the cascade for 100 MB", " times",
         ratio("assess_large_file", "detect_large_file", 3)),
    Goal("Peak memory of `vltext` on a file of 100 MB: at most 40 MB", " MB",
         lambda figures, _: (figures["process/large_file"].facts["peak_bytes_of_process"] / 1e6, 40)),
]


def by_median(figure):
    return figure.median


def by_least(figure):
    return figure.least


ASSESSMENT_COST = """\
Where the assessment misses its goal: of the instructions for 10 KB, 45 % weigh the readings, of which this table has ten, and
30 % describe the columns, which the cascade is measured without; the cascade itself takes 9 %, the file 7 %
(`valgrind --tool=callgrind build/bench/bin/detection_bench --benchmark_filter=^assess_small_file$`). No function alone takes more
than a tenth."""


def goals_table(figures):
    rows = []
    for goal in GOALS:
        value, limit = goal.measure(figures, by_median)
        from_least, _ = goal.measure(figures, by_least)
        rows.append([goal.what, goal.text(limit), goal.text(value), goal.text(from_least),
                     "met" if value <= limit else "missed"])
    return table(["goal", "limit", "measured", "by the least times", "verdict"], rows, "lrrrl")


# --- tables -----------------------------------------------------------------------------------

def table(head, rows, align):
    rule = "|" + "|".join({"l": "---", "r": "--:"}[side] for side in align) + "|"
    lines = ["| " + " | ".join(row) + " |" for row in [head, *rows]]
    return "\n".join([lines[0], rule, *lines[1:]])


def time_text(microseconds):
    for limit, factor, unit in ((1.0, 1e3, "ns"), (1e3, 1.0, "us"), (1e6, 1e-3, "ms"), (math.inf, 1e-6, "s")):
        if microseconds < limit:
            return f"{three_digits(microseconds * factor)} {unit}"
    return ""


def three_digits(value):
    if value == 0:
        return "0"
    digits = max(0, 2 - math.floor(math.log10(abs(value))))
    return f"{value:,.{digits}f}"


def bytes_text(count):
    for limit, factor, unit in ((1e3, 1, "B"), (1e6, 1e-3, "KB"), (1e9, 1e-6, "MB"), (math.inf, 1e-9, "GB")):
        if count < limit:
            return f"{three_digits(count * factor)} {unit}"
    return ""


HEAD, ALIGN = ["time", "least", "copies", "per second", "allocations", "peak"], "rrrrrr"


def cells(figure, copy):
    # If a search ends early, a rate of its input is meaningless.
    rate = figure.bytes_per_second
    return [time_text(figure.median), time_text(figure.least), three_digits(figure.median / copy),
            bytes_text(rate) if rate and rate < 1e11 else "-", f"{figure.facts['allocations']:,.0f}",
            bytes_text(figure.facts["peak_bytes"])]


def steps_table(figures, prefixes, copy):
    rows = [[name.replace("_", " "), *cells(figure, copy)] for prefix in prefixes
            for name, figure in figures.items() if name.startswith(prefix)]
    return table(["step", *HEAD], rows, "l" + ALIGN)


STAGES = [
    ("From the file to the sample", ["open_decode_cut/"]),
    ("Decoding by the fastest route, by the one through ICU, and the making of a converter",
     ["decode/", "decode_by_icu/", "make_converter/"]),
    ("Scans of a stream", ["scan/"]),
    ("A window that moves to the end of a file", ["advance/"]),
    ("Sampling, cutting into fields, and both with the valuation",
     ["sample/", "tokenise/", "sample_tokenise_value/"]),
    ("Classes of fields: a thousand fields, all columns, one field of nothing but doubled quotes",
     ["classify_1000_fields/", "classify_columns/", "unquote"]),
    ("Dates: 32 fields, with English names and those of one locale", ["recognise_dates/", "bind_known_locale"]),
    ("Values of columns, of 65,536 cells", ["cells/"]),
    ("Header lines, of 100,000 lines", ["header_lines/"]),
    ("Candidates and filters (of 56 candidates)", ["candidates/", "filter/"]),
]

SAMPLES = ["100_lines", "1000_lines", "all_lines"]


def sample_text(sample):
    return {"100_lines": "100 lines", "1000_lines": "1,000 lines", "all_lines": "all lines"}[sample]


def shapes_table(figures, prefix, copy):
    rows = []
    for name in dict.fromkeys(name.split("/")[1] for name in figures if name.startswith(prefix + "/")):
        for sample in SAMPLES:
            figure = figures.get(f"{prefix}/{name}/{sample}")
            if figure:
                rows.append([name.replace("_", " "), sample_text(sample), *cells(figure, copy)])
    return table(["text", "sample", *HEAD], rows, "ll" + ALIGN)


def limits_table(figures, copy):
    names = [(COPY, "copy 8.4 MB with memcpy: \"one copy\" in all tables"),
             ("machine/memory_read", "read 8.4 MB: the sum"),
             ("machine/first_touch_small_pages", "write to each page of 8.9 MB of fresh memory, pages of 4 KB"),
             ("machine/first_touch_huge_pages", "the same with madvise(MADV_HUGEPAGE)"),
             ("process/trivial", "start a trivial program and wait for its end")]
    rows = []
    for name, what in names:
        figure = figures[name]
        rate = "-" if "/trivial" in name else bytes_text(figure.bytes_per_second)
        rows.append([what, time_text(figure.median), time_text(figure.least), three_digits(figure.median / copy), rate])
    return table(["limit", "time", "least", "copies", "per second"], rows, "lrrrr")


PROCESSES = [
    ("process/trivial", "a trivial program"),
    ("process/small_file", "`vltext` on a file of 10 KB"),
    ("process/large_file", "`vltext` on a file of 100 MB"),
    ("process/large_file_all_lines", "the same, all lines of the sample"),
    ("process/many_files", "`vltext` on 2,000 files of 10 KB"),
    ("process/many_files_jobs_1", "the same with `--jobs 1`"),
    ("process/many_files_jobs_2", "the same with `--jobs 2`"),
]


def files_text(figure):
    files = figure.facts.get("files")
    return f"{files / figure.median * 1e6:,.0f}" if files else "-"


def process_table(figures, copy):
    trivial = figures["process/trivial"].median
    rows = []
    for name, what in PROCESSES:
        figure = figures[name]
        if figure.facts.get("jobs_refused"):
            rows.append([what, "refused", "-", "-", "-", "-", "-"])
            continue
        rows.append([what, time_text(figure.median), time_text(figure.least), three_digits(figure.median / copy),
                     three_digits(figure.median / trivial), files_text(figure),
                     bytes_text(figure.facts["peak_bytes_of_process"])])
    return table(["process", "time", "least", "copies", "trivial programs", "files a second", "peak"], rows, "lrrrrrr")


def scaling_text(figures):
    one, two = figures["process/many_files_jobs_1"], figures["process/many_files_jobs_2"]
    if two.facts.get("jobs_refused"):
        return "The tool refuses `--jobs`, so how it scales was not measured."
    return f"Two jobs are {one.median / two.median:.2f} times as fast as one."


def traps_table(figures):
    sizes = {}
    for name in figures:
        if name.startswith("adversarial/"):
            _, shape, units = name.split("/")
            sizes.setdefault(shape, []).append(int(units))
    rows = []
    for shape, units in sizes.items():
        most = max(units)
        long, half = (figures[f"adversarial/{shape}/{size}"] for size in (most, most // 2))
        rows.append([shape.replace("_", " "), f"{most:,}", time_text(long.median), bytes_text(long.bytes_per_second),
                     f"{long.median / half.median:.2f}", f"{long.facts['allocations']:,.0f}",
                     bytes_text(long.facts["peak_bytes"])])
    return table(["text", "units", "time", "per second", "to half the text", "allocations", "peak"], rows, "lrrrrrr")


# --- machine ----------------------------------------------------------------------------------

def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip()


def first_match(pattern, path):
    with open(path, encoding="utf-8") as file:
        found = re.search(pattern, file.read(), re.MULTILINE)
    return found.group(1) if found else "unknown"


def loads(paths):
    """The minimum and maximum, over the runs, of the number of processes ready to run."""
    found = []
    for path in paths:
        with open(path, encoding="utf-8") as file:
            found += json.load(file)["context"]["load_avg"][:1]
    return min(found), max(found)


def machine_rows(cache):
    compiler = first_match(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", cache)
    build = first_match(r"^CMAKE_BUILD_TYPE:\w+=(.*)$", cache)
    system = os.uname()
    return [
        ["processor", f"{first_match(r'^model name[^:]*: (.*)$', '/proc/cpuinfo')}, {os.cpu_count()} cores"],
        ["system", f"{first_match('^PRETTY_NAME=.(.*).$', '/etc/os-release')}, {system.sysname} {system.release}"],
        ["compiler", f"{output_of(compiler, '--version').splitlines()[0]}, {build}"],
    ]


def machine_text(results):
    low, high = loads(glob.glob(os.path.join(results, "*.json")))
    # One program runs at a time.
    quiet = "nothing else was running" if high < 1.5 else "the machine was not quiet: other programs were running"
    rows = [
        *machine_rows(os.path.join(os.path.dirname(os.path.abspath(results)), "CMakeCache.txt")),
        ["load average", f"{low:.1f} to {high:.1f}; {quiet}"],
        ["date", date.today().isoformat()],
        ["commit", commit()],
        ["command", "`scripts/bench`"],
    ]
    return table(["", ""], rows, "ll")


def commit():
    changed = output_of("git", "status", "--porcelain", "--", ".", ":!docs/performance.md", ":!bench/steps.tsv")
    return output_of("git", "rev-parse", "--short", "HEAD") + (" and changes" if changed else "")


# --- steps ------------------------------------------------------------------------------------

class StepFigure:
    """A column of the table of steps: the time of the figure `name`, or its counter `fact`."""

    def __init__(self, head, what, name, fact=None):
        self.head, self.what, self.name, self.fact = head, what, name, fact

    def text(self, figures):
        if self.name not in figures:
            return "-"
        figure = figures[self.name]
        if self.fact is None:
            return time_text(figure.median)
        return f"{figure.facts[self.fact]:,.0f}" if self.fact == "allocations" else bytes_text(figure.facts[self.fact])

    def has_changed(self, before, after):
        """In every round, and each time in the same direction."""
        if self.name not in before or self.name not in after:
            return False
        old, new = before[self.name], after[self.name]
        if self.fact:
            ratios = [new.facts[self.fact] / old.facts[self.fact]]
        else:
            ratios = [late / early for early, late in zip(old.times, new.times)]
        return max(ratios) < 1 / CHANGE or min(ratios) > CHANGE


CHANGE = 1.05

STEP_FIGURES = [
    StepFigure("ASCII", "open a file of 4 MB of ASCII, decode it and cut the sample, with a `FileTextSource`, a"
               " `TextStream` and `get_fixed_stream`", "open_ascii"),
    StepFigure("two-byte", "the same with 5 % of two-byte characters in UTF-8", "open_two_byte"),
    StepFigure("100 lines", "`pick_strategy` over a text in memory, 20 columns, 100 lines", "pick_100"),
    StepFigure("all lines", "the same, all lines of a text of 4 MB, 4 candidate characters", "pick_all"),
    StepFigure("quoted", "the same, quoted fields", "pick_quoted"),
    StepFigure("56 candidates", "the same, 56 candidate characters", "pick_56"),
    StepFigure("aligned", "`detect_layout` of a file of 4 MB of space-aligned columns, all lines", "detect_aligned"),
    StepFigure("10 KB", "`detect_layout` of a file of 10 KB, nothing given", "detect_small"),
    StepFigure("2,000 files", "the tool, as a process, on 2,000 such files with its defaults: the time that passes",
               "many_files"),
    StepFigure("allocations", "those of `detect_layout` of a file of 4 MB, 20 columns, 100 lines", "detect_100",
               "allocations"),
    StepFigure("peak", "the most memory that `pick_strategy` holds beside the text, as for \"all lines\"", "pick_all",
               "peak_bytes"),
    StepFigure("long delimiter", "`detect_layout` with a delimiter of 8,193 characters, which a text of 16,384 matches"
               " almost everywhere up to its last one", "long_delimiter"),
]


def step_cells(before, after):
    return [f"**{figure.text(after)}**" if figure.has_changed(before, after) else figure.text(after)
            for figure in STEP_FIGURES]


def remark_on(folder):
    """Why a commit could not be measured."""
    path = os.path.join(folder, "remark")
    if not os.path.exists(path):
        return ""
    with open(path, encoding="utf-8") as file:
        return f": **{file.read().strip()}**"


def changes_table(results):
    """A row for each commit. One without words is only compared with the next."""
    with open(os.path.join(results, "rows.tsv"), encoding="utf-8") as file:
        listed = [line.rstrip("\n").split("\t") for line in file]
    rows, before = [], {}
    for name, words in listed:
        folder = os.path.join(results, name)
        after = read_results(folder)
        what = words.replace("|", "\\|") or "(before the next step)"
        rows.append([f"`{name}`", what + remark_on(folder), *step_cells(before if words else {}, after)])
        before = after
    return table(["commit", "what was done", *(figure.head for figure in STEP_FIGURES)], rows,
                 "ll" + "r" * len(STEP_FIGURES))


def steps_text(results, cache):
    paths = glob.glob(os.path.join(results, "*", "*.json"))
    rounds = max(int(re.search(r"-(\d+)\.json$", path).group(1)) for path in paths)
    low, high = loads(paths)
    rows = [
        *machine_rows(cache),
        ["load average", f"{low:.1f} to {high:.1f}; what was built just before and the threads of the tool count"],
        ["date", date.today().isoformat()],
        ["command", "`scripts/bench-steps" + (f" --rounds {rounds}`" if rounds != ROUNDS else "`")],
    ]
    meant = f"medians of {rounds} rounds" if rounds > 1 else "of a single round"
    columns = [f"- **{figure.head}**: {figure.what}" for figure in STEP_FIGURES]
    return "\n\n".join([
        table(["", ""], rows, "ll"),
        f"Times are {meant}; all commits were measured one after the other in each.",
        "\n".join(textwrap.fill(line, 120, subsequent_indent="  ") for line in columns),
        changes_table(results)])


# The default of scripts/bench-steps.
ROUNDS = 5


# --- the document -----------------------------------------------------------------------------

def document(figures, results):
    copy = figures[COPY].median
    repetitions = len(figures["pick_strategy/regular/all_lines"].times)
    parts = [
        machine_text(results),
        f"Medians of {repetitions} repetitions, of the copy and the other limits of memory of"
        f" {len(figures[COPY].times)}, spread over the run.",
        "## The machine's own limits", limits_table(figures, copy),
        "## Goals", goals_table(figures), ASSESSMENT_COST,
        "## By stage",
    ]
    for title, prefixes in STAGES:
        parts += [f"### {title}", steps_table(figures, prefixes, copy)]
    parts += [
        "## By shape", "### The selection alone, a text in memory", shapes_table(figures, "pick_strategy", copy),
        "### From the file to the layout", shapes_table(figures, "detect_layout", copy),
        "## By encoding", "### The encoding given", shapes_table(figures, "detect_encoded", copy),
        "### The encoding found", shapes_table(figures, "find_encoding", copy),
        "## The tool", process_table(figures, copy),
        "No peak is smaller than that of the trivial program: a process starts with that of the one that started it.",
        scaling_text(figures),
        "## Traps",
        "The selection alone, all lines. Twice the text should take about twice as long.", traps_table(figures),
    ]
    return "\n\n".join(parts)


def write_document(text, path, markers):
    begin, end = markers
    with open(path, encoding="utf-8") as file:
        before, rest = file.read().split(begin + "\n")
    after = rest.split(end)[1]
    with open(path, "w", encoding="utf-8") as file:
        file.write(f"{before}{begin}\n\n{text}\n\n{end}{after}")


def report_goals(results):
    figures = read_results(results)
    print(goals_table(figures))
    print()
    print(process_table(figures, figures[COPY].median))


def report_document(results, path):
    write_document(document(read_results(results), results), path, MEASURED)


def report_steps(results, cache, path=None):
    text = steps_text(results, cache)
    if path:
        write_document(text, path, STEPS)
    else:
        print(text)


def main(arguments):
    reports = {"goals": report_goals, "document": report_document, "steps": report_steps}
    if not arguments or arguments[0] not in reports:
        sys.exit(__doc__)
    reports[arguments[0]](*arguments[1:])


main(sys.argv[1:])
