#include "cli/velk/doctor/windows/hosts.h"

#include <objbase.h>

#include <fstream>
#include <sstream>

#include "cli/shared/failure.h"
#include "cli/shared/windows/wide.h"
#include "cli/velk/doctor/windows/host_script.h"
#include "cli/velk/doctor/windows/system_facts.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;
using std::chrono::seconds;

void writeText(const fs::path& path, std::string_view text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
  if (!out.flush()) throw Failure(badFile, textOf(path) + " cannot be written");
}

std::string withCrLf(std::string_view text) {
  std::string lines;
  for (const char c : text) lines += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return lines;
}

std::string clientManifest(int bits) {
  const std::string processor = bits == wide ? "amd64" : "x86";
  const auto identity = [&](const std::string& name, const std::string& version) {
    return "<assemblyIdentity type=\"win32\" name=\"" + name + "\" version=\"" + version +
           "\" processorArchitecture=\"" + processor + "\"/>";
  };
  return "<assembly xmlns=\"urn:schemas-microsoft-com:asm.v1\" manifestVersion=\"1.0\">" +
         identity("VelkCom.Check", "1.0.0.0") + "<dependency><dependentAssembly>" +
         identity("VelkCom", VELK_VERSION ".0") + "</dependentAssembly></dependency></assembly>";
}

/// Newer systems may be without it; what they have in the registry then is not known.
bool hasVbScript(const Side& side) {
  std::error_code ignored;
  if (!fs::exists(side.programs / "vbscript.dll", ignored)) return false;
  CLSID id;
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const HRESULT result = CLSIDFromProgID(L"VBScript", &id);
  CoUninitialize();
  return SUCCEEDED(result);
}

/// One line, as a row of the report has it.
std::string joined(const std::string& lines) {
  std::string text;
  std::istringstream in(lines);
  for (std::string line; std::getline(in, line);) text += (text.empty() ? "" : "; ") + line;
  return text;
}

/// Of a host that prints a line beginning like this at its end, and nothing else when all is well. `detail`
/// is what follows in the line.
Finding outcomeOf(Child& host, const std::string& lastLine, seconds longest) {
  const bool ended = host.wait(longest, WhenInterrupted::stop);
  const std::string output = joined(host.output());
  if (!ended) return findingOf("does not end in " + std::to_string(longest.count()) + " s; " + output);
  if (output.starts_with(lastLine)) return findingOf("", output.substr(lastLine.size()));
  return findingOf("ends with " + std::to_string(host.exitCode()) + "; " + output);
}

Words served(Words interfaces) {
  interfaces.insert(interfaces.end(), {L"--password", wideOf(simulatorPassword), L"--for", L"3600"});
  return interfaces;
}

}  // namespace

SimulatorProgram::SimulatorProgram(const fs::path& program, const Words& interfaces)
    : child_(program, served(interfaces)) {
  constexpr seconds patience(20);
  const auto isReady = [](const std::string& text) { return text.find("ready") != std::string::npos; };
  child_.wait(patience, WhenInterrupted::stop, isReady);
  const std::string output = child_.output();
  if (!isReady(output)) throw Failure(noLink, "it does not get ready: " + joined(output));
}

std::string SimulatorProgram::portOf(const std::string& kind) const {
  std::istringstream lines(child_.output());
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(kind)) return line.substr(line.rfind(':') + 1);
  }
  return {};
}

fs::path writeHostScript(const fs::path& folder) {
  fs::path script = folder / "check.vbs";
  writeText(script, withCrLf(hostScript));
  return script;
}

Finding checkScriptHost(const Side& side, const fs::path& script, const HostLink& link) {
  constexpr seconds patience(300);  // adapters may keep each byte of a line for 16 ms, and its echo too
  if (!side.lack.empty()) return leftOut(side.lack);
  if (!hasVbScript(side)) return leftOut("VBScript, an optional feature of Windows, is not there");
  Words words{L"//nologo"};
  // Where files of scripts open in an editor, the host does not know their language. Wine's knows no such switch.
  if (!isWine()) words.emplace_back(L"//E:VBScript");
  words.push_back(script.native());
  words.insert(words.end(), link.words.begin(), link.words.end());
  Child host(side.programs / "cscript.exe", words);
  return outcomeOf(host, "compared: ", patience);
}

Finding checkWithoutRegistration(const Side& side, const fs::path& folder) {
  constexpr seconds patience(30);
  if (!side.lack.empty()) return leftOut(side.lack);
  if (!fs::exists(side.velk)) return leftOut("there is no " + textOf(side.velk));
  const fs::path manifest = folder / ("client" + std::to_string(side.bits) + ".manifest");
  writeText(manifest, clientManifest(side.bits));
  Child host(side.velk,
             {L"doctor", L"--without-registration", manifest.native(), side.library.parent_path().native()});
  return outcomeOf(host, "created, ", patience);
}

}  // namespace velk::cli
