/** A number that only who knows a secret can tell for a text: HMAC with SHA-256 (RFC 2104, FIPS 180-4). */
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace workbench::archive {

using Hash_Bytes = std::array<std::uint8_t, 32>;

/** SHA-256. */
Hash_Bytes Hash_Of(std::string_view bytes);
/** HMAC-SHA-256. The same for the same secret and text, always. */
Hash_Bytes Secret_Hash_Of(std::string_view secret, std::string_view text);

/** 256 random bits as 64 hexadecimal digits. @throw std::exception: the system has none */
std::string Secret_New();
/** Whether a text is one that Secret_New gives. */
bool Is_Secret(std::string_view text);

}  // namespace workbench::archive
