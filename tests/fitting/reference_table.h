#pragma once

// Reads the committed tables of tests/reference/fitting: a record opens with "<kind> <n>" and
// its n numeric rows, followed by named result lines "<name> <numbers...>"; '#' starts a comment.
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

struct ReferenceRecord {
  std::string kind;
  std::vector<std::vector<double>> rows;
  std::map<std::string, std::vector<double>> results;
};

inline std::vector<double> ParseNumbers(std::istringstream& in) {
  std::vector<double> values;
  std::string token;
  while (in >> token) values.push_back(std::strtod(token.c_str(), nullptr));
  return values;
}

inline std::vector<ReferenceRecord> ReadReferenceTable(const std::string& name, const std::vector<std::string>& kinds) {
  std::vector<ReferenceRecord> records;
  std::ifstream file(std::string(ZEMCALC_FITTING_REFERENCE_DIR) + "/" + name);
  std::string line;
  std::size_t pendingRows = 0;
  while (std::getline(file, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream in(line);
    if (pendingRows > 0) {
      records.back().rows.push_back(ParseNumbers(in));
      --pendingRows;
      continue;
    }
    std::string word;
    in >> word;
    bool opens = false;
    for (const std::string& kind : kinds) opens = opens || kind == word;
    if (opens) {
      records.push_back(ReferenceRecord{word, {}, {}});
      in >> pendingRows;
    } else if (!records.empty()) {
      records.back().results[word] = ParseNumbers(in);
    }
  }
  return records;
}
