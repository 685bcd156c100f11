#include "Terminal/Core/Charsets.h"

#include <algorithm>
#include <string_view>

namespace corvane::terminal {

namespace {

struct Designator {
    char intermediate;
    char final;
    Charset set;
};

constexpr Designator designators94[] = {
    { 0, 'B', Charset::Ascii },
    { 0, '1', Charset::Ascii },
    { 0, '0', Charset::SpecialGraphics },
    { 0, '2', Charset::SpecialGraphics },
    { 0, '>', Charset::Technical },
    { 0, 'A', Charset::British },
    { 0, '4', Charset::Dutch },
    { 0, 'C', Charset::Finnish },
    { 0, '5', Charset::Finnish },
    { 0, 'R', Charset::French },
    { 0, 'f', Charset::French },
    { 0, 'Q', Charset::FrenchCanadian },
    { 0, '9', Charset::FrenchCanadian },
    { 0, 'K', Charset::German },
    { 0, 'Y', Charset::Italian },
    { 0, '`', Charset::Norwegian },
    { 0, 'E', Charset::Norwegian },
    { 0, '6', Charset::Norwegian },
    { '%', '6', Charset::Portuguese },
    { 0, 'Z', Charset::Spanish },
    { 0, 'H', Charset::Swedish },
    { 0, '7', Charset::Swedish },
    { 0, '=', Charset::Swiss },
    { 0, '<', Charset::Supplemental },
    { '%', '5', Charset::Supplemental },
};

// The replacements for # @ [ \ ] ^ _ ` { | } ~ in each national set.
constexpr std::string_view nationalPlaces = "#@[\\]^_`{|}~";
constexpr std::u32string_view national[] = {
    U"£@[\\]^_`{|}~", // British
    U"£¾ĳ½|^_`¨ƒ¼´", // Dutch
    U"#@ÄÖÅÜ_éäöåü", // Finnish
    U"£à°ç§^_`éùè¨", // French
    U"#àâçêî_ôéùèû", // French Canadian
    U"#§ÄÖÜ^_`äöüß", // German
    U"£§°çé^_ùàòèì", // Italian
    U"#ÄÆØÅÜ_äæøåü", // Norwegian
    U"#@ÃÇÕ^_`ãçõ~", // Portuguese
    U"£§¡Ñ¿^_`°ñç~", // Spanish
    U"#ÉÄÖÅÜ_éäöåü", // Swedish
    U"ùàéçêîèôäöüû", // Swiss
};

constexpr std::u32string_view specialGraphics = U"\u00a0◆▒␉␌␍␊°±␤␋┘┐┌└┼⎺⎻─⎼⎽├┤┴┬│≤≥π≠£·";
constexpr std::u32string_view technical
    = U"⎷┌─⌠⌡│⎡⎣⎤⎦⎛⎝⎞⎠⎨⎬⎲⎳⎲⎳⎴⎵⎶≤≠≥∫∴∝∞÷Δ∇ΦΓ∼≃Θ×Λ⇔⇒≡ΠΨ�Σ��√ΩΞΥ⊂⊃∩∪∧∨¬αβχδεφγηιθκλ�ν∂πψρστ�ƒωξυζ←↑→↓";

}

Charset charsetOf(char intermediate, char final, bool is96)
{
    if (is96)
        return final == 'A' && intermediate == 0 ? Charset::Latin1 : Charset::Ascii;
    const auto found = std::ranges::find_if(designators94,
        [&](const Designator& entry) { return entry.intermediate == intermediate && entry.final == final; });
    return found == std::end(designators94) ? Charset::Ascii : found->set;
}

bool isNational(Charset set)
{
    return set > Charset::British && set <= Charset::Swiss;
}

char32_t translate(Charset set, uint8_t code)
{
    if (set == Charset::Latin1 || set == Charset::Supplemental)
        return char32_t(code) + 0x80;
    if (set == Charset::SpecialGraphics)
        return code >= 0x5f && code < 0x7f ? specialGraphics[code - 0x5fu] : code;
    if (set == Charset::Technical)
        return code > 0x20 && code - 0x21u < technical.size() ? technical[code - 0x21u] : code;
    if (set >= Charset::British && set <= Charset::Swiss) {
        const size_t place = nationalPlaces.find(char(code));
        if (place != std::string_view::npos)
            return national[size_t(set) - size_t(Charset::British)][place];
    }
    return code;
}

}
