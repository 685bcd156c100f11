// The child that tests start: it does what its commands say, in their order, and ends with 0 after the last.
//
// A command is one argument, or one line of a file that an argument names ("ChildProgram /path/to/main.ts"),
// so that the program can stand in for Node with a script of its own. Arguments that begin with "--" are left
// alone. A command that it does not know ends it with 64.
//
//   print TEXT          TEXT and a line feed, in one write
//   half TEXT           TEXT without the line feed
//   bytes HEX           these very bytes ("c3a9")
//   repeat COUNT TEXT   TEXT so many times in a row, without line feeds
//   lines COUNT TEXT    so many lines; "{n}" in TEXT is the line's number, from 0
//   flood               one line after the other until the pipe breaks or the program is killed
//   errors              what follows is printed to standard error
//   env NAME            "NAME=value", or "NAME unset"
//   arguments           every argument, separated by "|"
//   folder              the working directory
//   descriptors         the numbers of the open descriptors, separated by blanks
//   sleep MS            waits
//   await               waits for one line on standard input
//   echo                prints each line of standard input back, as "echo LINE", until its end
//   record FILE         adds each line of standard input to FILE, until its end
//   count LINES         reads so many lines of standard input, then prints "counted BYTES"
//   close-input         closes standard input
//   ignore-term         ignores SIGTERM from here on
//   grandchild MS       leaves a process behind that holds standard input and output for so long
//   exit CODE           ends
//   crash SIGNAL        ends by the signal of that number
//   hang                waits for ever

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <dirent.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

std::vector<std::string> arguments;
int target = STDOUT_FILENO;
std::string input; ///< the line that was read last

void out(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t count = ::write(target, text.data(), text.size());
        if (count < 0 && errno != EINTR)
            std::_Exit(1);
        text.remove_prefix(count < 0 ? 0 : static_cast<size_t>(count));
    }
}

std::pair<std::string, std::string> splitAtBlank(const std::string& text)
{
    const size_t blank = text.find(' ');
    return blank == std::string::npos ? std::pair(text, std::string())
                                      : std::pair(text.substr(0, blank), text.substr(blank + 1));
}

int number(const std::string& text)
{
    int value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

void pause(const std::string& milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(number(milliseconds)));
}

void repeat(const std::string& rest)
{
    const auto [count, text] = splitAtBlank(rest);
    const int wanted = number(count);
    const int perBlock = std::max(1, 65536 / std::max(1, static_cast<int>(text.size())));
    std::string block;
    for (int i = 0; i < perBlock; ++i)
        block += text;
    for (int i = 0; i < wanted / perBlock; ++i)
        out(block);
    out(std::string_view(block).substr(0, static_cast<size_t>(wanted % perBlock) * text.size()));
}

void lines(const std::string& rest)
{
    const auto [count, text] = splitAtBlank(rest);
    for (int i = 0; i < number(count); ++i) {
        std::string numbered = text + '\n';
        if (const size_t mark = numbered.find("{n}"); mark != std::string::npos)
            numbered.replace(mark, 3, std::to_string(i));
        out(numbered);
    }
}

void bytes(const std::string& hex)
{
    std::string raw;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        raw += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    out(raw);
}

void flood()
{
    const std::string line(1023, 'f');
    for (;;)
        out(line + '\n');
}

void printVariable(const std::string& name)
{
    const char* value = std::getenv(name.c_str());
    out(value ? name + '=' + value + '\n' : name + " unset\n");
}

void printArguments()
{
    std::string all;
    for (const std::string& argument : arguments)
        all += (all.empty() ? "" : "|") + argument;
    out(all + '\n');
}

void printDescriptors()
{
    DIR* folder = ::opendir("/proc/self/fd");
    std::string all;
    while (const dirent* entry = ::readdir(folder)) {
        const std::string name = entry->d_name;
        if (name.front() != '.' && name != std::to_string(::dirfd(folder)))
            all += (all.empty() ? "" : " ") + name;
    }
    ::closedir(folder);
    out(all + '\n');
}

void count(const std::string& wanted)
{
    size_t total = 0;
    for (int i = 0; i < number(wanted) && std::getline(std::cin, input); ++i)
        total += input.size() + 1;
    out("counted " + std::to_string(total) + '\n');
}

void grandchild(const std::string& milliseconds)
{
    if (::fork() != 0)
        return;
    pause(milliseconds);
    std::_Exit(0);
}

void crash(const std::string& signal)
{
    const rlimit noCore { 0, 0 };
    ::setrlimit(RLIMIT_CORE, &noCore);
    ::signal(number(signal), SIG_DFL);
    ::raise(number(signal));
}

void run(const std::string& command)
{
    const auto [name, rest] = splitAtBlank(command);
    if (name == "print")
        out(rest + '\n');
    else if (name == "half")
        out(rest);
    else if (name == "bytes")
        bytes(rest);
    else if (name == "repeat")
        repeat(rest);
    else if (name == "lines")
        lines(rest);
    else if (name == "flood")
        flood();
    else if (name == "errors")
        target = STDERR_FILENO;
    else if (name == "env")
        printVariable(rest);
    else if (name == "arguments")
        printArguments();
    else if (name == "folder")
        out(std::filesystem::current_path().string() + '\n');
    else if (name == "descriptors")
        printDescriptors();
    else if (name == "sleep")
        pause(rest);
    else if (name == "await")
        std::getline(std::cin, input);
    else if (name == "echo")
        while (std::getline(std::cin, input))
            out("echo " + input + '\n');
    else if (name == "record")
        while (std::getline(std::cin, input))
            std::ofstream(rest, std::ios::app) << input + '\n' << std::flush;
    else if (name == "count")
        count(rest);
    else if (name == "close-input")
        ::close(STDIN_FILENO);
    else if (name == "ignore-term")
        ::signal(SIGTERM, SIG_IGN);
    else if (name == "grandchild")
        grandchild(rest);
    else if (name == "exit")
        std::_Exit(number(rest));
    else if (name == "crash")
        crash(rest);
    else if (name == "hang")
        for (;;)
            ::pause();
    else
        std::_Exit(64);
}

void runArgument(const std::string& argument)
{
    if (argument.starts_with("--"))
        return;
    if (!argument.starts_with('/'))
        return run(argument);
    std::ifstream script(argument);
    if (!script)
        std::_Exit(66);
    for (std::string command; std::getline(script, command);)
        run(command);
}

}

int main(int argc, char** argv)
{
    arguments.assign(argv + 1, argv + argc);
    for (const std::string& argument : arguments)
        runArgument(argument);
    std::_Exit(0);
}
