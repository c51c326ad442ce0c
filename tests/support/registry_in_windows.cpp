// The system's own registry, with keys of the test's own in place of its roots: Software\QmtUtiluTests below
// the user's root, and in it one key a program, which its next test removes should a test have died.
#include "support/registry_fixtures.h"

#include <system_error>

#include <windows.h>

namespace QMT {

bool const systemHasRegistry = true;
std::uint32_t const fileIsThere = ERROR_FILE_EXISTS;
std::uint32_t const noSuchDirectory = ERROR_PATH_NOT_FOUND;

namespace {

std::wstring const keyOfTests = L"Software\\QmtUtiluTests";

void Check(LSTATUS result, char const* fault) {
    if (result != ERROR_SUCCESS)
        throw std::system_error(result, std::system_category(), fault);
}

HKEY Make(std::wstring const& path) {
    HKEY key = nullptr;
    Check(::RegCreateKeyW(HKEY_CURRENT_USER, path.c_str(), &key), "cannot make a key for the test");
    return key;
}

void Remove(std::wstring const& path) {
    ::RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
    ::RegDeleteKeyW(HKEY_CURRENT_USER, path.c_str());
}

std::wstring KeyOfProgram() {
    wchar_t program[MAX_PATH] = L"";
    ::GetModuleFileNameW(nullptr, program, MAX_PATH);
    return keyOfTests + L"\\" + fs::path(program).stem().native();
}

// Lets the root be the key, which is closed; null brings back the root.
void Redirect(HKEY root, HKEY key) {
    Check(::RegOverridePredefKey(root, key), "cannot put a key in place of a root");
    ::RegCloseKey(key);
}

} // namespace

TestRegistry RegistryIn(TempDirectory const&) {
    std::wstring const path = KeyOfProgram();
    Remove(path);
    HKEY const userKey = Make(path + L"\\user");
    HKEY const machineKey = Make(path + L"\\machine");
    for (wchar_t const* const root : {L"\\user", L"\\machine"})
        ::RegCloseKey(Make(path + root + L"\\Software"));
    Redirect(HKEY_LOCAL_MACHINE, machineKey);
    Redirect(HKEY_CURRENT_USER, userKey);
    auto const remove = [path](Registry*) {
        for (HKEY const root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
            ::RegOverridePredefKey(root, nullptr);
        Remove(path);
        ::RegDeleteKeyW(HKEY_CURRENT_USER, keyOfTests.c_str()); // unless other programs have keys in it
    };
    return {&GetRegistry(), remove};
}

} // namespace QMT
