#include "Terminal/Graphics/Png.h"

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <png.h>
#include <zlib.h>

namespace corvane::terminal {

namespace {

struct Source {
    std::span<const uint8_t> bytes;
};

void readBytes(png_structp png, png_bytep out, png_size_t count)
{
    auto& source = *static_cast<Source*>(png_get_io_ptr(png));
    if (count > source.bytes.size())
        png_error(png, "cut");
    std::memcpy(out, source.bytes.data(), count);
    source.bytes = source.bytes.subspan(count);
}

void stayQuiet(png_structp, png_const_charp) { }

[[noreturn]] void fail(png_structp png, png_const_charp)
{
    longjmp(png_jmpbuf(png), 1);
}

/// libpng leaves this function by longjmp, so no local may have a destructor.
bool decodeInto(png_structp png, png_infop info, Bitmap& bitmap, std::vector<png_bytep>& rows)
{
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_read_info(png, info);
    bitmap.width = int(std::min<png_uint_32>(png_get_image_width(png, info), Bitmap::maxSide + 1));
    bitmap.height = int(std::min<png_uint_32>(png_get_image_height(png, info), Bitmap::maxSide + 1));
    if (!Bitmap::isAllowed(bitmap.width, bitmap.height))
        return false;
    png_set_expand(png);
    png_set_scale_16(png);
    png_set_gray_to_rgb(png);
    png_set_add_alpha(png, 0xff, PNG_FILLER_AFTER);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    const size_t stride = size_t(bitmap.width) * 4;
    if (png_get_rowbytes(png, info) != stride)
        return false;
    bitmap.pixels.resize(stride * size_t(bitmap.height));
    rows.resize(size_t(bitmap.height));
    for (size_t row = 0; row < rows.size(); ++row)
        rows[row] = bitmap.pixels.data() + row * stride;
    png_read_image(png, rows.data());
    return true;
}

}

std::optional<Bitmap> decodePng(std::span<const uint8_t> bytes)
{
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, fail, stayQuiet);
    if (!png)
        return {};
    png_infop info = png_create_info_struct(png);
    png_set_user_limits(png, Bitmap::maxSide, Bitmap::maxSide);
    png_set_chunk_malloc_max(png, 8 << 20);
    png_set_chunk_cache_max(png, 64);
    Source source { bytes };
    png_set_read_fn(png, &source, readBytes);
    Bitmap bitmap;
    std::vector<png_bytep> rows;
    const bool decoded = info && decodeInto(png, info, bitmap, rows);
    png_destroy_read_struct(&png, &info, nullptr);
    if (!decoded)
        return {};
    return bitmap;
}

std::optional<std::vector<uint8_t>> inflateAll(std::span<const uint8_t> bytes, size_t most)
{
    z_stream stream {};
    if (inflateInit(&stream) != Z_OK)
        return {};
    stream.next_in = const_cast<Bytef*>(bytes.data());
    stream.avail_in = uInt(bytes.size());
    std::vector<uint8_t> out;
    int result = Z_OK;
    while (result == Z_OK && out.size() <= most) {
        const size_t before = out.size();
        out.resize(before + std::clamp<size_t>(before, 64 * 1024, 4 << 20));
        stream.next_out = out.data() + before;
        stream.avail_out = uInt(out.size() - before);
        result = inflate(&stream, Z_NO_FLUSH);
        out.resize(out.size() - stream.avail_out);
        if (result == Z_OK && stream.avail_in == 0 && stream.avail_out > 0)
            break;
    }
    inflateEnd(&stream);
    if (result != Z_STREAM_END || out.size() > most)
        return {};
    return out;
}

}
