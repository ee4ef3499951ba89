#include "cli/velk/doctor/windows/registrar.h"

#include <knownfolders.h>
#include <objbase.h>
#include <shlobj.h>

#include <algorithm>
#include <array>
#include <sstream>

#include "cli/shared/failure.h"
#include "cli/shared/windows/wide.h"
#include "cli/velk/doctor/windows/child.h"
#include "component/identity.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

/// A 32-bit program finds the 64-bit ones of its system under a name that only it sees.
fs::path programsOfSystem(const ComponentState& state, int bits) {
  if (bits == narrow && !state.narrowFolder.empty()) return state.narrowFolder;
  if (bits != ownBits) return state.narrowFolder.parent_path() / "Sysnative";
  std::array<wchar_t, MAX_PATH> text{};
  GetSystemDirectoryW(text.data(), static_cast<UINT>(text.size()));
  return text.data();
}

Side sideOf(const ComponentState& state, int bits) {
  std::error_code ignored;
  Side side{.bits = bits, .programs = programsOfSystem(state, bits), .library = libraryFor(state, bits)};
  const fs::path besideIt = side.library.parent_path() / state.program.filename();
  side.velk = bits == ownBits ? state.program : besideIt;
  if (!fs::exists(side.programs / "cscript.exe", ignored)) {
    side.lack = "this system has no " + nameOf(bits) + " script host";
  } else if (!side.library.has_parent_path()) {
    side.lack = "no " + nameOf(bits) + " VelkCom.dll came with this program";
  }
  return side;
}

/// Of this user, on this computer.
fs::path folderOfChecks() {
  PWSTR text = nullptr;
  const HRESULT result = SHGetKnownFolderPath(FOLDERID_LocalAppData, 0, nullptr, &text);
  const fs::path folder = FAILED(result) ? fs::path() : fs::path(text);
  CoTaskMemFree(text);
  if (folder.empty()) throw Failure(badFile, "the system does not tell where programs keep their files");
  return folder / "VelkCom" / "check";
}

bool isSame(const fs::path& a, const fs::path& b) {
  return CompareStringOrdinal(a.c_str(), -1, b.c_str(), -1, TRUE) == CSTR_EQUAL;
}

fs::path libraryAt(int bits, Scope scope) {
  for (const Registration& place : findRegistrations()) {
    if (place.bits == bits && place.scope == scope) return place.library;
  }
  return {};
}

std::string programsFor(int bits, Scope scope) {
  return nameOf(bits) + " for " + nameOf(scope);
}

/// What failed; empty if nothing did.
std::string runRegsvr(const Side& side, Scope scope, bool undo) {
  constexpr std::chrono::seconds patience(30);
  if (!side.library.has_parent_path())
    return "no VelkCom.dll " + programsFor(side.bits, scope) + " came along";
  std::vector<std::wstring> words{L"/s"};
  if (undo) words.emplace_back(L"/u");
  if (scope == Scope::user) words.insert(words.end(), {L"/n", L"/i:user"});
  words.push_back(side.library.native());
  Child regsvr(side.programs / "regsvr32.exe", words);
  const bool ended = regsvr.wait(patience, undo ? WhenInterrupted::goOn : WhenInterrupted::stop);
  if (ended && regsvr.exitCode() == 0) return {};
  return "regsvr32 " + programsFor(side.bits, scope) +
         (ended ? " ends with " + std::to_string(regsvr.exitCode()) : std::string(" does not end"));
}

/// A key that this user may not read is there.
bool hasClassKey(HKEY hive, const std::string& name, REGSAM view) {
  const std::wstring path = L"Software\\Classes\\" + wideOf(name);
  HKEY key = nullptr;
  const LSTATUS status = RegOpenKeyExW(hive, path.c_str(), 0, KEY_READ | view, &key);
  if (status == ERROR_SUCCESS) RegCloseKey(key);
  return status == ERROR_SUCCESS || status == ERROR_ACCESS_DENIED;
}

}  // namespace

std::vector<Side> sidesOf(const ComponentState& state) {
  std::vector<Side> sides;
  for (const int bits : {wide, narrow}) {
    if (bits == narrow || !state.narrowFolder.empty()) sides.push_back(sideOf(state, bits));
  }
  return sides;
}

bool isAnythingRegistered() {
  const auto braced = [](std::string_view id) { return '{' + std::string(id) + '}'; };
  const std::array keys{"CLSID\\" + braced(identity::classId), "Interface\\" + braced(identity::interfaceId),
                        "TypeLib\\" + braced(identity::libraryId), std::string(identity::progId),
                        std::string(identity::versionedProgId)};
  for (HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
    for (const REGSAM view : {KEY_WOW64_64KEY, KEY_WOW64_32KEY}) {
      if (std::any_of(keys.begin(), keys.end(),
                      [&](const auto& key) { return hasClassKey(hive, key, view); })) {
        return true;
      }
    }
  }
  return false;
}

Registrar::Registrar(std::vector<Side> sides) : sides_(std::move(sides)), folder_(folderOfChecks()) {
  fs::create_directories(folder_);
  const fs::path path = folder_ / "journal.txt";
  journal_ = platform::owned(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                                         FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!journal_) {
    const bool taken = GetLastError() == ERROR_SHARING_VIOLATION;
    throw Failure(badFile, taken ? "another check is under way" : textOf(path) + " cannot be written");
  }
  readJournal();
}

Registrar::~Registrar() {
  try {
    takeBack();
    if (isPending()) return;  // the next check will try again
    journal_.reset();
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
    fs::remove(folder_.parent_path(), ignored);
  } catch (const std::exception&) {
    // The journal is still there.
  }
}

/// Lines like "64 user C:\VelkCom\x64\VelkCom.dll".
void Registrar::readJournal() {
  std::array<char, 4096> text{};
  DWORD size = 0;
  ReadFile(journal_.get(), text.data(), static_cast<DWORD>(text.size()), &size, nullptr);
  std::istringstream in(std::string(text.data(), size));
  std::string scope;
  std::string library;
  for (int bits = 0; in >> bits >> scope && std::getline(in >> std::ws, library);) {
    const bool known =
        std::any_of(sides_.begin(), sides_.end(), [&](const Side& side) { return side.bits == bits; });
    const Scope whom = scope == "user" ? Scope::user : Scope::everybody;
    if (known) entries_.push_back({bits, whom, wideOf(library)});
  }
}

/// What is longer goes at the end: at no time is the journal without what is registered by now.
void Registrar::writeJournal() {
  std::string text;
  for (const Registration& entry : entries_) {
    text += std::to_string(entry.bits) + (entry.scope == Scope::user ? " user " : " everybody ") +
            textOf(entry.library) + '\n';
  }
  DWORD written = 0;
  const bool done =
      SetFilePointerEx(journal_.get(), {}, nullptr, FILE_BEGIN) != 0 &&
      WriteFile(journal_.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != 0 &&
      SetEndOfFile(journal_.get()) != 0 && FlushFileBuffers(journal_.get()) != 0;
  if (!done) throw Failure(badFile, textOf(folder_) + ": the journal cannot be written");
}

const Side& Registrar::sideOf(int bits) const {
  return *std::find_if(sides_.begin(), sides_.end(), [&](const Side& side) { return side.bits == bits; });
}

std::string Registrar::add(const Side& side, Scope scope) {
  entries_.push_back({side.bits, scope, side.library});
  writeJournal();
  return runRegsvr(side, scope, false);
}

/// The library that the journal names is not loaded: others may write there than those whose rights this
/// program has. That of this program takes back what another one has registered as well.
std::string Registrar::takeBack(const Registration& entry) const {
  const fs::path present = libraryAt(entry.bits, entry.scope);
  // Somebody has registered another one since.
  if (!present.empty() && !isSame(present, entry.library)) return {};
  const std::string fault = runRegsvr(sideOf(entry.bits), entry.scope, true);
  const bool isGone = libraryAt(entry.bits, entry.scope).empty();
  if (isGone && (fault.empty() || !isAnythingRegistered())) return {};
  return fault + ", " + programsFor(entry.bits, entry.scope) +
         (isGone ? " has left something" : " is still registered");
}

std::string Registrar::takeBack() {
  std::string faults;
  std::vector<Registration> left;
  for (const Registration& entry : entries_) {
    const std::string fault = takeBack(entry);
    if (!fault.empty()) left.push_back(entry);
    faults += fault;
  }
  if (!entries_.empty()) {
    entries_ = left;
    writeJournal();
  }
  return faults;
}

}  // namespace velk::cli
