// The child process that tests start. It runs its commands in order and exits with 0 after the last one.
//
// A command is one argument, or one line of a script file that an argument names ("ChildProgram /path/to/main.ts"),
// so that the program can stand in for Node with its own script. Arguments that begin with "--" are ignored. An
// unknown command exits with 64.
//
//   print TEXT          prints TEXT and a line feed in one write
//   half TEXT           prints TEXT without a line feed
//   bytes HEX           prints the bytes given in hexadecimal ("c3a9")
//   repeat COUNT TEXT   prints TEXT COUNT times, without line feeds
//   lines COUNT TEXT    prints COUNT lines of TEXT; "{n}" becomes the line number, from 0
//   flood               prints lines until the pipe breaks or the program is killed
//   errors              prints to standard error from now on
//   env NAME            prints "NAME=value" or "NAME unset"
//   arguments           prints all arguments, separated by "|"
//   folder              prints the working directory
//   descriptors         prints the open file descriptors, separated by spaces
//   sleep MS            sleeps for MS milliseconds
//   await               waits for a line on standard input
//   echo                prints each line of standard input as "echo LINE", until end of file
//   record FILE         appends each line of standard input to FILE, until end of file
//   count LINES         reads LINES lines of standard input, then prints "counted BYTES"
//   close-input         closes standard input
//   ignore-term         ignores SIGTERM from now on
//   grandchild MS       forks a process that keeps standard input and output open for MS milliseconds
//   exit CODE           exits with CODE
//   crash SIGNAL        raises the signal with that number
//   hang                waits forever

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
std::string input; ///< the last line read

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
