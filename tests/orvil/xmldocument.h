// SPDX-License-Identifier: MIT
// The fixture of the tests of documents.
#pragma once

#include "misc/exception.h"
#include "misc/xml/ixmlparser.h"
#include "tests/support/folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace OrvilTests {

using namespace Orvil;
using testsupport::contentOf;

/// A document, and a folder for its files that goes with it.
class AnXmlDocument : public AFolder {
protected:
    IXmlNode* read(const std::string& text) {
        document->parseString(text);
        return document->getRootNode();
    }
    /// The failure's message, which must carry nothing else, nor be printed.
    template <typename Action>
    static std::string failureOf(Action action) {
        testing::internal::CaptureStderr();
        std::string message = "nothing thrown";
        try {
            action();
        } catch (const Exception& failure) {
            EXPECT_THAT(
                failure.descriptionHeader(),
                testing::StartsWith("Exception in file "
                                    "'source/externals/orvil/source/misc/xml/libxmlparser' at "));
            EXPECT_EQ(failure.descriptionCode(), "");
            message = failure.message();
        }
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        return message;
    }
    std::string parseFailure(const std::string& text) {
        std::string message = failureOf([&] { document->parseString(text); });
        EXPECT_EQ(document->getRootNode(), nullptr);
        return message;
    }
    std::vector<std::string> entries() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }
    std::string written() const {
        const std::string path = (folder / "written.xml").string();
        document->write(path);
        return contentOf(path);
    }

    XmlDocumentHolder document;
};

} // namespace OrvilTests
