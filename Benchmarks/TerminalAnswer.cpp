// Queries the cursor position from the terminal that it runs in, and times the answers: terminal-answer FILE. The file
// gets the median and the 99th percentile in milliseconds: at rest, and after 64 kB of output each time. With "alone"
// after the file, it runs in its own pseudo-terminal, whose other end only reads and answers.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <pty.h>
#include <string>
#include <sys/wait.h>
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
    char answer[64];
    ssize_t count = 0;
    do
        count = read(STDIN_FILENO, answer, sizeof answer);
    while (count > 0 && answer[count - 1] != 'R');
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

/// Answers output that ends with a query.
int answerAlone(int terminal)
{
    char buffer[64 * 1024];
    constexpr char question[] = { '6', 'n' };
    for (ssize_t count = 0; (count = read(terminal, buffer, sizeof buffer)) > 0;) {
        if (count >= 2 && std::memcmp(buffer + count - 2, question, 2) == 0 && write(terminal, "\x1b[1;1R", 6) != 6)
            return 1;
    }
    int status = 0;
    wait(&status);
    return WEXITSTATUS(status);
}

}

int main(int count, char** arguments)
{
    if (count > 2) {
        int terminal = -1;
        if (forkpty(&terminal, nullptr, nullptr, nullptr) != 0)
            return answerAlone(terminal);
    }
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
