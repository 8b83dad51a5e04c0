#include <unistd.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <new>
#include <system_error>

#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/Interruption.h"
#include "app/cli/Messages.h"
#include "hostlib/system/COutputFile.h"

namespace {

constexpr const char* kExitStatuses =
    "Exit status: 0 done; 1 internal fault; 2 usage; 3 input unreadable; 4 input not supported;\n"
    "5 output exists or cannot be written; 6 limit reached; 7 module or effect failed;\n"
    "129, 130, 131, 143 interrupted. No failure leaves a partial file or harms an existing one.";

int Report(EExit exit, const std::string& what, const std::string& hint = {}) {
    std::cout.flush();
    messages::Error(what, hint);
    return static_cast<int>(exit);
}

int ReportInterruption() {
    constexpr const char* kNothingLeft = "nothing was left behind";
    if (interruption::TimedOut()) {
        return Report(EExit::Limit, std::string("the time limit was reached; ") + kNothingLeft);
    }
    messages::Say(std::string("interrupted; ") + kNothingLeft);
    return interruption::ExitStatus();
}

// What is still to be said on standard output.
int Finish() {
    std::cout.flush();
    if (!std::cout) return Report(EExit::Output, "standard output cannot be written");
    return static_cast<int>(EExit::Done);
}

// The status for what is being thrown, once it is told.
int ReportThrown() {
    try {
        throw;
    } catch (const CCliError& error) {
        return Report(error.Exit(), error.what(), error.Hint());
    } catch (const CExitStatus& exit) {
        const int finished = Finish();
        return finished != 0 ? finished : exit.Status();
    } catch (const CInterrupted&) {
        return ReportInterruption();
    } catch (const std::bad_alloc&) {
        return Report(EExit::Limit, "there is not enough memory");
    } catch (const std::system_error& error) {
        const bool threads = error.code() == std::errc::resource_unavailable_try_again;
        if (threads) return Report(EExit::Limit, "the system gives no further thread");
        return Report(EExit::Fault, error.what());
    } catch (const std::exception& error) {
        return Report(EExit::Fault, error.what());
    } catch (...) {
        return Report(EExit::Fault, "the program cannot go on");
    }
}

int Run(CLI::App& program, int count, char** arguments) {
    try {
        program.parse(count, arguments);
        if (program.get_subcommands().empty()) {
            return Report(EExit::Usage, "a subcommand is missing", "see \"cmdtexture --help\"");
        }
        return Finish();
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) {
            return Report(EExit::Usage, error.what(), "see \"cmdtexture --help\"");
        }
        program.exit(error);  // --help, --version
        return Finish();
    } catch (...) {
        return ReportThrown();
    }
}

// Where no exception may pass: even then nothing stays behind.
[[noreturn]] void Terminate() noexcept {
    COutputFile::RemoveAllPending();
    int status = static_cast<int>(EExit::Fault);
    if (std::current_exception()) {
        status = ReportThrown();
    } else {
        messages::Error("the program cannot go on");
    }
    _exit(status);
}

}  // namespace

// Outside of Run only the want of memory throws.
int main(int count, char** arguments) {  // NOLINT(bugprone-exception-escape)
    messages::Open();
    std::set_terminate(&Terminate);
    interruption::Install();
    CLI::App program("Texture effects for images.", "cmdtexture");
    program.footer(kExitStatuses);
    program.set_version_flag("--version", "cmdtexture " CMDTEXTURE_VERSION);
    AddListCommand(program);
    AddDescribeCommand(program);
    AddApplyCommand(program);
    AddEditCommand(program);
    AddGalleryCommand(program);
    AddBatchCommand(program);
    AddPresetCommand(program);
    AddResourcesCommand(program);
    return Run(program, count, arguments);
}
