// SPDX-License-Identifier: MIT
// The program glyphora-protocol: tries the protocol's codec by hand.
#include "tools/protocol/protocoltool.h"

#include <iostream>

int main(int argc, char** argv) {
    return ProtocolTool::run(argc, argv, std::cin, std::cout, std::cerr);
}
