#include "support/RunProgram.h"

#include "support/TestImages.h"

#include <algorithm>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace vellumine::test {

void runProgram(const std::vector<std::string>& command)
{
    const TemporaryFolder folder;
    const std::string said = folder / "said";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(
        &actions, STDOUT_FILENO, said.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);

    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    std::ranges::transform(
        words, std::back_inserter(arguments), [](std::string& word) { return word.data(); });
    arguments.push_back(nullptr);
    pid_t child = 0;
    const int error
        = posix_spawnp(&child, arguments.front(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::runtime_error("cannot start " + command.front());
    }
    int status = 0;
    if (::waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        const auto text = readFile(said);
        throw std::runtime_error(command.front()
            + " failed: " + std::string(reinterpret_cast<const char*>(text.data()), text.size()));
    }
}

} // namespace vellumine::test
