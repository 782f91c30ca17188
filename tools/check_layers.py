#!/usr/bin/env python3
"""Checks that every project #include points downwards in the order of the layers.

Reads every .h and .cpp of the program's folders; prints each include that a layer may not have and
exits with 1 when there is one. The table below is the architecture in one place; a source that no
row claims is an error too, so that a new room gets its place.
"""

import pathlib
import re
import sys

# Layer: the layers that it may include, and its files as folder/stem. A longer pattern wins; the
# pattern "folder/*" takes what the others leave.
LAYERS = {
    "settings": (
        [],
        ["settings/drawproperty", "settings/settingsrecords", "settings/settingsfiles",
         "settings/inifile", "settings/pushbutton", "settings/selectbutton"],
    ),
    "pictures": ([], ["fusion/pictureconversion"]),
    "measure": (["settings"], ["measure/*"]),
    "calibration": (["settings"], ["calibration/*"]),
    "fusion": (["pictures"], ["fusion/*"]),
    "camera": (["pictures"], ["camera/*"]),
    "sweep": (
        ["camera", "fusion", "pictures"],
        ["fusion/fusiondata", "fusion/fusionwidget", "fusion/picshowdialog"],
    ),
    "pages": (
        ["settings", "measure", "camera"],
        ["workbench/showwidget*", "workbench/videowidget", "workbench/graphicsview",
         "workbench/pictureview", "workbench/capturename", "workbench/picturefile"],
    ),
    "dialogs": (
        ["settings", "measure", "pages"],
        ["settings/drawsettingdialog", "settings/drawchangedialog", "settings/crossdialog",
         "settings/colourbutton"],
    ),
    "workbench": (
        ["pages", "dialogs", "calibration", "sweep", "settings", "measure", "camera", "fusion",
         "pictures"],
        ["workbench/*"],
    ),
    "capture_device": (
        ["camera"],
        ["camera/capturedevice_*", "camera/videodevices_*", "camera/v4l2*"],
    ),
    "capture_simulated": (["camera"], ["simulator/*"]),
    "tour": (
        ["workbench", "pages", "dialogs", "calibration", "sweep", "settings", "measure", "camera",
         "fusion", "pictures", "capture_simulated"],
        ["simulator/tour*", "simulator/portraits", "simulator/main"],
    ),
    "batch": (["fusion", "pictures"], ["batch/*"]),
}

FOLDERS = ["settings", "measure", "calibration", "fusion", "camera", "workbench", "simulator",
           "batch"]
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


def layer_of(path):
    """The layer of a file given as folder/stem.ext, or None."""
    stem = path.with_suffix("")
    matches = [(len(pattern.rstrip("*")), layer)
               for layer, (_, patterns) in LAYERS.items()
               for pattern in patterns
               if stem.match(pattern)]
    return max(matches)[1] if matches else None


def faults_of(path, text):
    layer = layer_of(path)
    if layer is None:
        yield f"{path}: belongs to no layer"
        return
    for name in INCLUDE.findall(text):
        target = pathlib.PurePosixPath(name)
        if name.startswith("ui_") or name.endswith(".moc"):
            continue
        if len(target.parts) < 2 or target.parts[0] not in FOLDERS:
            yield f'{path}: "{name}" is not a path from the root'
            continue
        other = layer_of(target)
        if other != layer and other not in LAYERS[layer][0]:
            yield f'{path}: layer {layer} may not include "{name}" of {other}'


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
    faults = []
    for folder in FOLDERS:
        for file in sorted((root / folder).rglob("*")):
            if file.suffix in (".h", ".cpp"):
                faults += faults_of(file.relative_to(root), file.read_text(encoding="utf-8"))
    print("\n".join(faults) if faults else "All includes point downwards.")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
