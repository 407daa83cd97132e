#!/usr/bin/python3
"""Renders the icons into the forms that panels and bundles need besides the SVG itself.

usage: tools/render-icons.py        needs rsvg-convert and convert (tools/install-packages artwork)

Writes beside resources/icons/NAME-symbolic.svg:
  NAME-SIZE.pgm      the shape as an 8-bit alpha mask, for the pixmaps sent to panels that look up no icon names;
                     a plain graymap, so that the program needs no image decoder
  NAME-symbolic.png  for panels that look for nothing but PNG files
and in resources/macos:
  NAME.png, NAME@2x.png  the shape in black, for the menu bar
  AppIcon.icns           of AppIcon.svg
  AboutIcon.png, AboutIcon@2x.png  of the same
"""

import pathlib
import struct
import subprocess

SIZES = (16, 22, 24, 32, 48)
RESOURCES = pathlib.Path(__file__).resolve().parent.parent / "resources"
ICONS = RESOURCES / "icons"
BUNDLE = RESOURCES / "macos"

# The menu bar is 22 points high, and leaves room above and below.
MENU_BAR_POINTS = 18

ABOUT_POINTS = 96

# The members of an .icns file that hold a PNG of that many pixels.
ICNS = {b"icp4": 16, b"ic11": 32, b"icp5": 32, b"ic12": 64, b"ic07": 128, b"ic13": 256, b"ic08": 256, b"ic14": 512,
        b"ic09": 512, b"ic10": 1024}


def render(svg: pathlib.Path, size: int) -> bytes:
    command = ["rsvg-convert", f"--width={size}", f"--height={size}", str(svg)]
    return subprocess.run(command, check=True, capture_output=True).stdout


def alpha_mask(png: bytes) -> bytes:
    command = ["convert", "png:-", "-alpha", "extract", "-depth", "8", "pgm:-"]
    return subprocess.run(command, check=True, capture_output=True, input=png).stdout


def black(png: bytes) -> bytes:
    command = ["convert", "png:-", "-fill", "black", "-colorize", "100", "-strip", "png:-"]
    return subprocess.run(command, check=True, capture_output=True, input=png).stdout


def icns(svg: pathlib.Path) -> bytes:
    members = b""
    for kind, size in ICNS.items():
        png = render(svg, size)
        members += struct.pack(">4sI", kind, 8 + len(png)) + png
    return struct.pack(">4sI", b"icns", 8 + len(members)) + members


def main() -> None:
    suffix = "-symbolic"
    for svg in sorted(ICONS.glob(f"*{suffix}.svg")):
        name = svg.stem.removesuffix(suffix)
        for size in SIZES:
            (ICONS / f"{name}-{size}.pgm").write_bytes(alpha_mask(render(svg, size)))
        svg.with_suffix(".png").write_bytes(render(svg, max(SIZES)))
        (BUNDLE / f"{name}.png").write_bytes(black(render(svg, MENU_BAR_POINTS)))
        (BUNDLE / f"{name}@2x.png").write_bytes(black(render(svg, 2 * MENU_BAR_POINTS)))
    icon = BUNDLE / "AppIcon.svg"
    (BUNDLE / "AppIcon.icns").write_bytes(icns(icon))
    (BUNDLE / "AboutIcon.png").write_bytes(render(icon, ABOUT_POINTS))
    (BUNDLE / "AboutIcon@2x.png").write_bytes(render(icon, 2 * ABOUT_POINTS))


if __name__ == "__main__":
    main()
