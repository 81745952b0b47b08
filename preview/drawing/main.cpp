// SPDX-License-Identifier: MIT
// The program `glyphora-preview`: a process that a font may take down alone.
#include "preview/drawing/draw.h"
#include "preview/drawing/serve.h"

int main(int argc, char** argv) {
    preview::Drawer drawer;
    return preview::serveMain(
        argc, argv, [&drawer](const preview::Request& request) { return drawer.draw(request); });
}
