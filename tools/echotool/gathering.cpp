#include "tools/echotool/gathering.h"

#include <map>
#include <utility>

#include "tools/echotool/file_names.h"
#include "tools/echotool/report_index.h"
#include "tools/echotool/writing.h"

namespace tw::echotool {
namespace {

constexpr const wchar_t* kIndexName = L"index.html";

// The index over the pages in one folder (ending in its separator, or empty).
bool WriteIndex(const std::wstring& folder, const std::vector<const ReportPage*>& pages, const Call& call,
                Result& result) {
  Place place{.path = folder + kIndexName};
  if (!LookAt(place, Input{}, call, result.text)) return false;
  if (call.options.dryRun) {
    result.text += ForeseenText(place) + "\n";
    return true;
  }
  WholeFile file;
  if (!file.Create(place.path)) {
    result.text = NarrowName(place.path) + " cannot be made: " + ReasonText(file.Error());
    return false;
  }
  OutputFile output(file.File());
  if (!PutText(output, ReportIndex(folder, pages)) || !output.Flush()) {
    result.text = NarrowName(place.path) + " cannot be written: " + ReasonText(output.Error());
    return false;
  }
  return Complete(file, place, result);
}

// The folder over all pages, ending in its separator: that of the outputs, or the one that was searched.
// Empty when there is none.
std::wstring FolderOver(const Options& options) {
  if (!options.folder.empty()) return PathIn(WideName(options.folder), L"");
  return options.recursive && options.files.size() == 1 ? PathIn(WideName(options.files[0]), L"") : L"";
}

std::string CountText(size_t count, const char* one, const char* many) {
  return std::to_string(count) + (count == 1 ? one : many);
}

}  // namespace

void Gathering::Add(Result result) {
  ++results_;
  others_ += result.others;
  if (!result.alike.empty() && alike_++ == 0) alikeFile_ = result.alike;
  if (result.told) totals_.Add(*result.told);
  if (!result.row.empty()) rows_.push_back(std::move(result.row));
  if (result.page) pages_.push_back(std::move(*result.page));
}

// One in each folder that has pages, and one over all.
bool Gathering::WriteIndexes(const Call& call, Result& result) const {
  std::map<std::wstring, std::vector<const ReportPage*>> folders;
  for (const ReportPage& page : pages_) folders[FolderOfPath(page.path)].push_back(&page);
  const std::wstring over = FolderOver(call.options);
  if (!over.empty() && !pages_.empty() && pages_.front().path.starts_with(over)) {
    std::vector<const ReportPage*>& all = folders[over];
    all.clear();
    for (const ReportPage& page : pages_) all.push_back(&page);
  }
  for (const auto& [folder, pages] : folders) {
    if (!WriteIndex(folder, pages, call, result)) return false;
  }
  return true;
}

// What of the folders searched was not worked on, or may be there twice.
void Gathering::NoteLeftOut(const Inputs& inputs, Result& result) const {
  const size_t others = others_ + inputs.others;
  if (others != 0) result.notes.push_back(CountText(others, " other file", " other files") + " left out");
  if (inputs.made != 0)
    result.notes.push_back(CountText(inputs.made, " file", " files") +
                           " left out as made of recordings beside them");
  if (alike_ != 0)
    result.notes.push_back("warning: " + CountText(alike_, " recording", " recordings") +
                           " taken that may be made of others elsewhere, the first " + alikeFile_);
}

Result Gathering::End(const Call& call, const Inputs& inputs) {
  const Options& options = call.options;
  Result result;
  result.done = true;
  if (results_ == others_ && options.recursive) {
    result.done = false;
    result.text =
        "no recording found among " + CountText(others_ + inputs.others + inputs.made, " file", " files");
  } else if (options.task == Task::report) {
    result.done = WriteIndexes(call, result);
  } else if (options.task == Task::info && options.form == InfoForm::json) {
    result.text = DocumentJson(rows_, totals_);
  } else if (options.task == Task::info && options.form == InfoForm::csv) {
    result.text = FiguresCsvHeader();
    for (const std::string& row : rows_) result.text += row;
  } else if (options.task == Task::info && results_ - others_ > 1) {
    result.text = TotalsText(totals_);
  }
  NoteLeftOut(inputs, result);
  return result;
}

}  // namespace tw::echotool
