#include "practice/server/Credentials.h"

#include "practice/server/Sha256.h"

#include <crypt.h>
#include <string.h> // explicit_bzero
#include <sys/random.h>

#include <array>
#include <cerrno>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace practice {

namespace {

constexpr const char* hashMethod = "$y$"; // yescrypt: slow and memory-hard
constexpr std::size_t longestPassword = CRYPT_MAX_PASSPHRASE_SIZE - 1;

template <std::size_t Size> std::array<unsigned char, Size> randomBytes()
{
    std::array<unsigned char, Size> bytes{};
    std::size_t filled = 0;
    while (filled < Size) {
        const ssize_t got = ::getrandom(bytes.data() + filled, Size - filled, 0);
        if (got < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "getrandom");
        filled += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    return bytes;
}

std::string hashWith(const std::string& password, const std::string& setting)
{
    // The work area holds the password's remains; libcrypt wants it zeroed before its first use.
    const auto work = std::make_unique<crypt_data>();
    const char* hash = ::crypt_r(password.c_str(), setting.c_str(), work.get());
    std::string result = hash && hash[0] != '*' ? hash : "";
    ::explicit_bzero(work.get(), sizeof(crypt_data));
    return result;
}

} // namespace

std::string newToken()
{
    std::string token;
    for (const unsigned char byte : randomBytes<32>()) {
        token.push_back("0123456789abcdef"[byte >> 4]);
        token.push_back("0123456789abcdef"[byte & 0xf]);
    }
    return token;
}

std::string tokenDigest(std::string_view token)
{
    return sha256Hex(token);
}

std::string hashPassword(const std::string& password)
{
    const auto random = randomBytes<24>();
    std::array<char, CRYPT_GENSALT_OUTPUT_SIZE> setting{};
    const char* made = ::crypt_gensalt_rn(hashMethod, 0, reinterpret_cast<const char*>(random.data()),
        static_cast<int>(random.size()), setting.data(), static_cast<int>(setting.size()));
    std::string hash = made ? hashWith(password, made) : "";
    if (hash.empty())
        throw std::runtime_error("the system's password hashing does not work");
    return hash;
}

bool passwordMatches(const std::string& password, const std::string& hash)
{
    // crypt takes C strings: what stands behind a NUL byte must not be ignored.
    if (password.find('\0') != std::string::npos || password.size() > longestPassword)
        return false;
    const std::string again = hashWith(password, hash);
    return !again.empty() && equalInConstantTime(again, hash);
}

bool equalInConstantTime(std::string_view left, std::string_view right)
{
    if (left.size() != right.size())
        return false;
    unsigned char difference = 0;
    for (std::size_t i = 0; i < left.size(); ++i)
        difference = static_cast<unsigned char>(difference | (left[i] ^ right[i]));
    return difference == 0;
}

} // namespace practice
