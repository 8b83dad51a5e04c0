#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <new>

#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/Interruption.h"

namespace {

constexpr const char* kExitStatuses =
    "Exit status: 0 done; 1 internal fault; 2 usage; 3 input unreadable; 4 input not supported;\n"
    "5 output exists or cannot be written; 6 limit reached; 7 module or effect failed;\n"
    "130, 143 interrupted. No failure leaves a partial file or harms an existing one.";

int Report(EExit exit, const std::string& what, const std::string& hint = {}) {
    std::cout.flush();
    fmt::print(stderr, "cmdtexture: error: {}\n", what);
    if (!hint.empty()) fmt::print(stderr, "hint: {}\n", hint);
    return static_cast<int>(exit);
}

int Run(CLI::App& program, int count, char** arguments) {
    try {
        program.parse(count, arguments);
        if (program.get_subcommands().empty()) {
            return Report(EExit::Usage, "a subcommand is missing", "see \"cmdtexture --help\"");
        }
        std::cout.flush();
        if (!std::cout) return Report(EExit::Output, "standard output cannot be written");
        return static_cast<int>(EExit::Done);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return program.exit(error);  // --help, --version
        return Report(EExit::Usage, error.what(), "see \"cmdtexture --help\"");
    } catch (const CCliError& error) {
        return Report(error.Exit(), error.what(), error.Hint());
    } catch (const CInterrupted&) {
        fmt::print(stderr, "cmdtexture: interrupted; nothing was left behind\n");
        return interruption::ExitStatus();
    } catch (const std::bad_alloc&) {
        return Report(EExit::Limit, "there is not enough memory");
    } catch (const std::exception& error) {
        return Report(EExit::Fault, error.what());
    }
}

}  // namespace

// Outside of Run only the want of memory throws.
int main(int count, char** arguments) {  // NOLINT(bugprone-exception-escape)
    interruption::Install();
    CLI::App program("Texture effects for images.", "cmdtexture");
    program.footer(kExitStatuses);
    program.set_version_flag("--version", "cmdtexture " CMDTEXTURE_VERSION);
    AddListCommand(program);
    AddDescribeCommand(program);
    AddApplyCommand(program);
    AddEditCommand(program);
    AddGalleryCommand(program);
    AddPresetCommand(program);
    AddResourcesCommand(program);
    return Run(program, count, arguments);
}
