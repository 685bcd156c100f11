#pragma once

#include "Terminal/Graphics/GraphicsCommand.h"
#include "Terminal/Graphics/ImageStore.h"
#include "Terminal/Graphics/Sixel.h"
#include "Terminal/Text/Base64.h"

#include <expected>
#include <string>
#include <string_view>

namespace corvane::terminal {

class Emulator;

/// The result of a command: nothing, or an error code and text such as "ENOENT:no such image".
using GraphicsResult = std::expected<void, std::string>;

/// The images of a terminal, and the protocols of Kitty, Sixel and iTerm2.
class Graphics {
public:
    Graphics(Emulator& terminal, size_t budget);

    ImageStore& store() { return m_store; }
    const ImageStore& store() const { return m_store; }

    // The Kitty protocol: an APC string whose first byte is G.
    void begin();
    void data(std::string_view data);
    void end(bool complete);

    void beginSixel(const std::vector<int>& params);
    void sixelData(std::string_view data);
    void endSixel(bool complete);

    /// OSC 1337 ; File=... : the arguments and base64 data.
    void inlineImage(std::string_view arguments, std::string_view base64);
    // The multipart form: MultipartFile, FilePart and FileEnd.
    void beginInlineImage(std::string_view arguments);
    void addToInlineImage(std::string_view base64);
    void endInlineImage();

    /// Sets the picture of an image that the listener had decoded.
    void decoded(uint32_t id, Bitmap bitmap);

    /// Advances animations. Returns the nanoseconds until the next frame is due, or -1.
    int64_t tick(int64_t now);
    void clear();
    /// Removes the placements of this screen whose text is gone.
    void dropLost(bool alternate);

private:
    void run(const GraphicsCommand& command);
    void answer(const GraphicsCommand& command, uint32_t id, const GraphicsResult& result);
    GraphicsResult transmit(const GraphicsCommand& command, bool query, uint32_t* id);
    std::expected<Bitmap, std::string> load(const GraphicsCommand& command);
    GraphicsResult put(const GraphicsCommand& command, uint32_t id);
    GraphicsResult addFrame(const GraphicsCommand& command, uint32_t* id);
    GraphicsResult animate(const GraphicsCommand& command, uint32_t* id);
    GraphicsResult compose(const GraphicsCommand& command, uint32_t* id);
    void remove(const GraphicsCommand& command);
    Image* imageOf(const GraphicsCommand& command);
    void placeAtCursor(Placement placement, const Image& image, bool movesCursor, bool leavesBelow);

    static constexpr size_t maxControl = 1024;
    static constexpr size_t maxFrames = 1024;
    static constexpr size_t maxInline = 48 << 20;
    Emulator& t;
    ImageStore m_store;
    // The command being received
    bool m_isGraphics = false;
    bool m_first = true; // nothing of the string was received yet
    bool m_inPayload = false;
    std::string m_control;
    // The chunks received so far of an image sent in several commands
    bool m_hasPending = false;
    GraphicsCommand m_pending;
    std::vector<uint8_t> m_payload;
    Base64Decoder m_decoder;
    bool m_tooLarge = false;
    struct {
        bool isComing = false;
        std::string arguments;
        std::string base64;
    } m_inline;
    SixelDecoder::Colors m_sharedColors = SixelDecoder::vtColors();
    SixelDecoder::Colors m_ownColors {};
    std::optional<SixelDecoder> m_sixel;
};

/// The cells of the screen that a placement covers; half-open, rows in the history are negative.
struct PlacementView {
    uint32_t image;
    uint32_t placement;
    int z;
    int64_t top;
    int left;
    int64_t bottom;
    int right;
    int sourceX;
    int sourceY;
    int sourceWidth;
    int sourceHeight;
};

/// All placements on the current screen, including the parts of virtual ones that placeholders show.
std::vector<PlacementView> placementViews(Emulator& terminal);

}
