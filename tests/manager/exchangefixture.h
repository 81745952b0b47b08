// SPDX-License-Identifier: MIT
// Commands to a library of a few families, and what of a reply is asked for.
#pragma once

#include "manager/exchange/exchange.h"
#include "manager/library/update.h"
#include "tests/manager/sandbox.h"
#include "tests/support/foldedreply.h"
#include "tests/support/fontmaker.h"

#include <fontconfig/fontconfig.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace managertest {

class AnExchange : public testing::Test {
protected:
    AnExchange() {
        add("one/lato.ttf", {"Lato", "Bold", "Lato-Bold", true});
        add("one/lato-r.ttf", {"Lato", "Regular", "Lato-Regular", true});
        add("x/both.ttf", {"Both", "Regular", "Both"});
        add("y/both.ttf", {"Both", "Regular", "Both", true});
        add("odd/m.ttf", {"Müller & Söhne <Co>", "Regular", "Mueller", true});
        scan();
    }
    ~AnExchange() override { FcFini(); }

    void add(const std::string& path, const testsupport::FontRecipe& recipe) {
        sandbox_.write(path, testsupport::makeFont(recipe));
    }
    void scan() {
        manager::updateLibrary(library_, std::vector{sandbox_.library()},
                               manager::FontReaderLimits{});
    }
    static std::string font(const std::vector<std::pair<std::string, std::string>>& elements) {
        std::string text = "<font>\n";
        for (const auto& [name, value] : elements) {
            text.append("<").append(name).append(">").append(value).append("</").append(name);
            text += ">\n";
        }
        return text + "</font>\n";
    }
    testsupport::ReplyNode ask(const std::string& word, const std::string& body) {
        answer_ = manager::answerCommand(library_, activation_,
                                         "<cmd>" + word + "</cmd>\n" + body + "</cmd>\n");
        testsupport::ReplyNode root = testsupport::parseFolded(answer_.reply);
        EXPECT_EQ(root.value("protocolVersion"), "2.0");
        return root;
    }
    // The reply's only font.
    testsupport::ReplyNode askForOne(const std::string& word, const std::string& body) {
        const testsupport::ReplyNode root = ask(word, body);
        EXPECT_THAT(root.all("font"), testing::SizeIs(1));
        return *root.all("font").at(0);
    }
    std::string idOf(const std::string& postScriptName, std::size_t position = 0) {
        return manager::toText(
            library_.findByPostScriptName(postScriptName).at(position).container);
    }

    Sandbox sandbox_;
    manager::Library library_{sandbox_.places()};
    manager::Activation activation_{sandbox_.places()};
    manager::Answer answer_;
};

} // namespace managertest
