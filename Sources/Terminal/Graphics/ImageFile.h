#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::terminal {

enum class ImageSource : uint8_t { File, TemporaryFile, SharedMemory };

/// Reads what the stream named: a regular file, never a device or a socket, never by a link that leads out of a
/// temporary folder, at most `most` bytes. A temporary file is deleted if it is the user's own, lies in a temporary
/// folder and has "tty-graphics-protocol" in its path; shared memory is unlinked. The error is a code and a text as the
/// graphics protocol answers them.
std::expected<std::vector<uint8_t>, std::string> readImageSource(
    ImageSource source, std::string_view name, size_t offset, size_t size, size_t most);

}
