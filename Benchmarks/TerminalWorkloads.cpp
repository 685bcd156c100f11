// Writes the streams for the terminal benchmark: terminal-workloads FOLDER [MEGABYTES]. Each simulates one kind of
// program; the same seed gives the same bytes.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>

namespace {

std::mt19937 randomness(1);

int below(int limit)
{
    return int(randomness() % unsigned(limit));
}

std::string words(int length)
{
    std::string text;
    while (int(text.size()) < length) {
        for (int left = 2 + below(8); left > 0; --left)
            text.push_back(char('a' + below(26)));
        text.push_back(' ');
    }
    text.resize(size_t(length));
    return text;
}

std::string number(int value)
{
    return std::to_string(value);
}

/// A listing: short lines that scroll.
void ascii(std::string& out)
{
    out += words(20 + below(46)) + "\r\n";
}

void longline(std::string& out)
{
    out += words(4000);
    if (below(16) == 0)
        out += "\r\n";
}

/// Colours that change every few characters.
void sgr(std::string& out)
{
    for (int part = 0; part < 12; ++part) {
        if (below(2))
            out += "\x1b[38;2;" + number(below(256)) + ';' + number(below(256)) + ';' + number(below(256)) + 'm';
        else
            out += "\x1b[1;" + number(30 + below(8)) + ';' + number(40 + below(8)) + 'm';
        out += words(2 + below(4)) + "\x1b[0m";
    }
    out += "\r\n";
}

void cursor(std::string& out)
{
    out += "\x1b[" + number(1 + below(24)) + ';' + number(1 + below(80)) + 'H' + char('a' + below(26));
    if (below(4) == 0)
        out += "\x1b[" + number(1 + below(5)) + "ABCD"[below(4)];
}

void unicode(std::string& out)
{
    constexpr const char* samples[] = { "漢字かな交じり文の例", "Grüße aus Österreich", "Привет, мир",
        "👩‍🚀🚀✨", "한국어 텍스트", "naïve café", "ελληνικά", "e\u0301a\u0300", "日本語の文章", "✔️ done" };
    for (int part = 0; part < 4; ++part)
        out += std::string(samples[below(10)]) + ' ';
    out += "\r\n";
}

/// An editor that scrolls part of the page.
void region(std::string& out)
{
    const int top = 1 + below(8);
    out += "\x1b[" + number(top) + ';' + number(top + 12) + "r\x1b[" + number(top + 12) + ";1H";
    for (int line = 0; line < 20; ++line)
        out += "\r\n" + words(30 + below(40));
    out += "\x1b[r";
}

void mixed(std::string& out)
{
    out += "\x1b[1;32m" + words(8) + "\x1b[0m:\x1b[34m~/" + words(12) + "\x1b[0m$ " + words(20) + "\r\n";
    for (int line = 0; line < 6; ++line)
        out += "\x1b[36m" + words(6) + "\x1b[m  " + words(30 + below(30)) + "\x1b[K\r\n";
    out += "Grüße: 漢字\r\n";
}

/// A full-screen program that draws its page again and again.
void altapp(std::string& out)
{
    out += "\x1b[?1049h\x1b[H";
    for (int row = 1; row <= 24; ++row) {
        out += "\x1b[" + number(row) + ";1H\x1b[38;5;" + number(below(256)) + 'm' + words(30) + "\x1b[7m" + words(20)
            + "\x1b[27m\x1b[K";
    }
}

void osc(std::string& out)
{
    out += "\x1b]8;;https://example.org/" + words(20).substr(0, 8) + "/page\x1b\\" + words(12) + "\x1b]8;;\x1b\\ ";
    out += "\x1b]0;" + words(24) + "\x07";
    if (below(3) == 0)
        out += "\r\n";
}

/// Images of 160 by 100 pixels in the graphics protocol's chunks of 4096 bytes.
void image(std::string& out)
{
    constexpr int bytes = 160 * 100 * 4;
    std::string data;
    for (int i = 0; i < bytes * 4 / 3; ++i)
        data.push_back("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"[below(64)]);
    data += std::string((4 - data.size() % 4) % 4, '=');
    for (size_t at = 0; at < data.size(); at += 4096) {
        const bool more = at + 4096 < data.size();
        out += at == 0 ? "\x1b_Ga=t,f=32,s=160,v=100,i=1,q=2,m=" : "\x1b_Gm=";
        out += std::string(more ? "1" : "0") + ';' + data.substr(at, 4096) + "\x1b\\";
    }
}

constexpr struct {
    const char* name;
    void (*add)(std::string& out);
    const char* begin;
} workloads[] = {
    { "ascii", ascii, "" },
    { "longline", longline, "" },
    { "sgr", sgr, "" },
    { "cursor", cursor, "" },
    { "unicode", unicode, "\x1b[?2027h" },
    { "region", region, "" },
    { "mixed", mixed, "" },
    { "altapp", altapp, "" },
    { "osc", osc, "" },
    { "image", image, "" },
};

}

int main(int count, char** arguments)
{
    if (count < 2)
        return 2;
    const size_t size = size_t(count > 2 ? std::atoi(arguments[2]) : 16) << 20;
    for (const auto& workload : workloads) {
        std::string out = workload.begin;
        while (out.size() < size)
            workload.add(out);
        std::ofstream(std::string(arguments[1]) + '/' + workload.name, std::ios::binary) << out;
    }
    return 0;
}
