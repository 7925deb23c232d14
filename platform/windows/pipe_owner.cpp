#include "platform/windows/pipe_owner.h"

#include <windows.h>

#include <aclapi.h>

#include <cstddef>

namespace vorn {

namespace {

/// True for the user whom this process runs for.
bool IsThisUser(PSID owner) {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return false;
    alignas(TOKEN_USER) std::byte facts[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
    DWORD bytes = 0;
    const bool told = GetTokenInformation(token, TokenUser, facts, sizeof facts, &bytes) != FALSE;
    CloseHandle(token);
    return told && EqualSid(reinterpret_cast<const TOKEN_USER*>(facts)->User.Sid, owner) != FALSE;
}

}  // namespace

bool PipeOwnerTrusted(void* pipe) {
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR facts = nullptr;
    if (GetSecurityInfo(pipe, SE_KERNEL_OBJECT, OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr, nullptr,
                        &facts) != ERROR_SUCCESS)
        return false;
    // What an administrator makes belongs to all of them. Wine tells no owner where none was set.
    const bool trusted = owner == nullptr || IsWellKnownSid(owner, WinLocalSystemSid) ||
                         IsWellKnownSid(owner, WinBuiltinAdministratorsSid) || IsThisUser(owner);
    LocalFree(facts);
    return trusted;
}

}  // namespace vorn
