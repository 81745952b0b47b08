// SPDX-License-Identifier: MIT
// glyphora-host: opens drawings.
#include "host/cli/exitstatus.h"
#include "host/cli/options.h"
#include "host/cli/session.h"
#include "host/cli/standardoutput.h"

#include <exception>
#include <iostream>
#include <string>

namespace {

int run(host::Options options, host::Session::Clock::time_point start) {
    const bool json = options.report == host::ReportFormat::Json;
    // A reader of the report must not stumble over what plug-ins print.
    const host::ReservedOutput output(options.verbose ? host::Chatter::ToStandardError
                                                      : host::Chatter::Dropped);
    if (options.save) {
        options.saveThrough = output.redirected(*options.save);
    }
    bool written = true;
    const auto print = [&](const std::string& text) { written = output.write(text) && written; };
    host::ConsoleFrontend frontend(std::cerr);
    host::Session session(options, frontend, start);
    const host::RunReport report = session.run([&](const host::DocumentReport& document) {
        if (!json && !options.quiet) {
            print(host::textOfDocument(document));
        }
    });
    if (!json && !options.quiet) {
        print(host::textOfAbout(report) + (options.selfTest ? host::textOfSelfTest(report) : ""));
    }
    if (options.verbose) {
        std::cerr << host::textOfCalls(report);
    }
    if (json) {
        print(host::jsonOf(report));
    }
    if (!written) {
        std::cerr << "error: the report could not be written\n";
        return host::exitOutputFailed;
    }
    return report.exitStatus(options.failOnMissing);
}

} // namespace

int main(int argumentCount, char** arguments) {
    const auto start = host::Session::Clock::now();
    try {
        int exitStatus = host::exitSuccess;
        const auto options =
            host::readOptions(argumentCount, arguments, std::cout, std::cerr, exitStatus);
        const auto print = [](const std::string& text) {
            return static_cast<bool>(std::cout << text << std::flush);
        };
        if (options && options->check) {
            return host::runCheck(*options->check, options->locale, print);
        }
        if (options && options->replace) {
            return host::runReplace(*options->replace, options->locale, print);
        }
        if (options) {
            return run(*options, start);
        }
        if (!std::cout.flush()) {
            std::cerr << "error: standard output could not be written\n";
            return host::exitOutputFailed;
        }
        return exitStatus;
    } catch (const host::UsageError& problem) {
        std::cerr << "error: " << problem.what() << '\n';
        return host::exitUsage;
    } catch (const std::exception& problem) {
        std::cerr << "error: " << problem.what() << '\n';
        return host::exitOutputFailed;
    }
}
