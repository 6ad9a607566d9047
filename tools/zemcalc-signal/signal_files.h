#pragma once

// Reading and writing the signal files of zemcalc-signal: CSV tables (a time column and
// channels) and ISO/TS 13499 (MME) channel files. Every reading error names the file and the
// line; nothing is written before everything has been read and computed, and an output file
// appears complete or not at all.
#include <stdexcept>
#include <string>
#include <vector>

#include <zemcalc/ZmPoint2.h>

namespace signal_tool {

// A failure that ends the program with a one-line message.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Channel {
  std::string name;
  std::string unit;  // as the file gives it (MME "Unit" line); empty when unknown
  WbArrayTempl<ZmPoint2d> curve;
};

// Reads a CSV file: the first row names the columns (time first), the separator is the first of
// ';', tab or ',' found in it; then one row of numbers per sample. Blank lines and lines
// starting with '#' are skipped.
std::vector<Channel> ReadCsv(const std::string& path);

// Reads an MME channel file: "name :value" header lines (Sampling interval and Time of first
// sample in seconds; Unit, Name of the channel and Number of samples used when present), then
// one value per line.
Channel ReadMme(const std::string& path);

// Reads a file by its content: MME when its first non-blank line has a ':' before any
// separator of a CSV row and is not a number, CSV otherwise.
std::vector<Channel> ReadSignalFile(const std::string& path);

// A table: one header row and rows of numbers, written with 15 significant digits.
struct Table {
  std::vector<std::string> header;
  std::vector<std::vector<double>> columns;
};

// Writes the table to path ("-" or empty: standard output), through a temporary file renamed
// at the end.
void WriteCsv(const Table& table, const std::string& path);

// Writes text to path atomically (temporary file, then rename).
void WriteTextFile(const std::string& text, const std::string& path);

}  // namespace signal_tool
