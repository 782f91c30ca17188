// The walk through the video input devices of Windows, as wine lists them: one device for each key
// of the registry under the category. No toolkit: the program is built alone and runs without a
// display (scripts/windows-dshow-test).

#include "camera/enumeratevideodevices.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <atomic>
#include <cstdio>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

constexpr wchar_t category[] = L"CLSID\\{860BB310-5D01-11D0-BD3B-00A0C911CE86}\\Instance";
constexpr wchar_t deviceEnumerator[] =
    L"CLSID\\{62BE5D10-60EB-11D0-BD3B-00A0C911CE86}\\InprocServer32";

// ---- Devices of the registry

void setText(HKEY key, const wchar_t *name, const std::wstring &text)
{
    const auto bytes = reinterpret_cast<const BYTE *>(text.c_str());
    RegSetValueExW(key, name, 0, REG_SZ, bytes, DWORD((text.size() + 1) * sizeof(wchar_t)));
}

std::wstring keyOf(const std::wstring &device) { return std::wstring(category) + L"\\" + device; }

/// Plugs in a device. Devices are listed in the order of their keys.
/// @param path  null for a device that does not tell its path
void plugIn(const std::wstring &device, const std::wstring &name, const wchar_t *path)
{
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_CLASSES_ROOT, keyOf(device).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                    nullptr, &key, nullptr);
    setText(key, L"CLSID", L"{1B544C22-FD0B-11CE-8C63-00AA0044B51E}");
    setText(key, L"FriendlyName", name);
    if (path)
        setText(key, L"DevicePath", path);
    RegCloseKey(key);
}

void unplug(const std::wstring &device) { RegDeleteKeyW(HKEY_CLASSES_ROOT, keyOf(device).c_str()); }

void unplugAll() { RegDeleteTreeW(HKEY_CLASSES_ROOT, category); }

// ---- Expectations

int failures = 0;

std::string shown(const Texts &texts)
{
    std::string all = "[";
    for (const std::string &text : texts)
        all += (all.size() > 1 ? ", \"" : "\"") + text + "\"";
    return all + "]";
}

void expect(bool holds, const std::string &what)
{
    if (holds)
        return;
    ++failures;
    std::printf("    %s\n", what.c_str());
}

void expectListed(const Texts &names, const Texts &paths)
{
    Texts listedNames;
    Texts listedPaths;
    const int count = enumerateVideoDevices(listedNames, listedPaths);
    expect(count == int(names.size()), "counted " + std::to_string(count));
    expect(listedNames == names, "names: " + shown(listedNames) + ", not " + shown(names));
    expect(listedPaths == paths, "paths: " + shown(listedPaths) + ", not " + shown(paths));
}

// ---- Cases

void noDeviceGivesEmptyLists() { expectListed({}, {}); }

void oneDeviceIsListed()
{
    plugIn(L"a", L"Orvane_M1", L"\\\\?\\usb#vid_1bcf&pid_0b09#6&1#{65e8773d}\\global");
    expectListed({"Orvane_M1"}, {"\\\\?\\usb#vid_1bcf&pid_0b09#6&1#{65e8773d}\\global"});
}

void twoOfOneNameDifferByPath()
{
    plugIn(L"a", L"Orvane_M1", L"usb-1");
    plugIn(L"b", L"Orvane_M1", L"usb-2");
    expectListed({"Orvane_M1", "Orvane_M1"}, {"usb-1", "usb-2"});
}

void orderIsTheSystemsOwnAndNotThatOfPlugging()
{
    plugIn(L"b", L"Orvane_late", L"usb-2");
    plugIn(L"a", L"Webcam", L"usb-1");
    expectListed({"Webcam", "Orvane_late"}, {"usb-1", "usb-2"});
    expectListed({"Webcam", "Orvane_late"}, {"usb-1", "usb-2"});
}

void deviceWithoutAPathIsSkippedAndTheOnesBehindMoveUp()
{
    plugIn(L"a", L"Orvane_A", L"usb-1");
    plugIn(L"b", L"Orvane_B", nullptr);
    plugIn(L"c", L"Orvane_C", L"usb-3");
    expectListed({"Orvane_A", "Orvane_C"}, {"usb-1", "usb-3"});
}

void emptyPathIsAPath()
{
    plugIn(L"a", L"Orvane_A", L"");
    expectListed({"Orvane_A"}, {""});
}

void nameOf255CharactersPassesWhole()
{
    plugIn(L"a", std::wstring(254, L'n') + L"z", L"usb-1");
    expectListed({std::string(254, 'n') + "z"}, {"usb-1"});
}

void nameOf256CharactersLosesItsLast()
{
    plugIn(L"a", std::wstring(255, L'n') + L"z", L"usb-1");
    expectListed({std::string(255, 'n')}, {"usb-1"});
}

void pathIsCutLikeAName()
{
    const std::wstring path = std::wstring(255, L'p') + L"z";
    plugIn(L"a", L"Orvane_A", path.c_str());
    expectListed({"Orvane_A"}, {std::string(255, 'p')});
}

void otherAlphabetsComeOutAsTheirLowBytes()
{
    // U+663E U+5FAE U+955C and U+00E9
    plugIn(L"a", L"Orvane_\u663e\u5fae\u955c", L"usb-\u00e9");
    expectListed({"Orvane_\x3e\xae\x5c"}, {"usb-\xe9"});
}

void characterWithALowByteOfZeroEndsTheText()
{
    // U+4E00
    plugIn(L"a", L"Orvane_\u4e00b", L"usb-1");
    expectListed({"Orvane_"}, {"usb-1"});
}

void nameThatChangesAtThePathIsReadAnew()
{
    plugIn(L"a", L"Orvane_A", L"usb-1");
    expectListed({"Orvane_A"}, {"usb-1"});
    plugIn(L"a", L"Orvane_B", L"usb-1");
    expectListed({"Orvane_B"}, {"usb-1"});
}

void listsGrowBehindWhatTheyHold()
{
    plugIn(L"a", L"Orvane_A", L"usb-1");
    Texts names = {"before"};
    Texts paths = {"path before"};
    expect(enumerateVideoDevices(names, paths) == 1, "the count is that of the devices found");
    expect(names == Texts{"before", "Orvane_A"}, shown(names));
    expect(paths == Texts{"path before", "usb-1"}, shown(paths));
}

/// A thread that lists the devices again and again, like the discovery thread, only faster.
class Polling
{
public:
    Polling()
        : thread([this] { run(); })
    {}
    ~Polling()
    {
        goesOn = false;
        thread.join();
    }

    /// Whether a pass that began from now on finds these paths, within ten seconds.
    bool finds(const Texts &expected)
    {
        for (int i = 0; i < 1000; ++i) {
            const int before = passes;
            while (passes < before + 2)
                Sleep(1);
            if (isLast(expected))
                return true;
            Sleep(10);
        }
        return false;
    }

private:
    void run()
    {
        while (goesOn) {
            Texts names;
            Texts paths;
            enumerateVideoDevices(names, paths);
            EnterCriticalSection(&section.handle);
            last = paths;
            LeaveCriticalSection(&section.handle);
            ++passes;
        }
    }

    bool isLast(const Texts &expected)
    {
        EnterCriticalSection(&section.handle);
        const bool equal = last == expected;
        LeaveCriticalSection(&section.handle);
        return equal;
    }

    struct Section
    {
        Section() { InitializeCriticalSection(&handle); }
        ~Section() { DeleteCriticalSection(&handle); }
        CRITICAL_SECTION handle;
    };

    Section section;
    Texts last;
    std::atomic<int> passes{0};
    std::atomic<bool> goesOn{true};
    std::thread thread;
};

void pluggingIsSeenByAThreadThatPolls()
{
    Polling polling;
    expect(polling.finds({}), "nothing is attached");
    plugIn(L"a", L"Orvane_A", L"usb-1");
    expect(polling.finds({"usb-1"}), "one was plugged in");
    plugIn(L"b", L"Orvane_A", L"usb-2");
    expect(polling.finds({"usb-1", "usb-2"}), "a second one was plugged in");
    unplug(L"a");
    expect(polling.finds({"usb-2"}), "the first one was unplugged");
    plugIn(L"a", L"Orvane_A", L"usb-1");
    expect(polling.finds({"usb-1", "usb-2"}), "it came back");
    unplug(L"a");
    unplug(L"b");
    expect(polling.finds({}), "both were unplugged");
}

/// The last case: it takes the system's own enumerator away.
void failureOfComLooksLikeAnEmptyList()
{
    plugIn(L"a", L"Orvane_A", L"usb-1");
    expectListed({"Orvane_A"}, {"usb-1"});
    expect(RegDeleteTreeW(HKEY_CLASSES_ROOT, deviceEnumerator) == ERROR_SUCCESS,
           "the enumerator was registered");
    expectListed({}, {});
}

struct Case
{
    const char *name;
    void (*run)();
};

#define CASE(function)                                                                             \
    {                                                                                              \
#function, function                                                                        \
    }
constexpr Case cases[] = {
    CASE(noDeviceGivesEmptyLists),
    CASE(oneDeviceIsListed),
    CASE(twoOfOneNameDifferByPath),
    CASE(orderIsTheSystemsOwnAndNotThatOfPlugging),
    CASE(deviceWithoutAPathIsSkippedAndTheOnesBehindMoveUp),
    CASE(emptyPathIsAPath),
    CASE(nameOf255CharactersPassesWhole),
    CASE(nameOf256CharactersLosesItsLast),
    CASE(pathIsCutLikeAName),
    CASE(otherAlphabetsComeOutAsTheirLowBytes),
    CASE(characterWithALowByteOfZeroEndsTheText),
    CASE(nameThatChangesAtThePathIsReadAnew),
    CASE(listsGrowBehindWhatTheyHold),
    CASE(pluggingIsSeenByAThreadThatPolls),
    CASE(failureOfComLooksLikeAnEmptyList),
};
#undef CASE

} // namespace

int main()
{
    // The cases write the registry, which is nobody's loss in a wine prefix of their own.
    if (!GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version")) {
        std::printf("Runs under wine alone: it rewrites the list of the machine's cameras.\n");
        return 2;
    }
    int failed = 0;
    for (const Case &one : cases) {
        unplugAll();
        failures = 0;
        one.run();
        failed += failures > 0;
        std::printf("%s   : %s\n", failures ? "FAIL!" : "PASS ", one.name);
    }
    unplugAll();
    std::printf("Totals: %d passed, %d failed\n", int(std::size(cases)) - failed, failed);
    return failed ? 1 : 0;
}
