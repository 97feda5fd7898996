#include <windows.h>

#include <algorithm>
#include <cwctype>
#include <fstream>
#include <map>
#include <sstream>

#include "cli_runner.h"

namespace sw::testing {
namespace {

std::wstring Wide(const std::string& utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end())).wstring();
}

std::wstring UpperName(std::wstring name) {
  std::transform(name.begin(), name.end(), name.begin(), [](wchar_t c) { return std::towupper(c); });
  return name;
}

// One argument as the C runtime splits the command line again (backslashes double only before a quote).
std::wstring QuoteArgument(const std::wstring& argument) {
  std::wstring quoted = L"\"";
  std::size_t backslashes = 0;
  for (wchar_t c : argument) {
    if (c == L'\\') {
      ++backslashes;
      continue;
    }
    if (c == L'"') {
      quoted.append(backslashes * 2 + 1, L'\\');
    } else {
      quoted.append(backslashes, L'\\');
    }
    backslashes = 0;
    quoted += c;
  }
  quoted.append(backslashes * 2, L'\\');
  return quoted + L"\"";
}

// The test's own environment with the runner's variables laid over it, as CreateProcessW wants it.
std::wstring EnvironmentBlock(const std::vector<std::string>& overrides) {
  std::map<std::wstring, std::wstring> variables;  // upper-case name -> "Name=value"
  if (wchar_t* strings = GetEnvironmentStringsW()) {
    for (const wchar_t* entry = strings; *entry; entry += wcslen(entry) + 1) {
      const std::wstring text(entry);
      const auto equals = text.find(L'=', 1);
      if (equals == std::wstring::npos) continue;
      variables[UpperName(text.substr(0, equals))] = text;
    }
    FreeEnvironmentStringsW(strings);
  }
  for (const auto& variable : overrides) {
    const std::wstring text = Wide(variable);
    variables[UpperName(text.substr(0, text.find(L'=')))] = text;
  }
  std::wstring block;
  for (const auto& [name, text] : variables) block += text + L'\0';
  return block + L'\0';
}

HANDLE InheritableFile(const std::filesystem::path& file, DWORD access, DWORD disposition) {
  SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
  return CreateFileW(file.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit, disposition,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Read as text: a Windows console program ends its lines with CR LF.
std::string Slurp(const std::filesystem::path& file) {
  std::ifstream in(file);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

CliResult CliRunner::Run(const std::vector<std::string>& args) const {
  const auto outFile = folder_ / "stdout.txt";
  const auto errFile = folder_ / "stderr.txt";
  std::wstring environmentBlock = EnvironmentBlock(Variables());

  std::wstring commandLine = QuoteArgument(std::filesystem::path(SW_CLI_PATH).wstring());
  for (const auto& arg : args) commandLine += L" " + QuoteArgument(Wide(arg));

  CliResult result;
  HANDLE out = InheritableFile(outFile, GENERIC_WRITE, CREATE_ALWAYS);
  HANDLE err = InheritableFile(errFile, GENERIC_WRITE, CREATE_ALWAYS);
  HANDLE in = InheritableFile("NUL", GENERIC_READ, OPEN_EXISTING);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = in;
  startup.hStdOutput = out;
  startup.hStdError = err;
  PROCESS_INFORMATION process{};
  if (CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, CREATE_UNICODE_ENVIRONMENT,
                     environmentBlock.data(), nullptr, &startup, &process)) {
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD exitCode = 0;
    if (GetExitCodeProcess(process.hProcess, &exitCode)) result.exitCode = static_cast<int>(exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  for (HANDLE handle : {out, err, in}) {
    if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
  }
  result.out = Slurp(outFile);
  result.err = Slurp(errFile);
  return result;
}

}  // namespace sw::testing
