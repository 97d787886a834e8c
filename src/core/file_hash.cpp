#include "core/file_hash.h"

#include <array>
#include <fstream>
#include <sha256.h> // libmd
#include <vector>

namespace nmr {
namespace {

class Digest {
public:
    Digest() { SHA256Init(&context_); }
    void Add(std::span<const std::byte> bytes)
    {
        SHA256Update(&context_, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::string Text()
    {
        std::array<char, SHA256_DIGEST_STRING_LENGTH> text{};
        SHA256End(&context_, text.data());
        return text.data();
    }

private:
    SHA2_CTX context_{};
};

} // namespace

std::string Sha256(std::span<const std::byte> bytes)
{
    Digest digest;
    digest.Add(bytes);
    return digest.Text();
}

Result<std::string> Sha256OfFile(const std::filesystem::path& file)
{
    constexpr std::size_t kPiece = 1U << 18;
    std::error_code ignored;
    std::ifstream in;
    if (std::filesystem::is_regular_file(file, ignored)) in.open(file, std::ios::binary);
    std::vector<char> piece(in.is_open() ? kPiece : 0);
    Digest digest;
    while (in.is_open() && in.good()) {
        in.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        digest.Add(std::as_bytes(std::span(piece)).first(static_cast<std::size_t>(in.gcount())));
    }
    if (in.is_open() && in.eof()) return digest.Text();
    return Error{ErrorCode::unreadable, "Sha256OfFile/1DFile", "Can't read " + file.string() + "."};
}

} // namespace nmr
