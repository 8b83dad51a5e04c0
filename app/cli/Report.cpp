#include "app/cli/Report.h"

#include <poll.h>
#include <unistd.h>

#include <iostream>
#include <nlohmann/json.hpp>

#include "app/cli/CliError.h"
#include "app/cli/Messages.h"

namespace report {

using nlohmann::ordered_json;

namespace {
bool output_is_a_picture = false;

bool ReaderWentAway() {
    pollfd output = {.fd = STDOUT_FILENO, .events = POLLOUT, .revents = 0};
    return poll(&output, 1, 0) == 1 && (output.revents & POLLERR) != 0;
}

}  // namespace

void Flush(const std::string& trouble) {
    std::cout.flush();
    if (!std::cout && !ReaderWentAway()) throw CCliError(EExit::Output, trouble);
}

void LeaveOutput() { output_is_a_picture = true; }

void Print(const ordered_json& result) {
    std::cout << result.dump(2, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

void PrintDone(ordered_json result) {
    result["warnings"] = messages::Warnings();
    Print(result);
}

void PrintError(int status, const std::string& what, const std::string& hint) {
    if (output_is_a_picture) return;
    Print(
        {{"error", messages::ErrorToJson(status, what, hint)}, {"warnings", messages::Warnings()}});
}

}  // namespace report
