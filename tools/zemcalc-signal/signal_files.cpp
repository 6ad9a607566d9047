#include "signal_files.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>

namespace signal_tool {

namespace {

std::string Trim(const std::string& s) {
  const auto begin = s.find_first_not_of(" \t\r");
  if (begin == std::string::npos) return "";
  return s.substr(begin, s.find_last_not_of(" \t\r") - begin + 1);
}

std::string Lower(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

std::string Where(const std::string& path, std::size_t line) { return path + ":" + std::to_string(line) + ": "; }

std::vector<std::string> ReadLines(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw Failure(path + ": cannot open the file");
  std::vector<std::string> lines;
  std::string line;
  while (std::getline(file, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  if (file.bad()) throw Failure(path + ": cannot read the file");
  return lines;
}

// The whole of text as a finite number.
bool ParseNumber(const std::string& text, double& value) {
  const std::string t = Trim(text);
  if (t.empty()) return false;
  char* end = nullptr;
  errno = 0;
  value = std::strtod(t.c_str(), &end);
  return end == t.c_str() + t.size() && errno != ERANGE && std::isfinite(value);
}

std::vector<std::string> Split(const std::string& line, char separator) {
  std::vector<std::string> fields;
  std::string field;
  std::istringstream in(line);
  while (std::getline(in, field, separator)) fields.push_back(field);
  if (!line.empty() && line.back() == separator) fields.emplace_back();
  return fields;
}

std::string Unquote(const std::string& s) {
  const std::string t = Trim(s);
  return t.size() >= 2 && t.front() == '"' && t.back() == '"' ? t.substr(1, t.size() - 2) : t;
}

std::string Stem(const std::string& path) {
  const auto slash = path.find_last_of('/');
  std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  const auto dot = name.find_last_of('.');
  return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

bool Skipped(const std::string& line) {
  const std::string t = Trim(line);
  return t.empty() || t[0] == '#';
}

}  // namespace

std::vector<Channel> ReadCsv(const std::string& path) {
  const std::vector<std::string> lines = ReadLines(path);
  std::size_t row = 0;
  while (row < lines.size() && Skipped(lines[row])) ++row;
  if (row == lines.size()) throw Failure(path + ": no header row");
  const std::string& head = lines[row];
  const char separator = head.find(';') != std::string::npos ? ';' : head.find('\t') != std::string::npos ? '\t' : ',';
  const std::vector<std::string> names = Split(head, separator);
  if (names.size() < 2) throw Failure(Where(path, row + 1) + "a time column and at least one channel are needed");
  std::vector<Channel> channels(names.size() - 1);
  for (std::size_t c = 1; c < names.size(); ++c) {
    channels[c - 1].name = Unquote(names[c]);
    if (channels[c - 1].name.empty()) channels[c - 1].name = "channel " + std::to_string(c);
  }
  for (++row; row < lines.size(); ++row) {
    if (Skipped(lines[row])) continue;
    const std::vector<std::string> fields = Split(lines[row], separator);
    if (fields.size() != names.size()) {
      throw Failure(Where(path, row + 1) + std::to_string(fields.size()) + " values, the header names " +
                    std::to_string(names.size()) + " columns");
    }
    double time = 0.0;
    for (std::size_t c = 0; c < fields.size(); ++c) {
      double value = 0.0;
      if (!ParseNumber(fields[c], value)) {
        throw Failure(Where(path, row + 1) + "column " + std::to_string(c + 1) + " ('" + Unquote(names[c]) + "'): '" +
                      Trim(fields[c]) + "' is not a finite number");
      }
      if (c == 0) {
        time = value;
      } else {
        channels[c - 1].curve.Add(ZmPoint2d(time, value));
      }
    }
  }
  if (channels[0].curve.IsEmpty()) throw Failure(path + ": no data rows");
  return channels;
}

Channel ReadMme(const std::string& path) {
  const std::vector<std::string> lines = ReadLines(path);
  Channel channel;
  channel.name = Stem(path);
  double interval = 0.0, first = 0.0, declared = -1.0;
  std::size_t intervalLine = 0, declaredLine = 0;
  std::vector<double> values;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string t = Trim(lines[i]);
    if (t.empty()) continue;
    double value = 0.0;
    if (ParseNumber(t, value)) {
      values.push_back(value);
      continue;
    }
    const auto colon = t.find(':');
    if (!values.empty() || colon == std::string::npos) {
      throw Failure(Where(path, i + 1) + "'" + t + "' is " + (values.empty() ? "not a header line" : "not a number"));
    }
    const std::string key = Lower(Trim(t.substr(0, colon)));
    const std::string text = Trim(t.substr(colon + 1));
    const bool numeric = key == "sampling interval" || key == "time of first sample" || key == "number of samples";
    if (numeric && !ParseNumber(text, value)) {
      throw Failure(Where(path, i + 1) + "'" + text + "' is not a number for '" + Trim(t.substr(0, colon)) + "'");
    }
    if (key == "sampling interval") {
      interval = value;
      intervalLine = i + 1;
    } else if (key == "time of first sample") {
      first = value;
    } else if (key == "number of samples") {
      declared = value;
      declaredLine = i + 1;
    } else if (key == "unit") {
      channel.unit = text;
    } else if (key == "name of the channel" && !text.empty()) {
      channel.name = text;
    }
  }
  if (intervalLine == 0) throw Failure(path + ": no 'Sampling interval' line");
  if (!(interval > 0.0)) throw Failure(Where(path, intervalLine) + "the sampling interval must be positive");
  if (values.empty()) throw Failure(path + ": no samples");
  if (declaredLine != 0 && declared != static_cast<double>(values.size())) {
    throw Failure(Where(path, declaredLine) + "'Number of samples' says " + Trim(lines[declaredLine - 1].substr(
                                                  lines[declaredLine - 1].find(':') + 1)) +
                  ", the file holds " + std::to_string(values.size()) + " values");
  }
  for (std::size_t i = 0; i < values.size(); ++i) {
    channel.curve.Add(ZmPoint2d(first + static_cast<double>(i) * interval, values[i]));
  }
  return channel;
}

std::vector<Channel> ReadSignalFile(const std::string& path) {
  for (const std::string& line : ReadLines(path)) {
    const std::string t = Trim(line);
    if (t.empty()) continue;
    double value = 0.0;
    const auto colon = t.find(':');
    const bool mme = colon != std::string::npos && t.find_first_of(",;\t") > colon && !ParseNumber(t, value);
    return mme ? std::vector<Channel>{ReadMme(path)} : ReadCsv(path);
  }
  throw Failure(path + ": the file is empty");
}

void WriteTextFile(const std::string& text, const std::string& path) {
  if (path.empty() || path == "-") {
    std::cout << text;
    std::cout.flush();
    if (!std::cout) throw Failure("cannot write to the standard output");
    return;
  }
  const std::string temporary = path + ".partial";
  {
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    if (!file) {
      std::remove(temporary.c_str());
      throw Failure(path + ": cannot write the file");
    }
  }
  if (std::rename(temporary.c_str(), path.c_str()) != 0) {
    std::remove(temporary.c_str());
    throw Failure(path + ": cannot write the file");
  }
}

void WriteCsv(const Table& table, const std::string& path) {
  std::string text;
  for (std::size_t c = 0; c < table.header.size(); ++c) text += (c ? "," : "") + table.header[c];
  text += "\n";
  const std::size_t rows = table.columns.empty() ? 0 : table.columns[0].size();
  char number[40];
  for (std::size_t r = 0; r < rows; ++r) {
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
      const double v = r < table.columns[c].size() ? table.columns[c][r] : NAN;
      std::snprintf(number, sizeof(number), "%s%.15g", c ? "," : "", v);
      text += number;
    }
    text += "\n";
  }
  WriteTextFile(text, path);
}

}  // namespace signal_tool
