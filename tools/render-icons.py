#!/usr/bin/python3
"""Renders the menu-bar icon into the forms that panels need besides the SVG itself.

usage: tools/render-icons.py        needs rsvg-convert (librsvg2-bin) and convert (imagemagick)

Writes beside resources/icons/NAME-symbolic.svg:
  NAME-SIZE.pgm      the shape as an 8-bit alpha mask, for the pixmaps sent to panels that look up no icon names;
                     a plain graymap, so that the program needs no image decoder
  NAME-symbolic.png  for panels that look for nothing but PNG files
"""

import pathlib
import subprocess

SIZES = (16, 22, 24, 32, 48)
ICONS = pathlib.Path(__file__).resolve().parent.parent / "resources" / "icons"


def render(svg: pathlib.Path, size: int) -> bytes:
    command = ["rsvg-convert", f"--width={size}", f"--height={size}", str(svg)]
    return subprocess.run(command, check=True, capture_output=True).stdout


def alpha_mask(png: bytes) -> bytes:
    command = ["convert", "png:-", "-alpha", "extract", "-depth", "8", "pgm:-"]
    return subprocess.run(command, check=True, capture_output=True, input=png).stdout


def main() -> None:
    suffix = "-symbolic"
    for svg in sorted(ICONS.glob(f"*{suffix}.svg")):
        name = svg.stem.removesuffix(suffix)
        for size in SIZES:
            (ICONS / f"{name}-{size}.pgm").write_bytes(alpha_mask(render(svg, size)))
        svg.with_suffix(".png").write_bytes(render(svg, max(SIZES)))


if __name__ == "__main__":
    main()
