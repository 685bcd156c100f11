#pragma once

#include "Terminal/Grid/Kernels.h"
#include "Terminal/Parser/Sequence.h"
#include "Terminal/Parser/TextRun.h"
#include "Terminal/Text/Utf8.h"

#include <span>
#include <string>
#include <string_view>

namespace corvane::terminal {

enum class Coding : uint8_t { Utf8, EightBit };
enum class StringEnd : uint8_t { BrokenOff, Bell, Terminator };

/// DEC's ANSI state machine, after Paul Williams's diagram. Runs of text and complete control sequences are parsed
/// directly from the buffer; only those split between chunks go through the state machine byte by byte.
///
/// Sink: printAscii(text, size), printPoints(points, count), printsAsciiAsItIs(), execute(control), escape(sequence),
/// csi(sequence), dcsBegin(sequence), dcsData(text), dcsEnd(complete), osc(text, end), apcBegin(), apcData(text),
/// apcEnd(complete), vt52(final), vt52Move(row, column). A control is a C0 byte or a C1 code from 0x80 to 0x9f; those
/// start sequences or strings are not passed on.
template <typename Sink> class Parser {
public:
    explicit Parser(Sink& sink)
        : m_sink(sink)
    {
    }

    void feed(std::span<const uint8_t> bytes);

    void setCoding(Coding coding)
    {
        m_coding = coding;
        m_utf8.restart();
    }
    Coding coding() const { return m_coding; }
    /// Bytes 0x80 to 0x9f outside UTF-8 characters are controls.
    void setRawC1(bool on) { m_rawC1 = on; }
    void setVt52(bool on) { m_vt52 = on; }
    void reset();

    /// Longer strings are dropped; the limit for strings with data is higher.
    static constexpr size_t maxOsc = 64 * 1024;
    static constexpr size_t maxOscData = 48 << 20;

private:
    enum class State : uint8_t {
        Ground,
        Escape,
        EscapeIntermediate,
        CsiEntry,
        CsiParam,
        CsiIntermediate,
        CsiIgnore,
        DcsEntry,
        DcsParam,
        DcsIntermediate,
        DcsPassthrough,
        DcsIgnore,
        Osc,
        Apc,
        IgnoredString,
        StringEscape, // ESC inside a string: the next byte decides whether the string ends or is aborted
        Vt52Escape,
        Vt52Row,
        Vt52Column
    };
    using Byte = const uint8_t*;

    Byte ground(Byte at, Byte end);
    Byte text(Byte at, Byte end);
    Byte escapeSequence(Byte at, Byte end);
    Byte controlSequence(Byte at, Byte end);
    bool takeParameters(Byte at, Byte final);
    Byte command(Byte at, Byte end);
    Byte string(Byte at, Byte end);
    Byte stringStop(Byte at, Byte end, State state) const;
    void step(uint8_t byte);
    void utf8Step(uint8_t byte);
    void point(char32_t point);
    void print(char32_t point) { m_sink.printPoints(&point, 1); }
    size_t printableRun(Byte at, Byte end) const;
    void c1(uint8_t control);
    void escapeByte(uint8_t byte);
    void csiByte(uint8_t byte);
    void dcsByte(uint8_t byte);
    void paramByte(uint8_t byte);
    void endParam(bool sub);
    void beginEscape();
    void beginString(State state);
    void endString(StringEnd end);
    void appendOsc(Byte from, Byte to);
    bool asciiIsText() const { return m_coding == Coding::Utf8 && m_sink.printsAsciiAsItIs(); }
    bool isString() const
    {
        return m_state == State::Osc || m_state == State::Apc || m_state == State::DcsPassthrough
            || m_state == State::DcsIgnore || m_state == State::IgnoredString;
    }

    Sink& m_sink;
    const Kernels& m_kernels = Kernels::instance();
    State m_state = State::Ground;
    State m_string = State::Ground; // the string in which StringEscape occurred
    Coding m_coding = Coding::Utf8;
    bool m_rawC1 = false;
    bool m_vt52 = false;
    bool m_nextIsSub = false;
    bool m_oscTooLong = false;
    uint8_t m_vt52Row = 0;
    int m_param = Params::absent;
    Sequence m_sequence;
    Utf8Decoder m_utf8;
    std::string m_osc;
};

}

#include "Terminal/Parser/Parser.hpp"
#include "Terminal/Parser/ParserMachine.hpp"
