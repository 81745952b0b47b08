#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the guide's pictures of the font manager's window anew (docs/images/library*.png). They show
# where the fonts are: best called in a clone at a place that says nothing, such as /opt/glyphora.
set -euo pipefail
. "$(dirname "$0")/common.sh"
cd "$root"
unset DISPLAY WAYLAND_DISPLAY

views=build/sandbox/pictures/library
./run --library --fresh --locale en_GB
cp "$views/library.png" docs/images/library.png
for view in filters look compare; do
    cp "$views/$view.png" "docs/images/library-$view.png"
done
./run --library --locale de_DE
cp "$views/characters-dark.png" docs/images/library-de-dark.png
