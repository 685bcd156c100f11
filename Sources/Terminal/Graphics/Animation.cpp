// Frames of the Kitty graphics protocol: adding, composing and playing them.

#include "Terminal/Graphics/Graphics.h"

#include <algorithm>
#include <cstring>

namespace corvane::terminal {

namespace {

struct Box {
    int x;
    int y;
    int width;
    int height;
};

bool fits(const Box& box, const Bitmap& bitmap)
{
    return box.x >= 0 && box.y >= 0 && box.width > 0 && box.height > 0 && box.width <= bitmap.width - box.x
        && box.height <= bitmap.height - box.y;
}

void drawPixel(uint8_t* target, const uint8_t* source)
{
    const unsigned alpha = source[3];
    for (int channel = 0; channel < 3; ++channel)
        target[channel] = uint8_t((source[channel] * alpha + target[channel] * (255 - alpha) + 127) / 255);
    target[3] = uint8_t(alpha + target[3] * (255 - alpha) / 255);
}

/// Draws part of one picture onto another, or onto the same.
void draw(Bitmap& target, int x, int y, const Bitmap& source, const Box& part, bool replaces)
{
    const Bitmap copy = &source == &target ? source : Bitmap();
    const Bitmap& from = &source == &target ? copy : source;
    for (int row = 0; row < part.height; ++row) {
        uint8_t* to = target.pixels.data() + (size_t(y + row) * size_t(target.width) + size_t(x)) * 4;
        const uint8_t* pixels = from.pixels.data() + (size_t(part.y + row) * size_t(from.width) + size_t(part.x)) * 4;
        if (replaces) {
            std::memcpy(to, pixels, size_t(part.width) * 4);
            continue;
        }
        for (int column = 0; column < part.width; ++column)
            drawPixel(to + column * 4, pixels + column * 4);
    }
}

/// The frame with this 1-based number; null if there is none.
ImageFrame* frameOf(Image& image, uint32_t number)
{
    return number >= 1 && number <= image.frames.size() ? &image.frames[number - 1] : nullptr;
}

constexpr int64_t millisecond = 1'000'000;

}

GraphicsResult Graphics::addFrame(const GraphicsCommand& command, uint32_t* id)
{
    Image* const image = imageOf(command);
    if (!image)
        return std::unexpected("ENOENT:no such image");
    *id = image->id;
    m_store.touch(*image);
    const auto part = load(command);
    if (!part)
        return std::unexpected(part.error());
    const Bitmap& whole = image->frames.front().bitmap;
    const Box box { command.amount('x'), command.amount('y'), part->width, part->height };
    if (!fits(box, whole))
        return std::unexpected("EINVAL:the frame lies outside the image");
    ImageFrame* target = frameOf(*image, command.number('r'));
    if (!target) {
        if (image->frames.size() >= maxFrames)
            return std::unexpected("ENOSPC:too many frames");
        ImageFrame frame;
        if (const ImageFrame* base = frameOf(*image, command.number('c'))) {
            frame.bitmap = base->bitmap;
        } else {
            const uint32_t color = command.number('Y');
            frame.bitmap = { whole.width, whole.height, std::vector<uint8_t>(whole.bytes()) };
            for (size_t at = 0; color && at < frame.bitmap.bytes(); ++at)
                frame.bitmap.pixels[at] = uint8_t(color >> (24 - 8 * (at % 4)));
        }
        image->frames.push_back(std::move(frame));
        target = &image->frames.back();
    }
    if (command.integer('z') != 0)
        target->gap = std::max(command.integer('z'), 0);
    draw(target->bitmap, box.x, box.y, *part, { 0, 0, part->width, part->height }, command.number('X') == 1);
    m_store.pixelsChanged(*image);
    if (!m_store.fit(*image)) {
        image->frames.pop_back();
        m_store.fit(*image);
        return std::unexpected("ENOSPC:larger than all images may be");
    }
    return {};
}

GraphicsResult Graphics::animate(const GraphicsCommand& command, uint32_t* id)
{
    Image* const image = imageOf(command);
    if (!image)
        return std::unexpected("ENOENT:no such image");
    *id = image->id;
    if (ImageFrame* frame = frameOf(*image, command.number('r')); frame && command.has('z'))
        frame->gap = std::max(command.integer('z'), 0);
    if (frameOf(*image, command.number('c')))
        image->current = command.number('c') - 1;
    if (command.has('v') && command.number('v'))
        image->loops = int(std::min<uint32_t>(command.number('v') - 1, 1'000'000));
    if (const uint32_t state = command.number('s')) {
        image->running = state >= 2;
        image->nextFrameAt = 0;
    }
    return {};
}

GraphicsResult Graphics::compose(const GraphicsCommand& command, uint32_t* id)
{
    Image* const image = imageOf(command);
    if (!image)
        return std::unexpected("ENOENT:no such image");
    *id = image->id;
    const ImageFrame* source = frameOf(*image, command.number('r'));
    ImageFrame* target = frameOf(*image, command.number('c'));
    if (!source || !target)
        return std::unexpected("ENOENT:no such frame");
    const Bitmap& whole = source->bitmap;
    const int width = command.amount('w') ? command.amount('w') : whole.width;
    const int height = command.amount('h') ? command.amount('h') : whole.height;
    const Box from { command.amount('X'), command.amount('Y'), width, height };
    const Box to { command.amount('x'), command.amount('y'), width, height };
    if (!fits(from, whole) || !fits(to, target->bitmap))
        return std::unexpected("EINVAL:outside the image");
    draw(target->bitmap, to.x, to.y, whole, from, command.number('C') == 1);
    m_store.pixelsChanged(*image);
    return {};
}

int64_t Graphics::tick(int64_t now)
{
    int64_t next = -1;
    for (auto& [id, image] : m_store.images()) {
        if (!image.running || image.frames.size() < 2)
            continue;
        if (image.nextFrameAt == 0)
            image.nextFrameAt = now + std::max(image.frames[image.current].gap, 1) * millisecond;
        // Frames without a gap are skipped; at most one round, however late the call.
        for (size_t steps = 0; now >= image.nextFrameAt && steps < image.frames.size() && image.running; ++steps) {
            image.current = (image.current + 1) % image.frames.size();
            if (image.current == 0 && image.loops > 0 && --image.loops == 0)
                image.running = false;
            image.nextFrameAt += image.frames[image.current].gap * millisecond;
        }
        image.nextFrameAt = std::max(image.nextFrameAt, now + 1);
        if (image.running)
            next = next < 0 ? image.nextFrameAt - now : std::min(next, image.nextFrameAt - now);
    }
    return next;
}

}
