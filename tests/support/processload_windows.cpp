#include "tests/support/processload.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <tlhelp32.h>

namespace {

int threadsOfThisProcess()
{
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot == INVALID_HANDLE_VALUE)
        return 0;
    int count = 0;
    THREADENTRY32 thread = {};
    thread.dwSize = sizeof thread;
    for (BOOL more = Thread32First(snapshot, &thread); more; more = Thread32Next(snapshot, &thread))
        count += thread.th32OwnerProcessID == GetCurrentProcessId();
    CloseHandle(snapshot);
    return count;
}

} // namespace

// The heap is not weighed here: the system keeps no count that follows small blocks.
ProcessLoad ProcessLoad::now()
{
    DWORD handles = 0;
    if (!GetProcessHandleCount(GetCurrentProcess(), &handles)) // wine has no such count
        handles = 0;
    return {threadsOfThisProcess(), int(handles), 0};
}
