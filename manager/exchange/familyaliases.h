// SPDX-License-Identifier: MIT
// Families that the desktop's settings bind to others, which most of them have the metrics of:
// Liberation Sans to Arial.
#pragma once

#include <fontconfig/fontconfig.h>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace manager {

/// [one-thread] Reads fontconfig's settings, and no font.
class FamilyAliases {
public:
    /// Asks for families that are not known yet many at a time: fontconfig goes through all of its
    /// rules each time.
    void learn(const std::set<std::string>& families);
    /// Those that are bound to a family that was learnt, the best first.
    [[nodiscard]] const std::vector<std::string>& of(const std::string& family) const;

private:
    void learnTogether(std::span<const std::string> families);

    struct ConfigDeleter {
        void operator()(FcConfig* config) const { FcConfigDestroy(config); }
    };
    std::unique_ptr<FcConfig, ConfigDeleter> config_;
    std::map<std::string, std::vector<std::string>> aliases_;
};

} // namespace manager
