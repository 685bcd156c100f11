// Asks the terminal that it runs in where the cursor is and times the answers: terminal-answer FILE. The file gets the
// median and the 99th percentile, in milliseconds: at rest, and each time after 64 kB of output.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace {

void print(const std::string& text)
{
    for (size_t at = 0; at < text.size();) {
        const ssize_t count = write(STDOUT_FILENO, text.data() + at, text.size() - at);
        if (count <= 0)
            return;
        at += size_t(count);
    }
}

double millisecondsToAnswer()
{
    const auto begin = std::chrono::steady_clock::now();
    print("\x1b[6n");
    for (char letter = 0; letter != 'R' && read(STDIN_FILENO, &letter, 1) == 1;) { }
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

void measure(std::FILE* file, const char* name, const std::string& before, size_t rounds)
{
    std::vector<double> times(rounds);
    for (double& time : times) {
        print(before);
        time = millisecondsToAnswer();
    }
    std::sort(times.begin(), times.end());
    std::fprintf(file, "%-12s p50 %.3f ms, p99 %.3f ms\n", name, times[rounds / 2], times[rounds * 99 / 100]);
}

}

int main(int count, char** arguments)
{
    termios settings;
    if (count < 2 || tcgetattr(STDIN_FILENO, &settings) != 0)
        return 2;
    cfmakeraw(&settings);
    tcsetattr(STDIN_FILENO, TCSANOW, &settings);
    std::FILE* const file = std::fopen(arguments[1], "w");
    if (!file)
        return 1;
    std::string output;
    while (output.size() < 64 * 1000)
        output += "some line of a program that prints a lot\r\n";
    measure(file, "at rest", {}, 2000);
    measure(file, "after 64 kB", output, 500);
    std::fclose(file);
}
