#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <vector>

namespace quillon::tool {

// Exit codes of the tool.
constexpr int kExitSuccess = 0;
constexpr int kExitProblem = 1; // the input could not be read, or check found problems
constexpr int kExitUsage = 2;
constexpr int kExitCancelled = 130;

// A failure that ends the run: one line for standard error and the exit code.
struct ToolError {
    std::string message;
    int exitCode = kExitProblem;
};

// Options every subcommand shares.
struct GlobalOptions {
    bool quiet = false;
};

// One subcommand: its name, a line of help, and a function that adds its options to the
// subcommand's parser and returns the function that runs it (after parsing) to an exit code.
struct Command {
    std::string name;
    std::string description;
    std::function<std::function<int()>(CLI::App& app, const GlobalOptions& global)> setup;
};

// The subcommands, in the order they registered.
std::vector<Command>& Commands();

// Registers a subcommand at start-up: `static CommandRegistration registration{{...}};`.
struct CommandRegistration {
    explicit CommandRegistration(Command command);
};

} // namespace quillon::tool
