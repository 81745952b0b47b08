// SPDX-License-Identifier: MIT
// The program `glyphora`.
#include "manager/cli/arguments.h"

#include <sys/prctl.h>

int main(int argc, char** argv) {
    prctl(PR_SET_NAME, "glyphora"); // else a process started by /proc/self/exe is called "exe"
    return manager::runCommandLine(argc, argv);
}
