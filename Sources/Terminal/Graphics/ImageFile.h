#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::terminal {

enum class ImageSource : uint8_t { File, TemporaryFile, SharedMemory };

/// Reads a file named by the stream: only a regular file, not through a link that leads out of a temporary folder, and
/// at most `most` bytes. A temporary file is deleted if the user owns it, it is in a temporary folder and its path
/// contains "tty-graphics-protocol"; shared memory is unlinked. The error is a code and a text for the reply.
std::expected<std::vector<uint8_t>, std::string> readImageSource(
    ImageSource source, std::string_view name, size_t offset, size_t size, size_t most);

}
