#include "camera/videodevices_dshow.h"

#include "camera/enumeratevideodevices.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <objbase.h>
#include <oleauto.h>
#include <strmif.h>

namespace {

constexpr GUID systemDeviceEnumClass = {
    0x62BE5D10, 0x60EB, 0x11D0, {0xBD, 0x3B, 0x00, 0xA0, 0xC9, 0x11, 0xCE, 0x86}};
constexpr GUID createDevEnumInterface = {
    0x29840822, 0x5B84, 0x11D0, {0xBD, 0x3B, 0x00, 0xA0, 0xC9, 0x11, 0xCE, 0x86}};
constexpr GUID videoInputDeviceCategory = {
    0x860BB310, 0x5D01, 0x11D0, {0xBD, 0x3B, 0x00, 0xA0, 0xC9, 0x11, 0xCE, 0x86}};
constexpr GUID propertyBagInterface = {
    0x55272A00, 0x42CB, 0x11CE, {0x81, 0x35, 0x00, 0xAA, 0x00, 0x4B, 0xB8, 0x51}};

/// A counted reference to a COM object, given back with the scope.
template<typename Interface>
class Reference
{
public:
    Reference() = default;
    ~Reference()
    {
        if (object)
            object->Release();
    }
    Reference(const Reference &) = delete;
    Reference &operator=(const Reference &) = delete;

    Interface *operator->() const { return object; }
    /// Where a call puts the object.
    Interface **receive() { return &object; }
    void **receiveAny() { return reinterpret_cast<void **>(&object); }

private:
    Interface *object = nullptr;
};

/// A text property of a device.
class TextProperty
{
public:
    TextProperty(IPropertyBag *bag, const wchar_t *property)
    {
        VariantInit(&value);
        readable = SUCCEEDED(bag->Read(property, &value, nullptr)) && value.vt == VT_BSTR;
    }
    ~TextProperty() { VariantClear(&value); }
    TextProperty(const TextProperty &) = delete;
    TextProperty &operator=(const TextProperty &) = delete;

    /// Null when the device does not tell it.
    const wchar_t *text() const
    {
        static const wchar_t empty[] = L"";
        if (!readable)
            return nullptr;
        return value.bstrVal ? value.bstrVal : empty;
    }

private:
    VARIANT value;
    bool readable = false;
};

bool appendMoniker(IMoniker *moniker, std::vector<std::string> &names,
                   std::vector<std::string> &paths)
{
    Reference<IPropertyBag> bag;
    if (FAILED(moniker->BindToStorage(nullptr, nullptr, propertyBagInterface, bag.receiveAny())))
        return false;
    const TextProperty name(*bag.receive(), L"FriendlyName");
    const TextProperty path(*bag.receive(), L"DevicePath");
    return appendDevice(name.text(), path.text(), names, paths);
}

} // namespace

int enumerateVideoDevices(std::vector<std::string> &names, std::vector<std::string> &paths)
{
    // On every pass, and never undone: on the polling thread only the first call has an effect.
    CoInitialize(nullptr);

    Reference<ICreateDevEnum> devices;
    if (FAILED(CoCreateInstance(systemDeviceEnumClass, nullptr, CLSCTX_INPROC_SERVER,
                                createDevEnumInterface, devices.receiveAny())))
        return 0;
    // An empty category answers S_FALSE.
    Reference<IEnumMoniker> monikers;
    if (devices->CreateClassEnumerator(videoInputDeviceCategory, monikers.receive(), 0) != S_OK)
        return 0;

    int count = 0;
    for (;;) {
        Reference<IMoniker> moniker;
        if (monikers->Next(1, moniker.receive(), nullptr) != S_OK)
            return count;
        if (appendMoniker(*moniker.receive(), names, paths))
            ++count;
    }
}
