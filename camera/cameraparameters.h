#pragma once

#include <QSize>

#include <array>

/// The types of a parameter change, one bit each. A change is a pair: such a type and a number.
namespace CameraParameter {
enum Type : int {
    Brightness = 0x1,          ///< 0 to 100
    Contrast = 0x2,            ///< 0 to 100
    Chroma = 0x4,              ///< 0 to 99
    Saturation = 0x8,          ///< 0 to 99; 0 is black and white
    Focus = 0x10,              ///< 0 to 400; 200 is the motor's centre; turns autofocus off first
    AutoFocus = 0x20,          ///< 1 on, 0 off
    FocusWindow = 0x40,        ///< (x << 8) + y, the cell of click focus
    Resolution = 0x80,         ///< index into `resolutionTable`
    Zoom = 0x100,              ///< 1 to 130; 98 and 99 switch anti-reflection on the basic panel
    Red = 0x200,               ///< white balance, 0 to 4096
    Gain = 0x400,              ///< 0 to 50
    Sharpness = 0x800,         ///< 0 to 15; `SaveToCamera` is a command
    WhiteBalanceV = 0x1000,    ///< read, but sent by nobody
    FunctionSwitches = 0x2000, ///< a word of `FunctionWord` bits
    Green = 0x4000,            ///< white balance, 0 to 4096
    Blue = 0x8000,             ///< white balance times 10, 0 to 40960
    Shutter = 0x10000,         ///< -14 to 3, the logarithm to the base 2 of seconds
};

/// The number that, sent as sharpness, tells the camera to keep its settings.
constexpr int SaveToCamera = 20;
/// The focus number of the motor's centre.
constexpr int MotorCentre = 200;
} // namespace CameraParameter

/// The bits of the number that goes with `CameraParameter::FunctionSwitches`.
namespace FunctionWord {
enum Bit : int {
    FlipVertical = 1,
    FlipHorizontal = 2,
    AutoWhiteBalance = 4,
    AutoExposure = 8,
    EliminateReflection = 16,
    LargeFocusArea = 32,
};
} // namespace FunctionWord

/// The frame sizes that a camera offers, in the order of the resolution boxes.
constexpr std::array<QSize, 5> resolutionTable = {
    QSize(1920, 1080), QSize(4000, 3000), QSize(3840, 2160), QSize(1280, 720), QSize(640, 480)};

/// What the camera says of its parameters, in the numbers that it holds itself.
struct CameraInfo
{
    bool valid = false; ///< the device was open; if not, every number is -1
    int brightness = -1;
    int contrast = -1;
    int chroma = -1;
    int saturation = -1;
    int focus = -1;
    int autoFocus = -1;
    int resolution = -1; ///< a placeholder: nothing reads the frame size back
    int zoom = -1;
    int red = -1;
    int gain = -1;
    int sharpness = -1;
    int whiteBalanceV = -1;
    int functionWord = -1;
    int green = -1;
    int blue = -1;    ///< times 10
    int shutter = -1; ///< as the device gives it
};

/// One parameter of the camera.
struct CameraParameterRow
{
    int type;               ///< CameraParameter::Type
    int property;           ///< property number of the capture object
    int CameraInfo::*field; ///< where a read-back goes; null when it is not read back
};

constexpr std::size_t cameraParameterCount = 17;

/// Every parameter, in the order in which a batch of changes is applied and the record is read.
extern const std::array<CameraParameterRow, cameraParameterCount> cameraParameters;

/// Position of a type in `cameraParameters`, or -1 for a number that is no type.
int cameraParameterIndex(int type);

/// A property of the open device, cut to a whole number toward zero; -1 when it is not open.
int readCameraProperty(int property);

/// All that can be read back, in fifteen reads in the order of the table. Blocks on the device.
CameraInfo readCameraRecord();
