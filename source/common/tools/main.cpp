// SPDX-License-Identifier: MIT
// The program glyphora-protocol: tries the protocol's codec by hand.
#include "protocoltool.h"

#include <iostream>

int main(int argc, char** argv) {
    return ProtocolTool::run(argc, argv, std::cin, std::cout, std::cerr);
}
