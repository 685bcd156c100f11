#pragma once

#include <algorithm>
#include <bit>
#include <cstring>

namespace corvane::terminal {

inline constexpr uint8_t bellByte = 0x07, cancelByte = 0x18, substituteByte = 0x1a, escapeCode = 0x1b,
                         deleteByte = 0x7f;

template <typename Sink> void Parser<Sink>::feed(std::span<const uint8_t> bytes)
{
    Byte at = bytes.data();
    const Byte end = at + bytes.size();
    while (at < end) {
        if (m_state == State::Ground)
            at = ground(at, end);
        else if (isString())
            at = string(at, end);
        else
            step(*at++);
    }
}

template <typename Sink> void Parser<Sink>::reset()
{
    if (isString() || m_state == State::StringEscape)
        endString(StringEnd::BrokenOff);
    m_state = State::Ground;
    m_utf8.restart();
    m_coding = Coding::Utf8;
    m_rawC1 = m_vt52 = false;
    m_osc = {};
}

template <typename Sink> auto Parser<Sink>::ground(Byte at, Byte end) -> Byte
{
    while (m_utf8.isMidway() && at < end && m_state == State::Ground)
        utf8Step(*at++);
    while (at < end && m_state == State::Ground) {
        const uint8_t byte = *at;
        if (uint8_t(byte - 0x20) < 0x5f) {
            const size_t run = printableRun(at, end);
            if (run < TextRun::longAscii && at + run < end && at[run] >= 0x80 && asciiIsText()) {
                at = text(at, end);
            } else {
                m_sink.printAscii(at, run);
                at += run;
            }
        } else if (byte == escapeCode) {
            at = m_vt52 ? (m_state = State::Vt52Escape, at + 1) : escapeSequence(at + 1, end);
        } else if (byte < 0x20) {
            m_sink.execute(byte);
            ++at;
        } else if (byte >= 0x80) {
            at = text(at, end);
        } else {
            ++at; // DEL
        }
    }
    return at;
}

inline constexpr size_t wordSize = 8;

/// The number of the 8 bytes at `at` before the first control, DEL or non-ASCII byte.
inline size_t printableInWord(const uint8_t* at)
{
    size_t run = 0;
    if constexpr (std::endian::native == std::endian::little) {
        uint64_t bytes;
        std::memcpy(&bytes, at, sizeof bytes);
        // Sets the high bit of each such byte. Only the lowest is exact.
        constexpr uint64_t ones = 0x0101010101010101;
        const uint64_t bad = ((bytes - ones * 0x20) | (bytes + ones) | bytes) & (ones * 0x80);
        run = size_t(std::countr_zero(bad)) / 8;
    } else {
        while (run < wordSize && uint8_t(at[run] - 0x20) < 0x5f)
            ++run;
    }
    return run;
}

/// Like the kernel, but without a call for short runs, such as those between escape sequences.
template <typename Sink> size_t Parser<Sink>::printableRun(Byte at, Byte end) const
{
    const auto size = size_t(end - at);
    // A single character, foreseen by a jump: the place of what follows need not wait for the count.
    if (size > 1 && at[1] == escapeCode)
        return 1;
    if (size >= wordSize) {
        if (const size_t run = printableInWord(at); run < wordSize)
            return run;
    }
    return m_kernels.printable(at, size);
}

/// A run with bytes from 0x80 on. It starts with such a byte unless ASCII needs no special treatment.
template <typename Sink> auto Parser<Sink>::text(Byte at, Byte end) -> Byte
{
    if (m_coding == Coding::EightBit) {
        for (; at < end && *at >= 0x80 && m_state == State::Ground; ++at)
            point(*at);
        return at;
    }
    // Complete well-formed characters are the common case; the decoder handles all others.
    TextRun run;
    at += run.decode(at, size_t(end - at), asciiIsText() ? TextRun::Ascii::Taken : TextRun::Ascii::Left);
    if (run.count > 0) {
        m_sink.printPoints(run.points, run.count);
        return at;
    }
    // A letter before a stray continuation byte is consumed here, too: each call consumes something.
    while (at < end && m_state == State::Ground) {
        utf8Step(*at++);
        if (!m_utf8.isMidway())
            break;
    }
    return at;
}

template <typename Sink> void Parser<Sink>::utf8Step(uint8_t byte)
{
    using Result = Utf8Decoder::Result;
    const bool wasMidway = m_utf8.isMidway();
    if (!wasMidway && byte < 0x80) {
        step(byte);
        return;
    }
    switch (m_utf8.take(byte)) {
    case Result::More:
        return;
    case Result::Character:
        point(m_utf8.character());
        return;
    case Result::Malformed:
        if (m_rawC1 && byte < 0xa0)
            c1(byte);
        else
            print(replacementCharacter);
        return;
    case Result::MalformedBefore:
        print(replacementCharacter);
        utf8Step(byte);
        return;
    }
}

template <typename Sink> void Parser<Sink>::point(char32_t point)
{
    if (point >= 0x80 && point < 0xa0)
        c1(uint8_t(point));
    else
        print(point);
}

template <typename Sink> void Parser<Sink>::c1(uint8_t control)
{
    switch (control) {
    case 0x90:
        m_sequence.clear();
        m_param = Params::absent;
        m_nextIsSub = false;
        m_state = State::DcsEntry;
        return;
    case 0x9b:
        m_sequence.clear();
        m_param = Params::absent;
        m_nextIsSub = false;
        m_state = State::CsiEntry;
        return;
    case 0x9d:
        beginString(State::Osc);
        return;
    case 0x9f:
        beginString(State::Apc);
        return;
    case 0x98:
    case 0x9e:
        beginString(State::IgnoredString);
        return;
    case 0x9c:
        m_state = State::Ground;
        return;
    default:
        m_state = State::Ground;
        m_sink.execute(control);
    }
}

template <typename Sink> void Parser<Sink>::beginEscape()
{
    m_sequence.clear();
    m_state = State::Escape;
}

/// `at` is after an ESC. Sequences that are complete in the buffer are parsed from it.
template <typename Sink> auto Parser<Sink>::escapeSequence(Byte at, Byte end) -> Byte
{
    if (at < end && *at == '[')
        return controlSequence(at + 1, end);
    if (at < end && *at == ']')
        return command(at + 1, end);
    beginEscape();
    return at;
}

/// The first byte that no parameter and no intermediate byte has; `end` where there is none.
inline const uint8_t* sequenceFinal(const uint8_t* at, const uint8_t* end)
{
    constexpr uint8_t finalBits = 0xc0;
    if constexpr (std::endian::native == std::endian::little) {
        for (; size_t(end - at) >= wordSize; at += wordSize) {
            uint64_t bytes;
            std::memcpy(&bytes, at, sizeof bytes);
            bytes &= finalBits * uint64_t(0x0101010101010101);
            if (bytes != 0)
                return at + std::countr_zero(bytes) / 8;
        }
    }
    while (at < end && (*at & finalBits) == 0)
        ++at;
    return at;
}

/// Takes the parameters and intermediate bytes up to `final`, which is a byte of the buffer. False: it is malformed.
template <typename Sink> bool Parser<Sink>::takeParameters(Byte at, Byte final)
{
    m_sequence.clear();
    if (at < final && *at >= '<')
        m_sequence.leader = char(*at++);
    int value = Params::absent;
    bool sub = false;
    for (; at < final; ++at) {
        const uint8_t byte = *at;
        if (uint8_t(byte - '0') < 10) {
            // Whether a number has one or two digits is unpredictable, so both are read without a branch.
            const int digit = byte - '0';
            const int second = at[1] - '0';
            const bool two = unsigned(second) < 10;
            const int number = two ? digit * 10 + second : digit;
            value = value == Params::absent ? number : std::min(value * (two ? 100 : 10) + number, Params::maxValue);
            at += two;
        } else if (byte == ';' || byte == ':') {
            m_sequence.params.add(value, sub);
            value = Params::absent;
            sub = byte == ':';
        } else if (uint8_t(byte - 0x20) < 0x10 && uint8_t(at[1] - 0x30) >= 0x10) {
            m_sequence.addIntermediate(char(byte));
        } else {
            return false;
        }
    }
    if (value != Params::absent || m_sequence.params.count() > 0)
        m_sequence.params.add(value, sub);
    m_sequence.final = char(*final);
    return uint8_t(*final - 0x40) < 0x3f;
}

template <typename Sink> auto Parser<Sink>::controlSequence(Byte at, Byte end) -> Byte
{
    // Found ahead of the parameters, so that the text behind the sequence need not wait for them.
    const Byte final = sequenceFinal(at, end);
    if (final < end && takeParameters(at, final)) {
        m_sink.csi(m_sequence);
        return final + 1;
    }
    // Incomplete or malformed: start over with the state machine.
    m_sequence.clear();
    m_param = Params::absent;
    m_nextIsSub = false;
    m_state = State::CsiEntry;
    return at;
}

template <typename Sink> void Parser<Sink>::beginString(State state)
{
    m_state = state;
    m_osc.clear();
    m_oscTooLong = false;
    if (state == State::Apc)
        m_sink.apcBegin();
}

template <typename Sink> void Parser<Sink>::endString(StringEnd end)
{
    const bool complete = end != StringEnd::BrokenOff;
    const State ended = isString() ? m_state : m_string;
    m_state = State::Ground;
    if (ended == State::Osc && complete && !m_oscTooLong)
        m_sink.osc(m_osc, end);
    else if (ended == State::DcsPassthrough)
        m_sink.dcsEnd(complete);
    else if (ended == State::Apc)
        m_sink.apcEnd(complete);
    if (m_osc.capacity() > maxOsc)
        m_osc = {};
}

template <typename Sink> void Parser<Sink>::appendOsc(Byte from, Byte to)
{
    const auto mayBeLong = [this] {
        return m_osc.starts_with("1337;") || m_osc.starts_with("52;");
    };
    m_oscTooLong |= m_osc.size() + size_t(to - from) > maxOsc
        && (m_osc.size() + size_t(to - from) > maxOscData || (m_osc.size() >= 5 && !mayBeLong()));
    if (!m_oscTooLong)
        m_osc.append(reinterpret_cast<const char*>(from), size_t(to - from));
}

/// The first byte that ends the string or does not belong to it.
template <typename Sink> auto Parser<Sink>::stringStop(Byte at, Byte end, State state) const -> Byte
{
    const bool rawC1 = m_rawC1 || m_coding == Coding::EightBit;
    const auto stops = [&](uint8_t byte) {
        return (byte < 0x20
                   && (byte == escapeCode || byte == cancelByte || byte == substituteByte || state == State::Osc))
            || (rawC1 && byte >= 0x80 && byte < 0xa0);
    };
    while (true) {
        at += m_kernels.printable(at, size_t(end - at));
        if (at == end || stops(*at))
            return at;
        ++at;
    }
}

/// `at` is after an OSC. A title or link that is complete in the buffer needs no copy.
template <typename Sink> auto Parser<Sink>::command(Byte at, Byte end) -> Byte
{
    const Byte stop = stringStop(at, end, State::Osc);
    const auto size = size_t(stop - at);
    const bool byBell = stop < end && *stop == bellByte;
    if ((byBell || (end - stop >= 2 && *stop == escapeCode && stop[1] == '\\')) && size <= maxOsc) {
        m_sink.osc({ reinterpret_cast<const char*>(at), size }, byBell ? StringEnd::Bell : StringEnd::Terminator);
        return stop + (byBell ? 1 : 2);
    }
    beginString(State::Osc);
    return at;
}

/// The bytes of a string up to its terminator, in one piece.
template <typename Sink> auto Parser<Sink>::string(Byte at, Byte end) -> Byte
{
    const Byte stop = stringStop(at, end, m_state);
    if (stop > at) {
        const std::string_view run(reinterpret_cast<const char*>(at), size_t(stop - at));
        if (m_state == State::Osc)
            appendOsc(at, stop);
        else if (m_state == State::DcsPassthrough)
            m_sink.dcsData(run);
        else if (m_state == State::Apc)
            m_sink.apcData(run);
    }
    if (stop == end)
        return stop;
    const uint8_t byte = *stop;
    if (byte == escapeCode) {
        m_string = m_state;
        m_state = State::StringEscape;
    } else if (byte == cancelByte || byte == substituteByte) {
        endString(StringEnd::BrokenOff);
        m_sink.execute(byte);
    } else if (byte == bellByte && m_state == State::Osc) {
        endString(StringEnd::Bell);
    } else if (byte >= 0x80) {
        endString(byte == 0x9c ? StringEnd::Terminator : StringEnd::BrokenOff);
        c1(byte);
    }
    return stop + 1;
}

}
