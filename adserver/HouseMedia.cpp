#include "adserver/HouseMedia.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

std::optional<std::string> HouseMedia::bannerSvg(std::string_view size) {
    int width = 0, height = 0;
    if (size == "320x50") {
        width = 320;
        height = 50;
    } else if (size == "768x90") {
        width = 768;
        height = 90;
    } else {
        return std::nullopt;
    }
    double unit = height / 50.0;
    return fmt::format(
        R"SVG(<svg xmlns="http://www.w3.org/2000/svg" width="{w}" height="{h}" viewBox="0 0 {w} {h}">
<defs><linearGradient id="g" x1="0" x2="1"><stop offset="0" stop-color="#7b2d8e"/><stop offset="1" stop-color="#e0457b"/></linearGradient></defs>
<rect width="{w}" height="{h}" fill="url(#g)"/>
<g fill="#fff"><rect x="{x0}" y="{y0}" width="{s}" height="{s2}"/><polygon points="{p}"/></g>
<text x="{tx}" y="{ty}" font-family="DejaVu Sans, sans-serif" font-weight="bold" font-size="{fs}" fill="#fff">Quiblo Pro</text>
<text x="{tx}" y="{ty2}" font-family="DejaVu Sans, sans-serif" font-size="{fs2}" fill="#fde2ec">64 more sounds, one tap each</text>
</svg>
)SVG",
        fmt::arg("w", width), fmt::arg("h", height), fmt::arg("x0", 12 * unit), fmt::arg("y0", 18 * unit),
        fmt::arg("s", 8 * unit), fmt::arg("s2", 14 * unit),
        fmt::arg("p", fmt::format("{},{} {},{} {},{} {},{}", 20 * unit, 18 * unit, 32 * unit, 8 * unit,
                                  32 * unit, 42 * unit, 20 * unit, 32 * unit)),
        fmt::arg("tx", 44 * unit), fmt::arg("ty", 23 * unit), fmt::arg("ty2", 40 * unit),
        fmt::arg("fs", 16 * unit), fmt::arg("fs2", 11 * unit));
}

const std::string& HouseMedia::toneWav() {
    static const std::string wav = [] {
        constexpr uint32_t kRate = 22050;
        constexpr uint32_t kSamples = kRate;
        std::string out;
        auto put16 = [&](uint16_t v) { out.append({char(v & 0xff), char(v >> 8)}); };
        auto put32 = [&](uint32_t v) {
            put16(uint16_t(v & 0xffff));
            put16(uint16_t(v >> 16));
        };
        out += "RIFF";
        put32(36 + kSamples * 2);
        out += "WAVEfmt ";
        put32(16);
        put16(1);  // PCM
        put16(1);  // mono
        put32(kRate);
        put32(kRate * 2);
        put16(2);
        put16(16);
        out += "data";
        put32(kSamples * 2);
        double phase = 0;
        for (uint32_t i = 0; i < kSamples; ++i) {
            double t = double(i) / kSamples;
            phase += 2 * std::numbers::pi * (440 + 440 * t) / kRate;
            double fade = std::min(1.0, std::min(t, 1 - t) * 20);
            put16(uint16_t(int16_t(std::sin(phase) * 12000 * fade)));
        }
        return out;
    }();
    return wav;
}
