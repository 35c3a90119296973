// Which bytes of a clip its fingerprint covers, and their SHA-256.
#include "project/clip_fingerprint.h"

#include "project/files/file_operations.h"
#include "project/files/project_error.h"
#include "project/files/read_only_file.h"

#include <fmt/format.h>
#include <openssl/evp.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

namespace flowtide {
namespace {

constexpr std::size_t windowBytes = 65'536;
constexpr std::size_t digestBytes = 32;

class Sha256 {
public:
    Sha256() { check(context_ && EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr) == 1); }

    void add(std::string_view bytes) { check(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()) == 1); }

    std::string hexDigest() {
        std::array<unsigned char, digestBytes> digest{};
        check(EVP_DigestFinal_ex(context_.get(), digest.data(), nullptr) == 1);
        return fmt::format("{:02x}", fmt::join(digest, ""));
    }

private:
    static void check(bool succeeded) {
        if (!succeeded) throw ProjectError::invalid("The video's fingerprint could not be computed.");
    }

    struct Free {
        void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
    };
    std::unique_ptr<EVP_MD_CTX, Free> context_{EVP_MD_CTX_new()};
};

} // namespace

std::string clipFingerprint(const std::filesystem::path& file) {
    const ReadOnlyFile clip(file, ReadOnlyFile::Links::followed);
    if (!clip.isOpen()) throwSystemError(lastSystemError());
    const auto size = clip.regularFileSize();
    if (!size) throw ProjectError::invalid("Choose a regular video file.");

    Sha256 digest;
    digest.add(std::to_string(*size));
    std::array<char, windowBytes> window;
    for (const std::uint64_t offset : {std::uint64_t{0}, *size / 2, *size < windowBytes ? 0 : *size - windowBytes}) {
        const auto count = clip.readAt(offset, window);
        if (!count) throwSystemError(lastSystemError());
        digest.add({window.data(), *count});
    }
    return digest.hexDigest();
}

} // namespace flowtide
