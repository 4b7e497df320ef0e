#!/usr/bin/env bash
# Renders the hicolor PNG sizes of the icon from resources/tarvo.svg. Run it
# after changing the SVG and commit the PNGs with it; the build only copies
# them, so it needs no SVG renderer.
set -euo pipefail
cd "$(dirname "$0")/../resources"
command -v rsvg-convert >/dev/null || { echo "rsvg-convert is missing (apt-get install librsvg2-bin)"; exit 1; }
for size in 16 22 24 32 48 64 128 256; do
  rsvg-convert -w "$size" -h "$size" tarvo.svg -o "icons/tarvo-$size.png"
done
