#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <new>
#include <system_error>

#include "app/cli/CHelpFormatter.h"
#include "app/cli/CliError.h"
#include "app/cli/Commands.h"
#include "app/cli/Completion.h"
#include "app/cli/Interruption.h"
#include "app/cli/Messages.h"
#include "app/cli/Options.h"
#include "app/cli/Report.h"
#include "app/cli/Usage.h"
#include "hostlib/language/Languages.h"
#include "hostlib/language/Texts.h"
#include "hostlib/parameters/NearestName.h"
#include "hostlib/system/COutputFile.h"
#include "job/Installation.h"

namespace {

constexpr const char* kExitStatuses = TrLater(
    "Exit status: 0 done; 1 internal fault; 2 usage; 3 input unreadable; 4 input not supported; 5 "
    "output exists or cannot be written; 6 limit reached; 7 module or effect failed; 129, 130, "
    "131, 143 interrupted. No failure leaves a partial file or harms an existing one.");

int Report(int status, const std::string& what, const std::string& hint = {}) {
    if (messages::UsesJson() && std::cout) report::PrintError(status, what, hint);
    std::cout.flush();
    messages::Error(status, what, hint);
    return status;
}

int Report(EExit exit, const std::string& what, const std::string& hint = {}) {
    return Report(static_cast<int>(exit), what, hint);
}

int ReportInterruption() {
    if (interruption::TimedOut()) {
        return Report(EExit::Limit, Tr("the time limit was reached; nothing was left behind"));
    }
    const std::string what = Tr("interrupted; nothing was left behind");
    const int status = interruption::ExitStatus();
    if (messages::UsesJson()) return Report(status, what);
    messages::Say(what);
    return status;
}

// The status for what is being thrown, once it is told.
int ReportThrown() {
    try {
        throw;
    } catch (const CCliError& error) {
        return Report(error.Exit(), error.what(), error.Hint());
    } catch (const CInterrupted&) {
        return ReportInterruption();
    } catch (const std::bad_alloc&) {
        return Report(EExit::Limit, Tr("there is not enough memory"));
    } catch (const std::system_error& error) {
        const bool threads = error.code() == std::errc::resource_unavailable_try_again;
        if (threads) return Report(EExit::Limit, Tr("the system gives no further thread"));
        return Report(EExit::Fault, error.what());
    } catch (const std::exception& error) {
        return Report(EExit::Fault, error.what());
    } catch (...) {
        return Report(EExit::Fault, Tr("the program cannot go on"));
    }
}

// Does what the command line says; the status when nothing is thrown.
int Parse(CLI::App& program, std::vector<std::string> arguments) {
    if (completion::IsAsked(arguments)) {
        completion::Complete(program, {arguments.begin() + 2, arguments.end()});
        return 0;
    }
    try {
        std::reverse(arguments.begin(), arguments.end());  // as it wants them
        program.parse(std::move(arguments));
    } catch (const CLI::CallForVersion& version) {
        std::cout << version.what() << '\n';
    } catch (const CLI::CallForHelp&) {
        std::cout << program.help();
    } catch (const CLI::ParseError& error) {
        throw UsageError(program, error);
    } catch (const CExitStatus& exit) {
        return exit.Status();
    }
    return 0;
}

int Run(CLI::App& program, const std::vector<std::string>& arguments) {
    try {
        const int status = Parse(program, arguments);
        report::Flush(Tr("standard output cannot be written"));
        return status;
    } catch (...) {
        return ReportThrown();
    }
}

// Speaks the language that is asked for; what is wrong with it is told by who opens the effects.
void ChooseLanguage(const std::string& wanted) {
    const std::filesystem::path data = FindInstallation().data;
    const std::vector<std::string> available = languages::Available(data);
    const auto is_wanted = [&](const std::string& code) { return SameName(code, wanted); };
    const auto found = std::find_if(available.begin(), available.end(), is_wanted);
    const std::string problem =
        texts::Use(data, found == available.end() ? languages::Preferred(available) : *found);
    if (!problem.empty()) messages::Warn(problem);
}

// Where no exception may pass: even then nothing stays behind.
[[noreturn]] void Terminate() noexcept {
    COutputFile::RemoveAllPending();
    int status = static_cast<int>(EExit::Fault);
    if (std::current_exception()) {
        status = ReportThrown();
    } else {
        messages::Error(status, "the program cannot go on");
    }
    _exit(status);
}

}  // namespace

// Outside of Run only the want of memory throws.
int main(int count, char** arguments) {  // NOLINT(bugprone-exception-escape)
    messages::Open();
    std::set_terminate(&Terminate);
    interruption::Install();
    SCommandLine line = ReadCommandLine(count, arguments);
    if (line.json) messages::UseJson();
    ChooseLanguage(line.language);

    CLI::App program(TrLater("Texture effects for images."), "cmdtexture");
    program.formatter(std::make_shared<CHelpFormatter>());
    program.footer(kExitStatuses);
    program.set_help_flag("-h,--help", TrLater("Show this help"));
    program.set_version_flag("--version", "cmdtexture " CMDTEXTURE_VERSION,
                             TrLater("Show the version"));
    AddLanguageOption(program, line.language);
    AddJsonOption(program, line.json);
    program.require_subcommand(1);
    AddListCommand(program);
    AddDescribeCommand(program);
    AddApplyCommand(program);
    AddEditCommand(program);
    AddGalleryCommand(program);
    AddBatchCommand(program);
    AddPresetCommand(program);
    AddResourcesCommand(program);
    AddHelpCommand(program);
    return Run(program, line.arguments);
}
