// Prints what type libraries and the running controls say of themselves, as JSON:
//   describe_controls TYPE_LIBRARY[;TYPE_LIBRARY ...] [STEPS]
// STEPS is a text file. Each line is run on a fresh control: its class, then steps, all separated by tabs. A step is
// NAME=VALUE (a put) or NAME (a get); see demo/named_properties.h. The reference pages are made from this, and checked.

#include "demo/named_properties.h"
#include "host/create.h"
#include "tests/programs/type_library_json.h"

#include <windows.h>

#include <QELAudioVisualization4.h>
#include <wrl/client.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using av::json::hex;
using av::json::quoted;
using Microsoft::WRL::ComPtr;

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts(1);
  for (const char letter : text) {
    if (letter == separator) parts.emplace_back();
    else if (letter != '\r') parts.back() += letter;
  }
  return parts;
}

std::wstring wide(const std::string& ascii) { return std::wstring(ascii.begin(), ascii.end()); }

std::string answersOf(const avhost::ControlLibrary& library, const std::vector<std::string>& line) {
  const std::map<std::string, const CLSID*> classes = {{"CAudioVisualization4Type1", &CLSID_CAudioVisualization4Type1},
                                                       {"CAudioVisualization4Type2", &CLSID_CAudioVisualization4Type2},
                                                       {"CAudioVisualization4Type3", &CLSID_CAudioVisualization4Type3}};
  const auto classId = classes.find(line[0]);
  ComPtr<IDispatch> control;
  if (classId == classes.end() || FAILED(library.create(*classId->second, control.GetAddressOf()))) return "null";
  std::string answers;
  for (size_t i = 1; i < line.size(); ++i) {
    const std::wstring step = wide(line[i]);
    const bool puts = step.find(L'=') != std::wstring::npos;
    const avdemo::Answer answer =
        puts ? avdemo::putNamed(*control.Get(), step) : avdemo::getNamed(*control.Get(), step);
    answers += (i > 1 ? ", " : "") + std::string("{\"result\": ") +
               quoted(hex(static_cast<unsigned long>(answer.result))) + ", \"text\": " + quoted(answer.text) + "}";
  }
  return "[" + answers + "]";
}

std::string answersToAll(const wchar_t* file) {
  avhost::ControlLibrary library;
  if (FAILED(library.loadBesideProgram(L"QELAudioVisualization4.dll"))) throw std::runtime_error("no library");
  std::ifstream steps(file);
  if (!steps) throw std::runtime_error("no file of steps");
  std::string text;
  for (std::string line; std::getline(steps, line);)
    text += (text.empty() ? "\n    " : ",\n    ") + answersOf(library, split(line, '\t'));
  return "[" + text + "\n  ]";
}

int run(int argc, wchar_t** argv) {
  const avhost::Apartment apartment;
  std::wstringstream paths(argv[1]);
  std::string types;
  for (std::wstring path; std::getline(paths, path, L';');)
    types += (types.empty() ? "" : ", ") + av::json::typeLibrary(path.c_str());
  const std::string answers = argc > 2 ? answersToAll(argv[2]) : "[]";
  std::printf("{\n  \"libraries\": [%s],\n  \"buttonFace\": %s,\n  \"answers\": %s\n}\n", types.c_str(),
              quoted(hex(GetSysColor(COLOR_BTNFACE))).c_str(), answers.c_str());
  return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 2 || argc > 3) {
    std::fprintf(stderr, "usage: describe_controls TYPE_LIBRARY[;TYPE_LIBRARY ...] [STEPS]\n");
    return 2;
  }
  try {
    return run(argc, argv);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "describe_controls: %s\n", failure.what());
    return 1;
  }
}
