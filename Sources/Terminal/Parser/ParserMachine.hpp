#pragma once

// The byte-by-byte state machine, for sequences that are malformed or split between chunks.

namespace corvane::terminal {

template <typename Sink> void Parser<Sink>::step(uint8_t byte)
{
    if (byte == cancelByte || byte == substituteByte) {
        if (m_state == State::StringEscape)
            endString(StringEnd::BrokenOff);
        m_state = State::Ground;
        m_sink.execute(byte);
        return;
    }
    if (m_state == State::StringEscape) {
        const bool ends = byte == '\\';
        endString(ends ? StringEnd::Terminator : StringEnd::BrokenOff);
        if (ends)
            return;
        beginEscape();
    }
    if (byte == escapeCode) {
        if (m_vt52)
            m_state = State::Vt52Escape;
        else
            beginEscape();
        return;
    }
    if (byte >= 0x80) {
        if (byte < 0xa0 && (m_rawC1 || m_coding == Coding::EightBit)) {
            c1(byte);
        } else if (m_coding == Coding::EightBit) {
            step(byte & 0x7f);
        } else {
            m_state = State::Ground;
            utf8Step(byte);
        }
        return;
    }
    switch (m_state) {
    case State::Escape:
    case State::EscapeIntermediate:
        escapeByte(byte);
        return;
    case State::CsiEntry:
    case State::CsiParam:
    case State::CsiIntermediate:
    case State::CsiIgnore:
        csiByte(byte);
        return;
    case State::DcsEntry:
    case State::DcsParam:
    case State::DcsIntermediate:
        dcsByte(byte);
        return;
    case State::Vt52Escape:
        m_state = byte == 'Y' ? State::Vt52Row : State::Ground;
        if (byte != 'Y')
            m_sink.vt52(char(byte));
        return;
    case State::Vt52Row:
        m_vt52Row = byte;
        m_state = State::Vt52Column;
        return;
    case State::Vt52Column:
        m_state = State::Ground;
        m_sink.vt52Move(m_vt52Row - 0x20, byte - 0x20);
        return;
    default:
        if (byte < 0x20)
            m_sink.execute(byte);
        else if (byte != deleteByte)
            m_sink.printAscii(&byte, 1);
    }
}

template <typename Sink> void Parser<Sink>::escapeByte(uint8_t byte)
{
    if (byte < 0x20) {
        m_sink.execute(byte);
    } else if (byte < 0x30) {
        m_sequence.addIntermediate(char(byte));
        m_state = State::EscapeIntermediate;
    } else if (byte == deleteByte) {
        return;
    } else if (m_state == State::Escape && byte >= 0x40 && byte < 0x60) {
        c1(uint8_t(byte + 0x40));
    } else {
        m_state = State::Ground;
        m_sequence.final = char(byte);
        m_sink.escape(m_sequence);
    }
}

template <typename Sink> void Parser<Sink>::endParam(bool sub)
{
    m_sequence.params.add(m_param, m_nextIsSub);
    m_param = Params::absent;
    m_nextIsSub = sub;
}

template <typename Sink> void Parser<Sink>::paramByte(uint8_t byte)
{
    if (byte == ';' || byte == ':')
        endParam(byte == ':');
    else
        m_param = m_param == Params::absent ? byte - '0' : std::min(m_param * 10 + (byte - '0'), Params::maxValue);
}

template <typename Sink> void Parser<Sink>::csiByte(uint8_t byte)
{
    if (byte < 0x20) {
        m_sink.execute(byte);
    } else if (byte == deleteByte) {
        return;
    } else if (byte >= 0x40) {
        const bool ignored = m_state == State::CsiIgnore;
        m_state = State::Ground;
        if (ignored)
            return;
        if (m_param != Params::absent || m_sequence.params.count() > 0)
            endParam(false);
        m_sequence.final = char(byte);
        m_sink.csi(m_sequence);
    } else if (m_state == State::CsiIgnore) {
        return;
    } else if (byte < 0x30) {
        m_sequence.addIntermediate(char(byte));
        m_state = State::CsiIntermediate;
    } else if (m_state == State::CsiIntermediate) {
        m_state = State::CsiIgnore;
    } else if (byte >= '<') {
        if (m_state == State::CsiEntry) {
            m_sequence.leader = char(byte);
            m_state = State::CsiParam;
        } else {
            m_state = State::CsiIgnore;
        }
    } else {
        m_state = State::CsiParam;
        paramByte(byte);
    }
}

template <typename Sink> void Parser<Sink>::dcsByte(uint8_t byte)
{
    if (byte < 0x20 || byte == deleteByte)
        return;
    if (byte >= 0x40) {
        if (m_param != Params::absent || m_sequence.params.count() > 0)
            endParam(false);
        m_sequence.final = char(byte);
        m_state = State::DcsPassthrough;
        m_sink.dcsBegin(m_sequence);
    } else if (byte < 0x30) {
        m_sequence.addIntermediate(char(byte));
        m_state = State::DcsIntermediate;
    } else if (m_state == State::DcsIntermediate || (byte >= '<' && m_state != State::DcsEntry)) {
        m_state = State::DcsIgnore;
    } else {
        m_state = State::DcsParam;
        if (byte >= '<')
            m_sequence.leader = char(byte);
        else
            paramByte(byte);
    }
}

}
