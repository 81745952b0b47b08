// SPDX-License-Identifier: MIT
// A module without an entry point.
extern "C" __attribute__((visibility("default"))) int notTheEntryPoint() {
    return 0;
}
