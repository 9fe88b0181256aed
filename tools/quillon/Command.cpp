#include "Command.h"

#include <utility>

namespace quillon::tool {

std::vector<Command>& Commands() {
    static std::vector<Command> commands;
    return commands;
}

CommandRegistration::CommandRegistration(Command command) {
    Commands().push_back(std::move(command));
}

} // namespace quillon::tool
