# Reads a table with fread of data.table, and says what it took, as JSON:
#   read_with_fread.R FILE mixed|quoted THREADS
# It is told the dialect and the types of all columns.
suppressPackageStartupMessages(library(data.table))
given <- commandArgs(trailingOnly = TRUE)
threads <- as.integer(given[3])
setDTthreads(threads)
types <- if (given[2] == "mixed") {
  list(integer = c("count"), numeric = c("id", "counter", "level", "flow", "temperature", "pressure", "rain", "price",
                                         "share", "latitude", "longitude"),
       character = c("station", "code", "quality", "remark"), logical = "is_valid",
       IDate = c("day", "checked"), POSIXct = "moment")
} else {
  list(numeric = "id", character = c("title", "text", "author", "note", "place"))
}
before <- proc.time()
table <- fread(given[1], sep = ",", quote = "\"", header = TRUE, colClasses = types, nThread = threads, tz = "UTC",
               encoding = "UTF-8", showProgress = FALSE)
took <- proc.time() - before
peak <- as.numeric(sub("[^0-9]*([0-9]+).*", "\\1", grep("^VmHWM", readLines("/proc/self/status"), value = TRUE)))
cat(sprintf('{"seconds": %.6f, "cpu": %.6f, "peak": %.0f, "rows": %d, "columns": %d, "sum": %.0f}\n',
            took[["elapsed"]], took[["user.self"]] + took[["sys.self"]], peak * 1024, nrow(table), ncol(table),
            sum(table$id)))
