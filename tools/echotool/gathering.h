// What is told or made of all recordings of a call together, of what their jobs told in their order: totals
// and documents of `info`, the indexes of `report`, how many files were left out. One thread.
#pragma once

#include <string>
#include <vector>

#include "tools/echotool/info_output.h"
#include "tools/echotool/work.h"

namespace tw::echotool {

class Gathering {
 public:
  void Add(Result result);

  // Behind the last recording; not when interrupted.
  [[nodiscard]] Result End(const Call& call, const Inputs& inputs);

 private:
  void NoteLeftOut(const Inputs& inputs, Result& result) const;
  [[nodiscard]] bool WriteIndexes(const Call& call, Result& result) const;

  size_t results_ = 0;
  size_t others_ = 0;
  size_t alike_ = 0;
  std::string alikeFile_;  // the first of these
  InfoTotals totals_;
  std::vector<std::string> rows_;
  std::vector<ReportPage> pages_;
};

}  // namespace tw::echotool
