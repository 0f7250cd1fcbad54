#include "PictureCommand.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Commands.h"
#include "Console.h"
#include "Outputs.h"
#include "Platform/Paths.h"
#include "Text/Text.h"

namespace tolmex {

using host::Code;
using host::problemOf;
using host::Result;
using host::editor::Application;
using host::editor::Prompter;
using host::picture::OptionRow;
using host::picture::PictureOptions;

namespace {

/// Words of a line; quotes keep blanks together.
std::vector<std::string> wordsOf(std::string_view line) {
  std::vector<std::string> words;
  bool isQuoted = false, isInWord = false;
  for (const char c : line) {
    if (c == '"') {
      isQuoted = !isQuoted;
      if (!isInWord) words.emplace_back();
      isInWord = true;
    } else if (c == ' ' && !isQuoted) {
      isInWord = false;
    } else {
      if (!isInWord) words.emplace_back();
      isInWord = true;
      words.back() += c;
    }
  }
  return words;
}

host::Problem refused(std::string sentence) { return problemOf(Code::WrongUsage, std::move(sentence)); }

/// Reads what stands behind the file's name: options of `tolmex picture`.
Result<> readOptions(PictureOptions& options, std::string_view line) {
  const std::vector<std::string> words = wordsOf(line);
  for (std::size_t i = 0; i < words.size(); ++i) {
    std::string known;
    const OptionRow* found = nullptr;
    for (const OptionRow& row : host::picture::optionRows()) {
      known += (known.empty() ? "" : ", ") + std::string(row.name);
      if (words[i] == row.name) found = &row;
    }
    if (found == nullptr) return refused(words[i] + ": no such option of a picture; there are " + known);
    std::string_view value;
    if (!found->form.empty()) {
      if (i + 1 == words.size()) return refused(words[i] + ": a value is missing");
      value = words[++i];
    }
    if (Result<> read = found->read(options, value); !read) return read;
  }
  return host::picture::checkOptions(options);
}

void pictureCommand(Application& application, Prompter& prompter) {
  const auto typed = prompter.text(L"Enter name of picture file: ");
  if (typed.outcome == host::editor::Outcome::Cancel) return;
  const std::string line = host::text::toUtf8(typed.value);
  const std::size_t behind = line.find(" --");
  std::string name = line.substr(0, behind);
  while (name.ends_with(' ')) name.pop_back();
  if (name.size() > 1 && name.front() == '"' && name.back() == '"') name = name.substr(1, name.size() - 2);
  const std::filesystem::path file = host::platform::pathOf(name);
  const auto format = host::picture::formatOfFile(name);
  if (!format) {
    prompter.refuse(L"The picture's name must end in .png, .svg, .pdf, .tif or .html.");
    return;
  }
  PictureOptions options;
  options.layout = host::text::toUtf8(application.currentLayoutName());
  host::picture::setDrawingFile(options, application.drawingFile());
  if (behind != std::string::npos) {
    if (const Result<> read = readOptions(options, line.substr(behind + 1)); !read) {
      prompter.refuse(host::text::fromUtf8(read.message()));
      return;
    }
  }
  if (const Result<> fit = checkOutputs({application.drawingFile()}, {file}); !fit) {
    prompter.fail(fit.problem());
    return;
  }
  if (const Result<> written =
          writePicture(*application.drawing(), options, {file, *format}, application.supportFolders());
      !written) {
    complain(written.problem());
    prompter.fail(Code::OutputFailed, L"the picture could not be made");
  }
}

}  // namespace

void addPictureCommand(Application& application) {
  application.addCommand(
      L"PICTURE", 0, [&application](Prompter& prompter) { pictureCommand(application, prompter); },
      L"draws the drawing into a .png, .svg, .pdf, .tif or .html file");
}

}  // namespace tolmex
