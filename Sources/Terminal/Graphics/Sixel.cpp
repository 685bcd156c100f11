#include "Terminal/Graphics/Sixel.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace corvane::terminal {

namespace {

uint32_t ofPercent(int red, int green, int blue)
{
    const auto channel = [](int percent) {
        return uint32_t(std::clamp(percent, 0, 100) * 255 + 50) / 100;
    };
    return channel(red) << 16 | channel(green) << 8 | channel(blue);
}

/// DEC's hue circle starts at blue.
uint32_t ofHls(int hue, int lightness, int saturation)
{
    const double h = (hue + 240) % 360;
    const double l = std::clamp(lightness, 0, 100) / 100.0;
    const double s = std::clamp(saturation, 0, 100) / 100.0;
    const double chroma = (1 - std::abs(2 * l - 1)) * s;
    const auto channel = [&](double shift) {
        const double place = std::fmod(h + shift, 360) / 60;
        const double part = std::clamp(std::abs(place - 3) - 1, 0.0, 1.0);
        return int(std::lround((l - chroma / 2 + chroma * part) * 100));
    };
    return ofPercent(channel(0), channel(240), channel(120));
}

}

SixelDecoder::Colors SixelDecoder::vtColors()
{
    constexpr int percents[16][3] = { { 0, 0, 0 }, { 20, 20, 80 }, { 80, 13, 13 }, { 20, 80, 20 }, { 80, 20, 80 },
        { 20, 80, 80 }, { 80, 80, 20 }, { 53, 53, 53 }, { 26, 26, 26 }, { 33, 33, 60 }, { 60, 26, 26 }, { 33, 60, 33 },
        { 60, 33, 60 }, { 33, 60, 60 }, { 60, 60, 33 }, { 80, 80, 80 } };
    Colors colors {};
    for (size_t i = 0; i < 16; ++i)
        colors[i] = ofPercent(percents[i][0], percents[i][1], percents[i][2]);
    return colors;
}

SixelDecoder::SixelDecoder(Colors& colors, std::optional<uint32_t> background)
    : m_colors(colors)
    , m_background(background)
{
}

/// Grows to the given size; false past the limits.
bool SixelDecoder::reach(int width, int height)
{
    if (width > maxSide || height > maxSide)
        return false;
    if (width > m_stride || height > m_capacity) {
        const int stride = width > m_stride ? std::min(maxSide, std::max(width, m_stride * 2)) : m_stride;
        const int capacity = height > m_capacity ? std::min(maxSide, std::max(height, m_capacity * 2)) : m_capacity;
        std::vector<uint32_t> grown(size_t(stride) * size_t(capacity));
        for (int row = 0; row < m_height; ++row)
            std::copy_n(m_pixels.begin() + int64_t(row) * m_stride, m_width, grown.begin() + int64_t(row) * stride);
        m_pixels = std::move(grown);
        m_stride = stride;
        m_capacity = capacity;
    }
    m_width = std::max(m_width, width);
    m_height = std::max(m_height, height);
    return true;
}

void SixelDecoder::feed(std::string_view data)
{
    for (const char character : data) {
        const auto byte = uint8_t(character);
        if (m_command && ((byte >= '0' && byte <= '9') || byte == ';')) {
            int& value = m_values[std::min(m_count, 4)];
            if (byte == ';')
                ++m_count;
            else
                value = std::min(value * 10 + (byte - '0'), 100'000);
            continue;
        }
        applyCommand();
        command(byte);
    }
}

void SixelDecoder::command(uint8_t byte)
{
    if (byte >= 0x3f && byte <= 0x7e) {
        sixel(byte - 0x3f);
    } else if (byte == '!' || byte == '#' || byte == '"') {
        m_command = char(byte);
        m_count = 0;
        std::fill(std::begin(m_values), std::end(m_values), 0);
    } else if (byte == '$') {
        m_x = 0;
    } else if (byte == '-') {
        m_x = 0;
        m_y = std::min(m_y + 6, maxSide);
    }
}

void SixelDecoder::applyCommand()
{
    const char command = std::exchange(m_command, '\0');
    if (command == '!')
        m_repeat = std::max(1, m_values[0]);
    else if (command == '#')
        setColor();
    else if (command == '"' && m_count >= 3 && m_values[2] > 0 && m_values[3] > 0)
        reach(std::min(m_values[2], maxSide), std::min(m_values[3], maxSide));
}

void SixelDecoder::setColor()
{
    m_color = size_t(m_values[0]) % registers;
    if (m_count < 4)
        return;
    if (m_values[1] == 1)
        m_colors[m_color] = ofHls(m_values[2] % 360, m_values[3], m_values[4]);
    else if (m_values[1] == 2)
        m_colors[m_color] = ofPercent(m_values[2], m_values[3], m_values[4]);
}

void SixelDecoder::sixel(int bits)
{
    const int count = std::min(std::exchange(m_repeat, 1), maxSide - m_x);
    if (count <= 0)
        return;
    if (bits && reach(m_x + count, std::min(m_y + int(std::bit_width(unsigned(bits))), maxSide))) {
        const uint32_t pixel = 0xff000000 | m_colors[m_color];
        for (int bit = 0; bit < 6 && m_y + bit < maxSide; ++bit) {
            if (bits >> bit & 1)
                std::fill_n(m_pixels.begin() + int64_t(m_y + bit) * m_stride + m_x, count, pixel);
        }
    }
    m_x += count;
}

std::optional<Bitmap> SixelDecoder::finish()
{
    applyCommand();
    if (m_width == 0 || m_height == 0)
        return {};
    Bitmap bitmap { m_width, m_height, std::vector<uint8_t>(size_t(m_width) * size_t(m_height) * 4) };
    const uint32_t background = m_background ? 0xff000000 | *m_background : 0;
    uint8_t* to = bitmap.pixels.data();
    for (int row = 0; row < m_height; ++row) {
        const uint32_t* const from = m_pixels.data() + size_t(row) * size_t(m_stride);
        for (int column = 0; column < m_width; ++column, to += 4) {
            const uint32_t pixel = from[column] ? from[column] : background;
            to[0] = uint8_t(pixel >> 16);
            to[1] = uint8_t(pixel >> 8);
            to[2] = uint8_t(pixel);
            to[3] = uint8_t(pixel >> 24);
        }
    }
    return bitmap;
}

}
