// SPDX-License-Identifier: MIT
// The program `glyphora`.
#include "manager/cli/arguments.h"

int main(int argc, char** argv) {
    return manager::runCommandLine(argc, argv);
}
