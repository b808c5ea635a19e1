// SPDX-License-Identifier: MIT
// PNG (ISO/IEC 15948) around a zlib stream (RFC 1950) of stored blocks (RFC 1951).
#include "png.h"

#include <algorithm>

namespace ork::tool {
namespace {

std::string big_endian(uint32_t value)
{
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift);
    return bytes;
}

uint32_t crc32(const std::string& bytes)
{
    uint32_t crc = ~0u;
    for (const char byte : bytes) {
        crc ^= static_cast<uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xedb88320u : 0);
    }
    return ~crc;
}

uint32_t adler32(const std::string& bytes)
{
    uint32_t a = 1, b = 0;
    for (const char byte : bytes) {
        a = (a + static_cast<uint8_t>(byte)) % 65521;
        b = (b + a) % 65521;
    }
    return b << 16 | a;
}

std::string chunk(const std::string& type, const std::string& data)
{
    return big_endian(static_cast<uint32_t>(data.size())) + type + data + big_endian(crc32(type + data));
}

std::string zlib(const std::string& bytes)
{
    constexpr size_t most = 65535;
    std::string stream = "\x78\x01";
    for (size_t at = 0; at < bytes.size(); at += most) {
        const size_t size = std::min(most, bytes.size() - at);
        const bool last = at + size == bytes.size();
        stream += last ? '\1' : '\0';
        for (const size_t word : {size, ~size}) {
            stream += static_cast<char>(word & 255);
            stream += static_cast<char>(word >> 8 & 255);
        }
        stream.append(bytes, at, size);
    }
    return stream + big_endian(adler32(bytes));
}

} // namespace

std::string png(int width, int height, const std::vector<uint8_t>& pixels)
{
    std::string rows;
    for (int y = 0; y < height; ++y) {
        rows += '\0'; // no filter
        const uint8_t* row = pixels.data() + static_cast<size_t>(y) * static_cast<size_t>(width);
        rows.append(reinterpret_cast<const char*>(row), static_cast<size_t>(width));
    }
    const std::string header = big_endian(static_cast<uint32_t>(width)) + big_endian(static_cast<uint32_t>(height)) +
                               std::string("\x08\0\0\0\0", 5); // 8 bits, grey
    return "\x89PNG\r\n\x1a\n" + chunk("IHDR", header) + chunk("IDAT", zlib(rows)) + chunk("IEND", "");
}

std::string data_uri(const std::string& png)
{
    static constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text = "data:image/png;base64,";
    for (size_t i = 0; i < png.size(); i += 3) {
        uint32_t bits = 0;
        for (size_t j = 0; j < 3; ++j) bits = bits << 8 | (i + j < png.size() ? static_cast<uint8_t>(png[i + j]) : 0);
        for (size_t j = 0; j < 4; ++j) text += i + j <= png.size() ? digits[bits >> (18 - 6 * j) & 63] : '=';
    }
    return text;
}

} // namespace ork::tool
