// Makes an image file behave as a raw disk does, for the program that loads this DLL: its import table is
// pointed at the functions below. The environment variable RAW_DISK says how the disk is, in words with a
// blank between:
//
//   sector=BYTES       the sector size; 512 without it
//   log=FILE           every call on the disk is written there with its arguments, one line each, and every
//                      opening of another file
//   open=ERROR         the disk does not open
//   geometry=ERROR     the first query fails
//   length=ERROR       the second query fails
//   seek=SECTOR:ERROR  the move to that sector is refused; error 0 means that no error code is set
//   land=SECTOR        the move to that sector ends one sector further
//   read=SECTOR:ERROR  reads that touch that sector fail
//   short=SECTOR:BYTES the read at that sector gives only so many bytes
//   hang=SECTOR        the read at that sector never ends
//   close=ERROR        the disk closes with an error
//   zone=system        the C runtime does not see the variable TZ, and asks the system for its time zone
//
// The words that name a sector may stand several times. ERROR 0 fails without an error code. On top of these,
// what every raw disk does:
//
//   - positions and lengths that are not whole sectors are refused, and so are buffers that do not lie as the
//     adapter asks, here at a multiple of 16: error 87, ERROR_INVALID_PARAMETER
//   - a move to a position below 0: error 131, ERROR_NEGATIVE_SEEK
//   - a move behind the end is none of its business; a read there, of one sector or of several that are
//     not all on the disk, reads nothing: error 27, ERROR_SECTOR_NOT_FOUND

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "tests/windows/disk_queries.h"

namespace {

using Number = unsigned long long;

struct Rules {
  std::map<std::string, DWORD> errors;  // of open, geometry, length, close
  std::map<Number, DWORD> refusedMoves;
  std::map<Number, DWORD> badSectors;
  std::map<Number, DWORD> shortReads;
  std::set<Number> landsElsewhere;
  std::set<Number> hangs;
  DWORD sectorSize = 512;
  std::FILE* log = nullptr;
  HANDLE disk = INVALID_HANDLE_VALUE;
  LONGLONG position = 0;  // an image file could not be moved to wherever a disk can
};

constexpr std::uintptr_t kAlignment = 16;

Rules rules;

// Reads RAW_DISK; a word that it does not know ends the program, or a test would pass for no reason.
void ReadRules() {
  const char* const text = std::getenv("RAW_DISK");
  std::istringstream words(text == nullptr ? "" : text);
  for (std::string word; words >> word;) {
    const std::size_t equals = word.find('=');
    const std::string key = word.substr(0, equals);
    const std::string value = word.substr(equals + 1);
    const Number number = std::strtoull(value.c_str(), nullptr, 10);
    const std::size_t colon = value.find(':');
    const auto second = static_cast<DWORD>(
        colon == std::string::npos ? 0 : std::strtoul(value.c_str() + colon + 1, nullptr, 10));
    if (key == "sector") {
      rules.sectorSize = static_cast<DWORD>(number);
    } else if (key == "log") {
      rules.log = std::fopen(value.c_str(), "wb");
    } else if (key == "open" || key == "geometry" || key == "length" || key == "close") {
      rules.errors[key] = static_cast<DWORD>(number);
    } else if (key == "seek") {
      rules.refusedMoves[number] = second;
    } else if (key == "read") {
      rules.badSectors[number] = second;
    } else if (key == "short") {
      rules.shortReads[number] = second;
    } else if (key == "land") {
      rules.landsElsewhere.insert(number);
    } else if (key == "hang") {
      rules.hangs.insert(number);
    } else if (word == "zone=system") {
      _putenv("TZ=");
    } else {
      std::fprintf(stderr, "raw_disk_rules: what is %s?\n", word.c_str());
      ExitProcess(124);
    }
  }
}

void Log(const std::string& line) {
  if (rules.log == nullptr) return;
  std::fprintf(rules.log, "%s\n", line.c_str());
  std::fflush(rules.log);
}

std::string Hex(Number value) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%llX", value);
  return text;
}

std::string Pointer(const void* pointer) {
  return pointer == nullptr ? "none" : "given";
}

BOOL Fail(DWORD error) {
  SetLastError(error);
  return FALSE;
}

BOOL FailAsTold(const char* call) {
  return Fail(rules.errors.at(call));
}

HANDLE WINAPI RulesCreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                               DWORD disposition, DWORD flags, HANDLE pattern) {
  const std::wstring wide = path;
  std::string name(wide.size(), '?');
  std::transform(wide.begin(), wide.end(), name.begin(),
                 [](wchar_t character) { return character < 0x80 ? static_cast<char>(character) : '?'; });
  Log("CreateFileW " + name + " access " + Hex(access) + " share " + Hex(share) + " security " +
      Pointer(security) + " disposition " + Hex(disposition) + " flags " + Hex(flags) + " template " +
      Pointer(pattern));
  if (!wide.starts_with(L"\\\\.\\PhysicalDrive")) {
    return CreateFileW(path, access, share, security, disposition, flags, pattern);
  }
  if (rules.errors.contains("open")) {
    FailAsTold("open");
    return INVALID_HANDLE_VALUE;
  }
  rules.disk = CreateFileW(path, access, share, security, disposition, flags, pattern);
  rules.position = 0;
  return rules.disk;
}

BOOL WINAPI RulesDeviceIoControl(HANDLE disk, DWORD code, LPVOID in, DWORD inSize, LPVOID answer, DWORD room,
                                 LPDWORD returned, LPOVERLAPPED overlapped) {
  const auto* const bytes = static_cast<const char*>(answer);
  const bool zeroed = std::all_of(bytes, bytes + room, [](char byte) { return byte == 0; });
  Log("DeviceIoControl code " + Hex(code) + " in " + Pointer(in) + " " + std::to_string(inSize) + " out " +
      std::to_string(room) + (zeroed ? " zeros" : " not zeros") + " returned " + Pointer(returned) +
      " overlapped " + Pointer(overlapped));
  if (code == IOCTL_DISK_GET_DRIVE_GEOMETRY_EX && rules.errors.contains("geometry")) {
    return FailAsTold("geometry");
  }
  if (code == IOCTL_DISK_GET_LENGTH_INFO && rules.errors.contains("length")) return FailAsTold("length");
  return trovisk::test::AnswerDiskQuery(disk, code, answer, room, returned, rules.sectorSize);
}

BOOL WINAPI RulesSetFilePointerEx(HANDLE disk, LARGE_INTEGER distance, PLARGE_INTEGER landed, DWORD method) {
  Log("SetFilePointerEx offset " + std::to_string(distance.QuadPart) + " new position " + Pointer(landed) +
      " method " + std::to_string(method));
  if (disk != rules.disk || method != FILE_BEGIN) return SetFilePointerEx(disk, distance, landed, method);
  if (distance.QuadPart < 0) return Fail(ERROR_NEGATIVE_SEEK);
  if (distance.QuadPart % rules.sectorSize != 0) return Fail(ERROR_INVALID_PARAMETER);
  const Number sector = static_cast<Number>(distance.QuadPart) / rules.sectorSize;
  const auto refused = rules.refusedMoves.find(sector);
  if (refused != rules.refusedMoves.end() && refused->second != 0) return Fail(refused->second);
  rules.position = distance.QuadPart + (rules.landsElsewhere.contains(sector) ? rules.sectorSize : 0);
  if (landed != nullptr) landed->QuadPart = rules.position;
  return refused == rules.refusedMoves.end() ? TRUE : Fail(0);
}

BOOL WINAPI RulesReadFile(HANDLE disk, LPVOID buffer, DWORD count, LPDWORD got, LPOVERLAPPED overlapped) {
  if (disk != rules.disk) return ReadFile(disk, buffer, count, got, overlapped);
  Log("ReadFile " + std::to_string(count) + " bytes, overlapped " + Pointer(overlapped));
  if (count % rules.sectorSize != 0 || reinterpret_cast<std::uintptr_t>(buffer) % kAlignment != 0) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  LARGE_INTEGER length{};
  GetFileSizeEx(disk, &length);
  const LONGLONG end = length.QuadPart - length.QuadPart % rules.sectorSize;
  if (rules.position > end || count > end - rules.position) return Fail(ERROR_SECTOR_NOT_FOUND);
  const Number sector = static_cast<Number>(rules.position) / rules.sectorSize;
  if (rules.hangs.contains(sector)) Sleep(INFINITE);
  const auto bad = rules.badSectors.lower_bound(sector);
  if (bad != rules.badSectors.end() && bad->first < sector + count / rules.sectorSize)
    return Fail(bad->second);
  if (rules.shortReads.contains(sector)) count = std::min(count, rules.shortReads[sector]);
  LARGE_INTEGER position{};
  position.QuadPart = rules.position;
  if (!SetFilePointerEx(disk, position, nullptr, FILE_BEGIN)) return FALSE;
  const BOOL read = ReadFile(disk, buffer, count, got, overlapped);
  rules.position += *got;
  return read;
}

BOOL WINAPI RulesCloseHandle(HANDLE handle) {
  if (handle != rules.disk) return CloseHandle(handle);
  Log("CloseHandle");
  rules.disk = INVALID_HANDLE_VALUE;
  const BOOL closed = CloseHandle(handle);
  return rules.errors.contains("close") ? FailAsTold("close") : closed;
}

struct Replacement {
  const char* name;
  void* function;
};

template <typename Function>
Replacement Replace(const char* name, Function* function) {
  return {name, reinterpret_cast<void*>(function)};
}

template <typename T>
T* At(char* base, DWORD offset) {
  return reinterpret_cast<T*>(base + offset);
}

void PointSlotAt(ULONGLONG* slot, void* function) {
  DWORD protection = 0;
  VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
  *slot = reinterpret_cast<ULONGLONG>(function);
  VirtualProtect(slot, sizeof *slot, protection, &protection);
}

// Points the program's imports of these names at the replacements, for how many of them.
std::size_t PatchImports(const Replacement* replacements, std::size_t count) {
  char* const base = reinterpret_cast<char*>(GetModuleHandleW(nullptr));
  const auto* const headers =
      At<IMAGE_NT_HEADERS64>(base, static_cast<DWORD>(At<IMAGE_DOS_HEADER>(base, 0)->e_lfanew));
  const DWORD imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
  std::size_t patched = 0;
  for (auto* dll = At<IMAGE_IMPORT_DESCRIPTOR>(base, imports); dll->Name != 0; ++dll) {
    const auto* name = At<ULONGLONG>(base, dll->OriginalFirstThunk);
    for (auto* slot = At<ULONGLONG>(base, dll->FirstThunk); *name != 0; ++name, ++slot) {
      if (IMAGE_SNAP_BY_ORDINAL64(*name)) continue;
      const auto* const import = At<IMAGE_IMPORT_BY_NAME>(base, static_cast<DWORD>(*name));
      for (std::size_t i = 0; i < count; ++i) {
        if (std::strcmp(import->Name, replacements[i].name) != 0) continue;
        PointSlotAt(slot, replacements[i].function);
        ++patched;
      }
    }
  }
  return patched;
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE /*module*/, DWORD reason, LPVOID /*reserved*/) {
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  ReadRules();
  const Replacement replacements[] = {
      Replace("CreateFileW", RulesCreateFileW),           Replace("DeviceIoControl", RulesDeviceIoControl),
      Replace("SetFilePointerEx", RulesSetFilePointerEx), Replace("ReadFile", RulesReadFile),
      Replace("CloseHandle", RulesCloseHandle),
  };
  return PatchImports(replacements, std::size(replacements)) == std::size(replacements);
}
