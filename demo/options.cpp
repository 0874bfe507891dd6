#include "demo/options.h"

#include "demo/failure.h"
#include "demo/looks.h"

#include <cwchar>

namespace avdemo {

const wchar_t usage[] =
    L"avdemo [--out DIR] [--size WxH] [--look NAME]... [--registered] [WAV...]\n"
    L"avdemo [--out DIR] [--registered] --pictures LIST\n"
    L"Hosts a control in a window, plays each recording into it block by block and saves what the window shows, once "
    L"for\n"
    L"each look: NAME-waveform.png, NAME-meter-dark.png and so on. Without a recording it plays a generated tone.\n"
    L"  --out DIR     folder of the pictures (default: the current one)\n"
    L"  --size WxH    size of the control in pixels, 80x50 to 4096x4096\n"
    L"  --look NAME   only this look, and others that are given in the same way\n"
    L"  --pictures LIST  instead of recordings, a made-up sound in controls with the properties that a text file "
    L"lists: a\n"
    L"                picture a line, NAME, view|meter|analyser, WxH and any number of PROPERTY=VALUE, separated by "
    L"tabs\n"
    L"  --registered  create the control from the registry, not from the library beside the program\n"
    L"Recordings are PCM WAV files: 8, 16, 24 or 32 bits, 1 to 18 channels. Exit codes: 0 done, 1 failure, 2 bad file "
    L"or\n"
    L"command line.\n";

namespace {

std::wstring knownLook(const std::wstring& name) {
  std::wstring names;
  for (const Look& look : allLooks()) {
    if (look.name == name) return name;
    names += L' ';
    names += look.name;
  }
  throw Failure{L"no look is called \"" + name + L"\"; there are" + names};
}

SIZE parseSize(const std::wstring& text) {
  SIZE size = {};
  wchar_t behind = 0;
  const int fields = std::swscanf(text.c_str(), L"%ldx%ld%lc", &size.cx, &size.cy, &behind);
  if (fields != 2 || size.cx < 80 || size.cy < 50 || size.cx > 4096 || size.cy > 4096)
    throw Failure{L"--size takes WIDTHxHEIGHT from 80x50 to 4096x4096, not \"" + text + L"\""};
  return size;
}

}  // namespace

Options parseOptions(int argc, const wchar_t* const* argv) {
  Options options;
  bool filesOnly = false;
  for (int i = 1; i < argc; ++i) {
    const std::wstring argument = argv[i];
    const auto value = [&]() -> std::wstring {
      if (i + 1 >= argc) throw Failure{argument + L" needs a value"};
      return argv[++i];
    };
    if (filesOnly || argument.empty() || argument[0] != L'-') options.recordings.emplace_back(argument);
    else if (argument == L"--") filesOnly = true;
    else if (argument == L"--out") options.outFolder = value();
    else if (argument == L"--size") options.sizePx = parseSize(value());
    else if (argument == L"--look") options.looks.push_back(knownLook(value()));
    else if (argument == L"--pictures") options.pictures = readPictureList(value());
    else if (argument == L"--registered") options.registered = true;
    else if (argument == L"--help" || argument == L"-h") options.help = true;
    else throw Failure{L"unknown option " + argument + L"; --help lists them"};
  }
  return options;
}

}  // namespace avdemo
