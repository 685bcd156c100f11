#include "Terminal/Host/Bench.h"
#include "Terminal/Host/Drive.h"
#include "Terminal/Host/Run.h"
#include "Terminal/Host/ScreenDump.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>

using namespace corvane::terminal;

namespace {

constexpr const char* usage
    = R"(corvane-term run   [--size CxR] [--cell-px WxH] [--scrollback N] [--profile P] [--opt K=V]... [--timeout S]
                   [--dump FILE] [--log FILE] -- CMD ARG...
corvane-term dump  [--size CxR] [--chunk N] [--format json|text|ansi] FILE
corvane-term bench [--size CxR] [--scrollback N] [--chunk N] [--runs N] FILE...
corvane-term drive
)";

struct Arguments {
    Size size;
    Config config;
    RunOptions run;
    std::string format = "json";
    size_t chunk = 0;
    int runs = 3;
    std::vector<std::string> rest;
    std::string error;
};

bool parsePair(const std::string& text, int& first, int& second)
{
    return std::sscanf(text.c_str(), "%dx%d", &first, &second) == 2 && first > 0 && second > 0;
}

void parseOption(Arguments& arguments, const std::string& name, const std::string& value)
{
    const size_t equals = value.find('=');
    if (name == "--size" && parsePair(value, arguments.size.columns, arguments.size.rows))
        return;
    if (name == "--cell-px" && parsePair(value, arguments.size.cellWidth, arguments.size.cellHeight))
        return;
    if (name == "--scrollback" && arguments.config.set("scrollback", value))
        return;
    if (name == "--profile" && arguments.config.useProfile(value))
        return;
    if (name == "--opt" && equals != std::string::npos
        && arguments.config.set(value.substr(0, equals), value.substr(equals + 1)))
        return;
    if (name == "--timeout")
        arguments.run.timeoutSeconds = std::atoi(value.c_str());
    else if (name == "--dump")
        arguments.run.dumpFile = value;
    else if (name == "--log")
        arguments.run.logFile = value;
    else if (name == "--format")
        arguments.format = value;
    else if (name == "--chunk")
        arguments.chunk = size_t(std::max(1, std::atoi(value.c_str())));
    else if (name == "--runs")
        arguments.runs = std::max(1, std::atoi(value.c_str()));
    else
        arguments.error = name + " " + value;
}

Arguments parse(int count, char** texts)
{
    Arguments arguments;
    for (int i = 2; i < count && arguments.error.empty(); ++i) {
        const std::string text = texts[i];
        if (text == "--") {
            arguments.rest.assign(texts + i + 1, texts + count);
            break;
        }
        if (!text.starts_with("--"))
            arguments.rest.push_back(text);
        else if (i + 1 < count)
            parseOption(arguments, text, texts[++i]);
        else
            arguments.error = text;
    }
    return arguments;
}

int runProgram(Arguments& arguments)
{
    RunOptions& run = arguments.run;
    run.size = arguments.size;
    run.config = arguments.config;
    run.command.program = arguments.rest.front();
    run.command.arguments.assign(arguments.rest.begin() + 1, arguments.rest.end());
    return runCommand(run);
}

int dumpFile(const Arguments& arguments)
{
    std::ifstream file(arguments.rest.front(), std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "%s cannot be read\n", arguments.rest.front().c_str());
        return 1;
    }
    const std::string bytes { std::istreambuf_iterator<char>(file), {} };
    const size_t chunk = arguments.chunk ? arguments.chunk : std::max<size_t>(1, bytes.size());
    Terminal terminal(arguments.size, arguments.config);
    for (size_t at = 0; at < bytes.size(); at += chunk)
        terminal.feed(std::string_view(bytes).substr(at, chunk));
    if (arguments.format == "text") {
        std::cout << dumpText(terminal);
    } else if (arguments.format == "ansi") {
        std::cout << dumpAnsi(terminal);
    } else {
        Json json;
        dumpJson(terminal, DumpPart::All, json);
        std::cout << json.text() << '\n';
    }
    return 0;
}

int bench(const Arguments& arguments)
{
    BenchOptions options { arguments.size, arguments.config, arguments.chunk ? arguments.chunk : 65536,
        arguments.runs };
    for (const std::string& file : arguments.rest)
        std::cout << benchFile(file, options) << std::endl;
    return 0;
}

int drive()
{
    Drive protocol;
    for (std::string line; std::getline(std::cin, line);) {
        const auto answer = protocol.run(line);
        if (!answer)
            break;
        std::cout << *answer << std::endl;
    }
    return 0;
}

}

int main(int count, char** texts)
{
    const std::string command = count > 1 ? texts[1] : "";
    if (command == "drive")
        return drive();
    Arguments arguments = parse(count, texts);
    if (!arguments.error.empty())
        std::fprintf(stderr, "Not understood: %s\n", arguments.error.c_str());
    else if (command == "run" && !arguments.rest.empty())
        return runProgram(arguments);
    else if (command == "dump" && arguments.rest.size() == 1)
        return dumpFile(arguments);
    else if (command == "bench" && !arguments.rest.empty())
        return bench(arguments);
    std::fputs(usage, stderr);
    return 2;
}
