"""The icons as a desktop loads them: each has the size that its folder promises, and the scalable one, drawn by a
program that is not ours, looks like the large one.

icons.py FOLDER_OF_THE_THEME NAME
"""

import sys
from pathlib import Path

import gi

gi.require_version("GdkPixbuf", "2.0")
from gi.repository import GdkPixbuf  # noqa: E402

# Of 255, in any channel of any pixel: edges of round corners are smoothed otherwise.
SMOOTHING = 40


def on_white(picture):
    """The colours of all pixels as they look on white; no padding."""
    width, height, channels = picture.get_width(), picture.get_height(), picture.get_n_channels()
    data, stride = picture.get_pixels(), picture.get_rowstride()
    for y in range(height):
        for x in range(width):
            pixel = data[y * stride + x * channels:][:channels]
            alpha = pixel[3] if channels == 4 else 255
            yield tuple((colour * alpha + 255 * (255 - alpha)) // 255 for colour in pixel[:3])


def main(theme, name):
    theme = Path(theme)
    faults = []
    for file in sorted(theme.glob(f"*/apps/{name}.png")):
        picture = GdkPixbuf.Pixbuf.new_from_file(str(file))
        if f"{picture.get_width()}x{picture.get_height()}" != file.parent.parent.name:
            faults.append(f"{file} has {picture.get_width()}x{picture.get_height()} pixels")
    large = GdkPixbuf.Pixbuf.new_from_file(str(theme / f"256x256/apps/{name}.png"))
    scalable = GdkPixbuf.Pixbuf.new_from_file_at_size(str(theme / f"scalable/apps/{name}.svg"), 256, 256)
    apart = max(max(abs(a - b) for a, b in zip(one, other))
                for one, other in zip(on_white(large), on_white(scalable)))
    print(f"the scalable icon and the one of 256 pixels are at most {apart} of 255 apart")
    if apart > SMOOTHING:
        faults.append(f"the scalable icon looks otherwise: {apart} of 255 apart")
    for fault in faults:
        print(f"FAIL {fault}")
    return 1 if faults else 0


sys.exit(main(*sys.argv[1:]))
