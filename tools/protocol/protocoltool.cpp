// SPDX-License-Identifier: MIT
// Commands and options of glyphora-protocol.
#include "tools/protocol/protocoltool.h"

#include "misc/exception.h"
#include "protocolhandler.h"
#include "protocolschema.h"
#include "tools/protocol/diagnosis.h"
#include "tools/protocol/protocoljson.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <functional>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace ProtocolTool {

namespace {

/// Wrong usage, or a file that cannot be read.
class Unusable : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Options {
    std::string file = "-";
    std::string schemaFile;
    Json request = Json::object();
    std::vector<std::string> fonts; // KEY=VALUE, joined by commas
    std::string json;
};

class Program {
public:
    Program(std::istream& input, std::ostream& output, std::ostream& errors)
        : input_(input), output_(output), errors_(errors) {}

    int run(int argc, const char* const* argv) {
        CLI::App app("Writes requests of the typed font protocol and reads its replies.",
                     "glyphora-protocol");
        app.require_subcommand(1);
        app.set_version_flag("--version", "glyphora-protocol " GLYPHORA_VERSION);
        addEncode(app);
        addDecode(app);
        addValidate(app);
        try {
            app.parse(argc, argv);
        } catch (const CLI::ParseError& error) {
            return app.exit(error, output_, errors_) == 0 ? done : unusable;
        }
        try {
            return action_();
        } catch (const Unusable& error) {
            errors_ << "glyphora-protocol: " << error.what() << '\n';
            return unusable;
        } catch (const Orvil::Exception& error) {
            errors_ << place_ << ": " << error.message() << '\n';
        } catch (const std::exception& error) {
            errors_ << "glyphora-protocol: " << error.what() << '\n';
        }
        return refused;
    }

private:
    void addEncode(CLI::App& app) {
        CLI::App* encode = app.add_subcommand("encode", "Write a request as XML");
        encode
            ->add_option_function<std::string>(
                "KIND", [this](const std::string& kind) { options_.request["request"] = kind; },
                "font, show, buy or activation")
            ->check(CLI::IsMember({"font", "show", "buy", "activation"}));
        encode->add_option("--json", options_.json,
                           "Take the whole request from a file of JSON (- for standard input)");
        encode->add_option("--font", options_.fonts,
                           "A font as KEY=VALUE,... of syncID, psName, type, familyName, styleName "
                           "and containerID; may be repeated");
        encode->add_flag_callback(
            "--must-match-type", [this] { options_.request["mustMatchFontType"] = true; },
            "Ask for fonts of the same technology only");
        addText(*encode, "--target-app", "targetApp", "Signature of the application to report to");
        addText(*encode, "--target-class", "targetClass", "Class of the events to report with");
        encode->callback([this] { action_ = [this] { return this->encode(); }; });
    }
    void addText(CLI::App& command, const char* option, const char* member, const char* help) {
        command.add_option_function<std::string>(
            option, [this, member](const std::string& text) { options_.request[member] = text; },
            help);
    }
    void addDecode(CLI::App& app) {
        CLI::App* decode = app.add_subcommand("decode", "Read a reply and show it as JSON");
        addDocument(*decode);
        decode->callback([this] { action_ = [this] { return this->decode(); }; });
    }
    void addValidate(CLI::App& app) {
        CLI::App* validate = app.add_subcommand("validate", "Check a request or a reply");
        addDocument(*validate);
        validate->callback([this] { action_ = [this] { return this->validate(); }; });
    }
    void addDocument(CLI::App& command) {
        command.add_option("FILE", options_.file, "The document (- or nothing: standard input)");
        command.add_option("--schema", options_.schemaFile,
                           "Check by this XML Schema instead of the built-in one");
    }

    int encode() {
        place_ = "request";
        if (options_.json.empty()) {
            if (!options_.request.contains("request")) {
                throw Unusable("encode: name a KIND of request, or --json");
            }
            addFonts();
        } else if (!options_.request.empty() || !options_.fonts.empty()) {
            throw Unusable("--json takes the whole request: give nothing beside it");
        } else {
            options_.request = parseJson();
        }
        output_ << encodeRequest(options_.request);
        return done;
    }
    Json parseJson() {
        place_ = nameOf(options_.json);
        try {
            return Json::parse(read(options_.json));
        } catch (const Json::parse_error& error) {
            throw std::invalid_argument(place_ + ": " + error.what());
        }
    }
    void addFonts() {
        for (const std::string& description : options_.fonts) {
            Json font = Json::object();
            for (const std::string& member : CLI::detail::split(description, ',')) {
                const std::size_t equals = member.find('=');
                if (equals == std::string::npos) {
                    throw Unusable(
                        std::string("--font: '").append(member).append("' is not KEY=VALUE"));
                }
                font[member.substr(0, equals)] = member.substr(equals + 1);
            }
            options_.request["fonts"].push_back(std::move(font));
        }
    }

    int decode() {
        const std::string schema = schemaText();
        const std::string xml = read(options_.file);
        place_ = nameOf(options_.file);
        if (!isValid(xml, schema)) {
            return refused;
        }
        Protocol::Handler handler(schema);
        try {
            output_ << describeReply(handler.parseReply(xml)).dump(2) << '\n';
        } catch (const Protocol::UnknownReplyKind& error) {
            return refuse(xml, error.message() +
                                   (isRequest(error.kind())
                                        ? " (decode reads replies; validate takes requests too)"
                                        : ""));
        } catch (const Orvil::Exception& error) {
            return refuse(xml, error.message());
        }
        return done;
    }
    int refuse(const std::string& xml, const std::string& reason) {
        Complaint complaint = findRefusal(xml);
        complaint.message += reason;
        print(place_, complaint);
        return refused;
    }
    static bool isRequest(std::string_view kind) {
        static constexpr std::array<std::string_view, 4> kinds = {
            "fontRequest", "showRequest", "buyRequest", "activationRequest"};
        return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
    }
    int validate() {
        const std::string schema = schemaText();
        return isValid(read(options_.file), schema) ? done : refused;
    }

    /// Says what is wrong, as compilers do.
    bool isValid(const std::string& xml, const std::string& schema) {
        try {
            const std::vector<Complaint> complaints = diagnose(xml, schema);
            for (const Complaint& complaint : complaints) {
                print(nameOf(options_.file), complaint);
            }
            return complaints.empty();
        } catch (const BadSchema& error) {
            print(nameOf(options_.schemaFile), error.complaint);
            throw Unusable(error.what());
        }
    }
    void print(const std::string& file, const Complaint& complaint) {
        errors_ << file << ':';
        for (const int number : {complaint.line, complaint.column}) {
            if (number > 0) {
                errors_ << number << ':';
            }
        }
        errors_ << ' ' << complaint.message << '\n';
    }

    static std::string nameOf(const std::string& file) {
        return file == "-" ? "standard input" : file;
    }
    std::string schemaText() const {
        if (options_.file == "-" && options_.schemaFile == "-") {
            throw Unusable("standard input cannot be both the document and its schema");
        }
        return options_.schemaFile.empty() ? Protocol::schemaText : read(options_.schemaFile);
    }
    std::string read(const std::string& name) const {
        if (name == "-") {
            return readAll(input_, "standard input");
        }
        errno = 0;
        std::ifstream file(name, std::ios::binary);
        return readAll(file, name);
    }
    static std::string readAll(std::istream& stream, const std::string& name) {
        std::ostringstream text;
        if (stream.good() && stream.peek() != std::istream::traits_type::eof()) {
            text << stream.rdbuf();
        }
        // At the end of the data a stream is at its end and not bad.
        if (stream.bad() || (stream.fail() && !stream.eof())) {
            throw Unusable(name + ": cannot be read" +
                           (errno == 0 ? "" : std::string(": ") + std::strerror(errno)));
        }
        return std::move(text).str();
    }

    std::istream& input_;
    std::ostream& output_;
    std::ostream& errors_;
    Options options_;
    std::function<int()> action_;
    std::string place_; // what an error is about
};

} // namespace

int run(int argc, const char* const* argv, std::istream& input, std::ostream& output,
        std::ostream& errors) {
    const int exitCode = Program(input, output, errors).run(argc, argv);
    if (!output.flush()) {
        errors << "glyphora-protocol: the output cannot be written\n";
        return unusable;
    }
    return exitCode;
}

} // namespace ProtocolTool
